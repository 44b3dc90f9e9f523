// Tests of the decay: every form against the definition in double precision, and its levels.
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

// The allocating recursion, which is given its tables.
void by_allocating_recursion(const Samples& x, float a, float b, Samples& y) {
  std::vector<std::unique_ptr<FFTWrap<float>>> ffts;
  std::vector<AlignedVector<complex>> spectra(16);
  AlignedVector<FFTWrap<float>*> fft_list;
  AlignedVector<AlignedVector<complex>*> spectrum_list;
  for (int n = static_cast<int>(x.size()); n > 32; n /= 2) {
    ffts.push_back(std::make_unique<FFTWrap<float>>(n));
    fft_list.push_back(ffts.back().get());
    spectrum_list.push_back(&spectra[spectrum_list.size()]);
    FIR_FFT({a, b}, *spectrum_list.back(), n);
    raise_spectrum(spectrum_list.back()->data(), n / 2 + 1, n / 2);
  }
  _conv_exp_2tap_recursive_pow2(x, a, b, y, 0, fft_list, spectrum_list);
}

TEST(Decay, FiltersEachPositionOnceMoreThanTheOneBeforeInEveryForm) {
  Random random(5);
  for (const std::size_t n : {0u, 1u, 2u, 5u, 32u, 33u, 63u, 64u, 100u, 127u, 128u, 512u, 777u}) {
    const Samples x = random.signal(n);
    for (const auto& [a, b] : std::vector<std::pair<float, float>>{
             {0.9f, 0.1f}, {0.995f, -0.004f}, {0.98f, 0.0f}, {0.5f, 0.5f}, {0.5f, -0.5f}, {1, 0}}) {
      const std::vector<double> expected = plain::decayed({x.begin(), x.end()}, a, b);
      // Raising a spectrum to half the length magnifies its rounding by that factor.
      const double limit = 2e-6 + 6e-8 * static_cast<double>(n);
      const bool power_of_two = (n & (n - 1)) == 0;
      const auto run = [&, a = a, b = b](auto form, bool whole) {
        Samples y(3, 7.0f);
        form(x, a, b, y);
        EXPECT_EQ(y.size(), 2 * n);
        y.resize(whole ? 2 * n : n);
        const auto reached = std::span(expected).first(y.size());
        EXPECT_LT(reference::relative_error(y, reached), limit) << n << ": " << a << ", " << b;
        return y;
      };
      const Samples plain_form = run(conv_exp_2tap, true);
      run(conv_exp_2tap_recursive, true);
      const Samples fast = run(conv_exp_2tap_recursive_pow2, power_of_two);
      if (power_of_two) run(by_allocating_recursion, true);
      // Below the transforms the fast form rounds as the plain one does, sample by sample.
      EXPECT_TRUE(!power_of_two || n > 32 || reference::same_bits(fast, plain_form)) << n;
    }
  }
}

// A steady tone at 0 Hz or at the Nyquist frequency falls by its own rate over thousands of
// samples.
TEST(Decay, FallsByTheAskedRatesAtBothEndsOfTheSpectrum) {
  Samples taps(5);
  FIR_2_taps_fit_ends(-0.001f, -0.01f, taps);
  ASSERT_EQ(taps.size(), 2u);
  for (const float sign : {1.0f, -1.0f}) {
    Samples x(4096, 1.0f);
    for (std::size_t i = 1; i < x.size(); i += 2) x[i] = sign;
    Samples y;
    conv_exp_2tap_recursive_pow2(x, taps[0], taps[1], y);
    for (const std::size_t m : {1000u, 3000u, 4000u}) {
      const float expected_dB = (sign > 0 ? -0.001f : -0.01f) * static_cast<float>(m + 1);
      EXPECT_NEAR(mag_to_dB(std::abs(y[m])), expected_dB, 0.02) << m << ", sign " << sign;
    }
  }
}

}  // namespace
