// The plans of the engine: the choice of method by length, its radices, and its roots of unity.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <numbers>
#include <numeric>
#include <vector>

#include "numeric/dft/Factors.h"
#include "numeric/dft/Roots.h"
#include "numeric/dft/Setup.h"

namespace {

std::int64_t product(const std::vector<int>& list) {
  return std::accumulate(list.begin(), list.end(), std::int64_t{1}, std::multiplies<>());
}

int largest_prime(int n) {
  int largest = 1;
  for (int p = 2; n > 1; ++p) {
    for (; n % p == 0; n /= p) largest = p;
  }
  return largest;
}

TEST(Plan, FactorsEveryLengthWhosePrimesAreSmall) {
  for (int n = 9; n <= 5000; ++n) {
    for (const bool real : {false, true}) {
      if (real && n % 2 == 0) continue;
      const int prime = largest_prime(n);
      // A multiple of 4 may keep a factor of up to 150.
      const bool by_passes = prime <= 47 || (prime <= 150 && n % 4 == 0);
      const std::vector<int> list = dft::radices(n, real);
      EXPECT_EQ(list.empty(), !by_passes) << n;
      EXPECT_EQ(product(list), by_passes ? n : 1) << n;
    }
  }
  EXPECT_TRUE(dft::radices(53 * 53, false).empty()) << "two primes that trial division gives up";
  EXPECT_EQ(dft::radices(47, true), std::vector<int>{47}) << "the direct sum is one pass";
}

TEST(Plan, OrdersRadicesForFullVectors) {
  // Radices without a kernel come last.
  const auto late = [](int a, int b) { return a <= 8 && b > 8; };
  for (int n = 9; n <= 3000; ++n) {
    const std::vector<int> list = dft::radices(n, false);
    EXPECT_TRUE(std::ranges::is_sorted(list, late)) << n;
    EXPECT_TRUE(n % 8 != 0 || list.empty() || list.front() >= 4) << n;
  }
  EXPECT_EQ(dft::radices(1 << 14, false), (std::vector<int>{8, 8, 8, 8, 4}));
  EXPECT_EQ(dft::radices(240, false), (std::vector<int>{8, 2, 5, 3}));
}

TEST(Plan, ConvolvesInTheNextCheapLength) {
  const std::pair<int, int> lengths[] = {{53, 128},   {64, 128},    {65, 144},
                                         {513, 1152}, {4096, 8192}, {4097, 16384}};
  for (const auto& [n, length] : lengths) EXPECT_EQ(dft::chirp_length(n), length);
  for (int n = 51; n < 5000; ++n) {
    EXPECT_GE(dft::chirp_length(n), 2 * n - 1);
    EXPECT_LE(largest_prime(dft::chirp_length(n)), 5) << n;
  }
}

TEST(Plan, SplitsLongTransformsIntoSidesOfLikeLength) {
  for (const int n : {1 << 17, 1 << 20, 1 << 23, 5788125, 65536 * 3, 2 * 177147}) {
    const dft::Setup setup = dft::plan(n);
    const dft::CorePlan& core = setup.spec.core;
    ASSERT_GT(core.rows.length, 0) << n;
    EXPECT_EQ(std::int64_t{core.columns.length} * core.rows.length, core.length) << n;
    EXPECT_LE(std::max(core.columns.length, core.rows.length),
              8 * std::min(core.columns.length, core.rows.length))
        << n;
  }
  EXPECT_EQ(dft::plan(32768).spec.core.rows.length, 0) << "fits the cache whole";
}

TEST(Roots, AreRightToTheLastBitsOfDouble) {
  for (const std::int64_t n : {1L, 2L, 3L, 8L, 12L, 63L, 1000L, 4096L, 1L << 22, 5788125L}) {
    std::vector<std::complex<double>> storage(dft::Roots::storage_size(n) / 16);
    const dft::Roots roots(n, storage.data());
    for (std::int64_t k = 0; k < n; k += 1 + n / 5000) {
      const long double angle = -2.0L * std::numbers::pi_v<long double> *
                                static_cast<long double>(k) / static_cast<long double>(n);
      const std::complex<double> w = roots[k];
      const long double error = std::hypot(static_cast<long double>(w.real()) - std::cos(angle),
                                           static_cast<long double>(w.imag()) - std::sin(angle));
      EXPECT_LE(error, 4e-16L) << k << " of " << n;
    }
    EXPECT_EQ(roots[0], std::complex<double>(1.0, 0.0)) << n;
  }
}

}  // namespace
