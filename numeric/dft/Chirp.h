// The convolution method for lengths with large primes (L. Bluestein, "A linear filtering approach
// to the computation of discrete Fourier transform", 1970): t k = (t^2 + k^2 - (k - t)^2) / 2 turns
// the transform into a circular convolution with a chirp, done by a longer, cheap transform.
#pragma once

#include "numeric/dft/Core.h"

namespace {

// y[i] = x[i] * w[i] for n values; x and y may be the same array.
template <class Isa>
void multiply(int n, Planar x, const float* re, const float* im, Planar y) {
  Isa::Exact::fit(n, [&](auto v) {
    using V = typename decltype(v)::type;
    int i = 0;
    for (; i + V::lanes <= n; i += V::lanes) {
      y.store(i, x.load<V>(i) * Cx<V>{V::load(re + i), V::load(im + i)});
    }
    for (; i < n; ++i) {
      y.store(i, x.load<Vector1>(i) * Cx<Vector1>{{re[i]}, {im[i]}});
    }
  });
}

// Transforms the complex_length values in `x`, which is `a` or its swapped form, and tells where
// the result stands, its parts swapped as those of x.
template <class Isa>
Planar transform_by_chirp(const dft::Spec& spec, Planar x, Planar a, Planar b, const Work& work) {
  const int n = spec.complex_length, length = spec.core.length;
  const float* chirp = dft::table(spec, spec.chirp_table);
  const float* filter = dft::table(spec, spec.filter);
  const auto chirp_row = static_cast<std::ptrdiff_t>(dft::in_lines(static_cast<std::size_t>(n)));
  const auto filter_row =
      static_cast<std::ptrdiff_t>(dft::in_lines(static_cast<std::size_t>(length)));
  multiply<Isa>(n, x, chirp, chirp + chirp_row, x);
  for (int i = n; i < length; ++i) x.re[i] = x.im[i] = 0.0F;
  const Planar X = transform<Isa>(spec, x, b, a, work);
  multiply<Isa>(length, X, filter, filter + filter_row, X);
  const bool in_a = X.re == a.re || X.re == a.im;
  const Planar y = transform<Isa>(spec, X.swapped(), in_a ? b : a, in_a ? a : b, work).swapped();
  multiply<Isa>(n, y, chirp, chirp + chirp_row, y);
  return y;
}

}  // namespace
