// Small real transforms by their folded defining sums, unrolled by length.
#include "numeric/dft/SmallReal.h"

#include <numbers>
#include <utility>

namespace dft {
namespace {

// Taylor series about 0 of the sine (odd = 1) or cosine (odd = 0), for arguments up to pi / 4.
constexpr double series(double x, int odd) {
  double term = odd ? x : 1.0, sum = term;
  for (int i = 2 + odd; i < 24; i += 2) {
    term *= -x * x / (i * (i - 1));
    sum += term;
  }
  return sum;
}

// cos(2 pi k / n), through the octant in which it lies.
constexpr double cosine(int k, int n) {
  k %= n;
  if (2 * k > n) k = n - k;
  if (4 * k > n) return -cosine(n - 2 * k, 2 * n);
  const double angle = 2 * std::numbers::pi * k / n;
  return 8 * k <= n ? series(angle, 0) : series(std::numbers::pi / 2 - angle, 1);
}

constexpr double sine(int k, int n) { return cosine(4 * k + 3 * n, 4 * n); }

template <int N>
struct Turns {
  float cos[N], sin[N];
};

template <int N>
constexpr Turns<N> make_turns() {
  Turns<N> t{};
  for (int k = 0; k < N; ++k) {
    t.cos[k] = static_cast<float>(cosine(k, N));
    t.sin[k] = static_cast<float>(sine(k, N));
  }
  return t;
}

template <int N>
constexpr Turns<N> kTurns = make_turns<N>();

template <int N>
void forward(const float* src, float* dst, float scale) {
  constexpr int half = (N - 1) / 2;  // pairs of samples t and N - t
  float sum[half + 1], difference[half + 1];
  const float first = src[0];
  const float middle = N % 2 == 0 ? src[N / 2] : 0.0F;
  for (int t = 1; t <= half; ++t) {
    sum[t] = src[t] + src[N - t];
    difference[t] = src[t] - src[N - t];
  }
  for (int k = 0; k <= N / 2; ++k) {
    float re = first + (k % 2 == 0 ? middle : -middle), im = 0.0F;
    for (int t = 1; t <= half; ++t) {
      re += sum[t] * kTurns<N>.cos[k * t % N];
      im -= difference[t] * kTurns<N>.sin[k * t % N];
    }
    dst[2 * k] = re * scale;
    dst[2 * k + 1] = 2 * k % N == 0 ? 0.0F : im * scale;
  }
}

template <int N>
void inverse(const float* src, float* dst, float scale) {
  constexpr int half = (N - 1) / 2;  // bins with a mirror image
  float re[half + 1], im[half + 1];
  const float first = src[0];
  const float middle = N % 2 == 0 ? src[N] : 0.0F;
  for (int k = 1; k <= half; ++k) {
    re[k] = src[2 * k] + src[2 * k];
    im[k] = src[2 * k + 1] + src[2 * k + 1];
  }
  for (int t = 0; t <= N / 2; ++t) {
    float even = first + (t % 2 == 0 ? middle : -middle), odd = 0.0F;
    for (int k = 1; k <= half; ++k) {
      even += re[k] * kTurns<N>.cos[k * t % N];
      odd += im[k] * kTurns<N>.sin[k * t % N];
    }
    dst[t] = (even - odd) * scale;
    if (t > 0) dst[N - t] = (even + odd) * scale;
  }
}

template <int... N>
constexpr SmallKernels forward_kernels(std::integer_sequence<int, N...>) {
  return {nullptr, forward<N + 1>...};
}

template <int... N>
constexpr SmallKernels inverse_kernels(std::integer_sequence<int, N...>) {
  return {nullptr, inverse<N + 1>...};
}

}  // namespace

const SmallKernels small_forward =
    forward_kernels(std::make_integer_sequence<int, kLargestSmall>());
const SmallKernels small_inverse =
    inverse_kernels(std::make_integer_sequence<int, kLargestSmall>());

}  // namespace dft
