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

// Runs one channel block by block and joins what comes out.
class LeftChannel {
 public:
  LeftChannel(int rate, int block, int delay_ms, float gain_dB, int max_delay_ms = 1050)
      : panner(rate, block, max_delay_ms, delay_ms, 0, gain_dB, 0.0f),
        in(to_size(block)),
        out(to_size(block)) {}

  // Appends the answer to the next blocks of x to y; x is a whole number of blocks.
  void run(const Samples& x, int delay_ms, float gain_dB, Samples& y) {
    for (std::size_t i = 0; i < x.size(); i += in.size()) {
      std::copy_n(x.data() + i, in.size(), in.data());
      panner.process_left(delay_ms, gain_dB, in, out);
      y.insert(y.end(), out.begin(), out.end());
    }
  }

  static std::size_t to_size(int n) { return static_cast<std::size_t>(n); }

  StereoPanner<float> panner;

 private:
  Samples in;
  Samples out;
};

Samples delayed(const Samples& x, std::size_t delay) {
  Samples y(x.size());
  std::copy(x.begin(), x.end() - static_cast<std::ptrdiff_t>(std::min(delay, x.size())),
            y.begin() + static_cast<std::ptrdiff_t>(std::min(delay, x.size())));
  return y;
}

TEST(StereoPanner, DelaysByTheExactNumberOfSamples) {
  Random random(21);
  const struct {
    int rate;
    int delay_ms;
    int samples;
  } cases[] = {
      {44100, 0, 0},        {44100, 1, 44},       {44100, 37, 1631},
      {44100, -37, 1631},   {44100, 1050, 46305}, {44100, 2000, 46305},
      {48000, 1050, 50400}, {8000, 20, 160},      {44100, std::numeric_limits<int>::min(), 46305}};
  for (const auto& [rate, delay_ms, samples] : cases) {
    for (const int block : {1, 32, 441, 512}) {
      LeftChannel channel(rate, block, delay_ms, 0.0f);
      EXPECT_EQ(channel.panner.compute_delay_offset(delay_ms), samples) << rate;
      const int blocks = (samples + 3 * block) / block + 1;
      const Samples x = random.signal(static_cast<std::size_t>(blocks * block));
      Samples y;
      channel.run(x, delay_ms, 0.0f, y);
      EXPECT_TRUE(reference::same_bits(y, delayed(x, static_cast<std::size_t>(samples))))
          << delay_ms << " ms at " << rate << ", blocks of " << block;
    }
  }
}

TEST(StereoPanner, HoldsTheLongestDelayBesideTheBlockBeingWritten) {
  const StereoPanner<float> panner(44100, 512, 1050, 0, 0, 0.0f, 0.0f);
  EXPECT_EQ(panner.compute_delay_offset(1050), 46305);
  EXPECT_EQ(panner.buffer_size, 47104);
  EXPECT_EQ(panner.buffer_left.size(), 47104u);
  EXPECT_EQ(panner.buffer_right.size(), 47104u);
  for (const int block : {1, 7, 16, 64, 4096}) {
    const StereoPanner<float> other(44100, block, 1050, 0, 0, 0.0f, 0.0f);
    EXPECT_EQ(other.buffer_size % block, 0);
    EXPECT_GE(other.buffer_size, 46305 + block);
  }
}

TEST(StereoPanner, RampsAChangedGainOverOneBlock) {
  constexpr int kBlock = 64;
  LeftChannel channel(44100, kBlock, 0, -6.0f);
  const Samples ones(kBlock, 1.0f);
  Samples y;
  channel.run(ones, 0, -6.0f, y);
  channel.run(ones, 0, 0.0f, y);
  channel.run(ones, 0, 0.0f, y);
  const float low = dB_to_mag(-6.0f);
  const float step = (1.0f - low) / kBlock;
  for (std::size_t i = 0; i < kBlock; ++i) {
    EXPECT_EQ(y[i], low);
    EXPECT_NEAR(y[kBlock + i], low + step * static_cast<float>(i), 1e-5);
    EXPECT_EQ(y[2 * kBlock + i], 1.0f);
  }
  EXPECT_EQ(y[kBlock], low);
}

TEST(StereoPanner, CrossesOverToAChangedDelayAtConstantPower) {
  constexpr std::size_t kBlock = 128;
  Random random(22);
  const Samples x = random.signal(20 * kBlock);
  const Samples start(x.begin(), x.begin() + 10 * kBlock);
  const Samples rest(x.begin() + 10 * kBlock, x.end());
  for (const float gain_dB : {0.0f, -12.0f}) {
    LeftChannel channel(44100, kBlock, 3, 0.0f);
    Samples y;
    channel.run(start, 3, 0.0f, y);
    channel.run(rest, 20, gain_dB, y);
    const Samples before = delayed(x, 132);
    const Samples after = delayed(x, 882);
    const double gain = static_cast<double>(dB_to_mag(gain_dB));
    for (std::size_t i = 0; i < kBlock; ++i) {
      const std::size_t at = 10 * kBlock + i;
      const double t = static_cast<double>(i) / kBlock;
      const double angle = 1.5707963267948966 * t;
      const double expected =
          (before[at] * std::cos(angle) + after[at] * std::sin(angle)) * (1.0 + (gain - 1.0) * t);
      ASSERT_NEAR(y[at], expected, 1e-5) << i << ", gain " << gain_dB;
    }
    for (std::size_t at = 11 * kBlock; at < x.size(); ++at) {
      ASSERT_EQ(y[at], after[at] * dB_to_mag(gain_dB)) << at;
    }
  }
}

TEST(StereoPanner, NeverStepsFurtherThanItsSignalAndItsRampsAllow) {
  constexpr std::size_t kBlock = 256;
  Samples x(100 * kBlock);
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = std::sin(0.01f * static_cast<float>(i));
  }
  Random random(23);
  LeftChannel channel(44100, kBlock, 0, 0.0f);
  Samples y;
  for (std::size_t i = 0; i < x.size(); i += kBlock) {
    const Samples block(x.begin() + static_cast<std::ptrdiff_t>(i),
                        x.begin() + static_cast<std::ptrdiff_t>(i + kBlock));
    channel.run(block, random.integer(0, 100), random.uniform(-20.0f, 0.0f), y);
  }
  // Two reads, each fading by pi / 2 in a block, and the ramp.
  const float limit = 2 * 0.01f + (2 * 1.6f + 1.5f) / kBlock;
  for (std::size_t i = 1; i < y.size(); ++i) ASSERT_LT(std::abs(y[i] - y[i - 1]), limit) << i;
}

TEST(StereoPanner, DoesNotFadeBetweenDelaysOfEqualSamples) {
  constexpr std::size_t kBlock = 16;
  Random random(24);
  const Samples x = random.signal(4 * kBlock);
  LeftChannel channel(100, kBlock, 10, 0.0f);
  Samples y;
  channel.run(x, 19, 0.0f, y);
  EXPECT_TRUE(reference::same_bits(y, delayed(x, 1)));
}

TEST(StereoPanner, KeepsTheChannelsApartAndWorksInPlace) {
  constexpr std::size_t kBlock = 32;
  Random random(25);
  StereoPanner<float> both(8000, kBlock, 100, 5, 9, -1.0f, -2.0f);
  StereoPanner<float> separate = both;
  for (int block = 0; block < 30; ++block) {
    Samples left = random.signal(kBlock);
    Samples right = random.signal(kBlock);
    const int delay = block / 10;
    const float gain = -0.5f * static_cast<float>(block / 7);
    Samples left_out(kBlock);
    Samples right_out(kBlock);
    const AllocationGuard guard;
    separate.process_right(9 - delay, 0.0f, right, right_out);
    separate.process_left(5 + delay, gain, left, left_out);
    both.process(5 + delay, 9 - delay, gain, 0.0f, left, right, left, right);
    EXPECT_EQ(guard.allocations(), 0);
    EXPECT_TRUE(reference::same_bits(left, left_out)) << block;
    EXPECT_TRUE(reference::same_bits(right, right_out)) << block;
  }
}

TEST(StereoPanner, RecoversFromAGainThatIsNotANumber) {
  constexpr std::size_t kBlock = 8;
  LeftChannel channel(8000, kBlock, 0, 0.0f);
  const Samples ones(kBlock, 1.0f);
  Samples y;
  channel.run(ones, 0, std::nanf(""), y);
  EXPECT_TRUE(std::isnan(y[kBlock - 1]));
  channel.run(ones, 0, 0.0f, y);
  y.clear();
  channel.run(ones, 0, 0.0f, y);
  EXPECT_EQ(y, ones);
}

TEST(StereoPanner, FlushSilencesTheRingsAndKeepsTheSettings) {
  constexpr std::size_t kBlock = 16;
  Random random(26);
  const Samples x = random.signal(10 * kBlock);
  LeftChannel channel(1000, kBlock, 40, -3.0f);
  Samples y;
  channel.run(x, 40, -3.0f, y);
  Samples right(kBlock, 1.0f);
  channel.panner.process_right(0, 0.0f, right, right);
  channel.panner.flush();
  EXPECT_EQ(channel.panner.delay_offset_left, 40);
  EXPECT_EQ(channel.panner.buffer_right, Samples(channel.panner.buffer_right.size()));
  y.clear();
  channel.run(x, 50, -3.0f, y);
  for (std::size_t i = 0; i < y.size(); ++i) {
    // A fade between silent reads, in which the block itself is too young for either.
    ASSERT_EQ(y[i], i < 50 ? 0.0f : x[i - 50] * dB_to_mag(-3.0f)) << i;
  }
}

TEST(StereoPanner, SurvivesSampleRatesOutsideAllRange) {
  for (const int rate : {-44100, 0, 100, std::numeric_limits<int>::max()}) {
    LeftChannel channel(rate, 64, 5, 0.0f);
    EXPECT_GE(channel.panner.buffer_size, 64) << rate;
    const Samples x(256, 1.0f);
    Samples y;
    channel.run(x, 0, 0.0f, y);
    channel.run(x, 1050, 0.0f, y);
    EXPECT_EQ(y[255], 1.0f) << rate;
  }
}

TEST(StereoPanner, SincIsOneAtZeroAndZeroAtOtherIntegers) {
  EXPECT_EQ(StereoPanner<float>::sinc(0.0f), 1.0f);
  EXPECT_NEAR(StereoPanner<float>::sinc(1.0f), 0.0f, 1e-6);
  EXPECT_NEAR(StereoPanner<float>::sinc(-3.0f), 0.0f, 1e-6);
  EXPECT_NEAR(StereoPanner<float>::sinc(0.5f), 0.636619772, 1e-6);
}

}  // namespace
