// The rings delay by exactly one block, whatever frame counts the host uses.
#include "plugin/ChannelRing.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/Random.h"

namespace {

// Runs a counting signal through a ring that copies its blocks; the output must be the input one
// block later, sample for sample.
void ExpectDelayOfOneBlock(int B, const std::vector<int>& frameCounts) {
  ChannelRing ring;
  ring.Allocate(B);
  AlignedVector<float> block(static_cast<size_t>(B));
  int position = 0;
  for (const int n : frameCounts) {
    std::vector<double> in(static_cast<size_t>(n)), out(in.size());
    for (int i = 0; i < n; ++i) in[static_cast<size_t>(i)] = position + i + 1;
    ring.WriteInput(in.data(), n);
    if (ring.HasBlock(n)) {
      ring.TakeBlock(block.data());
      ring.PutBlock(block.data());
    }
    ring.ReadOutput(out.data(), n);
    for (int i = 0; i < n; ++i, ++position) {
      const double want = position < B ? 0.0 : position - B + 1;
      ASSERT_EQ(out[static_cast<size_t>(i)], want) << "B " << B << " at " << position;
    }
  }
}

}  // namespace

TEST(ChannelRing, DelaysByOneBlockForAnyFrameCounts) {
  Random random(7);
  for (const int B : {1, 2, 3, 5, 64, 100, 129, 513}) {
    for (const int n : {1, B / 4, B / 3, B - 1, B}) {
      if (n > 0) ExpectDelayOfOneBlock(B, std::vector<int>(static_cast<size_t>(7 * B / n + 3), n));
    }
    std::vector<int> changing(400);
    for (int& n : changing) n = random.integer(1, B);
    ExpectDelayOfOneBlock(B, changing);
  }
}
