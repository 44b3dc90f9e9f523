// Tests of the level conversions, the offline convolution, the one-shot spectrum and the low-cut
// kernel.
#include "dsp/FIRFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Samples = AlignedVector<float>;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr ComputeDomain kTime = ComputeDomain::TIME_DOMAIN;
constexpr ComputeDomain kFrequency = ComputeDomain::FREQUENCY_DOMAIN;

TEST(Levels, ConvertBothWaysAndHaveNoFloor) {
  EXPECT_EQ(dB_to_mag(0.0f), 1.0f);
  EXPECT_FLOAT_EQ(dB_to_mag(-60.0f), 1e-3f);
  EXPECT_FLOAT_EQ(mag_to_dB(10.0f), 20.0f);
  EXPECT_EQ(mag_to_dB(0.0f), -kInfinity);
}

TEST(Convolve, EqualsTheDefiningSumInBothDomains) {
  Random random(1);
  for (const std::size_t na : {1u, 7u, 33u, 200u}) {
    for (const std::size_t nb : {1u, 3u, 4u, 5u, 250u}) {
      const Samples a = random.signal(na), b = random.signal(nb);
      for (const ComputeDomain domain : {kTime, kFrequency}) {
        Samples c(5, 9.0f);
        convolve(a, b, c, domain, 1, 1);
        EXPECT_LT(reference::relative_error(c, reference::convolve(a, b)), 1e-6)
            << na << " by " << nb;
      }
    }
  }
}

// The two domains differ in rounding, which tells which one ran.
TEST(Convolve, ChoosesTheDomainByTheFirstOperandAndTheOldOutput) {
  Random random(2);
  const struct {
    std::size_t a, c;
    ComputeDomain domain;
  } cases[] = {{1000, 0, kTime},
               {1000, 1000, kFrequency},
               {33, 33, kFrequency},
               {33, 32, kTime},
               {32, 500, kTime}};
  for (const auto& [na, nc, domain] : cases) {
    const Samples a = random.signal(na), b = random.signal(100);
    Samples chosen(nc), in_time;
    convolve(a, b, chosen);
    convolve(a, b, in_time, kTime, 1, 1);
    EXPECT_EQ(reference::same_bits(chosen, in_time), domain == kTime) << na << " into " << nc;
    EXPECT_EQ(chosen.size(), in_time.size());
  }
}

TEST(Convolve, TakesPowersOfEitherOperandInTheFrequencyDomainAlone) {
  const Samples sum = {1.0f, 1.0f};
  const Samples difference = {1.0f, -1.0f};
  const auto expect = [](const Samples& a, const Samples& b, ComputeDomain domain, int a_power,
                         int b_power, const Samples& expected) {
    Samples c;
    convolve(a, b, c, domain, a_power, b_power);
    EXPECT_LT(reference::relative_error(c, expected), 1e-6) << a_power << ", " << b_power;
  };
  expect({1}, sum, kFrequency, 1, 3, {1, 3, 3, 1});
  expect(sum, {1}, kFrequency, 2, 1, {1, 2, 1});
  expect(sum, difference, kFrequency, 2, 2, {1, 0, -2, 0, 1});
  expect(sum, difference, kFrequency, 2, 0, {1, 2, 1});
  expect({1}, sum, kTime, 1, 3, {1, 1});
  AlignedVector<complex> bins = {complex(0, 0), complex(-0.0f, 0), complex(1e30f, 0)};
  raise_spectrum(bins.data(), 3, 300.0);
  EXPECT_EQ(bins, (AlignedVector<complex>{{0, 0}, {0, 0}, {kInfinity, 0}}));
}

TEST(Convolve, AcceptsEmptyOperandsAndUnknownDomains) {
  Samples c(9, 5.0f);
  convolve({1, 2, 3}, {1, 2}, c, static_cast<ComputeDomain>(2), 1, 1);
  EXPECT_EQ(c, Samples(9, 5.0f));
  for (const ComputeDomain domain : {kTime, kFrequency}) {
    convolve({1, 2, 3}, {}, c, domain, 1, 1);
    EXPECT_EQ(c, Samples(2, 0.0f));
    convolve({}, {1}, c, domain, 1, 1);
    EXPECT_TRUE(c.empty());
    EXPECT_THROW(convolve({}, {}, c, domain, 1, 1), std::length_error);
  }
}

TEST(FIRSpectrum, CutsOrExtendsToTheLengthAsked) {
  Samples x = Random(3).signal(64);
  std::fill(x.begin() + 30, x.end(), 0.0f);
  for (const std::size_t n : {1u, 9u, 30u, 64u}) {
    AlignedVector<complex> X(3);
    FIR_FFT({x.begin(), x.begin() + 30}, X, static_cast<int>(n));
    EXPECT_LT(reference::relative_error(X, reference::dft(std::span(x).first(n))), 1e-6) << n;
  }
}

TEST(LowCut, RemovesWhatLiesBelowTheCutoffAndPassesWhatLiesAbove) {
  constexpr int kLength = 1000;  // bins per unit of frequency
  for (const int taps : {250, 251}) {
    Samples h(7, 3.0f);
    filter_lowcut_sinc_Hann(h, 0.05f, taps);
    AlignedVector<complex> H;
    FIR_FFT(h, H, kLength);
    EXPECT_LT(std::abs(H[0]), 0.01) << taps;
    EXPECT_LT(std::abs(H[35]), 0.01) << taps;
    EXPECT_NEAR(std::abs(H[50]), 0.5, 0.02) << taps;
    EXPECT_NEAR(std::abs(H[65]), 1.0, 0.01) << taps;
    EXPECT_NEAR(std::abs(H[400]), 1.0, 0.01) << taps;
  }
}

TEST(LowCut, CentresEvenLengthsLeftOfTheMiddleAndHasNoNumberForOneTap) {
  Samples h;
  filter_lowcut_sinc_Hann(h, 0.1f, 10);
  EXPECT_GT(h[4], 0.7f);
  EXPECT_LT(h[5], 0.0f);
  filter_lowcut_sinc_Hann(h, 0.0f, 11);
  EXPECT_EQ(h, (Samples{0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}));
  filter_lowcut_sinc_Hann(h, 0.1f, 1);
  EXPECT_TRUE(std::isnan(h.at(0)));
  filter_lowcut_sinc_Hann(h, 0.1f, -3);
  EXPECT_TRUE(h.empty());
}

}  // namespace
