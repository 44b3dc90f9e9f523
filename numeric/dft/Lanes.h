// The tools of kernels that are written once over a vector type. Everything here and in the other
// kernel headers has internal linkage: each instruction set compiles its own copy, and the linker
// must never merge one that a lesser processor would run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace {

// Complex values, one per lane.
template <class V>
struct Cx {
  V re, im;

  friend Cx operator+(Cx a, Cx b) { return {a.re + b.re, a.im + b.im}; }
  friend Cx operator-(Cx a, Cx b) { return {a.re - b.re, a.im - b.im}; }
  friend Cx operator*(Cx a, Cx b) {
    return {V::fms(a.re, b.re, a.im * b.im), V::fma(a.re, b.im, a.im * b.re)};
  }
  // a - i b and a + i b
  friend Cx minus_i(Cx a, Cx b) { return {a.re + b.im, a.im - b.re}; }
  friend Cx plus_i(Cx a, Cx b) { return {a.re - b.im, a.im + b.re}; }
};

template <class V>
Cx<V> reversed(Cx<V> x) {
  return {x.re.reversed(), x.im.reversed()};
}

// body(0), ..., body(N - 1) with constants, so that arrays indexed by them become registers.
template <int N, class F>
[[gnu::always_inline]] inline void unrolled(F body) {
  [&]<int... K>(std::integer_sequence<int, K...>) __attribute__((always_inline)) {
    (body(std::integral_constant<int, K>{}), ...);
  }
  (std::make_integer_sequence<int, N>{});
}

template <class V>
struct Type {
  using type = V;
};

// The vector types of one instruction set, narrow to wide.
template <class Narrow, class... Wider>
struct Widths {
  static constexpr int widest = std::max({Narrow::lanes, Wider::lanes...});

  // Calls f with the narrowest type that covers n lanes in one vector, or else the widest.
  template <class F>
  static void cover(int n, F f) {
    if constexpr (sizeof...(Wider) > 0) {
      if (n > Narrow::lanes) return Widths<Wider...>::cover(n, f);
    }
    f(Type<Narrow>{});
  }
  // Calls f with the widest type of no more than n lanes, or else the narrowest.
  template <class F>
  static void fit(int n, F f) {
    if (!fit_wider<Wider...>(n, f)) f(Type<Narrow>{});
  }

 private:
  template <class... None, class F>
  static bool fit_wider(int, F) requires(sizeof...(None) == 0) {
    return false;
  }
  template <class Next, class... More, class F>
  static bool fit_wider(int n, F f) {
    if (n < Next::lanes) return false;
    Widths<Next, More...>::fit(n, f);
    return true;
  }
};

// Runs body(i) for vectors that cover 0 to n - 1. The last one is moved back so that it ends at n,
// and computes some elements twice; if n is below one vector, the only one reaches past n.
template <class V, class F>
[[gnu::always_inline]] inline void for_vectors(int n, F body) {
  int i = 0;
  for (; i + V::lanes <= n; i += V::lanes) body(i);
  if (i < n) body(n > V::lanes ? n - V::lanes : 0);
}

// The vector types of an instruction set. Kernels need a whole vector of the narrowest, or room
// after their output; what else there is goes down to single lanes.
template <class Single, class... Vectors>
struct Isa {
  using Kernels = Widths<Vectors...>;
  using Exact = Widths<Single, Vectors...>;
};

}  // namespace
