#include "convolution/ConvolutionPartitionedNonuniform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
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
using reference::same_bits;

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

// The output of the schedule done step by step: each level transforms its own input and goes
// through its partitions one after the other.
AlignedVector<float> stepwise(const std::vector<Level>& levels, int N,
                              const AlignedVector<float>& h, const AlignedVector<float>& x) {
  std::vector<ConvolutionPartitioned<float>> engines(levels.size());
  std::vector<AlignedVector<float>> blocks;
  AlignedVector<float> y(x.size());
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const auto [block, delay, partitions, calls] = levels[i];
    AlignedVector<float> taps(h.begin() + std::min<std::ptrdiff_t>(2 * delay, std::ssize(h)),
                              h.end());
    taps.resize(static_cast<std::size_t>(partitions * block));
    engines[i].update(block, taps);
    blocks.emplace_back(static_cast<std::size_t>(block));
    y.resize(std::max(y.size(), x.size() + static_cast<std::size_t>(2 * block + delay)));
  }
  for (int call = 0; call < std::ssize(x) / N; ++call) {
    for (std::size_t i = 0; i < levels.size(); ++i) {
      const auto [block, delay, partitions, calls] = levels[i];
      const int phase = call % calls, start = (call - phase) * N;
      if (phase == 0) {
        for (int k = 0; k < block; ++k) {
          const int at = start - delay + k;
          blocks[i][static_cast<std::size_t>(k)] = at < 0 ? 0.0F : x[static_cast<std::size_t>(at)];
        }
        engines[i].process_X(blocks[i]);
      }
      const int bins = engines[i].get_M_p_half(), share = bins / calls, first = phase * share;
      const int count = phase == calls - 1 ? bins - first : share;
      for (int p = 0; p < partitions; ++p) engines[i].process_partition(p, first, count);
      if (phase < calls - 1) continue;
      engines[i].process_Y(blocks[i]);
      for (int k = 0; k < block; ++k) {
        y[static_cast<std::size_t>(start + delay + k)] += blocks[i][static_cast<std::size_t>(k)];
      }
    }
  }
  y.resize(x.size());
  return y;
}

// Feeds both channels to a pair of convolvers.
void stream_pair(Convolver& left, Convolver& right, int N, AlignedVector<float>& x_left,
                 AlignedVector<float>& x_right) {
  AlignedVector<float> a(static_cast<std::size_t>(N)), b(a);
  const AllocationGuard heap;
  for (std::ptrdiff_t i = 0; i + N <= std::ssize(x_left); i += N) {
    std::copy_n(x_left.begin() + i, N, a.begin());
    std::copy_n(x_right.begin() + i, N, b.begin());
    Convolver::process_pair(left, right, a, a, b, b);
    std::copy_n(a.begin(), N, x_left.begin() + i);
    std::copy_n(b.begin(), N, x_right.begin() + i);
  }
  EXPECT_EQ(heap.allocations() + heap.frees(), 0);
}

TEST(ConvolutionPartitionedNonuniform, GivesTheBitsOfItsStepsAloneAndAsAPair) {
  const std::array<int, 3> block_taps_power[] = {{1, 40, 3},    {7, 500, -1},  {16, 640, -1},
                                                 {16, 3000, 0}, {64, 9000, 4}, {100, 4700, 2}};
  for (const auto& [N, M, power] : block_taps_power) {
    SCOPED_TRACE(testing::Message() << "block " << N << ", taps " << M << ", power " << power);
    const auto h = random_signal(M, 9);
    auto x = random_signal((M / N + 40) * N, 10), other = random_signal((M / N + 40) * N, 11);
    Convolver alone(N, h, power), left(N, h, power);
    const auto right = left.twin();
    const auto expected = stepwise(Probe::levels(alone), N, h, x);
    const auto expected_other = stepwise(Probe::levels(alone), N, h, other);
    EXPECT_TRUE(same_bits(stream(alone, N, x), expected));
    stream_pair(left, *right, N, x, other);
    EXPECT_TRUE(same_bits(x, expected));
    EXPECT_TRUE(same_bits(other, expected_other));
  }
}

TEST(ConvolutionPartitionedNonuniform, ATwinGoesItsOwnWay) {
  const int N = 32;
  const auto h = random_signal(5000, 12);
  const auto x = random_signal(100 * N, 13), solo = random_signal(3 * N, 14);
  Convolver expected(N, h, 4), expected_after_solo(N, h, 4);
  auto left = std::make_unique<Convolver>(N, h, 4);
  const auto right = left->twin();
  EXPECT_EQ(stream(*left, N, solo), stream(expected_after_solo, N, solo));  // out of step from here
  AlignedVector<float> a = x, b = x;
  stream_pair(*left, *right, N, a, b);
  EXPECT_TRUE(same_bits(a, stream(expected_after_solo, N, x)));
  EXPECT_TRUE(same_bits(b, stream(expected, N, x)));
  left.reset();
  right->flush();
  expected.flush();
  EXPECT_TRUE(same_bits(stream(*right, N, x), stream(expected, N, x)));
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
