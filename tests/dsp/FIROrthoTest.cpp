// Tests of the response: against its plain form, of what each setting runs again, of the closed
// forms and of settings outside all range.
#include "dsp/FIROrtho.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "dsp/FIRFunctions.h"
#include "tests/dsp/PlainResponse.h"
#include "tests/support/Reference.h"

namespace {

using plain::Settings;
using Samples = AlignedVector<float>;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

void update(FIROrtho<float>& ortho, Settings s) {
  ortho.update(s.room, s.dB_range, s.sample_rate, s.stretch, s.linearity, s.attenuation,
               s.decay_low, s.decay_high);
}

TEST(FIROrtho, BuildsTheResponseOfItsMathematicsInEveryMode) {
  const Settings rooms[] = {
      {{{7, 0, 60}}, 60, 8000, 1.0f, 0.0f, 0.0f, -12, -120},
      {{{7, 3, 80}}, 40, 4000, 2.0f, 1.5f, 0.3f, 0, 0},
      {{{5, 0, 60}, {6, 0, 70}}, 40, 6000, 1.0f, -0.5f, 0.0f, -30, -400},
      {{{5, 2, 60}, {6, 1, 50}}, 40, 6000, 1.0f, 0.0f, -0.4f, -30, -30},
      {{{5, 0, 40}, {6, 2, 50}, {4, 1, 50}}, 40, 8000, 1.5f, 0.7f, 0.0f, 0, -200},
      {{{4, 1, 40}, {5, 1, 50}, {4, 2, 30}, {6, 3, 20}}, 40, 8000, 1, 0, -0.2f, -5, -60},
      {{{4, 0, 30}, {5, 0, 30}, {4, 0, 20}, {6, 0, 30}, {3, 0, 10}}, 40, 16000, 1, 0, 0, -12, -120},
      {{{4, 1, 30}, {5, 2, 30}, {4, 1, 20}, {6, 3, 30}, {3, 1, 10}}, 40, 16000, 1, -1, 0, 0, -300},
  };
  for (const Settings& settings : rooms) {
    const auto before_decay = plain::before_decay(settings);
    const auto expected = plain::response(settings);
    FIROrtho<float> ortho;
    update(ortho, settings);
    EXPECT_LT(reference::relative_error(ortho.FIR, expected), 2e-4)
        << ortho.num_dims << " axes: " << reference::worst(ortho.FIR, expected);
    using enum ComputeMode;
    for (const ComputeMode mode : {BRUTE, NAIVE, VECTORIZED, FASTEST}) {
      ortho.volume.mode = mode;
      ortho.volume.compute_C();
      ortho.update_FIR_time_props();
      EXPECT_LT(reference::relative_error(ortho.FIR_time, before_decay), 2e-4)
          << ortho.num_dims << " axes, mode " << static_cast<int>(mode);
    }
  }
}

// Depth is in percent and reflection in dB; the hash is FNV-1a over the samples' bits.
void expect_bits(Settings s, int radius, int samples, std::uint64_t expected) {
  for (auto& [size, depth, refl] : s.room) {
    depth = std::floor(depth / 100.0f * size);
    refl = dB_to_mag(refl) * 100.0f;
  }
  FIROrtho<float> ortho;
  update(ortho, s);
  EXPECT_EQ(ortho.radius, radius);
  EXPECT_EQ(ortho.num_samples, samples);
  std::uint64_t hash = 14695981039346656037u;
  for (const float sample : ortho.FIR_time) {
    hash = (hash ^ std::bit_cast<std::uint32_t>(sample)) * 1099511628211u;
  }
  EXPECT_EQ(hash, expected) << "radius " << radius << ", axes " << s.room.size();
}

TEST(FIROrtho, GivesTheSameBitsBeforeTheDecayInEveryBuild) {
  using Room = AlignedVector<DimProperties<float>>;
  const Room three = {{10, 5, -0.5f}, {11, 8, -0.5f}, {12, 11, -0.5f}};
  const Room four = {{15, 24, -0.15f}, {13, 17, -0.46f}, {12, 11, -0.72f}, {11, 6, -0.18f}};
  const Room five = {
      {10, 5, -0.1f}, {11, 8, -0.2f}, {12, 11, -0.4f}, {13, 14, -0.8f}, {14, 17, -1}};
  expect_bits({{{10, 17, -0.1f}}, 60, 44100, 4, -0.48f, 0, 1, 1}, 1701, 881767,
              6266484957954878615u);
  expect_bits({three, 60, 44100, 1, 0, 0, 1, 1}, 1441, 186747, 8745406207731871270u);
  expect_bits({four, 60, 44100, 4, 0, 0, 1, 1}, 1701, 881767, 15501849328898770381u);
  expect_bits({five, 60, 44100, 1, -0.6f, -0.3f, 1, 1}, 1701, 220442, 8638093322225511309u);
}

const Settings kRoom = {{{5, 1, 60}, {6, 2, 50}}, 40, 8000, 1.0f, 0.2f, 0.1f, -12, -120};

enum Reach { kTable, kTime, kDecay, kNothing };

struct Field {
  const char* name;
  float* value;
  Reach reach;  // first stage that a change runs again
};

std::vector<Field> fields_of(Settings& s) {
  return {{"size", &s.room[0].size, kTable},      {"offset", &s.room[1].offset, kTable},
          {"refl", &s.room[1].refl, kTable},      {"level range", &s.dB_range, kTable},
          {"stretch", &s.stretch, kTime},         {"linearity", &s.linearity, kTime},
          {"attenuation", &s.attenuation, kTime}, {"low decay", &s.decay_low, kDecay},
          {"high decay", &s.decay_high, kDecay}};
}

// A value planted into a stage's result stays if the stage does not run.
void expect_reach(const Settings& changed, Reach reach, const char* name) {
  constexpr float kMark = 77.0f;
  FIROrtho<float> marked, kept, fresh;
  update(marked, kRoom);
  marked.volume.C[0][0] = kMark;  // the response reads the last row only
  marked.FIR_time[0] = kMark;
  marked.FIR[0] = kMark;
  update(marked, changed);
  EXPECT_EQ(marked.volume.C[0][0] != kMark, reach == kTable) << name;
  EXPECT_EQ(marked.FIR_time[0] != kMark, reach <= kTime) << name;
  EXPECT_EQ(marked.FIR[0] != kMark, reach <= kDecay) << name;

  update(kept, kRoom);
  update(kept, changed);
  update(fresh, changed);
  EXPECT_TRUE(reference::same_bits(kept.FIR_time, fresh.FIR_time)) << name;
  EXPECT_TRUE(reference::same_bits(kept.FIR, fresh.FIR)) << name;
  EXPECT_EQ(kept.FIR_trim_offset, fresh.FIR_trim_offset) << name;
}

TEST(FIROrtho, RunsOnlyTheStagesThatAChangedSettingReaches) {
  Settings s = kRoom;
  for (const Field& field : fields_of(s)) {
    const float before = *field.value;
    *field.value += 0.5f;
    expect_reach(s, field.reach, field.name);
    *field.value = before;
  }
  expect_reach(s, kNothing, "nothing");
  s.sample_rate += 1;
  expect_reach(s, kTime, "sample rate");
  s = kRoom;
  s.room.pop_back();
  expect_reach(s, kTable, "number of axes");
}

TEST(FIROrtho, SurvivesEveryValueInEverySettingAndRecovers) {
  FIROrtho<float> good, ortho;
  update(good, kRoom);
  Settings s = kRoom;
  s.sample_rate = 500;
  for (const Field& field : fields_of(s)) {
    const float before = *field.value;
    for (const float value : {std::nanf(""), kInfinity, -kInfinity, 3e9f, -3e9f, 1e-40f, 0.0f}) {
      if (field.value == &s.stretch && value > 1e9f) continue;  // a case of its own
      *field.value = value;
      update(ortho, s);
      ASSERT_FALSE(ortho.FIR.empty()) << field.name << " " << value;
    }
    *field.value = before;
    update(ortho, kRoom);
    EXPECT_TRUE(reference::same_bits(ortho.FIR, good.FIR)) << field.name;
  }
  for (const int rate : {0, -44100}) {
    s.sample_rate = rate;
    update(ortho, s);
    EXPECT_EQ(ortho.FIR, Samples{1.0f}) << rate;
  }
  update(ortho, {{{3, 0, 10}}, 20, 44100, kInfinity, 0, 0, 1, 1});
  EXPECT_EQ(ortho.num_samples, 1 << 24);
}

// The positions of the knob up to its end.
std::vector<float> steps_from(float first) {
  std::vector<float> steps;
  for (int k = static_cast<int>(std::lround(100 * first)); k <= 300; ++k) {
    steps.push_back(static_cast<float>(k / 100.0));
  }
  return steps;
}

// Above a linearity of about 2 the curve's rounding puts some of the first distances below 0.
TEST(FIROrtho, StaysFiniteAtEveryLinearity) {
  const struct {
    Settings settings;
    std::vector<float> linearities;
  } cases[] = {
      {{{{15, 0, -0.1f}, {5, 0, -0.1f}}, 60, 44100, 1, 0, 0, 0, 0}, {2.12f, 2.4f, 2.6f, 3}},
      {{{{10, 0, -0.5f}, {11, 0, -0.5f}}, 60, 44100, 1, 0, 0, 0, 0}, steps_from(1.7f)},
      {{{{10, 0, -0.5f}, {11, 0, -0.5f}, {12, 1, -0.5f}}, 60, 44100, 4, 0, 0.2f, 0, 0},
       {2.79f, 2.91f, 2.92f, 2.94f, 2.95f, 2.96f, 2.98f}}};
  for (auto [s, linearities] : cases) {
    for (auto& axis : s.room) axis.refl = dB_to_mag(axis.refl) * 100.0f;
    FIROrtho<float> ortho;
    ortho.update_dim_props(s.room, s.dB_range);
    ortho.update_Gauss_volume();
    for (const float linearity : linearities) {
      ortho.update_time_props(s.sample_rate, s.stretch, linearity, s.attenuation);
      ortho.update_FIR_time_props();
      const auto finite = [](float x) { return std::isfinite(x); };
      EXPECT_TRUE(std::all_of(ortho.FIR.begin(), ortho.FIR.end(), finite)) << linearity;
      ortho.update_FIR_finalize();
      EXPECT_GT(ortho.FIR_size, 1) << linearity;
    }
  }
}

TEST(FIROrtho, SkipsTheDecayOnlyIfBothEndsGrow) {
  for (const auto& [low, high] : {std::pair{1.0f, 1.0f}, {1.0f, -1.0f}, {0.0f, 1.0f}}) {
    Settings s = kRoom;
    s.decay_low = low;
    s.decay_high = high;
    FIROrtho<float> ortho;
    update(ortho, s);
    EXPECT_EQ(ortho.FIR_EQ.empty(), low > 0 && high > 0) << low << ", " << high;
  }
}

TEST(FIROrtho, LimitsTheGeometryOfTheRoom) {
  const struct {
    DimProperties<float> axis;
    DimProperties<float> used;  // refl as a factor
    int radius;
  } cases[] = {{{30, 4.9f, 70}, {30, 4, 0.7f}, 582},
               {{0.9f, -3, 0}, {1, 0, 0}, 1},
               {{-20, 0, -5}, {1, 0, 0}, 1},
               {{5.9f, 4, 50}, {5, 2, 0.5f}, 50},
               {{100, 0, 100}, {100, 0, 0.99f}, 1701}};
  for (const auto& [axis, used, radius] : cases) {
    AlignedVector<DimProperties<float>> room = {axis, {3, 0, 0}};
    FIROrtho<float> ortho;
    EXPECT_TRUE(ortho.update_dim_props(room, 60));
    EXPECT_FALSE(ortho.update_dim_props(ortho.dims, 60));
    ortho.update_Gauss_volume();
    EXPECT_EQ(ortho.volume.dim_sizes[0], static_cast<int>(used.size)) << axis.size;
    EXPECT_EQ(ortho.volume.dim_offsets[0], static_cast<int>(used.offset)) << axis.size;
    EXPECT_EQ(ortho.volume.dim_weights[0], used.refl) << axis.size;
    EXPECT_EQ(ortho.radius, radius) << axis.size;
  }
}

TEST(FIROrtho, FinishesWithATrimmedPeakOfAtMostOneThatStartsPositive) {
  const struct {
    Samples signal, finished;
    int cut;
  } cases[] = {{{0, 0.5f, -4, 1}, {0.125f, -1, 0.25f}, 1},
               {{0.25f, -0.5f}, {0.25f, -0.5f}, 0},
               {{0, 1e-6f, -0.5f, 0, 0.25f, -1e-6f, 0}, {0.5f, 0, -0.25f}, 2},
               {{0, 0, 1e-7f}, {1}, 3},
               {{std::nanf("")}, {1}, 1},
               {{}, {1}, 0}};
  FIROrtho<float> ortho;
  for (const auto& [signal, finished, cut] : cases) {
    ortho.FIR = signal;
    ortho.update_FIR_finalize();
    EXPECT_EQ(ortho.FIR, finished);
    EXPECT_EQ(ortho.FIR_size, static_cast<int>(finished.size()));
    EXPECT_EQ(ortho.FIR_trim_offset, cut);
  }
  Samples x = {0, -0.5f, 0};
  EXPECT_EQ(ortho.trim_FIR(x, 1e-6f, false, true), 0);
  EXPECT_EQ(x, (Samples{0, -0.5f}));
  EXPECT_EQ(ortho.trim_FIR(x, 1e-6f, true, false), 1);
  EXPECT_EQ(x, Samples{0.5f});
}

TEST(FIROrtho, ClosedFormsInvertEachOther) {
  FIROrtho<float> ortho;
  ortho.num_dims = 3;
  const float dist = ortho.dB_to_radius_attenuation(40.0f, 99, 1.3f);
  EXPECT_NEAR(mag_to_dB(ortho.attenuation_divisor_at_dist(dist, 3, 1.3f)), 40.0f, 1e-3);
  const float reach = ortho.dB_to_radius_refl(40.0f, 7.0f, 0.8f);
  EXPECT_NEAR(mag_to_dB(std::pow(0.8f, reach / 7.0f)), -40.0f, 1e-3);
  EXPECT_EQ(ortho.num_refl_at_dist(20.9f, 7.0f), 2);
  EXPECT_FLOAT_EQ(ortho.refl_at_dist(20.9f, 0.5f, 7.0f), 0.25f);
  for (const float p : {0.5f, 1.0f, 2.5f}) {
    const float N_pow_p = std::pow(100.0f, p);
    const float x = ortho.p_norm_sampling(p, 100.0f, N_pow_p, 40.0f);
    EXPECT_NEAR(x, ortho.p_norm_sampling_double(p, 100.0, std::pow(100.0, p), 40.0), 1e-3) << p;
    EXPECT_NEAR(ortho.p_norm_sampling_inverse(p, 100.0f, N_pow_p, x), 40.0f, 1e-2) << p;
  }
}

}  // namespace
