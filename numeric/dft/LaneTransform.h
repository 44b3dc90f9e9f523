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

// Runs body(k) for blocks of B that cover 0 to n - 1, n at least B. The last one is moved back.
template <int B, class F>
[[gnu::always_inline]] inline void for_blocks(int n, F body) {
  for (int k = 0; k < n; k += B) body(std::min(k, n - B));
}

// From the lanes' pairs z, of which element H repeats element 0, to all bins.
template <class V>
void lanes_to_bins(const dft::Spec& spec, Elements z, float* dst) {
  constexpr int L = V::lanes;
  const int last = spec.core.length;
  const std::ptrdiff_t period = 2 * std::ptrdiff_t{last};
  const float* weights = dft::table(spec, spec.weights);
  for_blocks<L>(last, [&](int k) {
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
    unrolled<L / 2>([&](auto j) {
      V::store_pairs(dst + 2 * (k + period * j), x[j]);
      const Cx<V> y = x[L - 1 - j];
      V::store_pairs(dst + 2 * (period * (j + 1) - k - L + 1),
                     reversed(Cx<V>{y.re, V::set1(0.0F) - y.im}));
    });
  });
  float row[L], middle[L];
  const Cx<V> first = z.load<V>(0);
  (first.re - first.im).store(row);
  row_times_matrix<V>(row, dft::table(spec, spec.middle)).store(middle);
  for (int j = 0; j < L / 2; ++j) {
    dst[2 * (last + period * j)] = middle[2 * j];
    dst[2 * (last + period * j) + 1] = middle[2 * j + 1];
  }
  dst[1] = 0.0F;
  dst[spec.length + 1] = 0.0F;
}

// From all bins to those of the lanes, 0 to H, times a scale.
template <class V>
void bins_to_lanes(const dft::Spec& spec, const float* src, float scale, Elements bins) {
  constexpr int L = V::lanes;
  const int last = spec.core.length;
  const std::ptrdiff_t period = 2 * std::ptrdiff_t{last};
  const V factor = V::set1(scale);
  for_blocks<L>(last, [&](int k) {
    Cx<V> x[L];
    unrolled<L / 2>([&](auto j) {
      const Cx<V> a = V::load_pairs(src + 2 * (k + period * j));
      const Cx<V> b = reversed(V::load_pairs(src + 2 * (period * (j + 1) - k - L + 1)));
      x[j] = {a.im, a.re};
      x[L - 1 - j] = {V::set1(0.0F) - b.im, b.re};
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
  });
  float middle[L];
  for (int j = 0; j < L / 2; ++j) {
    middle[2 * j] = src[2 * (last + period * j)];
    middle[2 * j + 1] = src[2 * (last + period * j) + 1];
  }
  const V zero = V::set1(0.0F);
  const V row = row_times_matrix<V>(middle, dft::table(spec, spec.middle) + L * L);
  bins.store<V>(last, {row * factor, zero});
  // Bin 0 of every lane is real, whatever the imaginary parts of bins 0 and n / 2 hold.
  bins.store<V>(0, {bins.load<V>(0).re, zero});
}

template <class V>
void forward_lanes(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  const Elements a{work.a.re}, b{work.b.re};
  const bool odd = spec.core.columns.count % 2 != 0;
  const Elements z = odd ? a : b;
  run_lanes<V>(spec, FromSamples{src}, a, b, z);
  z.store<V>(spec.core.length, z.load<V>(0));
  lanes_to_bins<V>(spec, z, dst);
}

template <class V>
void inverse_lanes(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  const Elements a{work.a.re}, b{work.b.re};
  bins_to_lanes<V>(spec, src, 2.0F * spec.inverse_scale / spec.forward_scale, b);
  join<V>(spec, b);
  run_lanes<V>(spec, b, a, b, ToSwappedSamples{dst});
}

}  // namespace
