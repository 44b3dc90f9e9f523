// The stereo stages with values that are no numbers; AudioPathTest has their arithmetic.
#include "plugin/StereoStages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "numeric/AlignedVector.h"

namespace {

constexpr int B = 64;
using Block = AlignedVector<float>;

}  // namespace

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
