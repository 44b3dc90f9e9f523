// The stereo stages beside their formulas in double precision, for settings that stand still and
// that move, and with values that are no numbers.
#include "plugin/StereoStages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/support/Random.h"

namespace {

constexpr int B = 64;
using Block = AlignedVector<float>;

Block Signal(std::uint64_t seed) { return Random(seed).signal(B); }

// Where a ramp from one value to another stands at sample i.
double Ramp(double from, double to, size_t i) {
  return from + (to - from) * static_cast<double>(i) / B;
}

// A setting that moves, and then stands still.
struct Step {
  float from, to;
};
constexpr Step kSteps[] = {{0, 0}, {0, 1}, {1, 1}, {1, -1}, {-1, -1}, {-1, 0.3f}, {0.3f, 0}};

}  // namespace

TEST(StereoStages, WidthMixesMidAndSideAndRampsToANewSetting) {
  const Block l = Signal(1), r = Signal(2);
  for (const auto& [from, to] : kSteps) {
    auto [mid, side] = WidthCoefsOf(from);
    float prev = from;
    Block left = l, right = r;
    ApplyWidth(prev, mid, side, to, left.data(), right.data(), B);
    for (size_t i = 0; i < B; ++i) {
      const double s = Ramp(from, to, i);
      const double m = (1 - s) / 2 * (l[i] + r[i]), d = (1 + s) / 2 * (r[i] - l[i]);
      ASSERT_NEAR(left[i], m - d, 1e-6) << from << " to " << to << " at " << i;
      ASSERT_NEAR(right[i], m + d, 1e-6) << from << " to " << to << " at " << i;
    }
    EXPECT_EQ(prev, to);
    EXPECT_EQ(mid, (1 - to) / 2);
    EXPECT_EQ(side, (1 + to) / 2);
  }
}

TEST(StereoStages, ThePhaseFilterActsOnOneChannelAndRampsToANewSetting) {
  const auto coefficient = [](double setting) {
    return (1 - std::fabs(setting) / 2) / (1 + std::fabs(setting) / 2);
  };
  for (const auto& [from, to] : kSteps) {
    PhaseFilterState state;
    state.Settle(from);
    double z[] = {0, 0};
    for (int block = 0; block < 2; ++block) {
      Block x[] = {Signal(3), Signal(4)}, y[] = {x[0], x[1]};
      ApplyPhaseFilter(state, to, y[0].data(), y[1].data(), B);
      for (const size_t channel : {size_t{0}, size_t{1}}) {
        const auto of = [&](float s) { return (s < 0) == (channel == 1) ? coefficient(s) : 1.0; };
        for (size_t i = 0; i < B; ++i) {
          const double c = block == 0 ? Ramp(of(from), of(to), i) : of(to);
          z[channel] += c * (x[channel][i] - z[channel]);
          ASSERT_NEAR(y[channel][i], z[channel], 1e-6)
              << from << " to " << to << ", channel " << channel << ", block " << block;
        }
      }
    }
  }
}

TEST(StereoStages, GainAndMixRampToANewSetting) {
  const Block x = Signal(5), dry = Signal(6);
  for (const auto& [from, to] : kSteps) {
    Block left = x, right = dry, wet = x;
    float gain = from;
    ApplyGain(gain, to, left.data(), right.data(), B);
    ApplyMix(from, to, wet.data(), dry.data(), B);
    EXPECT_EQ(gain, to);
    for (size_t i = 0; i < B; ++i) {
      const double now = Ramp(from, to, i);
      ASSERT_NEAR(left[i], now * x[i], 1e-6) << from << " to " << to << " at " << i;
      ASSERT_NEAR(right[i], now * dry[i], 1e-6) << from << " to " << to << " at " << i;
      ASSERT_NEAR(wet[i], now * x[i] + (1 - now) * dry[i], 1e-6) << from << " to " << to;
    }
  }
  Block wet = x;
  ApplyMix(0.0f, 0.0f, wet.data(), dry.data(), B);
  EXPECT_EQ(wet, dry) << "to the bit";
}

TEST(StereoStages, ValuesThatAreNoNumbersPassOnceAndLeaveNoTrace) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  PhaseFilterState state;
  float gain = 1.0f;
  Block left, right;
  // The block after the bad one still ramps from it.
  for (const float setting : {nan, 0.5f, 0.5f}) {
    left = right = Block(B, std::isnan(setting) ? nan : 1.0f);
    ApplyPhaseFilter(state, setting, left.data(), right.data(), B);
    ApplyGain(gain, setting, left.data(), right.data(), B);
  }
  EXPECT_NEAR(left[B - 1], 0.5f, 1e-5f);
  EXPECT_NEAR(right[B - 1], 0.5f, 1e-5f);
}
