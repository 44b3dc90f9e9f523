// Real transforms of n = 2 L H samples by vectors of L lanes.
//
// Lane l transforms the M = 2 H samples x[L m + l], as H pairs: the samples stand in memory as the
// lanes need them. With Z its complex transform of the pairs, that of the samples is
//   X_l[k] = (Z[k] + conj Z[H - k]) / 2 - i w_M^k (Z[k] - conj Z[H - k]) / 2
// and the lanes make up the whole by short transforms across them:
//   X[k + M j] = sum over l of w_L^(l j) w_n^(l k) X_l[k],  0 <= k <= H
// Each bin k of all lanes is weighted and separated in one step, w_n^(l k) X_l[k] = P Z[k] + Q conj
// Z[H - k]; then L bins are transposed, transformed across, and stored, those above n / 2 as their
// mirror images. The bin H, which is real in every lane, is a product with a small matrix. The
// inverse takes the same steps in the opposite order.
#pragma once

#include "numeric/dft/LanePasses.h"

namespace {

// The weights P and Q of a bin k in all lanes.
template <class V>
struct Weights {
  Cx<V> p, q;

  Weights(const float* table, std::ptrdiff_t k) {
    const float* at = table + 4 * V::lanes * k;
    p = {V::load_aligned(at), V::load_aligned(at + V::lanes)};
    q = {V::load_aligned(at + 2 * V::lanes), V::load_aligned(at + 3 * V::lanes)};
  }
};

// P a + Q conj b
template <class V>
[[gnu::always_inline]] inline Cx<V> separated(Cx<V> p, Cx<V> a, Cx<V> q, Cx<V> b) {
  return {V::fma(q.im, b.im, V::fma(q.re, b.re, V::fms(p.re, a.re, p.im * a.im))),
          V::fnma(q.re, b.im, V::fma(q.im, b.re, V::fma(p.re, a.im, p.im * a.re)))};
}

// conj(P) a + Q conj b
template <class V>
[[gnu::always_inline]] inline Cx<V> joined(Cx<V> p, Cx<V> a, Cx<V> q, Cx<V> b) {
  return {V::fma(q.im, b.im, V::fma(q.re, b.re, V::fma(p.re, a.re, p.im * a.im))),
          V::fnma(q.re, b.im, V::fma(q.im, b.re, V::fms(p.re, a.im, p.im * a.re)))};
}

// From the lanes' bins 0 to H to the bins of their pairs, in place and with swapped parts, because
// the passes that follow run backward.
template <class V>
void join(const dft::Spec& spec, Elements bins) {
  const float* weights = dft::table(spec, spec.weights);
  for (int k = 0, m = spec.core.length; k <= m; ++k, --m) {
    const Cx<V> a = bins.load<V>(k), b = bins.load<V>(m);
    const Weights<V> low(weights, k), high(weights, m);
    const Cx<V> x = joined(low.p, a, high.q, b), y = joined(high.p, b, low.q, a);
    bins.store<V>(m, {y.im, y.re});
    bins.store<V>(k, {x.im, x.re});
  }
}

// x, a row of L values, times a matrix of L rows.
template <class V>
V row_times_matrix(const float* x, const float* matrix) {
  V even = V::set1(x[0]) * V::load_aligned(matrix),
    odd = V::set1(x[1]) * V::load_aligned(matrix + V::lanes);
  unrolled<V::lanes / 2 - 1>([&](auto i) {
    constexpr int row = 2 * i + 2;
    even = V::fma(V::set1(x[row]), V::load_aligned(matrix + V::lanes * row), even);
    odd = V::fma(V::set1(x[row + 1]), V::load_aligned(matrix + V::lanes * (row + 1)), odd);
  });
  return even + odd;
}

// L bins of all lanes, k to k + L - 1, to the bins k + i + M j.
template <class V>
[[gnu::always_inline]] inline void lanes_to_bins(const float* weights, Elements z, int last, int k,
                                                 float* dst) {
  constexpr int L = V::lanes;
  V re[L], im[L];
  unrolled<L>([&](auto i) {
    const Weights<V> w(weights, k + i);
    const Cx<V> x = separated(w.p, z.load<V>(k + i), w.q, z.load<V>(last - k - i));
    re[i] = x.re;
    im[i] = x.im;
  });
  V::transpose(re);
  V::transpose(im);
  Cx<V> x[L];
  unrolled<L>([&](auto l) { x[l] = {re[l], im[l]}; });
  Butterfly<L, V>::run(x);
  const std::ptrdiff_t step = 4 * std::ptrdiff_t{last};
  float* up = dst + 2 * k;
  float* down = dst + step - 2 * (k + L - 1);
  unrolled<L / 2>([&](auto j) {
    V::store_pairs(up + step * j, x[j]);
    const Cx<V> mirrored = x[L - 1 - j];
    V::store_reversed_pairs(down + step * j, {mirrored.re, mirrored.im.negated()});
  });
}

// The way back, times a factor.
template <class V>
[[gnu::always_inline]] inline void bins_to_lanes(const float* src, int last, int k, V factor,
                                                 Elements bins) {
  constexpr int L = V::lanes;
  const std::ptrdiff_t step = 4 * std::ptrdiff_t{last};
  const float* up = src + 2 * k;
  const float* down = src + step - 2 * (k + L - 1);
  Cx<V> x[L];
  unrolled<L / 2>([&](auto j) {
    const Cx<V> a = V::load_pairs(up + step * j), b = V::load_reversed_pairs(down + step * j);
    x[j] = {a.im, a.re};
    x[L - 1 - j] = {b.im.negated(), b.re};
  });
  Butterfly<L, V>::run(x);
  V re[L], im[L];
  unrolled<L>([&](auto l) {
    re[l] = x[l].im * factor;
    im[l] = x[l].re * factor;
  });
  V::transpose(re);
  V::transpose(im);
  unrolled<L>([&](auto i) { bins.store<V>(k + i, {re[i], im[i]}); });
}

// The bin H of every lane, which is real, to the bins H + M j.
template <class V>
void middle_to_bins(const dft::Spec& spec, Elements z, float* dst) {
  constexpr int L = V::lanes;
  const int last = spec.core.length;
  float row[L], bins[L];
  const Cx<V> first = z.load<V>(0);
  (first.re - first.im).store(row);
  row_times_matrix<V>(row, dft::table(spec, spec.middle)).store(bins);
  dst += 2 * last;
  for (int j = 0; j < L; j += 2, dst += 4 * std::ptrdiff_t{last}) {
    dst[0] = bins[j];
    dst[1] = bins[j + 1];
  }
}

template <class V>
void bins_to_middle(const dft::Spec& spec, const float* src, V factor, Elements bins) {
  constexpr int L = V::lanes;
  const int last = spec.core.length;
  float row[L];
  src += 2 * last;
  for (int j = 0; j < L; j += 2, src += 4 * std::ptrdiff_t{last}) {
    row[j] = src[0];
    row[j + 1] = src[1];
  }
  const V middle = row_times_matrix<V>(row, dft::table(spec, spec.middle) + L * L);
  bins.store<V>(last, {middle * factor, V::set1(0.0F)});
}

template <class V>
void forward_lanes(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  const Elements a{work.a.re}, b{work.b.re};
  const int last = spec.core.length;
  const Elements z = spec.core.columns.count % 2 != 0 ? a : b;
  run_lanes<V>(spec, FromSamples{src}, a, b, z);
  z.store<V>(last, z.load<V>(0));
  const float* weights = dft::table(spec, spec.weights);
  for (int k = 0; k < last; k += V::lanes) {
    lanes_to_bins<V>(weights, z, last, std::min(k, last - V::lanes), dst);
  }
  middle_to_bins<V>(spec, z, dst);
  dst[1] = 0.0F;
  dst[spec.length + 1] = 0.0F;
}

template <class V>
void inverse_lanes(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  const Elements a{work.a.re}, b{work.b.re};
  const int last = spec.core.length;
  const V factor = V::set1(2.0F * spec.inverse_scale / spec.forward_scale);
  for (int k = 0; k < last; k += V::lanes) {
    bins_to_lanes<V>(src, last, std::min(k, last - V::lanes), factor, b);
  }
  // Bin 0 of every lane is real, whatever the imaginary parts of bins 0 and n / 2 hold.
  b.store<V>(0, {b.load<V>(0).re, V::set1(0.0F)});
  bins_to_middle<V>(spec, src, factor, b);
  join<V>(spec, b);
  run_lanes<V>(spec, b, a, b, ToSwappedSamples{dst});
}

}  // namespace
