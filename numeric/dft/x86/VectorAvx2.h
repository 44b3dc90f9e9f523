// A vector of eight lanes: AVX2 with fused multiply-add.
#pragma once

#include <immintrin.h>

#include "numeric/dft/Lanes.h"

namespace {

// Rows become columns.
[[gnu::always_inline]] inline void transpose8(__m256 (&r)[8]) {
  __m256 t[8], u[8];
  unrolled<4>([&](auto i) {
    t[2 * i] = _mm256_unpacklo_ps(r[2 * i], r[2 * i + 1]);
    t[2 * i + 1] = _mm256_unpackhi_ps(r[2 * i], r[2 * i + 1]);
  });
  unrolled<2>([&](auto i) {
    unrolled<2>([&](auto j) {
      const __m256d a = _mm256_castps_pd(t[4 * i + j]), b = _mm256_castps_pd(t[4 * i + j + 2]);
      u[4 * i + 2 * j] = _mm256_castpd_ps(_mm256_unpacklo_pd(a, b));
      u[4 * i + 2 * j + 1] = _mm256_castpd_ps(_mm256_unpackhi_pd(a, b));
    });
  });
  unrolled<4>([&](auto i) {
    r[i] = _mm256_permute2f128_ps(u[i], u[i + 4], 0x20);
    r[i + 4] = _mm256_permute2f128_ps(u[i], u[i + 4], 0x31);
  });
}

struct Vector8 {
  static constexpr int lanes = 8, copies = 1;
  __m256 v;

  static Vector8 load(const float* p) { return {_mm256_loadu_ps(p)}; }
  static Vector8 load_aligned(const float* p) { return {_mm256_load_ps(p)}; }
  static Vector8 set1(float x) { return {_mm256_set1_ps(x)}; }
  static Vector8 spread(const float* p) { return set1(*p); }
  void store_aligned(float* p) const { _mm256_store_ps(p, v); }
  void store(float* p) const { _mm256_storeu_ps(p, v); }

  friend Vector8 operator+(Vector8 a, Vector8 b) { return {_mm256_add_ps(a.v, b.v)}; }
  friend Vector8 operator-(Vector8 a, Vector8 b) { return {_mm256_sub_ps(a.v, b.v)}; }
  friend Vector8 operator*(Vector8 a, Vector8 b) { return {_mm256_mul_ps(a.v, b.v)}; }
  static Vector8 fma(Vector8 a, Vector8 b, Vector8 c) { return {_mm256_fmadd_ps(a.v, b.v, c.v)}; }
  static Vector8 fms(Vector8 a, Vector8 b, Vector8 c) { return {_mm256_fmsub_ps(a.v, b.v, c.v)}; }
  static Vector8 fnma(Vector8 a, Vector8 b, Vector8 c) { return {_mm256_fnmadd_ps(a.v, b.v, c.v)}; }

  Vector8 negated() const { return {_mm256_xor_ps(v, _mm256_set1_ps(-0.0F))}; }
  Vector8 reversed() const {
    return {_mm256_permutevar8x32_ps(v, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0))};
  }
  static Cx<Vector8> load_pairs(const float* p) {
    const __m256 a = halves(p, p + 8), b = halves(p + 4, p + 12);
    return {{_mm256_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))},
            {_mm256_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))}};
  }
  static Cx<Vector8> load_reversed_pairs(const float* p) {
    const __m256 a = halves(p + 12, p + 4), b = halves(p + 8, p);
    return {{_mm256_shuffle_ps(a, b, _MM_SHUFFLE(0, 2, 0, 2))},
            {_mm256_shuffle_ps(a, b, _MM_SHUFFLE(1, 3, 1, 3))}};
  }
  static void store_reversed_pairs(float* p, Cx<Vector8> x) {
    store_pairs(p, {x.re.reversed(), x.im.reversed()});
  }
  static void store_pairs(float* p, Cx<Vector8> x) {
    const __m256 low = _mm256_unpacklo_ps(x.re.v, x.im.v);
    const __m256 high = _mm256_unpackhi_ps(x.re.v, x.im.v);
    _mm256_storeu_ps(p, _mm256_permute2f128_ps(low, high, 0x20));
    _mm256_storeu_ps(p + 8, _mm256_permute2f128_ps(low, high, 0x31));
  }

  // Rows become columns.
  [[gnu::always_inline]] static void transpose(Vector8 (&x)[8]) {
    __m256 r[8];
    unrolled<8>([&](auto i) { r[i] = x[i].v; });
    transpose8(r);
    unrolled<8>([&](auto i) { x[i].v = r[i]; });
  }

  template <int R>
  [[gnu::always_inline]] static void store_rows(float* y, const Vector8* x) {
    if constexpr (R == 2) {
      store_pairs(y, {x[0], x[1]});
    } else if constexpr (R == 4) {
      store_rows_of_4(y, x);
    } else {
      store_rows_of_8<R>(y, x);
    }
  }

 private:
  static __m256 halves(const float* low, const float* high) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(low)), _mm_loadu_ps(high), 1);
  }
  [[gnu::always_inline]] static void store_rows_of_4(float* y, const Vector8* x) {
    const __m256 a = _mm256_unpacklo_ps(x[0].v, x[2].v), b = _mm256_unpackhi_ps(x[0].v, x[2].v);
    const __m256 c = _mm256_unpacklo_ps(x[1].v, x[3].v), d = _mm256_unpackhi_ps(x[1].v, x[3].v);
    const __m256 r0 = _mm256_unpacklo_ps(a, c), r1 = _mm256_unpackhi_ps(a, c);
    const __m256 r2 = _mm256_unpacklo_ps(b, d), r3 = _mm256_unpackhi_ps(b, d);
    _mm256_storeu_ps(y, _mm256_permute2f128_ps(r0, r1, 0x20));
    _mm256_storeu_ps(y + 8, _mm256_permute2f128_ps(r2, r3, 0x20));
    _mm256_storeu_ps(y + 16, _mm256_permute2f128_ps(r0, r1, 0x31));
    _mm256_storeu_ps(y + 24, _mm256_permute2f128_ps(r2, r3, 0x31));
  }
  // In ascending order: what a group writes past its row is overwritten by the
  // next one.
  template <int R>
  [[gnu::always_inline]] static void store_rows_of_8(float* y, const Vector8* x) {
    constexpr int groups = (R + 7) / 8;
    __m256 row[groups][8];
    unrolled<groups>([&](auto g) {
      unrolled<8>([&](auto k) {
        constexpr int column = 8 * g + k;
        row[g][k] = x[column < R ? column : R - 1].v;
      });
      transpose8(row[g]);
    });
    unrolled<8>([&](auto lane) {
      unrolled<groups>([&](auto g) { _mm256_storeu_ps(y + R * lane + 8 * g, row[g][lane]); });
    });
  }
};

}  // namespace
