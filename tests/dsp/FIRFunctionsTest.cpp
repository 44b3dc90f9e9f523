// Tests of the level conversions, the offline convolution, the one-shot spectrum and the low-cut
// kernel.
#include "dsp/FIRFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Samples = AlignedVector<float>;

TEST(Levels, ConvertBothWaysAndHaveNoFloor) {
  EXPECT_EQ(dB_to_mag(0.0f), 1.0f);
  EXPECT_EQ(mag_to_dB(1.0f), 0.0f);
  EXPECT_FLOAT_EQ(dB_to_mag(-60.0f), 1e-3f);
  EXPECT_FLOAT_EQ(mag_to_dB(10.0f), 20.0f);
  EXPECT_EQ(mag_to_dB(0.0f), -std::numeric_limits<float>::infinity());
}

TEST(Convolve, EqualsTheDefiningSumInBothDomains) {
  Random random(1);
  for (const std::size_t na : {1u, 2u, 7u, 33u, 200u}) {
    for (const std::size_t nb : {1u, 3u, 4u, 5u, 64u, 250u}) {
      const Samples a = random.signal(na);
      const Samples b = random.signal(nb);
      const std::vector<double> expected = reference::convolve(a, b);
      Samples c(5, 9.0f);
      convolve(a, b, c, ComputeDomain::TIME_DOMAIN, 1, 1);
      EXPECT_LT(reference::relative_error(c, expected), 1e-6) << na << " by " << nb;
      convolve(a, b, c, ComputeDomain::FREQUENCY_DOMAIN, 1, 1);
      EXPECT_LT(reference::relative_error(c, expected), 1e-6) << na << " by " << nb;
    }
  }
}

// The two domains differ in rounding, which tells which one ran.
TEST(Convolve, ChoosesTheDomainByTheFirstOperandAndTheOldOutput) {
  Random random(2);
  const struct {
    std::size_t a;
    std::size_t b;
    std::size_t c;
    ComputeDomain domain;
  } cases[] = {
      {1000, 100, 0, ComputeDomain::TIME_DOMAIN},
      {1000, 5, 1000, ComputeDomain::FREQUENCY_DOMAIN},
      {33, 200, 33, ComputeDomain::FREQUENCY_DOMAIN},
      {33, 200, 32, ComputeDomain::TIME_DOMAIN},
      {32, 200, 500, ComputeDomain::TIME_DOMAIN},
  };
  for (const auto& [na, nb, nc, domain] : cases) {
    const Samples a = random.signal(na);
    const Samples b = random.signal(nb);
    Samples chosen(nc);
    convolve(a, b, chosen);
    Samples asked;
    convolve(a, b, asked, domain, 1, 1);
    Samples other;
    convolve(a, b, other, ComputeDomain(1 - static_cast<int>(domain)), 1, 1);
    EXPECT_TRUE(reference::same_bits(chosen, asked)) << na << " into " << nc;
    EXPECT_FALSE(reference::same_bits(chosen, other)) << na << " into " << nc;
  }
}

TEST(Convolve, TakesPowersOfEitherOperandInTheFrequencyDomainAlone) {
  const auto expect_near = [](const Samples& c, const Samples& expected) {
    ASSERT_EQ(c.size(), expected.size());
    for (std::size_t i = 0; i < c.size(); ++i) EXPECT_NEAR(c[i], expected[i], 2e-6) << i;
  };
  const Samples one = {1.0f};
  const Samples sum = {1.0f, 1.0f};
  const Samples difference = {1.0f, -1.0f};
  Samples c;
  convolve(one, sum, c, ComputeDomain::FREQUENCY_DOMAIN, 1, 3);
  expect_near(c, {1, 3, 3, 1});
  convolve(sum, one, c, ComputeDomain::FREQUENCY_DOMAIN, 2, 1);
  expect_near(c, {1, 2, 1});
  convolve(sum, difference, c, ComputeDomain::FREQUENCY_DOMAIN, 2, 2);
  expect_near(c, {1, 0, -2, 0, 1});
  convolve(one, sum, c, ComputeDomain::TIME_DOMAIN, 1, 3);
  expect_near(c, {1, 1});
}

TEST(Convolve, AcceptsEmptyOperandsAndUnknownDomains) {
  const Samples none;
  const Samples some = {1, 2, 3};
  Samples c(9, 5.0f);
  convolve(some, some, c, static_cast<ComputeDomain>(2), 1, 1);
  EXPECT_EQ(c, Samples(9, 5.0f));
  for (const ComputeDomain domain : {ComputeDomain::TIME_DOMAIN, ComputeDomain::FREQUENCY_DOMAIN}) {
    convolve(some, none, c, domain, 1, 1);
    EXPECT_EQ(c, Samples(2, 0.0f));
    convolve(none, Samples{1.0f}, c, domain, 1, 1);
    EXPECT_TRUE(c.empty());
    EXPECT_THROW(convolve(none, none, c, domain, 1, 1), std::length_error);
  }
}

TEST(Convolve, KeepsAZeroBinExactlyZeroUnderAPower) {
  AlignedVector<complex> bins = {complex(0, 0), complex(-0.0f, 0), complex(0, 2), complex(-2, 0)};
  raise_spectrum(bins.data(), 4, 3.0);
  EXPECT_EQ(bins[0], complex(0, 0));
  EXPECT_EQ(bins[1], complex(0, 0));
  EXPECT_LT(std::abs(bins[2] - complex(0, -8)), 1e-5f);
  EXPECT_LT(std::abs(bins[3] - complex(-8, 0)), 1e-5f);
}

TEST(FIRSpectrum, CutsOrExtendsToTheLengthAsked) {
  Random random(3);
  const Samples x = random.signal(30);
  for (const std::size_t n : {1u, 9u, 30u, 45u, 64u}) {
    Samples fitted = x;
    fitted.resize(n);
    AlignedVector<complex> X(3);
    FIR_FFT(x, X, static_cast<int>(n));
    EXPECT_LT(reference::relative_error(X, reference::dft(fitted)), 1e-6) << n;
  }
}

// Gain of h at a frequency divided by the sample rate.
double gain_at(const Samples& h, double frequency) {
  std::complex<double> sum = 0.0;
  for (std::size_t k = 0; k < h.size(); ++k) {
    const double phase = -2.0 * std::numbers::pi * frequency * static_cast<double>(k);
    sum += static_cast<double>(h[k]) * std::polar(1.0, phase);
  }
  return std::abs(sum);
}

TEST(LowCut, RemovesWhatLiesBelowTheCutoffAndPassesWhatLiesAbove) {
  for (const int taps : {250, 251, 500}) {
    Samples h(7, 3.0f);
    filter_lowcut_sinc_Hann(h, 0.05f, taps);
    ASSERT_EQ(h.size(), static_cast<std::size_t>(taps));
    EXPECT_LT(gain_at(h, 0.0), 0.01) << taps;
    EXPECT_LT(gain_at(h, 0.035), 0.01) << taps;
    EXPECT_NEAR(gain_at(h, 0.05), 0.5, 0.02) << taps;
    EXPECT_NEAR(gain_at(h, 0.065), 1.0, 0.01) << taps;
    EXPECT_NEAR(gain_at(h, 0.4), 1.0, 0.01) << taps;
  }
}

TEST(LowCut, CentresEvenLengthsLeftOfTheMiddle) {
  Samples odd;
  filter_lowcut_sinc_Hann(odd, 0.1f, 11);
  for (std::size_t k = 0; k < 5; ++k) EXPECT_NEAR(odd[k], odd[10 - k], 1e-7);
  EXPECT_FLOAT_EQ(odd[5], 0.8f);
  Samples even;
  filter_lowcut_sinc_Hann(even, 0.1f, 10);
  EXPECT_GT(even[4], 0.7f);
  EXPECT_LT(even[5], 0.0f);
  Samples through;
  filter_lowcut_sinc_Hann(through, 0.0f, 11);
  for (std::size_t k = 0; k < 11; ++k) EXPECT_EQ(through[k], k == 5 ? 1.0f : 0.0f);
}

TEST(LowCut, GivesNothingBelowOneTapAndNoNumberForOne) {
  Samples h(4);
  filter_lowcut_sinc_Hann(h, 0.1f, 1);
  ASSERT_EQ(h.size(), 1u);
  EXPECT_TRUE(std::isnan(h[0]));
  filter_lowcut_sinc_Hann(h, 0.1f, -3);
  EXPECT_TRUE(h.empty());
}

}  // namespace
