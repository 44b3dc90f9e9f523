// The complex product in its two forms: strict for one element, plain for four at once.
#pragma once

#include <cmath>
#include <limits>

#include "numeric/AlignedVector.h"

namespace complex_product {

inline float sign_only(float x, bool one) { return std::copysign(one ? 1.0F : 0.0F, x); }

inline void nan_to_zero(float& x) {
  if (std::isnan(x)) x = sign_only(x, false);
}

// Of an infinite value keeps the direction, and drops the NaNs of its partner; false when finite.
inline bool box_infinity(float& re, float& im, float& other_re, float& other_im) {
  if (!std::isinf(re) && !std::isinf(im)) return false;
  re = sign_only(re, std::isinf(re));
  im = sign_only(im, std::isinf(im));
  nan_to_zero(other_re);
  nan_to_zero(other_im);
  return true;
}

// What a product comes to whose plain formula gave NaN in both parts (C standard, Annex G.5.1).
inline complex recover(float ar, float ai, float br, float bi, complex plain) {
  const bool overflow =
      std::isinf(ar * br) || std::isinf(ai * bi) || std::isinf(ar * bi) || std::isinf(ai * br);
  const bool a_infinite = box_infinity(ar, ai, br, bi);
  const bool b_infinite = box_infinity(br, bi, ar, ai);
  if (!a_infinite && !b_infinite) {
    if (!overflow) return plain;
    nan_to_zero(ar);
    nan_to_zero(ai);
    nan_to_zero(br);
    nan_to_zero(bi);
  }
  constexpr float infinity = std::numeric_limits<float>::infinity();
  return {(ar * br - ai * bi) * infinity, (ai * br + ar * bi) * infinity};
}

inline complex strict(complex a, complex b) {
  const float ar = a.real(), ai = a.imag(), br = b.real(), bi = b.imag();
  const complex plain(ar * br - ai * bi, ar * bi + ai * br);
  if (!std::isnan(plain.real()) || !std::isnan(plain.imag())) return plain;
  return recover(ar, ai, br, bi, plain);
}

// Four products at a and b, re-interleaved: `low` holds elements 0 and 1, `high` 2 and 3.
template <class Vector>
struct FourProducts {
  Vector low, high;

  FourProducts(const float* a, const float* b) {
    const Vector a0 = Vector::load(a), a1 = Vector::load(a + 4);
    const Vector b0 = Vector::load(b), b1 = Vector::load(b + 4);
    const Vector ar = Vector::even(a0, a1), ai = Vector::odd(a0, a1);
    const Vector br = Vector::even(b0, b1), bi = Vector::odd(b0, b1);
    const Vector re = ar * br - bi * ai;
    const Vector im = br * ai + ar * bi;
    low = Vector::interleave_low(re, im);
    high = Vector::interleave_high(re, im);
  }
};

// a[i] *= b[i] by fours, then the strict tail in ascending order.
template <class Vector>
void multiply(complex* a, const complex* b, int n) {
  const int body = n & ~3;
  for (int i = 0; i < body; i += 4) {
    float* dst = reinterpret_cast<float*>(a + i);
    const FourProducts<Vector> p(dst, reinterpret_cast<const float*>(b + i));
    p.low.store(dst);
    p.high.store(dst + 4);
  }
  for (int i = body; i < n; ++i) a[i] = strict(a[i], b[i]);
}

// y[i] += a[i] * b[i], likewise.
template <class Vector>
void multiply_add(complex* y, const complex* a, const complex* b, int n) {
  const int body = n & ~3;
  for (int i = 0; i < body; i += 4) {
    float* dst = reinterpret_cast<float*>(y + i);
    const FourProducts<Vector> p(reinterpret_cast<const float*>(a + i),
                                 reinterpret_cast<const float*>(b + i));
    (Vector::load(dst) + p.low).store(dst);
    (Vector::load(dst + 4) + p.high).store(dst + 4);
  }
  for (int i = body; i < n; ++i) y[i] += strict(a[i], b[i]);
}

}  // namespace complex_product
