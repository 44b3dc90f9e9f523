// A vector of sixteen lanes: the foundation of AVX-512.
#pragma once

// GCC's header leaves operands without effect uninitialised, and GCC then warns
// of them.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#else
#include <immintrin.h>
#endif

#include "numeric/dft/x86/VectorAvx2.h"

namespace {

struct Vector16 {
  static constexpr int lanes = 16, copies = 1;
  __m512 v;

  static Vector16 load(const float* p) { return {_mm512_loadu_ps(p)}; }
  static Vector16 load_aligned(const float* p) { return {_mm512_load_ps(p)}; }
  static Vector16 set1(float x) { return {_mm512_set1_ps(x)}; }
  static Vector16 spread(const float* p) { return set1(*p); }
  void store_aligned(float* p) const { _mm512_store_ps(p, v); }
  void store(float* p) const { _mm512_storeu_ps(p, v); }

  friend Vector16 operator+(Vector16 a, Vector16 b) { return {_mm512_add_ps(a.v, b.v)}; }
  friend Vector16 operator-(Vector16 a, Vector16 b) { return {_mm512_sub_ps(a.v, b.v)}; }
  friend Vector16 operator*(Vector16 a, Vector16 b) { return {_mm512_mul_ps(a.v, b.v)}; }
  static Vector16 fma(Vector16 a, Vector16 b, Vector16 c) {
    return {_mm512_fmadd_ps(a.v, b.v, c.v)};
  }
  static Vector16 fms(Vector16 a, Vector16 b, Vector16 c) {
    return {_mm512_fmsub_ps(a.v, b.v, c.v)};
  }
  static Vector16 fnma(Vector16 a, Vector16 b, Vector16 c) {
    return {_mm512_fnmadd_ps(a.v, b.v, c.v)};
  }

  Vector16 negated() const { return {_mm512_xor_ps(v, _mm512_set1_ps(-0.0F))}; }
  Vector16 reversed() const {
    return {_mm512_permutexvar_ps(
        _mm512_setr_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0), v)};
  }
  static Cx<Vector16> load_pairs(const float* p) {
    const __m512 a = _mm512_loadu_ps(p), b = _mm512_loadu_ps(p + 16);
    const __m512i even =
        _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    const __m512i odd =
        _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
    return {{_mm512_permutex2var_ps(a, even, b)}, {_mm512_permutex2var_ps(a, odd, b)}};
  }
  static Cx<Vector16> load_reversed_pairs(const float* p) {
    const __m512 a = _mm512_loadu_ps(p), b = _mm512_loadu_ps(p + 16);
    const __m512i even =
        _mm512_setr_epi32(30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
    const __m512i odd =
        _mm512_setr_epi32(31, 29, 27, 25, 23, 21, 19, 17, 15, 13, 11, 9, 7, 5, 3, 1);
    return {{_mm512_permutex2var_ps(a, even, b)}, {_mm512_permutex2var_ps(a, odd, b)}};
  }
  static void store_reversed_pairs(float* p, Cx<Vector16> x) {
    const __m512i low =
        _mm512_setr_epi32(15, 31, 14, 30, 13, 29, 12, 28, 11, 27, 10, 26, 9, 25, 8, 24);
    const __m512i high = _mm512_setr_epi32(7, 23, 6, 22, 5, 21, 4, 20, 3, 19, 2, 18, 1, 17, 0, 16);
    _mm512_storeu_ps(p, _mm512_permutex2var_ps(x.re.v, low, x.im.v));
    _mm512_storeu_ps(p + 16, _mm512_permutex2var_ps(x.re.v, high, x.im.v));
  }
  static void store_pairs(float* p, Cx<Vector16> x) {
    const __m512i low = _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    const __m512i high =
        _mm512_setr_epi32(8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
    _mm512_storeu_ps(p, _mm512_permutex2var_ps(x.re.v, low, x.im.v));
    _mm512_storeu_ps(p + 16, _mm512_permutex2var_ps(x.re.v, high, x.im.v));
  }

  // Rows become columns: fours of lanes by four rows first, then the fours change places.
  [[gnu::always_inline]] static void transpose(Vector16 (&x)[16]) {
    __m512 t[16], u[16];
    unrolled<8>([&](auto i) {
      t[2 * i] = _mm512_unpacklo_ps(x[2 * i].v, x[2 * i + 1].v);
      t[2 * i + 1] = _mm512_unpackhi_ps(x[2 * i].v, x[2 * i + 1].v);
    });
    unrolled<8>([&](auto i) {
      constexpr int row = 4 * (i / 2), half = i % 2;
      const __m512d a = _mm512_castps_pd(t[row + half]), b = _mm512_castps_pd(t[row + 2 + half]);
      u[row + 2 * half] = _mm512_castpd_ps(_mm512_unpacklo_pd(a, b));
      u[row + 2 * half + 1] = _mm512_castpd_ps(_mm512_unpackhi_pd(a, b));
    });
    unrolled<4>([&](auto i) {
      const __m512 a = _mm512_shuffle_f32x4(u[i], u[4 + i], 0x88);
      const __m512 b = _mm512_shuffle_f32x4(u[8 + i], u[12 + i], 0x88);
      const __m512 c = _mm512_shuffle_f32x4(u[i], u[4 + i], 0xDD);
      const __m512 d = _mm512_shuffle_f32x4(u[8 + i], u[12 + i], 0xDD);
      x[i].v = _mm512_shuffle_f32x4(a, b, 0x88);
      x[4 + i].v = _mm512_shuffle_f32x4(c, d, 0x88);
      x[8 + i].v = _mm512_shuffle_f32x4(a, b, 0xDD);
      x[12 + i].v = _mm512_shuffle_f32x4(c, d, 0xDD);
    });
  }

  template <int R>
  [[gnu::always_inline]] static void store_rows(float* y, const Vector16* x) {
    Vector8 low[R], high[R];
    unrolled<R>([&](auto k) {
      low[k].v = _mm512_castps512_ps256(x[k].v);
      high[k].v = _mm512_extractf32x8_ps(x[k].v, 1);
    });
    Vector8::store_rows<R>(y, low);
    Vector8::store_rows<R>(y + 8 * R, high);
  }
};

}  // namespace
