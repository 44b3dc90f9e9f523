#include "convolution/ConvolutionPartitioned.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "tests/convolution/StreamConvolver.h"
#include "tests/support/AllocationGuard.h"

namespace {

using Convolver = ConvolutionPartitioned<float>;

TEST(ConvolutionPartitioned, EqualsDirectConvolutionForEveryBlockAndResponseLength) {
  for (const int N : {1, 2, 3, 31, 64, 100, 512, 513}) {
    const auto x = random_signal(23 * N, 1);
    Convolver convolver;
    for (const int M : {1, std::max(1, N - 1), N, N + 1, 2 * N, 3 * N + 2, 10 * N}) {
      const auto h = random_signal(M, 2);
      convolver.update(N, h);
      SCOPED_TRACE(testing::Message() << "block " << N << ", taps " << M);
      expect_stream(stream(convolver, N, x), reference::convolve(x, h));
    }
  }
}

TEST(ConvolutionPartitioned, GivesTheSameBitsHoweverTheBinsAreDivided) {
  const int N = 100;
  const auto h = random_signal(5 * N + 3, 4);
  const auto x = random_signal(12 * N, 5);
  Convolver whole(N, h);
  const auto expected = stream(whole, N, x);
  for (const int run : {1, 2, 3, 4, 5, 7, 64, 100, 1000, -7, -64}) {  // negative: by process_bins
    Convolver split(N, h);
    AlignedVector<float> block(static_cast<std::size_t>(N)), y;
    for (int i = 0; i < 12; ++i) {
      std::copy_n(x.data() + i * N, N, block.data());
      split.process_X(block);
      for (int bin = 0; bin < split.get_M_p_half(); bin += std::abs(run)) {
        if (run < 0) split.process_bins(bin, -run);
        for (int p = 0; run > 0 && p < split.get_N_partitions(); ++p) {
          split.process_partition(p, bin, run);
        }
      }
      split.process_Y(block);
      y.insert(y.end(), block.begin(), block.end());
    }
    EXPECT_EQ(y, expected) << "runs of " << run;
  }
}

TEST(ConvolutionPartitioned, BehavesAfterAFlushAsOnTheFirstBlockEver) {
  const int N = 64;
  const auto h = random_signal(300, 6);
  const auto x = random_signal(10 * N, 7);
  Convolver fresh(N, h), used(N, h);
  stream(used, N, random_signal(7 * N, 8));
  used.flush();
  EXPECT_EQ(stream(used, N, AlignedVector<float>(64)), AlignedVector<float>(64));
  EXPECT_EQ(stream(used, N, x), stream(fresh, N, x));
}

TEST(ConvolutionPartitioned, AllocatesAndLocksNothingPerBlock) {
  const int N = 513;
  Convolver convolver(N, random_signal(4 * N, 9));
  EXPECT_EQ(convolver.get_M_p(), 1029);
  EXPECT_EQ(convolver.get_M_p_half(), 515);
  EXPECT_EQ(Convolver(3, random_signal(1, 9)).get_M_p(), 5);
  AlignedVector<float> block = random_signal(N, 10);
  const AllocationGuard heap;
  const LockCount locks;
  for (int i = 0; i < 5; ++i) convolver.process(block, block);
  convolver.flush();
  EXPECT_EQ(heap.allocations() + heap.frees() + locks.locks(), 0);
}

}  // namespace
