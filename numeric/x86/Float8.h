// Eight floats at once, with the operations of the four-float types. Never contracted: it gives
// their bits.
#pragma once

#include <immintrin.h>

namespace {

struct Float8 {
  __m256 v;

  static Float8 load(const float* p) { return {_mm256_loadu_ps(p)}; }
  static Float8 set1(float x) { return {_mm256_set1_ps(x)}; }
  void store(float* p) const { _mm256_storeu_ps(p, v); }

  friend Float8 operator+(Float8 a, Float8 b) { return {_mm256_add_ps(a.v, b.v)}; }
  friend Float8 operator-(Float8 a, Float8 b) { return {_mm256_sub_ps(a.v, b.v)}; }
  friend Float8 operator*(Float8 a, Float8 b) { return {_mm256_mul_ps(a.v, b.v)}; }

  // The even lanes of a, then those of b; the odd ones likewise.
  static Float8 even(Float8 a, Float8 b) {
    return in_order(_mm256_shuffle_ps(a.v, b.v, _MM_SHUFFLE(2, 0, 2, 0)));
  }
  static Float8 odd(Float8 a, Float8 b) {
    return in_order(_mm256_shuffle_ps(a.v, b.v, _MM_SHUFFLE(3, 1, 3, 1)));
  }
  // even and odd undone, one half each.
  static Float8 interleave_low(Float8 a, Float8 b) { return halves<0x20>(a, b); }
  static Float8 interleave_high(Float8 a, Float8 b) { return halves<0x31>(a, b); }

 private:
  // Pairs of lanes 0, 2, 1, 3 of a shuffle, which works on each half by itself.
  static Float8 in_order(__m256 x) {
    return {_mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(x), _MM_SHUFFLE(3, 1, 2, 0)))};
  }
  template <int kHalves>
  static Float8 halves(Float8 a, Float8 b) {
    return {_mm256_permute2f128_ps(_mm256_unpacklo_ps(a.v, b.v), _mm256_unpackhi_ps(a.v, b.v),
                                   kHalves)};
  }
};

}  // namespace
