// Eight floats at once, for sources that are compiled for AVX.
#pragma once

#include <immintrin.h>

namespace {

struct Float8 {
  __m256 v;

  static Float8 load(const float* p) { return {_mm256_loadu_ps(p)}; }
  static Float8 load_aligned(const float* p) { return {_mm256_load_ps(p)}; }
  static Float8 set1(float x) { return {_mm256_set1_ps(x)}; }
  void store_aligned(float* p) const { _mm256_store_ps(p, v); }

  friend Float8 operator+(Float8 a, Float8 b) { return {_mm256_add_ps(a.v, b.v)}; }
  friend Float8 operator*(Float8 a, Float8 b) { return {_mm256_mul_ps(a.v, b.v)}; }
};

}  // namespace
