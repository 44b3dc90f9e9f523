// Four floats at once: the 128-bit operations of all kernels outside the transform engine, and a
// scalar twin that does the same operations in the same order. `Float4` is whichever of the two
// this build uses; with TOLMARA_SCALAR, or off x86-64, only the twin exists.
#pragma once

#if !defined(TOLMARA_SCALAR) && defined(__SSE2__)
#define TOLMARA_SSE2 1
#include <emmintrin.h>
#endif

// The twin: every lane by itself, one rounding per operation, as the vector unit does it.
struct Float4Scalar {
  float lane[4];

  static Float4Scalar load(const float* p) { return {{p[0], p[1], p[2], p[3]}}; }
  static Float4Scalar load_aligned(const float* p) { return load(p); }
  static Float4Scalar set1(float x) { return {{x, x, x, x}}; }
  static Float4Scalar zero() { return set1(0.0F); }

  void store(float* p) const {
    for (int i = 0; i < 4; ++i) p[i] = lane[i];
  }
  void store_aligned(float* p) const { store(p); }

  friend Float4Scalar operator+(Float4Scalar a, Float4Scalar b) {
    for (int i = 0; i < 4; ++i) a.lane[i] += b.lane[i];
    return a;
  }
  friend Float4Scalar operator-(Float4Scalar a, Float4Scalar b) {
    for (int i = 0; i < 4; ++i) a.lane[i] -= b.lane[i];
    return a;
  }
  friend Float4Scalar operator*(Float4Scalar a, Float4Scalar b) {
    for (int i = 0; i < 4; ++i) a.lane[i] *= b.lane[i];
    return a;
  }

  // Lanes 0, 2 of a, then 0, 2 of b: the real parts of four interleaved complex values.
  static Float4Scalar even(Float4Scalar a, Float4Scalar b) {
    return {{a.lane[0], a.lane[2], b.lane[0], b.lane[2]}};
  }
  // Lanes 1, 3 of a, then 1, 3 of b: their imaginary parts.
  static Float4Scalar odd(Float4Scalar a, Float4Scalar b) {
    return {{a.lane[1], a.lane[3], b.lane[1], b.lane[3]}};
  }
  // a0 b0 a1 b1 and a2 b2 a3 b3: even and odd undone, one half each.
  static Float4Scalar interleave_low(Float4Scalar a, Float4Scalar b) {
    return {{a.lane[0], b.lane[0], a.lane[1], b.lane[1]}};
  }
  static Float4Scalar interleave_high(Float4Scalar a, Float4Scalar b) {
    return {{a.lane[2], b.lane[2], a.lane[3], b.lane[3]}};
  }
};

#if TOLMARA_SSE2
struct Float4Sse {
  __m128 v;

  static Float4Sse load(const float* p) { return {_mm_loadu_ps(p)}; }
  static Float4Sse load_aligned(const float* p) { return {_mm_load_ps(p)}; }
  static Float4Sse set1(float x) { return {_mm_set1_ps(x)}; }
  static Float4Sse zero() { return {_mm_setzero_ps()}; }

  void store(float* p) const { _mm_storeu_ps(p, v); }
  void store_aligned(float* p) const { _mm_store_ps(p, v); }

  friend Float4Sse operator+(Float4Sse a, Float4Sse b) { return {_mm_add_ps(a.v, b.v)}; }
  friend Float4Sse operator-(Float4Sse a, Float4Sse b) { return {_mm_sub_ps(a.v, b.v)}; }
  friend Float4Sse operator*(Float4Sse a, Float4Sse b) { return {_mm_mul_ps(a.v, b.v)}; }

  static Float4Sse even(Float4Sse a, Float4Sse b) {
    return {_mm_shuffle_ps(a.v, b.v, _MM_SHUFFLE(2, 0, 2, 0))};
  }
  static Float4Sse odd(Float4Sse a, Float4Sse b) {
    return {_mm_shuffle_ps(a.v, b.v, _MM_SHUFFLE(3, 1, 3, 1))};
  }
  static Float4Sse interleave_low(Float4Sse a, Float4Sse b) { return {_mm_unpacklo_ps(a.v, b.v)}; }
  static Float4Sse interleave_high(Float4Sse a, Float4Sse b) { return {_mm_unpackhi_ps(a.v, b.v)}; }
};
using Float4 = Float4Sse;
#else
using Float4 = Float4Scalar;
#endif
