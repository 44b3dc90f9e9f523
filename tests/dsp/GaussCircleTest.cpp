// Tests of the lattice table: all variants against a plain enumeration of the images, and against
// each other.
#include "dsp/GaussCircle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "tests/dsp/PlainResponse.h"
#include "tests/support/Random.h"

namespace {

using plain::Lattice;

struct Table : GaussCircle<float> {
  Table(const Lattice& l, ComputeMode how)
      : GaussCircle(l.axes(), l.S, l.sizes, l.offsets, l.weights, how) {
    compute_C();
  }
};

const std::vector<Lattice> kSmallLattices = {
    {9, {1}, {0}, {1.0f}},
    {30, {4}, {1}, {0.7f}},
    {30, {4}, {2}, {0.0f}},
    {20, {7}, {3}, {1.0f}},
    {17, {3, 5}, {0, 0}, {1.0f, 0.5f}},
    {21, {4, 6}, {2, 3}, {0.9f, 1.0f}},
    {5, {3, 9}, {0, 0}, {0.9f, 0.9f}},
    {14, {3, 4, 5}, {1, 0, 2}, {0.9f, 0.8f, 0.99f}},
    {12, {4, 3, 5, 6}, {0, 0, 0, 0}, {0.99f, 0.5f, 0.0f, 0.7f}},
    {10, {4, 3, 5, 6, 4}, {2, 1, 2, 3, 1}, {0.99f, 0.5f, 0.9f, 0.7f, 0.8f}},
};

const std::vector<ComputeMode> kModes = {ComputeMode::BRUTE,          ComputeMode::NAIVE,
                                         ComputeMode::VECTORIZED,     ComputeMode::VECTORIZED_SSE2,
                                         ComputeMode::VECTORIZED_AVX, ComputeMode::FFT,
                                         ComputeMode::FASTEST};

bool same_cells(const GaussCircle<float>& a, const GaussCircle<float>& b) {
  const auto bytes = (static_cast<std::size_t>(a.S2) + 1) * sizeof(float);
  for (std::size_t d = 0; d < a.C.size(); ++d) {
    if (std::memcmp(a.C[d].data(), b.C[d].data(), bytes) != 0) return false;
  }
  return a.C.size() == b.C.size();
}

TEST(GaussCircle, CountsTheImagesWithinEachDistanceInEveryMode) {
  for (const Lattice& lattice : kSmallLattices) {
    for (const ComputeMode mode : kModes) {
      const Table table(lattice, mode);
      for (int d = 0; d < lattice.axes(); ++d) {
        const std::vector<double> expected = plain::counts(lattice, d);
        // The closed form of row 0 counts powers below -120 dB; transforms round.
        const double limit = 1e-5 * expected.back() + 4e-4;
        for (int s = 0; s <= table.S2; ++s) {
          ASSERT_NEAR(table.getC(d, s), expected[static_cast<std::size_t>(s)], limit)
              << "mode " << static_cast<int>(mode) << ", radius " << lattice.S << ", axes "
              << lattice.axes() << ", row " << d << ", cell " << s;
        }
      }
    }
  }
}

TEST(GaussCircle, GivesTheSameBitsTiledAsInPlainLoops) {
  std::vector<Lattice> lattices = kSmallLattices;
  Random random(11);
  for (int i = 0; i < 40; ++i) {
    Lattice lattice{random.integer(1, i < 20 ? 90 : 600), {}, {}, {}};
    const int axes = random.integer(2, 5);
    for (int d = 0; d < axes; ++d) {
      const int size = random.integer(1, 20);
      lattice.sizes.push_back(size);
      lattice.offsets.push_back(random.integer(0, 1) * random.integer(0, size / 2));
      lattice.weights.push_back(random.integer(0, 3) == 0 ? 1.0f : random.uniform(0.3f, 1.0f));
    }
    lattices.push_back(lattice);
  }
  lattices.push_back({1701, {10, 11, 12}, {0, 5, 1}, {0.99f, 0.98f, 1.0f}});
  for (const Lattice& lattice : lattices) {
    const Table loops(lattice, ComputeMode::VECTORIZED);
    EXPECT_TRUE(same_cells(loops, Table(lattice, ComputeMode::VECTORIZED_SSE2)))
        << "radius " << lattice.S << ", axes " << lattice.axes() << ", seed 11";
  }
}

TEST(GaussCircle, GivesTheSameBitsWhenComputedAgainOrUnderAnotherName) {
  const Lattice lattice = {40, {3, 5, 7}, {1, 2, 0}, {0.9f, 0.8f, 0.7f}};
  Table table(lattice, ComputeMode::FASTEST);
  const Table sse2(lattice, ComputeMode::VECTORIZED_SSE2);
  EXPECT_TRUE(same_cells(table, sse2));
  table.compute_C();
  EXPECT_TRUE(same_cells(table, sse2));
  table.compute_C_vectorized_AVX();
  EXPECT_TRUE(same_cells(table, sse2));
}

TEST(GaussCircle, TakesOffsetsByMagnitudeAndUpToHalfTheSize) {
  const Lattice stored = {30, {7, 8}, {3, 4}, {0.9f, 0.8f}};
  const Lattice given = {30, {7, 8}, {-3, 100}, {0.9f, 0.8f}};
  EXPECT_TRUE(same_cells(Table(stored, ComputeMode::FASTEST), Table(given, ComputeMode::FASTEST)));
  // Indices 0 and -1 are equally far from the origin at half the size.
  const Table half({4, {4}, {2}, {1.0f}}, ComputeMode::FASTEST);
  EXPECT_EQ(half.getC(0, 3), 0.0f);
  EXPECT_EQ(half.getC(0, 4), 2.0f);
}

TEST(GaussCircle, FloorsWeightPowersBelow120dBToZero) {
  const Table table({100, {1}, {0}, {0.5f}}, ComputeMode::FASTEST);
  const AlignedVector<float>& powers = table.weight_powers[0];
  ASSERT_EQ(powers.size(), 103u);
  EXPECT_EQ(powers[0], 1.0f);
  EXPECT_EQ(powers[19], 0x1p-19f);
  EXPECT_EQ(powers[20], 0.0f);
  EXPECT_EQ(Table({9, {1}, {0}, {0.0f}}, ComputeMode::FASTEST).getC(0, 81), 1.0f);
}

TEST(GaussCircle, TransformsIgnoreLaterOffsetsBehindAFirstAxisWithoutOne) {
  const Lattice offset = {20, {4, 6}, {0, 3}, {0.9f, 0.8f}};
  const Lattice none = {20, {4, 6}, {0, 0}, {0.9f, 0.8f}};
  const Table transformed(offset, ComputeMode::FFT);
  EXPECT_TRUE(transformed.is_equal_C(Table(none, ComputeMode::FFT), 0.0f));
  testing::internal::CaptureStdout();
  EXPECT_FALSE(transformed.is_equal_C(Table(offset, ComputeMode::FASTEST), 1e-2f));
  EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("C[1][0] = ", 0), 0u);
}

TEST(GaussCircle, ComparesShapeFirstAndReportsTheFirstDifferentCell) {
  const Lattice lattice = {3, {1}, {0}, {1.0f}};
  Table a(lattice, ComputeMode::FASTEST);
  const Table b(lattice, ComputeMode::FASTEST);
  a.C[0][5] += 0.25f;
  testing::internal::CaptureStdout();
  EXPECT_FALSE(a.is_equal_C(Table({4, {1}, {0}, {1.0f}}, ComputeMode::FASTEST), 100.0f));
  EXPECT_TRUE(a.is_equal_C(b, 0.25f));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  testing::internal::CaptureStdout();
  EXPECT_FALSE(a.is_equal_C(b, 0.1f));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "C[0][5] = 5.25 != 5\n");
}

TEST(GaussCircle, LeavesTheTableAloneInAnUnknownMode) {
  const Lattice lattice = {3, {1}, {0}, {1.0f}};
  Table table(lattice, ComputeMode::FASTEST);
  table.C[0][0] = 42.0f;
  table.mode = static_cast<ComputeMode>(7);
  table.compute_C();
  EXPECT_EQ(table.getC(0, 0), 42.0f);
  table.update(1, 2, lattice.sizes, lattice.offsets, lattice.weights, ComputeMode::NAIVE);
  EXPECT_EQ(table.getC(0, 4), 0.0f);
}

}  // namespace
