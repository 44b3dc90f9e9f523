// Tests of the lattice table: all variants against a plain enumeration of the images, and against
// each other.
#include "dsp/GaussCircle.h"

#include <gtest/gtest.h>

#include <vector>

#include "numeric/dft/Engine.h"
#include "tests/dsp/PlainResponse.h"
#include "tests/support/Random.h"

namespace {

using plain::Lattice;
using enum ComputeMode;

struct Table : GaussCircle<float> {
  explicit Table(const Lattice& l, ComputeMode how = FASTEST)
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

TEST(GaussCircle, CountsTheImagesWithinEachDistanceInEveryMode) {
  for (const Lattice& lattice : kSmallLattices) {
    for (int d = 0; d < lattice.axes(); ++d) {
      const std::vector<double> expected = plain::counts(lattice, d);
      // The closed form of row 0 counts powers below -120 dB; transforms round.
      const double limit = 1e-5 * expected.back() + 4e-4;
      for (int mode = 0; mode <= 6; ++mode) {
        const Table table(lattice, static_cast<ComputeMode>(mode));
        for (int s = 0; s <= table.S2; ++s) {
          ASSERT_NEAR(table.getC(d, s), expected[static_cast<std::size_t>(s)], limit)
              << "mode " << mode << ", radius " << lattice.S << ", axes " << lattice.axes()
              << ", row " << d << ", cell " << s;
        }
      }
    }
  }
}

TEST(GaussCircle, GivesTheBitsOfPlainLoopsInEveryVariantUnderAnyNameAndAgain) {
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
    const Table loops(lattice, VECTORIZED);
    Table fast(lattice, VECTORIZED_SSE2);
    for (int index = 0; index <= dft::best_engine(); ++index) {
      ippJumpIndexForMergedLibs = index;
      for (const ComputeMode again : {VECTORIZED_SSE2, VECTORIZED_AVX, FASTEST}) {
        fast.mode = again;
        if (index > 0 && again != FASTEST) continue;
        fast.compute_C();
        EXPECT_TRUE(fast.is_equal_C(loops, 0.0f))
            << "radius " << lattice.S << ", axes " << lattice.axes() << ", variant " << index
            << ", seed 11";
      }
    }
    ippJumpIndexForMergedLibs = -1;
  }
}

TEST(GaussCircle, TakesOffsetsByMagnitudeAndUpToHalfTheSize) {
  const Table table({9, {7, 7, 8, 8}, {-3, 4, -100, 4}, {0.5f, 0.5f, 0.5f, 0.5f}}, NAIVE);
  EXPECT_EQ(table.dim_offsets, (AlignedVector<int>{3, 3, 4, 4}));
}

TEST(GaussCircle, FloorsWeightPowersBelow120dBToZero) {
  const Table table({100, {1}, {0}, {0.5f}});
  const AlignedVector<float>& powers = table.weight_powers[0];
  ASSERT_EQ(powers.size(), 103u);
  EXPECT_EQ(powers[19], 0x1p-19f);
  EXPECT_EQ(powers[20], 0.0f);
}

TEST(GaussCircle, TransformsIgnoreLaterOffsetsBehindAFirstAxisWithoutOne) {
  const Lattice offset = {20, {4, 6}, {0, 3}, {0.9f, 0.8f}};
  const Table transformed(offset, FFT);
  EXPECT_TRUE(transformed.is_equal_C(Table({20, {4, 6}, {0, 0}, {0.9f, 0.8f}}, FFT), 0.0f));
  EXPECT_NEAR(transformed.getC(1, 0), 1.0f, 1e-5);
  EXPECT_EQ(Table(offset).getC(1, 0), 0.0f);
}

TEST(GaussCircle, ComparesShapeFirstAndReportsTheFirstDifferentCell) {
  const Lattice lattice = {3, {1}, {0}, {1.0f}};
  const Table b(lattice);
  Table a(lattice);
  a.C[0][5] += 0.25f;
  a.C[0][7] += 0.5f;
  a.mode = static_cast<ComputeMode>(7);  // unknown
  a.compute_C();                         // leaves the table alone
  testing::internal::CaptureStdout();
  EXPECT_FALSE(a.is_equal_C(Table({4, {1}, {0}, {1.0f}}), 100.0f));
  EXPECT_TRUE(a.is_equal_C(b, 0.5f));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  testing::internal::CaptureStdout();
  EXPECT_FALSE(a.is_equal_C(b, 0.1f));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "C[0][5] = 5.25 != 5\n");
}

}  // namespace
