// Tests of the decay: the recursive forms against the plain one, the plain one against a form in
// double precision that filters each position on its own.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "dsp/FIRFunctions.h"
#include "tests/dsp/PlainResponse.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Samples = AlignedVector<float>;

struct Taps {
  float a;
  float b;
};
std::vector<double> decayed(const Samples& x, Taps taps) {
  return plain::decayed(std::vector<double>(x.begin(), x.end()), taps.a, taps.b);
}

// Raising a spectrum to half the length magnifies its rounding by that factor.
double limit_for(std::size_t n) { return 2e-6 + 6e-8 * static_cast<double>(n); }

const Taps kTaps[] = {{0.9f, 0.1f}, {0.99f, 0.005f}, {0.995f, -0.004f}, {0.98f, 0.0f},
                      {0.5f, 0.5f}, {0.5f, -0.5f},   {1.0f, 0.0f}};

// The allocating recursion, which is given its tables.
Samples by_allocating_recursion(const Samples& x, Taps taps) {
  std::vector<std::unique_ptr<FFTWrap<float>>> ffts;
  std::vector<AlignedVector<complex>> spectra;
  for (std::size_t n = x.size(); n > 32; n /= 2) {
    ffts.push_back(std::make_unique<FFTWrap<float>>(static_cast<int>(n)));
    spectra.emplace_back();
    FIR_FFT({taps.a, taps.b}, spectra.back(), static_cast<int>(n));
    raise_spectrum(spectra.back().data(), static_cast<int>(n / 2 + 1), static_cast<double>(n / 2));
  }
  AlignedVector<FFTWrap<float>*> fft_list;
  AlignedVector<AlignedVector<complex>*> spectrum_list;
  for (const auto& fft : ffts) fft_list.push_back(fft.get());
  for (auto& spectrum : spectra) spectrum_list.push_back(&spectrum);
  Samples y;
  _conv_exp_2tap_recursive_pow2(x, taps.a, taps.b, y, 0, fft_list, spectrum_list);
  return y;
}

TEST(Decay, FiltersEachPositionOnceMoreThanTheOneBefore) {
  Random random(5);
  for (const std::size_t n : {1u, 2u, 5u, 32u, 33u, 100u}) {
    const Samples x = random.signal(n);
    for (const Taps t : kTaps) {
      Samples y(3, 7.0f);
      conv_exp_2tap(x, t.a, t.b, y);
      EXPECT_LT(reference::relative_error(y, decayed(x, t)), 2e-6) << n << ", b " << t.b;
    }
  }
}

TEST(Decay, GivesTheSameByHalvingAtAnyLength) {
  Random random(6);
  for (const std::size_t n : {1u, 31u, 32u, 33u, 65u, 100u, 127u, 300u, 777u}) {
    const Samples x = random.signal(n);
    for (const Taps t : kTaps) {
      Samples y;
      conv_exp_2tap_recursive(x, t.a, t.b, y);
      EXPECT_LT(reference::relative_error(y, decayed(x, t)), limit_for(n)) << n << ", b " << t.b;
    }
  }
}

TEST(Decay, GivesTheSameInAllFormsAtPowersOfTwo) {
  Random random(7);
  for (std::size_t n = 1; n <= 1024; n *= 2) {
    const Samples x = random.signal(n);
    for (const Taps t : kTaps) {
      const std::vector<double> expected = decayed(x, t);
      Samples y(1, 7.0f);
      conv_exp_2tap_recursive_pow2(x, t.a, t.b, y);
      EXPECT_LT(reference::relative_error(y, expected), limit_for(n)) << n << ", b " << t.b;
      EXPECT_LT(reference::relative_error(by_allocating_recursion(x, t), expected), limit_for(n))
          << n << ", b " << t.b;
    }
  }
}

TEST(Decay, KeepsTheFirstHalfExactToRoundingAtOtherLengths) {
  Random random(8);
  for (const std::size_t n : {3u, 20u, 33u, 63u, 100u, 513u, 1000u}) {
    const Samples x = random.signal(n);
    for (const Taps t : kTaps) {
      Samples y;
      conv_exp_2tap_recursive_pow2(x, t.a, t.b, y);
      ASSERT_EQ(y.size(), 2 * n);
      std::vector<double> expected = decayed(x, t);
      expected.resize(n);
      EXPECT_LT(reference::relative_error(std::span(y).first(n), expected), limit_for(n))
          << n << ", b " << t.b;
    }
  }
}

// Below the transforms the fast form rounds as the plain one does, sample by sample.
TEST(Decay, GivesTheBitsOfThePlainFormUpToThirtyTwoSamples) {
  Random random(9);
  for (const std::size_t n : {1u, 2u, 4u, 8u, 16u, 32u}) {
    const Samples x = random.signal(n);
    Samples plain;
    conv_exp_2tap(x, 0.93f, 0.05f, plain);
    Samples fast;
    conv_exp_2tap_recursive_pow2(x, 0.93f, 0.05f, fast);
    EXPECT_TRUE(reference::same_bits(fast, plain)) << n;
  }
  Samples y;
  conv_exp_2tap_recursive_pow2({2.0f}, 0.75f, 0.5f, y);
  EXPECT_EQ(y, (Samples{1.5f, 1.0f}));
}

TEST(Decay, OfNothingIsNothing) {
  for (const auto form : {conv_exp_2tap, conv_exp_2tap_recursive, conv_exp_2tap_recursive_pow2}) {
    Samples y(3, 1.0f);
    form({}, 0.9f, 0.1f, y);
    EXPECT_TRUE(y.empty());
  }
}

TEST(DecayTaps, MeetTheAskedLevelsAtBothEndsOfTheSpectrum) {
  Samples taps(5);
  FIR_2_taps_fit_ends(-0.5f, -3.0f, taps);
  ASSERT_EQ(taps.size(), 2u);
  EXPECT_FLOAT_EQ(taps[0] + taps[1], dB_to_mag(-0.5f));
  EXPECT_FLOAT_EQ(taps[0] - taps[1], dB_to_mag(-3.0f));
  EXPECT_GT(taps[1], 0.0f);
  FIR_2_taps_fit_ends(-2.0f, -2.0f, taps);
  EXPECT_EQ(taps, (Samples{dB_to_mag(-2.0f), 0.0f}));
}

// A decay in dB per second holds at both ends over thousands of samples: a steady tone at 0 Hz or
// at the Nyquist frequency follows the straight line.
TEST(Decay, FallsByItsRateAtBothEndsOfTheSpectrum) {
  constexpr std::size_t kLength = 4096;
  Samples taps;
  FIR_2_taps_fit_ends(-0.001f, -0.01f, taps);
  for (const int sign : {1, -1}) {
    Samples x(kLength);
    for (std::size_t i = 0; i < kLength; ++i) x[i] = i % 2 == 0 ? 1.0f : static_cast<float>(sign);
    Samples y;
    conv_exp_2tap_recursive_pow2(x, taps[0], taps[1], y);
    const float rate = sign > 0 ? -0.001f : -0.01f;
    for (const std::size_t m : {1000u, 3000u, 4000u}) {
      EXPECT_NEAR(mag_to_dB(std::abs(y[m])), rate * static_cast<float>(m + 1), 0.02)
          << m << ", sign " << sign;
    }
  }
}

}  // namespace
