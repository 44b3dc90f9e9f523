// Reverse, low cut, start trim and normalisation of a response.
#include "plugin/ResponseShaping.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Response = AlignedVector<float>;

Response Counting(int n) {
  Response h(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) h[static_cast<size_t>(i)] = static_cast<float>(i);
  return h;
}

Response Reversed(int n, float percent) {
  Response h = Counting(n);
  ReverseHead(h, percent);
  return h;
}

}  // namespace

TEST(ResponseShaping, ReverseRunsBackwardsIntoTheStartAndKeepsTheLength) {
  EXPECT_EQ(Reversed(6, 60.0f), (Response{3, 2, 1, 0, 1, 2}));
  EXPECT_EQ(Reversed(6, 100.0f), (Response{5, 4, 3, 2, 1, 0}));
  EXPECT_EQ(Reversed(6, 10.0f), Counting(6));  // not one whole sample
  EXPECT_EQ(Reversed(1, 100.0f), Counting(1));
  EXPECT_EQ(Reversed(6, -5.0f), Counting(6));
  EXPECT_EQ(Reversed(6, std::numeric_limits<float>::quiet_NaN()), Counting(6));
  EXPECT_EQ(Reversed(6, 1e30f), (Response{5, 4, 3, 2, 1, 0}));
}

TEST(ResponseShaping, StartTrimTakesItsCountFromTheSynthesisedLengthAndLeavesASample) {
  const auto trimmed = [](int size, int n, float percent) {
    Response h = Counting(size);
    TrimStart(h, n, percent);
    return h;
  };
  EXPECT_EQ(trimmed(10, 10, 50.0f), (Response{5, 6, 7, 8, 9}));
  EXPECT_EQ(trimmed(10, 8, 50.0f), (Response{4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(trimmed(10, 10, 99.9f), Response{9});
  EXPECT_EQ(trimmed(10, 10, 1e30f), Response{9});
  EXPECT_EQ(trimmed(10, 10, -50.0f), Counting(10));
}

TEST(ResponseShaping, NormalisationDividesByTheEnergyAndNeverAmplifies) {
  Response loud = {1, 2, 2, -4};  // energy 25
  NormalizeEnergy(loud);
  EXPECT_EQ(loud, (Response{1.0f / 25, 2.0f / 25, 2.0f / 25, -4.0f / 25}));
  Response quiet = {0.5f, -0.5f};
  NormalizeEnergy(quiet);
  EXPECT_EQ(quiet, (Response{0.5f, -0.5f}));
}

TEST(ResponseShaping, TheLowCutRemovesZeroHertzAndKeepsTheHighs) {
  Response h(1, 1.0f);
  CutLows(h, 44100, 1000, 250);
  ASSERT_EQ(h.size(), 250u);
  float atZero = 0, atHigh = 0;
  for (size_t i = 0; i < h.size(); ++i) {
    atZero += h[i];
    atHigh += i % 2 ? -h[i] : h[i];
  }
  EXPECT_NEAR(atZero, 0.0f, 0.01f);
  EXPECT_NEAR(std::fabs(atHigh), 1.0f, 0.01f);
}

TEST(ResponseShaping, TheLowCutIsOffWithoutAFrequencyTapsOrRoomBelowHalfTheRate) {
  const struct {
    int rate, freq, taps;
    size_t length;
  } cases[] = {{44100, 0, 250, 3},   {44100, -5, 250, 3}, {44100, 500, 0, 3},
               {44100, 500, -10, 3}, {999, 500, 250, 3},  {1000, 500, 10, 12}};
  for (const auto& c : cases) {
    Response h = Counting(3);
    CutLows(h, c.rate, c.freq, c.taps);
    EXPECT_EQ(h.size(), c.length) << c.rate << " " << c.freq << " " << c.taps;
  }
}
