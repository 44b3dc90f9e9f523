#include "convolution/ConvolutionPartitionedNonuniform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <vector>

#include "tests/convolution/StreamConvolver.h"
#include "tests/support/AllocationGuard.h"

struct ConvolutionScheduleProbe {
  using Convolver = ConvolutionPartitionedNonuniform<float>;
  using Level = std::array<int, 4>;  // block, delay, partitions, calls per block

  static std::vector<Level> levels(const Convolver& convolver) {
    std::vector<Level> rows;
    for (const auto& level : convolver.levels) {
      rows.push_back({level->block, level->delay, level->N_partitions, level->phase_count});
    }
    return rows;
  }
  static std::array<int, 2> rings(const Convolver& convolver) {
    return {convolver.x_ring_size, convolver.y_ring_size};
  }
};

namespace {

using Probe = ConvolutionScheduleProbe;
using Convolver = Probe::Convolver;
using Level = Probe::Level;

TEST(ConvolutionPartitionedNonuniform, LaysOutLevelsAndRings) {
  const std::vector<Level> long_response = {{256, 0, 2, 1},     {256, 256, 2, 1},
                                            {512, 512, 2, 2},   {1024, 1024, 2, 4},
                                            {2048, 2048, 2, 8}, {4096, 4096, 23, 16}};
  // The last block shrinks to end near the last tap; its delay still follows its first tap.
  const std::vector<Level> shrunk = {
      {64, 0, 2, 1}, {64, 64, 2, 1}, {128, 128, 2, 2}, {128, 256, 2, 2}};
  const struct {
    int N, M, max_fft_pow;
    std::vector<Level> levels;
    std::array<int, 2> rings;
  } schedules[] = {
      {256, 100000, 4, long_response, {100096, 8448}},
      {256, 100000, 4 + 32, long_response, {100096, 8448}},
      {64, 1, -1, {{64, 0, 2, 1}}, {64, 192}},
      {64, 128, 12, {{64, 0, 2, 1}}, {128, 192}},
      {64, 129, 12, {{64, 0, 2, 1}, {64, 64, 2, 1}}, {192, 192}},
      {64, 640, 0, {{64, 0, 10, 1}}, {640, 192}},
      {64, 640, 1, {{64, 0, 2, 1}, {64, 64, 2, 1}, {128, 128, 3, 2}}, {640, 320}},
      {64, 640, -1, shrunk, {640, 320}},
  };
  for (const auto& expected : schedules) {
    const Convolver convolver(expected.N, random_signal(expected.M, 1), expected.max_fft_pow);
    EXPECT_EQ(Probe::levels(convolver), expected.levels) << expected.M;
    EXPECT_EQ(Probe::rings(convolver), expected.rings) << expected.M;
  }
}

// Response lengths of one sample below, at and above each level boundary up to largest.
std::set<int> boundary_lengths(int N, int largest) {
  std::set<int> lengths = {1, N, 10 * N, largest};
  for (int tap = 2 * N; tap < largest; tap *= 2) lengths.insert({tap - 1, tap, tap + 1});
  std::erase_if(lengths, [](int length) { return length < 1; });
  return lengths;
}

TEST(ConvolutionPartitionedNonuniform, EqualsDirectConvolutionAtEveryLevelBoundary) {
  const std::array<int, 2> block_and_largest[] = {{1, 150},   {7, 500},    {31, 1100},
                                                  {64, 2200}, {512, 4200}, {513, 4200}};
  for (const auto& [N, largest] : block_and_largest) {
    for (const int M : boundary_lengths(N, largest)) {
      const auto h = random_signal(M, 2);
      const auto x = random_signal((M / N + 4) * 3 / 2 * N, 3);  // goes round the input ring
      const auto expected = reference::convolve(x, h);
      std::set<std::vector<Level>> seen;  // many powers give a short response the same levels
      for (int max_fft_pow = -1; max_fft_pow <= 12; ++max_fft_pow) {
        Convolver convolver(N, h, max_fft_pow);
        if (!seen.insert(Probe::levels(convolver)).second) continue;
        SCOPED_TRACE(testing::Message()
                     << "block " << N << ", taps " << M << ", power " << max_fft_pow);
        expect_stream(stream(convolver, N, x), expected);
      }
    }
  }
}

TEST(ConvolutionPartitionedNonuniform, PutsEveryTapAtItsPlace) {
  const int N = 8;
  const int M = 300;
  AlignedVector<float> impulse(M + 5 * N);
  impulse[0] = 1.0F;
  for (int max_fft_pow = -1; max_fft_pow <= 6; ++max_fft_pow) {
    for (std::size_t tap = 0; tap < M; ++tap) {
      AlignedVector<float> h(M);
      h[tap] = 1.0F;
      Convolver convolver(N, h, max_fft_pow);
      AlignedVector<float> y = stream(convolver, N, impulse);
      EXPECT_NEAR(y[tap], 1.0F, 1e-6) << "tap " << tap << ", power " << max_fft_pow;
      y[tap] = 0.0F;
      const auto [low, high] = std::minmax_element(y.begin(), y.end());
      EXPECT_LT(std::max(-*low, *high), 1e-6) << "tap " << tap << ", power " << max_fft_pow;
    }
  }
}

TEST(ConvolutionPartitionedNonuniform, HoldsAfterAFlushOnlyWhatNewInputMakes) {
  const int N = 16;
  const auto h = random_signal(40 * N, 4);
  const auto x = random_signal(100 * N, 5);
  const auto expected = reference::convolve(x, h);
  for (int calls = 0; calls < 20; ++calls) {
    Convolver convolver(N, h, 4);
    stream(convolver, N, random_signal(calls * N, 6));
    convolver.flush();
    SCOPED_TRACE(testing::Message() << calls << " calls");
    expect_stream(stream(convolver, N, x), expected);
    convolver.flush();
    EXPECT_EQ(stream(convolver, N, AlignedVector<float>(50 * N)), AlignedVector<float>(50 * N));
  }
}

TEST(ConvolutionPartitionedNonuniform, AllocatesAndLocksNothingWithOneArrayOrTwo) {
  const int N = 64;
  const auto h = random_signal(20000, 7);
  const auto x = random_signal(N, 8);
  Convolver separate(N, h, 4), shared(N, h, 4);
  AlignedVector<float> y(x), in_place(x);
  const AllocationGuard heap;
  const LockCount locks;
  bool same = true;
  for (int i = 0; i < 40; ++i) {
    separate.process(x, y);
    std::copy(x.begin(), x.end(), in_place.begin());
    shared.process(in_place, in_place);
    same = same && y == in_place;
  }
  shared.flush();
  EXPECT_EQ(heap.allocations() + heap.frees() + locks.locks(), 0);
  EXPECT_TRUE(same);
}

}  // namespace
