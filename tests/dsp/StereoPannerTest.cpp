// Tests of the stereo placement: exact delays, fades and ramps without clicks, and its limits.
#include "dsp/StereoPanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "dsp/FIRFunctions.h"
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
    Samples samples(x.begin() + static_cast<std::ptrdiff_t>(i),
                    x.begin() + static_cast<std::ptrdiff_t>(i + block));
    const AllocationGuard guard;
    panner.process_left(delay_ms, gain_dB, samples, samples);
    EXPECT_EQ(guard.allocations(), 0);
    y.insert(y.end(), samples.begin(), samples.end());
  }
  return y;
}

StereoPanner<float> panner_of(int rate, int block, int delay_ms, float gain_dB) {
  return {rate, block, 1050, delay_ms, 0, gain_dB, 0.0f};
}

Samples delayed(Samples x, int samples) {
  x.insert(x.begin(), static_cast<std::size_t>(samples), 0.0f);
  x.resize(x.size() - static_cast<std::size_t>(samples));
  return x;
}

TEST(StereoPanner, DelaysByTheExactNumberOfSamplesAtAnyBlockSize) {
  Random random(21);
  const struct {
    int rate;
    int delay_ms;
    int samples;
  } cases[] = {{44100, 0, 0},        {44100, 37, 1631},    {44100, -37, 1631},
               {44100, 1050, 46305}, {44100, 2000, 46305}, {44100, kLowest, 46305},
               {48000, 1050, 50400}, {8000, 20, 160},      {100, 19, 1}};
  for (const auto& [rate, delay_ms, samples] : cases) {
    for (const int block : {1, 32, 441, 512}) {
      auto panner = panner_of(rate, block, delay_ms, 0.0f);
      const int blocks = samples / block + 4;
      const Samples x = random.signal(static_cast<std::size_t>(blocks * block));
      EXPECT_TRUE(reference::same_bits(run(panner, x, delay_ms, 0.0f), delayed(x, samples)))
          << delay_ms << " ms at " << rate << ", blocks of " << block;
    }
  }
  EXPECT_EQ(panner_of(44100, 512, 0, 0.0f).buffer_size, 47104);
}

TEST(StereoPanner, RampsAChangedGainOverOneBlock) {
  constexpr std::size_t kBlock = 64;
  auto panner = panner_of(44100, kBlock, 0, -6.0f);
  const Samples ones(kBlock, 1.0f);
  const float low = dB_to_mag(-6.0f);
  EXPECT_EQ(run(panner, ones, 0, -6.0f), Samples(kBlock, low));
  const Samples ramp = run(panner, ones, 0, 0.0f);
  EXPECT_EQ(ramp[0], low);
  for (std::size_t i = 0; i < kBlock; ++i) {
    EXPECT_NEAR(ramp[i], low + (1.0f - low) * static_cast<float>(i) / kBlock, 1e-5);
  }
  EXPECT_EQ(run(panner, ones, 0, 0.0f), ones);
}

TEST(StereoPanner, CrossesOverToAChangedDelayAtConstantPower) {
  constexpr std::size_t kBlock = 128;
  Random random(22);
  const Samples x = random.signal(20 * kBlock);
  const Samples before = delayed(x, 132);
  const Samples after = delayed(x, 882);
  for (const float gain_dB : {0.0f, -12.0f}) {
    auto panner = panner_of(44100, kBlock, 3, 0.0f);
    run(panner, {x.begin(), x.begin() + 10 * kBlock}, 3, 0.0f);
    const Samples y = run(panner, {x.begin() + 10 * kBlock, x.end()}, 20, gain_dB);
    const float gain = dB_to_mag(gain_dB);
    for (std::size_t i = 0; i < y.size(); ++i) {
      const std::size_t at = 10 * kBlock + i;
      const float t = std::min(1.0f, static_cast<float>(i) / kBlock);
      const float angle = 1.5707963f * t;
      const float faded = before[at] * std::cos(angle) + after[at] * std::sin(angle);
      ASSERT_NEAR(y[i], faded * (1.0f + (gain - 1.0f) * t), 1e-5) << i << ", gain " << gain_dB;
    }
  }
}

TEST(StereoPanner, NeverStepsFurtherThanItsSignalAndItsRampsAllow) {
  constexpr std::size_t kBlock = 256;
  Random random(23);
  auto panner = panner_of(44100, kBlock, 0, 0.0f);
  // Two reads, each fading by pi / 2 in a block, and the ramp.
  const float limit = 2 * 0.01f + (2 * 1.6f + 1.5f) / kBlock;
  float last = 0.0f;
  for (int block = 0; block < 100; ++block) {
    Samples x(kBlock);
    for (std::size_t i = 0; i < kBlock; ++i) {
      x[i] = std::sin(0.01f * static_cast<float>(static_cast<std::size_t>(block) * kBlock + i));
    }
    for (const float y : run(panner, x, random.integer(0, 100), random.uniform(-20.0f, 0.0f))) {
      ASSERT_LT(std::abs(y - last), limit) << block << ", seed 23";
      last = y;
    }
  }
}

TEST(StereoPanner, KeepsTheChannelsApart) {
  constexpr std::size_t kBlock = 32;
  Random random(25);
  StereoPanner<float> both(8000, kBlock, 100, 5, 9, -1.0f, -2.0f);
  StereoPanner<float> separate = both;
  for (int block = 0; block < 30; ++block) {
    Samples left = random.signal(kBlock);
    Samples right = random.signal(kBlock);
    Samples left_out(kBlock);
    Samples right_out(kBlock);
    const int delay = block / 10;
    separate.process_right(9 - delay, -2.0f, right, right_out);
    separate.process_left(5 + delay, -0.5f * static_cast<float>(delay), left, left_out);
    both.process(5 + delay, 9 - delay, -0.5f * static_cast<float>(delay), -2.0f, left, right, left,
                 right);
    EXPECT_TRUE(reference::same_bits(left, left_out)) << block;
    EXPECT_TRUE(reference::same_bits(right, right_out)) << block;
  }
}

TEST(StereoPanner, FlushSilencesTheRingsAndKeepsTheDelay) {
  Random random(26);
  const Samples x = random.signal(160);
  auto panner = panner_of(1000, 16, 40, 0.0f);
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
    auto panner = panner_of(rate, 8, 5, 0.0f);
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
