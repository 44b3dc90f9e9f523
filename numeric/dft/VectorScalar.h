// A vector of one lane: the kernels without vector instructions.
#pragma once

#include "numeric/dft/Lanes.h"

namespace {

struct Vector1 {
  static constexpr int lanes = 1;
  float v;

  static Vector1 load(const float* p) { return {*p}; }
  static Vector1 set1(float x) { return {x}; }
  void store(float* p) const { *p = v; }

  friend Vector1 operator+(Vector1 a, Vector1 b) { return {a.v + b.v}; }
  friend Vector1 operator-(Vector1 a, Vector1 b) { return {a.v - b.v}; }
  friend Vector1 operator*(Vector1 a, Vector1 b) { return {a.v * b.v}; }
  static Vector1 fma(Vector1 a, Vector1 b, Vector1 c) { return {a.v * b.v + c.v}; }
  static Vector1 fms(Vector1 a, Vector1 b, Vector1 c) { return {a.v * b.v - c.v}; }
  static Vector1 fnma(Vector1 a, Vector1 b, Vector1 c) { return {c.v - a.v * b.v}; }

  Vector1 reversed() const { return *this; }
  static Cx<Vector1> load_pairs(const float* p) { return {{p[0]}, {p[1]}}; }
  static void store_pairs(float* p, Cx<Vector1> x) {
    p[0] = x.re.v;
    p[1] = x.im.v;
  }

  // y[R * lane + k] = x[k][lane]; the wider types may write up to `lanes`
  // floats past that.
  template <int R>
  [[gnu::always_inline]] static void store_rows(float* y, const Vector1* x) {
    for (int k = 0; k < R; ++k) y[k] = x[k].v;
  }
};

}  // namespace
