// Set-up of the lattice table and its reference variants: by definition, cell by cell, and by
// transforms.
#include "dsp/GaussCircle.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iostream>

#include "numeric/Convert.h"
#include "numeric/VectorizedFunctions.h"

namespace {

// A row's cells beyond S2, never read as results.
constexpr std::size_t kSpareCells = 9;

std::size_t to_size(int n) { return static_cast<std::size_t>(n); }

// Powers 0 to T of a weight, as far as the images within a radius S can reach, and exactly 0 from
// -120 dB down.
template <class T>
AlignedVector<T> powers_of(T weight, int size, int offset, int S) {
  const float periods =
      std::ceil(static_cast<float>(std::abs(offset) + S) / static_cast<float>(size));
  const int last = saturate_to_int(static_cast<double>(periods) + 2.0);
  AlignedVector<T> powers(to_size(last) + 1);
  for (int k = 0; k <= last; ++k) {
    const auto power =
        static_cast<T>(std::pow(static_cast<double>(weight), static_cast<double>(k)));
    powers[to_size(k)] = static_cast<double>(power) < 1e-6 ? T(0) : power;
  }
  return powers;
}

}  // namespace

template <class T>
GaussCircle<T>::GaussCircle(int new_D, int new_S, const AlignedVector<int>& sizes,
                            const AlignedVector<int>& offsets, const AlignedVector<T>& weights,
                            ComputeMode new_mode) {
  update(new_D, new_S, sizes, offsets, weights, new_mode);
}

template <class T>
void GaussCircle<T>::update(int new_D, int new_S, const AlignedVector<int>& sizes,
                            const AlignedVector<int>& offsets, const AlignedVector<T>& weights,
                            ComputeMode new_mode) {
  assert(new_D >= 1 && new_S >= 1 && new_S <= 46340);
  mode = new_mode;
  D = new_D;
  S = new_S;
  S2 = S * S;
  // Old arrays go first: two tables need not fit into memory side by side.
  C = {};
  C.resize(to_size(D));
  for (AlignedVector<T>& row : C) row.resize(to_size(S2) + kSpareCells);
  dim_sizes.assign(sizes.begin(), sizes.begin() + D);
  dim_weights.assign(weights.begin(), weights.begin() + D);
  dim_offsets.clear();
  weight_powers.clear();
  for (std::size_t d = 0; d < to_size(D); ++d) {
    dim_offsets.push_back(std::min(std::abs(offsets[d]), dim_sizes[d] / 2));
    weight_powers.push_back(powers_of(dim_weights[d], dim_sizes[d], dim_offsets[d], S));
  }
  if (mode != ComputeMode::FFT) return;
  fft_size = FFTWrap<T>::FFT_next_fast_size_lib(2 * S2 + 1);
  fft_bins = fft_size / 2 + 1;
  fft_real.assign(to_size(fft_size), T(0));
  fft_spectrum_C.assign(to_size(fft_bins), complex());
  fft_spectrum_kernel.assign(to_size(fft_bins), complex());
  fft.update(fft_size);
}

template <class T>
void GaussCircle<T>::compute_C() {
  switch (mode) {
    case ComputeMode::BRUTE: return compute_C_brute();
    case ComputeMode::NAIVE: return compute_C_naive();
    case ComputeMode::VECTORIZED: return compute_C_vectorized();
    case ComputeMode::VECTORIZED_SSE2:
    case ComputeMode::VECTORIZED_AVX:
    case ComputeMode::FASTEST: return compute_C_vectorized_SSE2();
    case ComputeMode::FFT: return compute_C_FFT();
  }
}

template <class T>
void GaussCircle<T>::zero_table() {
  for (AlignedVector<T>& row : C) std::fill(row.begin(), row.end(), T(0));
}

template <class T>
typename GaussCircle<T>::Images GaussCircle<T>::images_within(int r, std::size_t d) const {
  const int o = dim_offsets[d];
  const auto L = static_cast<float>(dim_sizes[d]);
  return {saturate_to_int(std::ceil(static_cast<float>(-(o + r)) / L)),
          saturate_to_int(std::floor(static_cast<float>(r - o) / L))};
}

template <class T>
typename GaussCircle<T>::Images GaussCircle<T>::images_within(double r, std::size_t d) const {
  const int o = dim_offsets[d];
  const double L = dim_sizes[d];
  return {saturate_to_int(std::ceil(-(r + o) / L)), saturate_to_int(std::floor((r - o) / L))};
}

// Weight of all images first to last of axis 0, by the closed form of the geometric sum. It counts
// the powers floored to 0 in full, a difference too small to matter.
template <class T>
T GaussCircle<T>::count_on_axis_0(Images images) const {
  const auto [a, b] = images;
  if (b < a) return T(0);
  const T w = dim_weights[0];
  if (w == T(1)) return static_cast<T>(1 - a + b);
  const AlignedVector<T>& P = weight_powers[0];
  return (1 - P[to_size(std::abs(a)) + 1]) / (1 - w) + (1 - P[to_size(std::abs(b)) + 1]) / (1 - w) -
         1;
}

// The same for an axis without offset, whose images reach from -q to q.
template <class T>
T GaussCircle<T>::count_on_axis_0(int q) const {
  const T w = dim_weights[0];
  if (w == T(1)) return static_cast<T>(2 * q + 1);
  return 2 * (1 - weight_powers[0][to_size(q) + 1]) / (1 - w) - 1;
}

// Coordinates are integers, so row 0 is constant from one square to the next.
template <class T>
void GaussCircle<T>::fill_row_0() {
  T* const row = C[0].data();
  for (int r = 0; r <= S; ++r) {
    const T count = dim_offsets[0] != 0 ? count_on_axis_0(images_within(r, 0))
                                        : count_on_axis_0(r / dim_sizes[0]);
    const int end = r < S ? (r + 1) * (r + 1) : S2 + 1;
    std::fill(row + r * r, row + end, count);
  }
}

template <class T>
void GaussCircle<T>::compute_C_brute() {
  for (int d = 0; d < D; ++d) {
    T* const row = C[to_size(d)].data();
    for (int s = 0; s <= S2; ++s) {
      const int r = static_cast<int>(std::sqrt(static_cast<double>(s)));
      row[s] = compute_C_brute_recur(d + 1, r, s, 0, 0, T(1));
    }
  }
}

template <class T>
T GaussCircle<T>::compute_C_brute_recur(int d_count, int r, int s, int level, int sum, T weight) {
  if (level >= d_count) return weight;
  const auto d = to_size(level);
  const auto [a, b] = images_within(r, d);
  T total = 0;
  for (int n = a; n <= b; ++n) {
    const int x = n * dim_sizes[d] + dim_offsets[d];
    const int q = x * x + sum;
    if (q > s) continue;
    const T power = weight_powers[d][to_size(std::abs(n))];
    total += compute_C_brute_recur(d_count, r, s, level + 1, q, power * weight);
  }
  return total;
}

template <class T>
void GaussCircle<T>::compute_C_naive() {
  zero_table();
  for (int s = 0; s <= S2; ++s) {
    const double r = std::sqrt(static_cast<double>(s));
    C[0][to_size(s)] = dim_offsets[0] != 0
                           ? count_on_axis_0(images_within(r, 0))
                           : count_on_axis_0(saturate_to_int(std::floor(r / dim_sizes[0])));
  }
  for (std::size_t d = 1; d < to_size(D); ++d) {
    for (int s = 0; s <= S2; ++s) C[d][to_size(s)] = naive_cell(d, s);
  }
}

template <class T>
T GaussCircle<T>::naive_cell(std::size_t d, int s) const {
  const T* const previous = C[d - 1].data();
  const T* const P = weight_powers[d].data();
  const int L = dim_sizes[d];
  const double r = std::sqrt(static_cast<double>(s));
  T sum = 0;
  if (dim_offsets[d] != 0) {
    const auto [a, b] = images_within(r, d);
    for (int n = a; n <= b; ++n) {
      const int x = n * L + dim_offsets[d];
      sum += previous[s - x * x] * P[std::abs(n)];
    }
    return sum;
  }
  const int last = saturate_to_int(std::floor(r / L));
  for (int n = 1; n <= last; ++n) sum += previous[s - n * L * n * L] * P[n];
  return 2 * sum + previous[s];
}

template <class T>
void GaussCircle<T>::compute_C_FFT() {
  zero_table();
  fill_row_0();
  for (std::size_t d = 1; d < to_size(D); ++d) {
    std::fill(fft_real.begin(), fft_real.end(), T(0));
    std::copy_n(C[d - 1].begin(), S2 + 1, fft_real.begin());
    fft.forward_real_2_cpx(fft_real, fft_spectrum_C);

    std::fill(fft_real.begin(), fft_real.end(), T(0));
    const int L = dim_sizes[d];
    const AlignedVector<T>& P = weight_powers[d];
    // kept: axis 0 decides for all axes, so behind an axis 0 without offset this variant alone
    // takes every axis as symmetric.
    const bool symmetric = dim_offsets[0] == 0;
    if (symmetric) {
      for (int n = 1; n <= S / L; ++n) fft_real[to_size(n * L) * to_size(n * L)] = P[to_size(n)];
    } else {
      const auto [a, b] = images_within(S, d);
      for (int n = a; n <= b; ++n) {
        const std::size_t x = to_size(std::abs(n * L + dim_offsets[d]));
        fft_real[x * x] += P[to_size(std::abs(n))];
      }
    }
    fft.forward_real_2_cpx(fft_real, fft_spectrum_kernel);
    if (symmetric) {
      for (complex& bin : fft_spectrum_kernel) bin = 2.0f * bin + 1.0f;
    }
    VectorizedFunctions<T>::cpx_mult_inplace_fastest(fft_spectrum_kernel.data(),
                                                     fft_spectrum_C.data(), fft_bins);
    fft.inverse_cpx_2_real(fft_real, fft_spectrum_kernel);
    std::copy_n(fft_real.begin(), S2 + 1, C[d].begin());
  }
}

template <class T>
bool GaussCircle<T>::is_equal_C(const GaussCircle& other, T tolerance) const {
  if (D != other.D || S != other.S) return false;
  for (int d = 0; d < D; ++d) {
    for (int s = 0; s <= S2; ++s) {
      const T mine = getC(d, s);
      const T theirs = other.getC(d, s);
      if (std::abs(mine - theirs) > tolerance) {
        std::cout.precision(19);
        std::cout << "C[" << d << "][" << s << "] = " << mine << " != " << theirs << "\n";
        return false;
      }
    }
  }
  return true;
}

template class GaussCircle<float>;
