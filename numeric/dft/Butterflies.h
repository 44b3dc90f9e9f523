// The short transforms that passes are made of, in registers, forward, over a
// vector type. Radix 3, 5 and 7 pair the inputs l and R - l, so that cosines
// multiply sums, sines differences.
#pragma once

#include "numeric/dft/Lanes.h"

namespace {

template <class V>
[[gnu::always_inline]] inline void butterfly2(Cx<V>& a, Cx<V>& b) {
  const Cx<V> sum = a + b;
  b = a - b;
  a = sum;
}

template <class V>
[[gnu::always_inline]] inline void butterfly4(Cx<V>& a, Cx<V>& b, Cx<V>& c, Cx<V>& d) {
  butterfly2(a, c);
  butterfly2(b, d);
  const Cx<V> quarter = minus_i(c, d), last = plus_i(c, d);
  butterfly2(a, b);
  c = b;
  b = quarter;
  d = last;
}

// Pairs up inputs l and R - l: x[l] becomes their sum, x[R - l] their
// difference.
template <int R, class V>
[[gnu::always_inline]] inline void fold(Cx<V>* x) {
  unrolled<R / 2>([&](auto i) { butterfly2(x[i + 1], x[R - 1 - i]); });
}

template <int R, class V>
struct Butterfly;

template <class V>
struct Butterfly<2, V> {
  [[gnu::always_inline]] static void run(Cx<V>* x) { butterfly2(x[0], x[1]); }
};

template <class V>
struct Butterfly<4, V> {
  [[gnu::always_inline]] static void run(Cx<V>* x) { butterfly4(x[0], x[1], x[2], x[3]); }
};

template <class V>
struct Butterfly<8, V> {
  // Two transforms of four, the odd one turned by eighths and then added and
  // subtracted.
  [[gnu::always_inline]] static void run(Cx<V>* x) {
    const V c = V::set1(0.70710678118654752440F);
    butterfly4(x[0], x[2], x[4], x[6]);
    butterfly4(x[1], x[3], x[5], x[7]);
    const Cx<V> e0 = x[0], e1 = x[2], e2 = x[4], e3 = x[6];
    const Cx<V> o0 = x[1], o1 = x[3], o2 = x[5], o3 = x[7];
    const V s1 = o1.re + o1.im, d1 = o1.im - o1.re, s3 = o3.re + o3.im, d3 = o3.im - o3.re;
    x[0] = e0 + o0;
    x[4] = e0 - o0;
    x[1] = {V::fma(c, s1, e1.re), V::fma(c, d1, e1.im)};
    x[5] = {V::fnma(c, s1, e1.re), V::fnma(c, d1, e1.im)};
    x[2] = minus_i(e2, o2);
    x[6] = plus_i(e2, o2);
    x[3] = {V::fma(c, d3, e3.re), V::fnma(c, s3, e3.im)};
    x[7] = {V::fnma(c, d3, e3.re), V::fma(c, s3, e3.im)};
  }
};

template <class V>
struct Butterfly<16, V> {
  // Four by four: transforms of four, turned by sixteenths, and transforms of four across them.
  [[gnu::always_inline]] static void run(Cx<V>* x) {
    unrolled<4>([&](auto i) { butterfly4(x[i], x[i + 4], x[i + 8], x[i + 12]); });
    constexpr float c1 = 0.92387953251128675613F, s1 = 0.38268343236508977173F;
    constexpr float c2 = 0.70710678118654752440F;
    turn(x[5], c1, -s1);
    turn(x[6], c2, -c2);
    turn(x[7], s1, -c1);
    turn(x[9], c2, -c2);
    x[10] = {x[10].im, V::set1(0.0F) - x[10].re};
    turn(x[11], -c2, -c2);
    turn(x[13], s1, -c1);
    turn(x[14], -c2, -c2);
    turn(x[15], -c1, s1);
    unrolled<4>([&](auto i) { butterfly4(x[4 * i], x[4 * i + 1], x[4 * i + 2], x[4 * i + 3]); });
    unrolled<4>([&](auto i) {
      unrolled<4>([&](auto j) {
        if constexpr (j > i) std::swap(x[4 * i + j], x[4 * j + i]);
      });
    });
  }

 private:
  [[gnu::always_inline]] static void turn(Cx<V>& x, float re, float im) {
    x = x * Cx<V>{V::set1(re), V::set1(im)};
  }
};

// An odd radix by its table: entry k is cos or sin of k of R parts of a turn.
template <int R, class V>
struct OddButterfly {
  [[gnu::always_inline]] static void run(Cx<V>* x, const float (&cosine)[R],
                                         const float (&sine)[R]) {
    constexpr int half = R / 2;
    fold<R>(x);
    Cx<V> even[half], odd[half];
    unrolled<half>([&](auto i) {
      constexpr int k = i + 1;
      even[i] = x[0];
      unrolled<half>([&](auto j) {
        constexpr int l = j + 1;
        const V c = V::set1(cosine[k * l % R]), s = V::set1(sine[k * l % R]);
        even[i] = {V::fma(c, x[l].re, even[i].re), V::fma(c, x[l].im, even[i].im)};
        if constexpr (l == 1) {
          odd[i] = {s * x[R - l].re, s * x[R - l].im};
        } else {
          odd[i] = {V::fma(s, x[R - l].re, odd[i].re), V::fma(s, x[R - l].im, odd[i].im)};
        }
      });
    });
    unrolled<half>([&](auto i) { x[0] = x[0] + x[i + 1]; });
    unrolled<half>([&](auto i) {
      x[i + 1] = minus_i(even[i], odd[i]);
      x[R - 1 - i] = plus_i(even[i], odd[i]);
    });
  }
};

template <class V>
struct Butterfly<3, V> {
  [[gnu::always_inline]] static void run(Cx<V>* x) {
    static constexpr float kCos[] = {1.0F, -0.5F, -0.5F};
    static constexpr float kSin[] = {0.0F, 0.86602540378443864676F, -0.86602540378443864676F};
    OddButterfly<3, V>::run(x, kCos, kSin);
  }
};

template <class V>
struct Butterfly<6, V> {
  // Prime factors, without twiddles (I. J. Good, "The interaction algorithm and practical Fourier
  // analysis", 1958): inputs 3 a + 2 b, outputs 3 c + 4 d.
  [[gnu::always_inline]] static void run(Cx<V>* x) {
    Cx<V> even[] = {x[0], x[2], x[4]}, odd[] = {x[3], x[5], x[1]};
    Butterfly<3, V>::run(even);
    Butterfly<3, V>::run(odd);
    unrolled<3>([&](auto d) {
      x[4 * d % 6] = even[d] + odd[d];
      x[(3 + 4 * d) % 6] = even[d] - odd[d];
    });
  }
};

template <class V>
struct Butterfly<5, V> {
  [[gnu::always_inline]] static void run(Cx<V>* x) {
    static constexpr float c1 = 0.30901699437494742410F, c2 = -0.80901699437494742410F;
    static constexpr float s1 = 0.95105651629515357212F, s2 = 0.58778525229247312917F;
    static constexpr float kCos[] = {1.0F, c1, c2, c2, c1};
    static constexpr float kSin[] = {0.0F, s1, s2, -s2, -s1};
    OddButterfly<5, V>::run(x, kCos, kSin);
  }
};

template <class V>
struct Butterfly<7, V> {
  [[gnu::always_inline]] static void run(Cx<V>* x) {
    static constexpr float c1 = 0.62348980185873353053F, c2 = -0.22252093395631440429F,
                           c3 = -0.90096886790241912624F;
    static constexpr float s1 = 0.78183148246802980871F, s2 = 0.97492791218182360702F,
                           s3 = 0.43388373911755812048F;
    static constexpr float kCos[] = {1.0F, c1, c2, c3, c3, c2, c1};
    static constexpr float kSin[] = {0.0F, s1, s2, s3, -s3, -s2, -s1};
    OddButterfly<7, V>::run(x, kCos, kSin);
  }
};

}  // namespace
