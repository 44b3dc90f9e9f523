// How a changed setting becomes sound: what starts a render, when its result is swapped in, and
// that the audio path never pays for it.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cmath>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "plugin/FactoryPresets.h"
#include "plugin/ResponseShaping.h"
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

// Sets the stack that every new thread gets. No address space holds a huge one.
void SetStackOfThreads(size_t bytes) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, bytes);
  pthread_setattr_default_np(&attributes);
  pthread_attr_destroy(&attributes);
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

TEST(Worker, AThreadThatCannotStartSaysSoAndLeavesTheOldResponseUntilTheNextFormat) {
  TolmaraProbe probe;
  const void* const sounding = probe.Active(0);
  probe.Set(kTimeStretch, 2.0);
  std::string text;
  SetStackOfThreads(size_t{1} << 47);
  try {
    probe.SilentBlock();
  } catch (const std::system_error& error) {
    text = error.what();
  }
  SetStackOfThreads(size_t{8} << 20);
  EXPECT_EQ(text.rfind("thread constructor failed", 0), 0u) << text;
  EXPECT_FALSE(probe.Dirty());
  EXPECT_FALSE(probe.Idle());
  std::thread([&probe] { probe.Set(kTimeLinearity, 0.5); }).join();  // the lock is free again
  probe.SilentBlock();
  EXPECT_EQ(probe.Active(0), sounding);
  probe.SetFormat(128, 44100);
  EXPECT_TRUE(probe.Idle());
  probe.Settle();
  EXPECT_NE(probe.Active(0), nullptr);
}

TEST(Worker, WithoutMemoryTheOldResponseSoundsOnAndTheNextBlockTriesAgain) {
  TolmaraProbe probe;
  const void* const sounding = probe.Active(0);
  const auto catchUp = [&probe] {
    const void* const before = probe.Active(0);
    EXPECT_FALSE(probe.SwapPending());
    probe.Settle();
    EXPECT_NE(probe.Active(0), nullptr);
    EXPECT_NE(probe.Active(0), before);
  };
  {
    const RefusedSize noMemory(sizeof(ConvolutionPartitionedNonuniform<float>));
    probe.Set(kTimeStretch, 2.0);
    for (int attempt = 0; attempt < 2; ++attempt) {
      probe.SilentBlock();
      EXPECT_FALSE(probe.Dirty());
      probe.WaitForWorker();
    }
    EXPECT_EQ(probe.Active(0), sounding);
  }
  catchUp();
  const void* const next = probe.Active(0);
  {
    const RefusedSize noMemory(sizeof(ConvolutionPartitionedNonuniform<float>));
    probe.SetFormat(64, 48000);
    EXPECT_EQ(probe.Active(0), next) << "at another rate, yet with sound";
  }
  catchUp();
  {
    const RefusedSize noMemory(sizeof(ConvolutionPartitionedNonuniform<float>));
    probe.SetFormat(100, 48000);
    EXPECT_EQ(probe.Active(0), nullptr) << "a pair for blocks of 64 cannot run";
    probe.SilentBlock();
    probe.WaitForWorker();
  }
  catchUp();
}

TEST(Worker, OnlyChangesOfTheResponseStartARender) {
  TolmaraProbe probe;
  const auto expect = [&probe](int id, double value, bool renders) {
    probe.Set(id, value);
    EXPECT_EQ(probe.Dirty(), renders) << "parameter " << id;
    probe.Settle();
    probe.Set(id, value);
    EXPECT_FALSE(probe.Dirty()) << "the same value again, parameter " << id;
  };
  const std::pair<int, double> quiet[] = {
      {kTimeDelay, 7},       {kPan, 3},          {kStereoHaas, -4},           {kMix, 0.5},
      {kGain, -3},           {kRenderMode, 0},   {kStereoLeftRightPhase, .1}, {kDummyVar, 1},
      {kStereoMidSide, 0.2}, {kNumParams - 1, 1}};
  const std::pair<int, double> rendering[] = {
      {kTimeStretch, 1.5},     {kTimeLinearity, -1},    {kHighDecay, 60},     {kLowDecay, 30},
      {kLowCutFreq, 100},      {kLowCutQuality, 0},     {kReversePercent, 1}, {kTimeT0Percent, 1},
      {kTimeAttenuation, 0.5}, {kNormalizationMode, 0}, {kMaxFFTPow, 2}};
  for (const auto& [id, value] : quiet) expect(id, value, false);
  for (const auto& [id, value] : rendering) expect(id, value, true);
  for (const int d : {0, 1}) {  // the second one is off
    expect(DimParam(d, kDimSize), 4, d == 0);
    expect(DimParam(d, kDimDepth), 30, d == 0);
    expect(DimParam(d, kDimRefl), -5, d == 0);
  }
  expect(DimParam(1, kDimEnabled), 1, true);
  expect(DimParam(0, kDimEnabled), 0, true);
  probe.Set(kLowCutQuality, 7);
  EXPECT_EQ(probe.LowCutTaps(), 70);
}

TEST(Worker, AWholePresetCostsOneRenderAndTheSameAgainNone) {
  TolmaraProbe probe;
  Tolmara& plugin = probe.Plugin();
  const void* sounding = probe.Active(0);
  for (const bool same : {false, true}) {
    plugin.RestorePreset("Echo");
    EXPECT_EQ(probe.Dirty(), !same);
    EXPECT_EQ(plugin.GetParam(DimParam(1, kDimSize))->Int(), 11);
    probe.SilentBlock();
    EXPECT_FALSE(probe.Dirty());
    probe.Settle();
    EXPECT_EQ(probe.Active(0) == sounding, same);
    sounding = probe.Active(0);
  }
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
}

TEST(Worker, TheRenderModeChangesTheMemoryKeptAndNotTheSound) {
  TolmaraProbe probe;
  EXPECT_TRUE(probe.KeepsSynthesiser());
  const auto fast = probe.Response(9000);
  probe.Set(kRenderMode, 0);
  for (const double stretch : {2.0, 1.0}) {
    probe.Set(kTimeStretch, stretch);
    probe.Settle();
    EXPECT_FALSE(probe.KeepsSynthesiser());
  }
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
#ifdef __SSE2__
  constexpr unsigned kFlushesToZero = 0x8040;
  _mm_setcsr(_mm_getcsr() & ~kFlushesToZero);
#endif
  TolmaraProbe probe;
  probe.Set(kTimeStretch, 3);
  probe.Settle();
  const AlignedVector<float> fromWorker = probe.Synthesised();
  probe.SetFormat(64, 48000);
  EXPECT_NE(probe.Synthesised(), fromWorker);
  probe.SetFormat(64, 0);  // none told
  EXPECT_EQ(probe.Synthesised(), fromWorker);
#ifdef __SSE2__
  EXPECT_EQ(_mm_getcsr() & kFlushesToZero, 0u);
#endif
}

TEST(Worker, TheOffsetIsTheDepthInWholeMetres) {
  TolmaraProbe probe;
  const auto synthesised = [&probe](int depth) {
    probe.Set(DimParam(0, kDimDepth), depth);
    probe.Settle();
    return probe.Synthesised();
  };
  probe.Set(DimParam(0, kDimSize), 4);
  const auto oneMetre = synthesised(25);
  EXPECT_EQ(synthesised(49), oneMetre);
  EXPECT_NE(synthesised(50), oneMetre);
  EXPECT_NE(synthesised(24), oneMetre);
}

TEST(Worker, ShapesACopyOfTheSynthesisedResponse) {
  TolmaraProbe probe;
  const auto expectShaped = [&probe](bool normalised) {
    probe.Set(kNormalizationMode, normalised);
    probe.Settle();
    AlignedVector<float> h = probe.Synthesised();
    const int n = static_cast<int>(h.size());
    ReverseHead(h, 30.0f);
    CutLows(h, 44100, 500, 50);
    TrimStart(h, n, 10.0f);
    if (normalised) NormalizeEnergy(h);
    const std::vector<double> want(h.begin(), h.end());
    EXPECT_LT(LargestDifference(probe.Response(want.size()), want), 1e-6) << normalised;
  };
  probe.Set(DimParam(0, kDimRefl), -1);  // for an energy above 1
  probe.Set(kReversePercent, 30);
  probe.Set(kLowCutFreq, 500);
  probe.Set(kLowCutQuality, 5);
  probe.Set(kTimeT0Percent, 10);
  expectShaped(true);
  expectShaped(false);
}

TEST(Worker, ResetWithTheSameFormatKeepsTheResponseAndForgetsTheSignalAndTheOldSettings) {
  TolmaraProbe probe;
  const void* const sounding = probe.Active(0);
  probe.Set(kTimeDelay, 20);
  const auto process = [&probe](double input) {
    std::vector<double> left(4000, input), right = left;
    for (size_t at = 0; at < left.size(); at += 40) probe.Process(left, right, 40, at);
    return left;
  };
  process(1.0);
  const int position = probe.RingPosition();
  probe.Plugin().Reset();
  EXPECT_EQ(probe.Active(0), sounding);
  EXPECT_EQ(probe.RingPosition(), position);
  EXPECT_EQ(process(0.0), std::vector<double>(4000));
  probe.Set(kMix, 0.0);
  probe.Plugin().Reset();
  for (const double x : process(1.0)) EXPECT_TRUE(x == 0.0 || x == 1.0) << "a ramp: " << x;
}

TEST(Worker, AFormatChangeDuringARenderWaitsForItAndDropsItsResult) {
  TolmaraProbe probe, fresh(128, 48000);
  probe.Set(kTimeStretch, 4);
  probe.SilentBlock();
  probe.SetFormat(128, 48000);
  EXPECT_TRUE(probe.Idle());
  EXPECT_FALSE(probe.SwapPending());
  EXPECT_NE(probe.Active(0), nullptr);
  fresh.Set(kTimeStretch, 4);
  fresh.Settle();
  EXPECT_LT(LargestDifference(probe.Response(9000), fresh.Response(9000)), 1e-6);
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
