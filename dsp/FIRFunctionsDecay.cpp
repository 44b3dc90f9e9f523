// The decay whose rate depends on frequency: a two-tap filter raised to a power that grows with
// time, in its plain form and as divide-and-conquer over transforms.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>
#include <vector>

#include "dsp/FIRFunctions.h"
#include "dsp/RenderKernels.h"
#include "numeric/VectorizedFunctions.h"

namespace {

using Samples = AlignedVector<float>;

// Up to this length the recursions end in the direct form.
constexpr int kBaseLength = 32;

std::size_t to_size(int n) { return static_cast<std::size_t>(n); }

Samples part_of(const Samples& x, int first, int last) {
  return Samples(x.begin() + first, x.begin() + last);
}

// The plain form for n up to kBaseLength. The live samples y[k] .. y[k + n] of pass k stay at the
// same place of a window that all passes step through upwards, which is the same arithmetic and
// lets the compiler use vectors.
void decay_directly(const float* x, float a, float b, float* y, int n) {
  std::array<float, kBaseLength + 1> w;
  std::copy_n(x, n, w.begin());
  w[to_size(n)] = 0.0f;
  for (int k = 0; k < n; ++k) {
    y[k] = w[0] * a;
    for (std::size_t i = 0; i < to_size(n); ++i) w[i] = w[i] * b + w[i + 1] * a;
  }
  std::copy_n(w.begin(), n, y + n);
}

// out = in filtered by the spectrum of one level, all of the transform's length.
void filter(FFTWrap<float>& fft, float* in, complex* bins, const AlignedVector<complex>& spectrum,
            float* out, int n) {
  fft.forward_real_2_cpx(in, bins);
  VectorizedFunctions<float>::cpx_mult_inplace_fastest(bins, spectrum.data(), n / 2 + 1);
  fft.inverse_cpx_2_real(out, bins, 0);
}

void add(float* y, const float* x, int n) {
  for (int i = 0; i < n; ++i) y[i] += x[i];
}

// The same as raise_spectrum, for an exponent that is a power of two.
void raise(AlignedVector<complex>& X, int exponent) {
  const int squarings = std::countr_zero(static_cast<unsigned>(exponent));
  std::array<complex, 512> base;
  for (std::size_t first = 0; first < X.size(); first += base.size()) {
    const std::size_t count = std::min(base.size(), X.size() - first);
    complex* const result = X.data() + first;
    std::copy_n(result, count, base.begin());
    render_kernels().raise(reinterpret_cast<const float*>(base.data()), squarings,
                           reinterpret_cast<float*>(result), static_cast<int>(count));
    for (std::size_t k = 0; k < count; ++k) {
      if (!std::isnan(result[k].real()) && !std::isnan(result[k].imag())) continue;
      result[k] = base[k];
      raise_spectrum(&result[k], 1, exponent);
    }
  }
}

// The transform of each level and the spectrum of the filter to the power of half its length.
// Owns both; the recursion sees them as arrays of pointers.
struct DecayTables {
  // taps are the two of the filter, and zeros up to P.
  void build(Samples& taps, int P) {
    for (int n = P;; n /= 2) {
      owned_ffts.push_back(std::make_unique<FFTWrap<float>>(n));
      owned_spectra.push_back(std::make_unique<AlignedVector<complex>>(to_size(n / 2 + 1)));
      AlignedVector<complex>& spectrum = *owned_spectra.back();
      owned_ffts.back()->forward_real_2_cpx(taps, spectrum);
      raise(spectrum, n / 2);
      ffts.push_back(owned_ffts.back().get());
      spectra.push_back(&spectrum);
      if (n < 4) return;
    }
  }

  std::vector<std::unique_ptr<FFTWrap<float>>> owned_ffts;
  std::vector<std::unique_ptr<AlignedVector<complex>>> owned_spectra;
  AlignedVector<FFTWrap<float>*> ffts;
  AlignedVector<AlignedVector<complex>*> spectra;
};

}  // namespace

void FIR_2_taps_fit_ends(float dB_0, float dB_1, AlignedVector<float>& taps) {
  const float g0 = dB_to_mag(dB_0);
  const float g1 = dB_to_mag(dB_1);
  taps.resize(2);
  taps[0] = (g1 + g0) * 0.5f;
  taps[1] = g0 - taps[0];
}

void conv_exp_2tap(const AlignedVector<float>& x, float a, float b, AlignedVector<float>& y) {
  const int n = static_cast<int>(x.size());
  y.assign(2 * x.size(), 0.0f);
  std::copy(x.begin(), x.end(), y.begin());
  float* const p = y.data();
  for (int k = 0; k < n; ++k) {
    for (int i = 2 * n - 1; i > k; --i) p[i] = p[i - 1] * b + p[i] * a;
    p[k] = p[k] * a;
  }
}

void conv_exp_2tap_recursive(const AlignedVector<float>& x, float a, float b,
                             AlignedVector<float>& y) {
  const int n = static_cast<int>(x.size());
  if (n <= kBaseLength) return conv_exp_2tap(x, a, b, y);
  const int h = n / 2;
  const int n2 = n - h;
  const Samples taps = {a, b};
  y.assign(2 * x.size(), 0.0f);

  Samples first;
  conv_exp_2tap_recursive(part_of(x, 0, h), a, b, first);
  std::copy_n(first.begin(), h, y.begin());

  Samples u;
  convolve(part_of(x, h, n), taps, u, ComputeDomain::FREQUENCY_DOMAIN, 1, h);
  Samples v;
  convolve(part_of(u, n2, n), taps, v, ComputeDomain::FREQUENCY_DOMAIN, 1, n2);
  std::copy(v.begin(), v.end(), y.begin() + n);

  u.resize(to_size(n2));
  add(u.data(), first.data() + h, h);
  Samples second;
  conv_exp_2tap_recursive(u, a, b, second);
  add(y.data() + h, second.data(), 2 * n2);
}

void conv_exp_2tap_recursive_pow2(const AlignedVector<float>& x, float a, float b,
                                  AlignedVector<float>& y) {
  const int P = static_cast<int>(std::bit_ceil(x.size()));
  Samples fft_in(to_size(P));
  DecayTables tables;
  if (P > 1) {
    fft_in[0] = a;
    fft_in[1] = b;
    tables.build(fft_in, P);
  }

  Samples padded(to_size(P));
  std::copy(x.begin(), x.end(), padded.begin());
  y.resize(2 * to_size(P));
  Samples filtered(to_size(P));
  Samples halves(2 * to_size(P));
  AlignedVector<complex> fft_out(to_size(P / 2 + 1));
  _conv_exp_2tap_recursive_pow2_inplace(padded.data(), a, b, y.data(), fft_in, fft_out,
                                        filtered.data(), halves.data(), nullptr, 0, tables.ffts,
                                        tables.spectra, P);
  y.resize(2 * x.size());
}

void _conv_exp_2tap_recursive_pow2(const AlignedVector<float>& x, float a, float b,
                                   AlignedVector<float>& y, int level,
                                   AlignedVector<FFTWrap<float>*>& ffts,
                                   AlignedVector<AlignedVector<complex>*>& spectra) {
  const int n = static_cast<int>(x.size());
  if (n <= kBaseLength) return conv_exp_2tap(x, a, b, y);
  const int h = n / 2;
  FFTWrap<float>& fft = *ffts[to_size(level)];
  const AlignedVector<complex>& spectrum = *spectra[to_size(level)];
  AlignedVector<complex> bins(to_size(h + 1));
  y.assign(2 * x.size(), 0.0f);

  Samples first;
  _conv_exp_2tap_recursive_pow2(part_of(x, 0, h), a, b, first, level + 1, ffts, spectra);
  std::copy_n(first.begin(), h, y.begin());

  Samples in = part_of(x, h, n);
  in.resize(to_size(n));
  Samples u(to_size(n));
  filter(fft, in.data(), bins.data(), spectrum, u.data(), n);
  std::copy_n(u.begin() + h, h, in.begin());
  filter(fft, in.data(), bins.data(), spectrum, y.data() + n, n);

  u.resize(to_size(h));
  add(u.data(), first.data() + h, h);
  Samples second;
  _conv_exp_2tap_recursive_pow2(u, a, b, second, level + 1, ffts, spectra);
  add(y.data() + h, second.data(), n);
}

void _conv_exp_2tap_recursive_pow2_inplace(float* x, float a, float b, float* y,
                                           AlignedVector<float>& fft_in,
                                           AlignedVector<complex>& fft_out, float* work_a,
                                           float* work_b, float* work_c, int level,
                                           AlignedVector<FFTWrap<float>*>& ffts,
                                           AlignedVector<AlignedVector<complex>*>& spectra, int n) {
  if (n <= kBaseLength) return decay_directly(x, a, b, y, n);
  const int h = n / 2;
  FFTWrap<float>& fft = *ffts[to_size(level)];
  const AlignedVector<complex>& spectrum = *spectra[to_size(level)];
  const auto recurse = [&](float* out) {
    _conv_exp_2tap_recursive_pow2_inplace(x, a, b, out, fft_in, fft_out, work_a, work_b + n, work_c,
                                          level + 1, ffts, spectra, h);
  };
  recurse(y);

  float* const in = fft_in.data();
  std::copy_n(x + h, h, in);
  std::fill_n(in + h, h, 0.0f);
  filter(fft, in, fft_out.data(), spectrum, work_a, n);
  std::copy_n(work_a + h, h, in);
  filter(fft, in, fft_out.data(), spectrum, y + n, n);

  for (int i = 0; i < h; ++i) x[i] = work_a[i] + y[h + i];
  recurse(work_b);
  for (int i = 0; i < h; ++i) y[h + i] = 0.0f + work_b[i];  // -0 becomes 0
  add(y + n, work_b + h, h);
}
