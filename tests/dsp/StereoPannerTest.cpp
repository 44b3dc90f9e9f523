// Tests of the stereo placement: exact delays and its limits; AudioPathTest has fades and ramps.
#include "dsp/StereoPanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/support/AllocationGuard.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Samples = AlignedVector<float>;
constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

// Sends the whole blocks of x through the left channel, in place.
Samples run(StereoPanner<float>& panner, const Samples& x, int delay_ms, float gain_dB) {
  Samples y;
  const auto block = static_cast<std::size_t>(panner.block_size);
  for (std::size_t i = 0; i + block <= x.size(); i += block) {
    Samples samples(x.data() + i, x.data() + i + block);
    const AllocationGuard guard;
    panner.process_left(delay_ms, gain_dB, samples, samples);
    EXPECT_EQ(guard.allocations(), 0);
    y.insert(y.end(), samples.begin(), samples.end());
  }
  return y;
}

StereoPanner<float> panner_of(int rate, int block, int delay_ms) {
  return {rate, block, 1050, delay_ms, 0, 0.0f, 0.0f};
}

Samples delayed(Samples x, int samples) {
  x.insert(x.begin(), static_cast<std::size_t>(samples), 0.0f);
  x.resize(x.size() - static_cast<std::size_t>(samples));
  return x;
}

TEST(StereoPanner, DelaysByTheExactNumberOfSamplesAtAnyBlockSize) {
  Random random(21);
  const struct {
    int rate, delay_ms, samples;
  } cases[] = {{44100, 0, 0},        {44100, 37, 1631},    {44100, -37, 1631},
               {44100, 1050, 46305}, {44100, 2000, 46305}, {44100, kLowest, 46305},
               {48000, 1050, 50400}, {8000, 20, 160},      {100, 19, 1}};
  for (const auto& [rate, delay_ms, samples] : cases) {
    for (const int block : {1, 32, 441, 512}) {
      auto panner = panner_of(rate, block, delay_ms);
      const int blocks = samples / block + 4;
      const Samples x = random.signal(static_cast<std::size_t>(blocks * block));
      EXPECT_TRUE(reference::same_bits(run(panner, x, delay_ms, 0.0f), delayed(x, samples)))
          << delay_ms << " ms at " << rate << ", blocks of " << block;
    }
  }
  EXPECT_EQ(panner_of(44100, 512, 0).buffer_size, 47104);
}

TEST(StereoPanner, KeepsTheChannelsApart) {
  constexpr std::size_t kBlock = 32;
  Random random(25);
  StereoPanner<float> both(8000, kBlock, 100, 5, 9, -1.0f, -2.0f);
  StereoPanner<float> separate = both;
  for (int block = 0; block < 30; ++block) {
    Samples left = random.signal(kBlock), right = random.signal(kBlock);
    Samples left_out(kBlock), right_out(kBlock);
    const int change = block / 10;
    const float gain = -0.5f * static_cast<float>(change);
    separate.process_right(9 - change, -2.0f, right, right_out);
    separate.process_left(5 + change, gain, left, left_out);
    both.process(5 + change, 9 - change, gain, -2.0f, left, right, left, right);
    EXPECT_TRUE(reference::same_bits(left, left_out)) << block;
    EXPECT_TRUE(reference::same_bits(right, right_out)) << block;
  }
}

TEST(StereoPanner, FlushSilencesTheRingsAndKeepsTheDelay) {
  const Samples x = Random(26).signal(160);
  auto panner = panner_of(1000, 16, 40);
  run(panner, x, 40, 0.0f);
  Samples right(16, 1.0f);
  panner.process_right(0, 0.0f, right, right);
  panner.flush();
  EXPECT_EQ(run(panner, x, 50, 0.0f), delayed(x, 50));  // a fade between two silent reads
  EXPECT_EQ(panner.buffer_right, Samples(panner.buffer_right.size()));
}

TEST(StereoPanner, RecoversFromGainsAndRatesOutsideAllRange) {
  const Samples ones(8, 1.0f);
  for (const int rate : {-44100, 0, 100, kHighest}) {
    auto panner = panner_of(rate, 8, 5);
    run(panner, ones, 1050, std::nanf(""));
    run(panner, ones, 0, 0.0f);
    EXPECT_EQ(run(panner, ones, 0, 0.0f), ones) << rate;
  }
}

TEST(StereoPanner, SincIsOneAtZeroAndZeroAtOtherIntegers) {
  EXPECT_EQ(StereoPanner<float>::sinc(0.0f), 1.0f);
  EXPECT_NEAR(StereoPanner<float>::sinc(-3.0f), 0.0f, 1e-6);
  EXPECT_NEAR(StereoPanner<float>::sinc(0.5f), 0.636619772, 1e-6);
}

}  // namespace
