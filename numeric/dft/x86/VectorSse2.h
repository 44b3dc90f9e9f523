// A vector of four lanes: SSE2, and fused multiply-add where the source is
// compiled for it.
#pragma once

#include <immintrin.h>

#include "numeric/dft/Lanes.h"

namespace {

// Without AVX a value in all lanes takes two instructions to load, one if it stands in memory four
// times.
struct Vector4 {
  static constexpr int lanes = 4;
#ifdef __AVX__
  static constexpr int copies = 1;
#else
  static constexpr int copies = 4;
#endif
  __m128 v;

  static Vector4 load(const float* p) { return {_mm_loadu_ps(p)}; }
  static Vector4 load_aligned(const float* p) { return {_mm_load_ps(p)}; }
  static Vector4 set1(float x) { return {_mm_set1_ps(x)}; }
  static Vector4 spread(const float* p) { return copies == 1 ? set1(*p) : load_aligned(p); }
  void store_aligned(float* p) const { _mm_store_ps(p, v); }
  void store(float* p) const { _mm_storeu_ps(p, v); }

  friend Vector4 operator+(Vector4 a, Vector4 b) { return {_mm_add_ps(a.v, b.v)}; }
  friend Vector4 operator-(Vector4 a, Vector4 b) { return {_mm_sub_ps(a.v, b.v)}; }
  friend Vector4 operator*(Vector4 a, Vector4 b) { return {_mm_mul_ps(a.v, b.v)}; }
#ifdef __FMA__
  static Vector4 fma(Vector4 a, Vector4 b, Vector4 c) { return {_mm_fmadd_ps(a.v, b.v, c.v)}; }
  static Vector4 fms(Vector4 a, Vector4 b, Vector4 c) { return {_mm_fmsub_ps(a.v, b.v, c.v)}; }
  static Vector4 fnma(Vector4 a, Vector4 b, Vector4 c) { return {_mm_fnmadd_ps(a.v, b.v, c.v)}; }
#else
  static Vector4 fma(Vector4 a, Vector4 b, Vector4 c) { return a * b + c; }
  static Vector4 fms(Vector4 a, Vector4 b, Vector4 c) { return a * b - c; }
  static Vector4 fnma(Vector4 a, Vector4 b, Vector4 c) { return c - a * b; }
#endif

  Vector4 negated() const { return {_mm_xor_ps(v, _mm_set1_ps(-0.0F))}; }
  Vector4 reversed() const { return {_mm_shuffle_ps(v, v, _MM_SHUFFLE(0, 1, 2, 3))}; }
  static Cx<Vector4> load_pairs(const float* p) {
    const __m128 a = _mm_loadu_ps(p), b = _mm_loadu_ps(p + 4);
    return {{_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))},
            {_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))}};
  }
  static Cx<Vector4> load_reversed_pairs(const float* p) {
    const __m128 a = _mm_loadu_ps(p), b = _mm_loadu_ps(p + 4);
    return {{_mm_shuffle_ps(b, a, _MM_SHUFFLE(0, 2, 0, 2))},
            {_mm_shuffle_ps(b, a, _MM_SHUFFLE(1, 3, 1, 3))}};
  }
  static void store_reversed_pairs(float* p, Cx<Vector4> x) {
    store_pairs(p, {x.re.reversed(), x.im.reversed()});
  }
  static void store_pairs(float* p, Cx<Vector4> x) {
    _mm_storeu_ps(p, _mm_unpacklo_ps(x.re.v, x.im.v));
    _mm_storeu_ps(p + 4, _mm_unpackhi_ps(x.re.v, x.im.v));
  }

  // Rows become columns.
  static void transpose(Vector4 (&r)[4]) { _MM_TRANSPOSE4_PS(r[0].v, r[1].v, r[2].v, r[3].v); }

  // Rows of R floats are stored in ascending order, in groups of four: what a
  // group writes past its row is overwritten by the next one.
  template <int R>
  [[gnu::always_inline]] static void store_rows(float* y, const Vector4* x) {
    if constexpr (R == 2) {
      store_pairs(y, {x[0], x[1]});
    } else {
      constexpr int groups = (R + 3) / 4;
      __m128 row[groups][4];
      unrolled<groups>([&](auto g) {
        unrolled<4>([&](auto k) {
          constexpr int column = 4 * g + k;
          row[g][k] = x[column < R ? column : R - 1].v;
        });
        _MM_TRANSPOSE4_PS(row[g][0], row[g][1], row[g][2], row[g][3]);
      });
      unrolled<4>([&](auto lane) {
        unrolled<groups>([&](auto g) { _mm_storeu_ps(y + R * lane + 4 * g, row[g][lane]); });
      });
    }
  }
};

}  // namespace
