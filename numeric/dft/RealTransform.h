// The real transforms on top of the complex ones.
//
// Even lengths n transform z[t] = x[2 t] + i x[2 t + 1], of length h = n / 2,
// and separate the spectra of the even and the odd samples in one pass over the
// bins k and h - k:
//   X[k] = (Z[k] + conj Z[h - k]) / 2 + w (Z[k] - conj Z[h - k]) / 2,  w = -i
//   exp(-2 pi i k / n)
// Odd lengths transform x with imaginary parts of 0.
#pragma once

#include "numeric/dft/Chirp.h"
#include "numeric/dft/LaneTransform.h"

namespace {

// Calls body with the vector type, the offset k of a vector of bins and the
// offset of the vector that holds the bins n - k, in reverse, for all first <=
// k < n / 2.
template <class Isa, class F>
void for_mirrored_bins(int n, int first, F body) {
  const int pairs = (n + 1) / 2 - first;
  Isa::Exact::fit(pairs, [&](auto v) {
    using V = typename decltype(v)::type;
    for_vectors<V>(pairs, [&](int i) { body(v, first + i, n - first - i - V::lanes + 1); });
  });
}

template <class V>
Cx<V> load_weights(const dft::Spec& spec, int k) {
  const float* w = dft::table(spec, spec.recombine) + k;
  return {V::load(w), V::load(w + dft::in_lines(static_cast<std::size_t>(spec.length / 4 + 1)))};
}

// s + w d and conj(s - w d) where a and b are bins k and h - k, s and d the sum
// and difference of a and conj b, both scaled.
template <class V>
inline void separate(Cx<V>& a, Cx<V>& b, Cx<V> w, V scale) {
  const Cx<V> s{(a.re + b.re) * scale, (a.im - b.im) * scale};
  const Cx<V> d = Cx<V>{(a.re - b.re) * scale, (a.im + b.im) * scale} * w;
  a = s + d;
  b = {s.re - d.re, d.im - s.im};
}

// The bins 0 and h are one pair: z, whose arrays have room for it, is made
// periodic.
template <class Isa>
void recombine_forward(const dft::Spec& spec, Planar z, float* dst) {
  const int h = spec.complex_length;
  const float scale = spec.forward_scale;
  z.store(h, z.load<Vector1>(0));
  for_mirrored_bins<Isa>(h, 0, [&](auto v, int k, int mirror) {
    using V = typename decltype(v)::type;
    Cx<V> a = z.load<V>(k), b = reversed(z.load<V>(mirror));
    separate(a, b, load_weights<V>(spec, k), V::set1(0.5F * scale));
    V::store_pairs(dst + 2 * k, a);
    V::store_pairs(dst + 2 * mirror, reversed(b));
  });
  if (h % 2 == 0) {
    dst[h] = z.re[h / 2] * scale;
    dst[h + 1] = -z.im[h / 2] * scale;
  }
  dst[1] = 0.0F;
  dst[2 * h + 1] = 0.0F;
}

template <class Isa>
void recombine_inverse(const dft::Spec& spec, const float* src, Planar z) {
  const int h = spec.complex_length;
  const float scale = spec.inverse_scale;
  for_mirrored_bins<Isa>(h, 0, [&](auto v, int k, int mirror) {
    using V = typename decltype(v)::type;
    Cx<V> a = V::load_pairs(src + 2 * k), b = reversed(V::load_pairs(src + 2 * mirror));
    const Cx<V> w = load_weights<V>(spec, k);
    separate(a, b, {w.re, V::set1(0.0F) - w.im}, V::set1(scale));
    z.store(k, a);
    z.store(mirror, reversed(b));
  });
  if (h % 2 == 0) {
    z.re[h / 2] = 2.0F * src[h] * scale;
    z.im[h / 2] = -2.0F * src[h + 1] * scale;
  }
  const float low = src[0] * scale, high = src[2 * h] * scale;
  z.re[0] = low + high;
  z.im[0] = low - high;
}

// The whole spectrum of an odd length from its first half.
template <class Isa>
void unfold(const dft::Spec& spec, const float* src, Planar z) {
  const int n = spec.length;
  const float scale = spec.inverse_scale;
  for_mirrored_bins<Isa>(n, 1, [&](auto v, int k, int mirror) {
    using V = typename decltype(v)::type;
    const Cx<V> x = V::load_pairs(src + 2 * k);
    const Cx<V> a{x.re * V::set1(scale), x.im * V::set1(scale)};
    z.store(k, a);
    z.store(mirror, reversed(Cx<V>{a.re, V::set1(0.0F) - a.im}));
  });
  z.re[0] = src[0] * scale;
  z.im[0] = 0.0F;
}

template <class Isa>
void forward_even(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  Planar z;
  if (spec.chirp) {
    copy<Isa>(spec.complex_length, FromPairs{src}, work.a);
    z = transform_by_chirp<Isa>(spec, work.a, work.a, work.b, work);
  } else {
    z = transform<Isa>(spec, FromPairs{src}, work.a, work.b, work);
  }
  recombine_forward<Isa>(spec, z, dst);
}

template <class Isa>
void inverse_even(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  recombine_inverse<Isa>(spec, src, work.a);
  const Planar z = work.a.swapped();
  if (spec.chirp) {
    const Planar y = transform_by_chirp<Isa>(spec, z, work.a, work.b, work);
    copy<Isa>(spec.complex_length, y, ToSwappedPairs{dst});
  } else {
    transform<Isa>(spec, z, work.b, work.a, work, ToSwappedPairs{dst});
  }
}

template <class Isa>
Planar transform_odd(const dft::Spec& spec, Planar z, const Work& work) {
  if (spec.chirp) return transform_by_chirp<Isa>(spec, z, work.a, work.b, work);
  return transform<Isa>(spec, z, work.b, work.a, work);
}

template <class Isa>
void forward_odd(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  const int n = spec.length;
  for (int i = 0; i < n; ++i) work.a.re[i] = src[i] * spec.forward_scale;
  for (int i = 0; i < n; ++i) work.a.im[i] = 0.0F;
  const Planar z = transform_odd<Isa>(spec, work.a, work);
  for (int k = 1; k <= n / 2; ++k) {
    dst[2 * k] = z.re[k];
    dst[2 * k + 1] = z.im[k];
  }
  dst[0] = z.re[0];
  dst[1] = 0.0F;
}

template <class Isa>
void inverse_odd(const dft::Spec& spec, const float* src, float* dst, const Work& work) {
  unfold<Isa>(spec, src, work.a);
  const Planar z = transform_odd<Isa>(spec, work.a.swapped(), work);
  for (int i = 0; i < spec.length; ++i) dst[i] = z.im[i];
}

// Calls f with the vector type that has the lanes of the plan; false for a plan without lanes.
template <class Isa, class F>
bool with_lanes(const dft::Spec& spec, F f) {
  if constexpr (Isa::Kernels::widest > 1) {
    if (spec.lanes > 0) {
      Isa::Kernels::fit(spec.lanes, f);
      return true;
    }
  }
  return false;
}

template <class Isa>
void forward(const dft::Spec& spec, const float* src, float* dst, float* memory) {
  const Work work(spec, memory);
  if (with_lanes<Isa>(
          spec, [&](auto v) { forward_lanes<typename decltype(v)::type>(spec, src, dst, work); })) {
    return;
  }
  spec.length % 2 == 0 ? forward_even<Isa>(spec, src, dst, work)
                       : forward_odd<Isa>(spec, src, dst, work);
}

template <class Isa>
void inverse(const dft::Spec& spec, const float* src, float* dst, float* memory) {
  const Work work(spec, memory);
  if (with_lanes<Isa>(
          spec, [&](auto v) { inverse_lanes<typename decltype(v)::type>(spec, src, dst, work); })) {
    return;
  }
  spec.length % 2 == 0 ? inverse_even<Isa>(spec, src, dst, work)
                       : inverse_odd<Isa>(spec, src, dst, work);
}

template <class Isa>
void forward_core(const dft::Spec& spec, float* re, float* im, float* memory) {
  const Work work(spec, memory);
  const Planar x{re, im};
  copy<Isa>(spec.core.length, transform<Isa>(spec, x, work.a, work.b, work), x);
}

}  // namespace
