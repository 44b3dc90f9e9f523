// The stereo stages: what a steady setting does, and that a moved one ramps without a step.
#include "plugin/StereoStages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr int B = 64;
constexpr size_t kB = B;  // the same, as an index
using Block = std::vector<float>;

Block Sine(double cycles) {
  Block x(B);
  for (size_t i = 0; i < kB; ++i) {
    x[i] = static_cast<float>(std::sin(6.28318530718 * cycles * static_cast<double>(i) / B));
  }
  return x;
}

// Largest difference of neighbours of a block that was all ones before a gain-like stage, with the
// sample before the block.
float LargestStep(float before, const Block& x) {
  float step = std::fabs(x[0] - before);
  for (size_t i = 1; i < kB; ++i) step = std::max(step, std::fabs(x[i] - x[i - 1]));
  return step;
}

}  // namespace

TEST(StereoStages, AWidthOfZeroKeepsThePairMinusOneIsTheMonoSumAndOneTheSideSignal) {
  const Block l = Sine(3), r = Sine(5);
  for (const float width : {0.0f, -1.0f, 1.0f}) {
    const WidthCoefs c = WidthCoefsOf(width);
    float prev = width, mid = c.mid, side = c.side;
    Block left = l, right = r;
    ApplyWidth(prev, mid, side, width, left.data(), right.data(), B);
    for (size_t i = 0; i < kB; ++i) {
      const float wantLeft = width == 0 ? l[i] : width < 0 ? l[i] + r[i] : l[i] - r[i];
      const float wantRight = width == 0 ? r[i] : width < 0 ? l[i] + r[i] : r[i] - l[i];
      ASSERT_NEAR(left[i], wantLeft, 1e-6f) << "width " << width << " sample " << i;
      ASSERT_NEAR(right[i], wantRight, 1e-6f) << "width " << width << " sample " << i;
    }
  }
}

TEST(StereoStages, AWidthChangeRampsFromTheOldCoefficientsAndStoresTheNew) {
  float prev = 0.0f, mid = 0.5f, side = 0.5f;
  Block left(B, 1.0f), right(B, 0.0f);
  ApplyWidth(prev, mid, side, 1.0f, left.data(), right.data(), B);
  EXPECT_FLOAT_EQ(left[0], 1.0f);  // the old setting still
  EXPECT_FLOAT_EQ(right[0], 0.0f);
  EXPECT_FLOAT_EQ(right[B / 2], 0.25f - 0.75f);
  EXPECT_EQ(prev, 1.0f);
  EXPECT_EQ(mid, 0.0f);
  EXPECT_EQ(side, 1.0f);
}

TEST(StereoStages, ThePhaseFilterPassesOneChannelAndHasUnityGainAtZeroHzOnTheOther) {
  for (const float setting : {-1.0f, -0.3f, 0.6f, 1.0f}) {
    PhaseFilterState state;
    state.Settle(setting);
    const float k = setting < 0 ? state.coefRight : state.coefLeft;
    EXPECT_FLOAT_EQ(k, (1.0f - std::fabs(setting) / 2) / (1.0f + std::fabs(setting) / 2));
    Block passed(B, 1.0f), filtered(B, 1.0f);
    if (setting < 0) {
      ApplyPhaseFilter(state, setting, passed.data(), filtered.data(), B);
    } else {
      ApplyPhaseFilter(state, setting, filtered.data(), passed.data(), B);
    }
    EXPECT_EQ(passed, Block(B, 1.0f));
    EXPECT_FLOAT_EQ(filtered[0], k);
    EXPECT_FLOAT_EQ(filtered[1], k + k * (1 - k));
    EXPECT_NEAR(filtered[B - 1], 1.0f, 1e-5f);
  }
}

TEST(StereoStages, ANeutralPhaseFilterIsExact) {
  PhaseFilterState state;
  Block left = Sine(7), right = Sine(2);
  const Block l = left, r = right;
  ApplyPhaseFilter(state, 0.0f, left.data(), right.data(), B);
  for (size_t i = 0; i < kB; ++i) {
    EXPECT_NEAR(left[i], l[i], 1e-7f);
    EXPECT_NEAR(right[i], r[i], 1e-7f);
  }
}

TEST(StereoStages, ValuesThatAreNoNumbersPassOnceAndLeaveNoTrace) {
  PhaseFilterState state;
  const float nan = std::numeric_limits<float>::quiet_NaN();
  Block left(B, 1.0f), right(B, 1.0f);
  ApplyPhaseFilter(state, nan, left.data(), right.data(), B);
  for (int block = 0; block < 2; ++block) {  // the block after the bad one still ramps from it
    left.assign(B, 1.0f);
    right.assign(B, 1.0f);
    ApplyPhaseFilter(state, 0.5f, left.data(), right.data(), B);
  }
  EXPECT_NEAR(left[B - 1], 1.0f, 1e-5f);
  EXPECT_NEAR(right[B - 1], 1.0f, 1e-5f);

  float gain = nan;
  left.assign(B, 1.0f);
  ApplyGain(gain, 1.0f, left.data(), right.data(), B);
  left.assign(B, 1.0f);
  ApplyGain(gain, 1.0f, left.data(), right.data(), B);
  EXPECT_EQ(left, Block(B, 1.0f));
}

TEST(StereoStages, AGainChangeHasNoStepAndEndsOneSampleAfterTheBlock) {
  float gain = 1.0f;
  Block left(B, 1.0f), right(B, 1.0f);
  ApplyGain(gain, 3.0f, left.data(), right.data(), B);
  EXPECT_LE(LargestStep(1.0f, left), 2.0f / B + 1e-6f);
  EXPECT_EQ(left, right);
  EXPECT_FLOAT_EQ(left[B - 1] + 2.0f / B, 3.0f);
  left.assign(B, 1.0f);
  ApplyGain(gain, 3.0f, left.data(), right.data(), B);
  EXPECT_EQ(left, Block(B, 3.0f));
}

TEST(StereoStages, MixGoesFromDryToWetWithoutAStep) {
  const Block dry(B, -1.0f);
  Block wet(B, 1.0f);
  ApplyMix(0.0f, 0.0f, wet.data(), dry.data(), B);
  EXPECT_EQ(wet, dry);
  wet.assign(B, 1.0f);
  ApplyMix(0.0f, 1.0f, wet.data(), dry.data(), B);
  EXPECT_LE(LargestStep(-1.0f, wet), 2.0f / B + 1e-6f);
  EXPECT_FLOAT_EQ(wet[0], -1.0f);
  wet.assign(B, 1.0f);
  ApplyMix(1.0f, 1.0f, wet.data(), dry.data(), B);
  EXPECT_EQ(wet, Block(B, 1.0f));
}
