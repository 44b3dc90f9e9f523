// Tests of the render's inner loops: every variant of the processor against the literal form.
#include "dsp/RenderKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "dsp/FIRFunctions.h"
#include "dsp/FIROrtho.h"
#include "numeric/AlignedVector.h"
#include "numeric/dft/Engine.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Samples = AlignedVector<float>;

// Runs kernel(variant, y) for every variant of this processor: all give the same bits, and each
// value is literal(i) or NaN. Returns the number of NaN.
template <class Kernel, class Literal>
int uncertain_of(int n, Kernel kernel, Literal literal, const std::string& what) {
  Samples first;
  for (int index = 0; index <= dft::best_engine(); ++index) {
    Samples y(static_cast<std::size_t>(n), 7.0f);
    kernel(*render_kernel_variants[index], y.data());
    for (float& v : y) v = std::isnan(v) ? std::nanf("") : v;  // of either sign
    if (index == 0) first = y;
    EXPECT_TRUE(reference::same_bits(y, first)) << what << ", variant " << index;
  }
  int uncertain = 0;
  for (int i = 0; i < n; ++i) {
    const float value = first[static_cast<std::size_t>(i)];
    if (std::isnan(value)) {
      ++uncertain;
    } else {
      const float expected = literal(i);
      EXPECT_TRUE(reference::same_bits({&value, 1}, {&expected, 1}))
          << what << ", value " << i << ": " << value << ", not " << expected;
    }
  }
  return uncertain;
}

TEST(RenderKernels, MapDistancesAsTheLibraryDoesOrLeaveThemToIt) {
  Random random(31);
  const FIROrtho<float> ortho;
  for (int round = 0; round < 300; ++round) {
    const double p = std::exp(static_cast<double>(random.uniform(-3, 3)));
    const int N = round % 2 == 0 ? random.integer(1, 3000) : random.integer(3000, 1 << 22);
    const TimeCurve curve = {p, static_cast<double>(N), 1700.0 / N};
    const double N_pow_p = std::pow(curve.N, p);
    const int n = std::min(N, 1000);
    // Both ends, where rounding counts most, and the middle, where it must not.
    for (const int start : {1, N - n + 1, N / 2}) {
      const int uncertain = uncertain_of(
          std::min(n, N - start + 1),
          [&](const RenderKernels& k, float* y) {
            k.distances(curve, start, y, std::min(n, N - start + 1));
          },
          [&](int i) {
            const double samples = ortho.p_norm_sampling_double(p, curve.N, N_pow_p, start + i);
            return static_cast<float>(curve.scale * samples);
          },
          "p " + std::to_string(p) + ", N " + std::to_string(N) + ", from " +
              std::to_string(start));
      EXPECT_TRUE(uncertain <= 2 || start != N / 2 || p > 2) << p << ", " << N;
    }
  }
}

TEST(RenderKernels, DivideByDistanceAsTheLibraryDoesOrLeaveItToIt) {
  Random random(32);
  const FIROrtho<float> ortho;
  for (const int D : {1, 2, 3, 4, 5}) {
    for (const float g : {0.37f, 0.5f, 1.0f, 1.234f, 2.71f, -1.0f, 99.0f}) {
      Samples r = {0.0f, -0.0f, -1e-11f, 1e-20f, 1e-12f, 1.0f, std::nanf(""), HUGE_VALF, 1e20f};
      for (int i = 0; i < 1000; ++i) r.push_back(random.uniform(3, 1701));
      for (int i = 0; i < 1000; ++i) r.push_back(std::exp(random.uniform(-25, 8)));
      const int n = static_cast<int>(r.size());
      const double exponent = static_cast<float>(D - 1) * 0.5f * g;
      const int uncertain = uncertain_of(
          n, [&](const RenderKernels& k, float* y) { k.divisors(r.data(), exponent, y, n); },
          [&](int i) {
            return ortho.attenuation_divisor_at_dist(r[static_cast<std::size_t>(i)], D, g);
          },
          std::to_string(D) + " dimensions, g " + std::to_string(g));
      const bool in_range = exponent >= 0 && exponent <= 16;
      EXPECT_EQ(uncertain < 200, in_range) << D << ", " << g << ", " << uncertain;
    }
  }
}

// Values near 1, as of a gentle filter, and others; the exponent takes some below all floats, where
// only the sign is left, and some beyond.
TEST(RenderKernels, RaiseComplexValuesAsTheLibraryDoesOrLeaveThemToIt) {
  Random random(33);
  constexpr int kCount = 1000;
  for (int squarings = 0; squarings <= 23; ++squarings) {
    for (const float spread : {1e-9f, 1e-5f, 1e-3f, 0.9f}) {
      AlignedVector<complex> z(kCount, {1.0f, 0.0f});
      for (complex& v : z) {
        v = {1.0f - random.uniform(-0.1f, 1) * spread, random.uniform(-1, 1) * spread};
      }
      z[3] = {0.9f, 0.0f};
      z[4] = {0.9f, -0.0f};
      z[5] = {-0.9f, 0.0f};
      z[6] = {0.0f, 0.0f};
      AlignedVector<complex> expected = z;
      raise_spectrum(expected.data(), kCount, std::ldexp(1.0, squarings));
      const float* const bins = reinterpret_cast<const float*>(expected.data());
      const int uncertain = uncertain_of(
          2 * kCount,
          [&](const RenderKernels& k, float* y) {
            k.raise(reinterpret_cast<const float*>(z.data()), squarings, y, kCount);
          },
          [&](int i) { return bins[i]; },
          std::to_string(squarings) + " squarings, spread " + std::to_string(spread));
      const bool usual = squarings <= 20 && (spread == 1e-5f || spread == 1e-3f);
      EXPECT_TRUE(uncertain < kCount / 3 || !usual) << squarings << ", " << spread;
    }
  }
}

}  // namespace
