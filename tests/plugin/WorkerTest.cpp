// How a changed setting becomes sound: what starts a render, when its result is swapped in, and
// that the audio path never pays for it.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "plugin/FactoryPresets.h"
#include "tests/plugin/TolmaraProbe.h"
#include "tests/support/AllocationGuard.h"
#include "tests/support/Random.h"

#ifdef __SSE2__
#include <xmmintrin.h>
#endif

namespace {

double LargestDifference(const std::vector<double>& a, const std::vector<double>& b) {
  double largest = 0;
  for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::fabs(a[i] - b[i]));
  return largest;
}

}  // namespace

TEST(Worker, AChangeIsRenderedBesideTheAudioAndSwappedInBetweenBlocks) {
  TolmaraProbe probe;
  const void* const left = probe.Active(0);
  const void* const right = probe.Active(1);
  EXPECT_NE(left, nullptr);
  EXPECT_NE(left, right);

  probe.Set(kTimeStretch, 2.0);
  EXPECT_TRUE(probe.Dirty());
  EXPECT_TRUE(probe.Idle());
  probe.SilentBlock();
  EXPECT_FALSE(probe.Dirty());
  EXPECT_EQ(probe.Active(0), left);
  probe.WaitForWorker();
  EXPECT_TRUE(probe.SwapPending());
  EXPECT_EQ(probe.Active(0), left);  // the old response sounds until the next block
  const void* const rendered = probe.Next(0);
  probe.SilentBlock();
  EXPECT_FALSE(probe.SwapPending());
  EXPECT_EQ(probe.Active(0), rendered);
  EXPECT_EQ(probe.Next(0), left);  // retired, until the next render deletes it
  EXPECT_EQ(probe.Next(1), right);
}

TEST(Worker, AChangeDuringARenderKeepsItsResultOutAndCausesOneFurtherRender) {
  TolmaraProbe probe;
  const void* const old = probe.Active(0);
  probe.Set(kTimeStretch, 2.0);
  probe.SilentBlock();
  probe.Set(kTimeStretch, 3.0);
  probe.Set(kTimeLinearity, 0.5);
  probe.WaitForWorker();
  EXPECT_TRUE(probe.SwapPending());
  probe.SilentBlock();  // finds it stale and starts anew
  EXPECT_EQ(probe.Active(0), old);
  EXPECT_FALSE(probe.Dirty());
  probe.WaitForWorker();
  probe.SilentBlock();
  EXPECT_NE(probe.Active(0), old);
  EXPECT_TRUE(probe.Idle());
  EXPECT_FALSE(probe.SwapPending());
}

TEST(Worker, OnlyChangesOfTheResponseStartARender) {
  TolmaraProbe probe;
  // What each parameter is set to, and whether that needs a new response.
  const struct {
    int id;
    double value;
    bool renders;
  } changes[] = {
      {kTimeDelay, 7, false},
      {kPan, 3, false},
      {kStereoHaas, -4, false},
      {kMix, 0.5, false},
      {kGain, -3, false},
      {kStereoMidSide, 0.2, false},
      {kStereoLeftRightPhase, 0.1, false},
      {kRenderMode, 0, false},
      {kDummyVar, 1, false},
      {kFirstFutureParam, 1, false},
      {kNumParams - 1, 1, false},
      {kTimeStretch, 1.5, true},
      {kTimeLinearity, -1, true},
      {kHighDecay, 60, true},
      {kLowDecay, 30, true},
      {kLowCutFreq, 100, true},
      {kLowCutQuality, 0, true},
      {kReversePercent, 1, true},
      {kTimeT0Percent, 1, true},
      {kTimeAttenuation, 0.5, true},
      {kNormalizationMode, 0, true},
      {kMaxFFTPow, 2, true},
      {DimParam(0, kDimSize), 4, true},
      {DimParam(0, kDimDepth), 30, true},
      {DimParam(0, kDimRefl), -5, true},
      {DimParam(1, kDimSize), 4, false},
      {DimParam(1, kDimDepth), 30, false},
      {DimParam(1, kDimRefl), -5, false},
      {DimParam(1, kDimEnabled), 1, true},
      {DimParam(0, kDimEnabled), 0, true},
  };
  for (const auto& [id, value, renders] : changes) {
    probe.Set(id, value);
    EXPECT_EQ(probe.Dirty(), renders) << "parameter " << id;
    probe.Settle();
    probe.Set(id, value);
    EXPECT_FALSE(probe.Dirty()) << "the same value again, parameter " << id;
  }
  EXPECT_EQ(probe.LowCutTaps(), 0);
  probe.Set(kLowCutQuality, 25);
  EXPECT_EQ(probe.LowCutTaps(), 250);
}

TEST(Worker, AWholePresetCostsOneRenderAndTheDefaultNone) {
  TolmaraProbe probe;
  Tolmara& plugin = probe.Plugin();
  plugin.RestorePreset("Echo");
  EXPECT_TRUE(probe.Dirty());
  EXPECT_EQ(plugin.GetParam(DimParam(1, kDimSize))->Int(), 11);
  probe.SilentBlock();
  EXPECT_FALSE(probe.Dirty());
  probe.Settle();
  const void* const sounding = probe.Active(0);
  plugin.RestorePreset("Echo");
  probe.Settle();
  EXPECT_EQ(probe.Active(0), sounding);
}

TEST(Worker, EveryFactoryPresetLiesWithinTheRangesAndComesBackFromItsSlot) {
  TolmaraProbe probe;
  Tolmara& plugin = probe.Plugin();
  ASSERT_EQ(plugin.NPresets(), kNumPresets);
  for (int slot = 0; slot < kNumPresets; ++slot) {
    ASSERT_TRUE(plugin.RestorePreset(slot));
    const auto values = FactoryPresetValues(slot);
    for (int id = 0; id < kNumParams; ++id) {
      // Restoring clamps, so a value out of range would come back changed.
      EXPECT_EQ(plugin.GetParam(id)->Value(), values[static_cast<size_t>(id)])
          << plugin.GetPresetName(slot) << " parameter " << id;
    }
  }
}

TEST(Worker, ARoomWithoutDimensionsCopiesTheDrySignal) {
  TolmaraProbe probe;
  probe.EmptyRoom();
  probe.Settle();
  EXPECT_EQ(probe.Active(0), nullptr);
  EXPECT_EQ(probe.Active(1), nullptr);
  std::vector<double> want(2000);
  want[0] = 1.0;
  EXPECT_EQ(probe.Response(2000), want);
  probe.SetSmallRoom();
  probe.Settle();
  EXPECT_NE(probe.Active(0), nullptr);
}

TEST(Worker, TheRenderModeChangesTheMemoryKeptAndNotTheSound) {
  TolmaraProbe probe;
  probe.Set(kTimeStretch, 1.3);
  probe.Settle();
  EXPECT_TRUE(probe.KeepsSynthesiser());
  const auto fast = probe.Response(9000);
  probe.Set(kRenderMode, 0);
  probe.Set(kTimeStretch, 2.0);
  probe.Settle();
  probe.Set(kTimeStretch, 1.3);
  probe.Settle();
  EXPECT_FALSE(probe.KeepsSynthesiser());
  EXPECT_EQ(probe.Response(9000), fast);
}

TEST(Worker, TheLargestPartitionDoesNotChangeTheSound) {
  TolmaraProbe probe;
  probe.Set(kTimeStretch, 4);
  probe.Settle();
  const auto usual = probe.Response(12000);
  for (const int power : {0, 1, 12}) {
    probe.Set(kMaxFFTPow, power);
    probe.Settle();
    EXPECT_LT(LargestDifference(probe.Response(12000), usual), 1e-6) << power;
  }
}

TEST(Worker, ASynchronousRenderGivesTheSameBitsAndRestoresTheControlWord) {
  TolmaraProbe probe;
  probe.Set(kTimeStretch, 3);
  probe.Settle();
  const AlignedVector<float> fromWorker = probe.Synthesised();
#ifdef __SSE2__
  const unsigned before = _mm_getcsr() & ~0x3Fu;  // without the sticky exception flags
#endif
  probe.SetFormat(64, 48000);
  EXPECT_NE(probe.Synthesised(), fromWorker);
  probe.SetFormat(64, 44100);
#ifdef __SSE2__
  EXPECT_EQ(_mm_getcsr() & ~0x3Fu, before);
#endif
  EXPECT_EQ(probe.Synthesised(), fromWorker);
}

TEST(Worker, ResetWithTheSameFormatKeepsTheResponseAndSilencesTheRest) {
  TolmaraProbe probe;
  const void* const sounding = probe.Active(0);
  std::vector<double> left(40, 1.0), right(40, 1.0);
  probe.Process(left, right, 40);
  const int position = probe.RingPosition();
  probe.Plugin().Reset();
  EXPECT_EQ(probe.Active(0), sounding);
  EXPECT_EQ(probe.RingPosition(), position);
  for (int block = 0; block < 30; ++block) {
    left.assign(64, 0.0);
    right.assign(64, 0.0);
    probe.Process(left, right, 64);
    ASSERT_EQ(left, std::vector<double>(64)) << block;
  }
}

TEST(Worker, AFormatChangeDuringARenderWaitsForItAndDropsItsResult) {
  TolmaraProbe probe;
  probe.Set(kTimeStretch, 4);
  probe.SilentBlock();
  probe.SetFormat(128, 48000);
  EXPECT_TRUE(probe.Idle());
  EXPECT_FALSE(probe.SwapPending());
  EXPECT_NE(probe.Active(0), nullptr);
  const auto expected = [] {
    TolmaraProbe fresh(128, 48000);
    fresh.Set(kTimeStretch, 4);
    fresh.Settle();
    return fresh.Response(9000);
  }();
  EXPECT_LT(LargestDifference(probe.Response(9000), expected), 1e-6);
}

TEST(AudioPath, AllocatesNothingAndTakesOnlyThePluginsLock) {
  TolmaraProbe probe(128);
  std::vector<double> left(128, 0.1), right(128, -0.1);
  const auto expectClean = [&](const char* what) {
    const AllocationGuard heap;
    const LockCount locks;
    probe.Process(left, right, 128);
    EXPECT_EQ(heap.allocations(), 0) << what;
    EXPECT_EQ(heap.frees(), 0) << what;
    EXPECT_EQ(locks.locks(), 1) << what;
  };
  for (int i = 0; i < 40; ++i) expectClean("steady");
  probe.Set(kGain, -6);
  probe.Set(kPan, 10);
  probe.Set(kTimeDelay, 100);
  probe.Set(kMix, 0.3);
  probe.Set(kStereoMidSide, 0.4);
  probe.Set(kStereoLeftRightPhase, -0.4);
  expectClean("ramps");
  probe.Set(kTimeStretch, 2);
  probe.SilentBlock();
  probe.WaitForWorker();
  ASSERT_TRUE(probe.SwapPending());
  expectClean("swap");
  ASSERT_FALSE(probe.SwapPending());
}

TEST(AudioPath, AConstantSignalMovesWithoutStepsThroughEveryRampedSetting) {
  TolmaraProbe probe(256);
  probe.EmptyRoom();  // the wet path copies the input, so that only the stereo stages act
  probe.Settle();
  std::vector<double> left, right;
  const auto run = [&](int blocks) {
    double largest = 0, previousLeft = left.empty() ? 1 : left.back();
    double previousRight = right.empty() ? 1 : right.back();
    for (int b = 0; b < blocks; ++b) {
      left.assign(256, 1.0);
      right.assign(256, 1.0);
      probe.Process(left, right, 256);
      for (size_t i = 0; i < 256; ++i) {
        largest = std::max(
            {largest, std::fabs(left[i] - previousLeft), std::fabs(right[i] - previousRight)});
        previousLeft = left[i];
        previousRight = right[i];
      }
    }
    return largest;
  };
  run(3);
  const std::pair<int, double> changes[] = {{kGain, 6},
                                            {kGain, -20},
                                            {kMix, 0.2},
                                            {kPan, 12},
                                            {kStereoMidSide, 0.7},
                                            {kTimeDelay, 0},
                                            {kMix, 1.0},
                                            {kStereoLeftRightPhase, 1.0}};
  for (const auto& [id, value] : changes) {
    probe.Set(id, value);
    EXPECT_LT(run(4), 0.02) << "parameter " << id << " to " << value;
  }
}
