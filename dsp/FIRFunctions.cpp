// Level conversions, convolution of whole responses, one-shot spectrum and the low-cut kernel.
#include "dsp/FIRFunctions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "numeric/VectorizedFunctions.h"

float dB_to_mag(float dB) {
  return static_cast<float>(std::pow(10.0, static_cast<double>(dB / 20.0f)));
}

float mag_to_dB(float mag) {
  return static_cast<float>(std::log10(static_cast<double>(mag)) * 20.0);
}

namespace {

using Samples = AlignedVector<float>;

std::int64_t length_of(const Samples& x) { return static_cast<std::int64_t>(x.size()); }

void convolve_directly(const Samples& a, const Samples& b, Samples& c) {
  c.resize(a.size() + b.size() - 1);  // both empty: the array's length error
  std::fill(c.begin(), c.end(), 0.0f);
  const float* const pb = b.data();
  const std::size_t nb = b.size();
  for (std::size_t i = 0; i < a.size(); ++i) {
    const float factor = a[i];
    float* const y = c.data() + i;
    for (std::size_t j = 0; j < nb; ++j) y[j] += factor * pb[j];
  }
}

void convolve_spectra(const Samples& a, const Samples& b, Samples& c, int a_power, int b_power) {
  const std::int64_t length = (length_of(a) - 1) * a_power + (length_of(b) - 1) * b_power + 1;
  c.resize(static_cast<std::size_t>(length));
  if (length < 1) return;
  const int n = FFTWrap<float>::FFT_next_fast_size_lib(static_cast<int>(length));
  const int bins = n / 2 + 1;
  FFTWrap<float> fft(n);
  Samples time(static_cast<std::size_t>(n));
  AlignedVector<complex> A(static_cast<std::size_t>(bins));
  AlignedVector<complex> B(static_cast<std::size_t>(bins));

  const auto spectrum_of = [&](const Samples& x, AlignedVector<complex>& X) {
    std::fill(time.begin(), time.end(), 0.0f);
    // An empty partner or a power of 0 leaves less room than x is long.
    std::copy_n(x.begin(), std::min(x.size(), time.size()), time.begin());
    fft.forward_real_2_cpx(time, X);
  };
  spectrum_of(b, B);
  spectrum_of(a, A);
  if (a_power != 1) raise_spectrum(A.data(), bins, a_power);
  if (b_power != 1) raise_spectrum(B.data(), bins, b_power);
  VectorizedFunctions<float>::cpx_mult_inplace_fastest(A.data(), B.data(), bins);
  fft.inverse_cpx_2_real(time, A);
  std::copy_n(time.begin(), length, c.begin());
}

}  // namespace

void convolve(const AlignedVector<float>& a, const AlignedVector<float>& b, AlignedVector<float>& c,
              ComputeDomain domain, int a_power, int b_power) {
  if (domain == ComputeDomain::TIME_DOMAIN) convolve_directly(a, b, c);
  if (domain == ComputeDomain::FREQUENCY_DOMAIN) convolve_spectra(a, b, c, a_power, b_power);
}

void convolve(const AlignedVector<float>& a, const AlignedVector<float>& b,
              AlignedVector<float>& c) {
  // kept: the output's length decides, not b's, so a fresh output always means the direct form,
  // and the low-cut stage is free of transform rounding.
  const int shorter = std::min(static_cast<int>(a.size()), static_cast<int>(c.size()));
  convolve(a, b, c, shorter > 32 ? ComputeDomain::FREQUENCY_DOMAIN : ComputeDomain::TIME_DOMAIN, 1,
           1);
}

void FIR_FFT(const AlignedVector<float>& x, AlignedVector<complex>& X, int n) {
  FFTWrap<float> fft(n);
  Samples time(static_cast<std::size_t>(n));
  std::copy_n(x.begin(), std::min(x.size(), time.size()), time.begin());
  X.resize(static_cast<std::size_t>(n / 2 + 1));
  fft.forward_real_2_cpx(time, X);
}

void raise_spectrum(complex* X, int bins, double exponent) {
  for (int k = 0; k < bins; ++k) {
    const double re = X[k].real();
    const double im = X[k].imag();
    // A zero bin has the logarithm minus infinity and so the magnitude 0, but 1 to the power 0.
    const std::complex<double> log_z(std::log(std::hypot(re, im)), std::atan2(im, re));
    X[k] = exponent == 0.0 ? complex(1) : complex(std::exp(exponent * log_z));
  }
}

void filter_lowcut_sinc_Hann(AlignedVector<float>& h, float cutoff, int n) {
  h.assign(static_cast<std::size_t>(std::max(n, 0)), 0.0f);
  // kept: with an even n the centre lies half a sample left of the window's middle, and the kernel
  // is not symmetric.
  const int centre = (n - 1) / 2;
  for (int k = 0; k < n; ++k) {
    float v = 1.0f - 2.0f * cutoff;
    if (k != centre) {
      const double d = k - centre;
      v = static_cast<float>(std::sin(6.283185307179586 * static_cast<double>(cutoff) * d) /
                             (d * -3.141592653589793));
    }
    const auto window = static_cast<float>(0.5 - 0.5 * std::cos(k * 6.283185307179586 / (n - 1)));
    h[static_cast<std::size_t>(k)] = window * v;
  }
}
