// Tests of the response: against its plain form, of what each setting runs again, of the closed
// forms and of settings outside all range.
#include "dsp/FIROrtho.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "dsp/FIRFunctions.h"
#include "tests/dsp/PlainResponse.h"
#include "tests/support/Reference.h"

namespace {

using plain::Settings;
using Samples = AlignedVector<float>;
using Room = AlignedVector<DimProperties<float>>;

void update(FIROrtho<float>& ortho, Settings s) {
  ortho.update(s.room, s.dB_range, s.sample_rate, s.stretch, s.linearity, s.attenuation,
               s.decay_low, s.decay_high);
}

const std::vector<Settings> kSmallRooms = {
    {{{7, 0, 60}}, 60, 8000, 1.0f, 0.0f, 0.0f, -12, -120},
    {{{7, 3, 80}}, 40, 4000, 2.0f, 1.5f, 0.3f, 0, 0},
    {{{5, 0, 60}, {6, 0, 70}}, 60, 6000, 1.0f, -0.5f, 0.0f, -30, -400},
    {{{5, 2, 60}, {6, 1, 50}}, 60, 6000, 1.0f, 0.0f, -0.4f, -30, -30},
    {{{5, 0, 40}, {6, 2, 50}, {4, 1, 50}}, 60, 8000, 1.5f, 0.7f, 0.0f, 0, -200},
    {{{4, 1, 40}, {5, 1, 50}, {4, 2, 30}, {6, 3, 20}}, 40, 8000, 1.0f, 0.0f, -0.2f, -5, -60},
    {{{4, 0, 30}, {5, 0, 30}, {4, 0, 20}, {6, 0, 30}, {3, 0, 10}},
     40,
     16000,
     1.0f,
     0.0f,
     0.0f,
     -12,
     -120},
    {{{4, 1, 30}, {5, 2, 30}, {4, 1, 20}, {6, 3, 30}, {3, 1, 10}},
     40,
     16000,
     0.5f,
     -1.0f,
     0.2f,
     -12,
     -300},
};

TEST(FIROrtho, BuildsTheResponseOfItsMathematicsInEveryMode) {
  for (const Settings& settings : kSmallRooms) {
    const std::vector<double> before_decay = plain::before_decay(settings);
    const std::vector<double> expected = plain::response(settings);
    FIROrtho<float> ortho;
    update(ortho, settings);
    EXPECT_LT(reference::relative_error(ortho.FIR, expected), 2e-4)
        << settings.room.size() << " axes: " << reference::worst(ortho.FIR, expected);
    EXPECT_EQ(ortho.FIR_size, static_cast<int>(ortho.FIR.size()));

    const auto sizes = ortho.volume.dim_sizes;
    const auto offsets = ortho.volume.dim_offsets;
    const auto weights = ortho.volume.dim_weights;
    const bool later_offsets_only = offsets[0] == 0 && offsets.back() != 0;
    for (int mode = 0; mode <= 6; ++mode) {
      const bool transforms = static_cast<ComputeMode>(mode) == ComputeMode::FFT;
      if (transforms && later_offsets_only) continue;
      ortho.volume.update(ortho.num_dims, ortho.radius, sizes, offsets, weights,
                          static_cast<ComputeMode>(mode));
      ortho.volume.compute_C();
      ortho.update_FIR_time_props();
      EXPECT_LT(reference::relative_error(ortho.FIR_time, before_decay), 2e-4)
          << settings.room.size() << " axes, mode " << mode;
      if (transforms) continue;  // their rounding fills silence, which moves the trim
      ortho.update_FIR_EQ();
      ortho.update_FIR_finalize();
      EXPECT_LT(reference::relative_error(ortho.FIR, expected), 2e-4)
          << settings.room.size() << " axes, mode " << mode;
    }
  }
}

// One factory-like room: sizes, depths in percent, reflections in dB.
struct Preset {
  const char* name;
  std::vector<std::array<float, 3>> axes;
  float stretch;
  float linearity;
  float attenuation;
  int radius;
  int samples;
  std::uint64_t hash;
};

Settings settings_of(const Preset& preset) {
  Settings s{{}, 60, 44100, preset.stretch, preset.linearity, preset.attenuation, 1, 1};
  for (const auto& [size, depth, refl_dB] : preset.axes) {
    s.room.push_back({size, std::floor(depth / 100.0f * size), dB_to_mag(refl_dB) * 100.0f});
  }
  return s;
}

std::uint64_t hash_of(const Samples& x) {
  std::uint64_t hash = 14695981039346656037u;
  for (const float sample : x) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &sample, sizeof bits);
    hash = (hash ^ bits) * 1099511628211u;
  }
  return hash;
}

TEST(FIROrtho, GivesTheSameBitsBeforeTheDecayInEveryBuild) {
  const std::vector<Preset> presets = {
      {"Default",
       {{10, 5, -0.5f}, {11, 8, -0.5f}, {12, 11, -0.5f}},
       1,
       0,
       0,
       1441,
       186747,
       8745406207731871270u},
      {"Plate-small", {{5, 0, -0.5f}, {6, 0, -0.5f}}, 1, 0, 0, 721, 93439, 2700520141316023651u},
      {"Echo-bent", {{10, 17, -0.1f}}, 4, -0.48f, 0, 1701, 881767, 6266484957954878615u},
      {"Cathedral",
       {{15, 24, -0.15f}, {13, 17, -0.46f}, {12, 11, -0.72f}, {11, 6, -0.18f}},
       4,
       0,
       0,
       1701,
       881767,
       15501849328898770381u},
      {"X-zone",
       {{11, 0, -0.5f}, {10, 0, -0.5f}, {9, 0, -0.5f}, {7, 0, -0.5f}, {6, 0, -0.5f}},
       1,
       0,
       0,
       1321,
       171196,
       11114524634672868837u},
      {"Y-zone-swell",
       {{10, 5, -0.1f}, {11, 8, -0.2f}, {12, 11, -0.4f}, {13, 14, -0.8f}, {14, 17, -1.0f}},
       1,
       -0.6f,
       -0.3f,
       1701,
       220442,
       8638093322225511309u},
  };
  for (const Preset& preset : presets) {
    FIROrtho<float> ortho;
    update(ortho, settings_of(preset));
    EXPECT_EQ(ortho.radius, preset.radius) << preset.name;
    EXPECT_EQ(ortho.num_samples, preset.samples) << preset.name;
    EXPECT_EQ(hash_of(ortho.FIR_time), preset.hash) << preset.name;
  }
}

const Settings kRoom = {{{5, 1, 60}, {6, 2, 50}}, 40, 8000, 1.0f, 0.2f, 0.1f, -12, -120};

// Each setting, changed, runs its own stage and those after it, and no other: a value planted into
// a stage's result stays if the stage did not run.
TEST(FIROrtho, RunsOnlyTheStagesThatAChangedSettingReaches) {
  enum Reach { kTable, kTime, kDecay, kNothing };
  const struct {
    const char* name;
    Reach reach;
    std::function<void(Settings&)> change;
  } cases[] = {
      {"nothing", kNothing, [](Settings&) {}},
      {"size", kTable, [](Settings& s) { s.room[1].size += 1; }},
      {"offset", kTable, [](Settings& s) { s.room[0].offset += 1; }},
      {"refl", kTable, [](Settings& s) { s.room[1].refl += 1; }},
      {"number of axes", kTable, [](Settings& s) { s.room.pop_back(); }},
      {"level range", kTable, [](Settings& s) { s.dB_range += 1; }},
      {"sample rate", kTime, [](Settings& s) { s.sample_rate += 1; }},
      {"stretch", kTime, [](Settings& s) { s.stretch = std::nextafter(s.stretch, 2.0f); }},
      {"linearity", kTime, [](Settings& s) { s.linearity += 0.1f; }},
      {"attenuation", kTime, [](Settings& s) { s.attenuation += 0.1f; }},
      {"low decay", kDecay, [](Settings& s) { s.decay_low -= 1; }},
      {"high decay", kDecay, [](Settings& s) { s.decay_high -= 1; }},
  };
  constexpr float kMark = 77.0f;
  for (const auto& [name, reach, change] : cases) {
    FIROrtho<float> ortho;
    update(ortho, kRoom);
    Settings changed = kRoom;
    change(changed);
    ortho.volume.C[0][0] = kMark;  // the response reads the last row only
    ortho.FIR_time[0] = kMark;
    ortho.FIR[0] = kMark;
    update(ortho, changed);
    EXPECT_EQ(ortho.volume.C[0][0] != kMark, reach == kTable) << name;
    EXPECT_EQ(ortho.FIR_time[0] != kMark, reach <= kTime) << name;
    EXPECT_EQ(ortho.FIR[0] != kMark, reach <= kDecay) << name;

    FIROrtho<float> kept;
    update(kept, kRoom);
    update(kept, changed);
    FIROrtho<float> fresh;
    update(fresh, changed);
    EXPECT_TRUE(reference::same_bits(kept.FIR_time, fresh.FIR_time)) << name;
    EXPECT_TRUE(reference::same_bits(kept.FIR, fresh.FIR)) << name;
    EXPECT_EQ(kept.FIR_trim_offset, fresh.FIR_trim_offset) << name;
  }
}

TEST(FIROrtho, TellsCallersOfTheStagesWhatChanged) {
  FIROrtho<float> ortho;
  Room room = kRoom.room;
  EXPECT_TRUE(ortho.update_dim_props(room, 40));
  EXPECT_FALSE(ortho.update_dim_props(ortho.dims, 40));
  EXPECT_TRUE(ortho.update_dim_props(room, 41));
  room[0].refl = std::nanf("");
  EXPECT_TRUE(ortho.update_dim_props(room, 41));
  EXPECT_TRUE(ortho.update_dim_props(room, 41));
  EXPECT_TRUE(ortho.update_time_props(8000, 1, 0, 0));
  EXPECT_FALSE(ortho.update_time_props(8000, 1, 0, 0));
  EXPECT_TRUE(ortho.update_EQ(-3.0f, -4.0f));
  EXPECT_FALSE(ortho.update_EQ(-3.0f, -4.0f));
  EXPECT_FLOAT_EQ(ortho.EQ_taps[0] + ortho.EQ_taps[1], dB_to_mag(-3.0f / 8000.0f));
}

TEST(FIROrtho, SkipsTheDecayOnlyIfBothEndsGrow) {
  Settings s = kRoom;
  s.decay_low = 1.0f;
  s.decay_high = 1.0f;
  FIROrtho<float> ortho;
  update(ortho, s);
  EXPECT_TRUE(ortho.FIR_EQ.empty());
  s.decay_high = -1.0f;
  update(ortho, s);
  EXPECT_EQ(ortho.FIR_EQ.size(), 2 * ortho.FIR_time.size());
  s.decay_low = 0.0f;
  s.decay_high = 1.0f;
  ortho.FIR_EQ.clear();
  update(ortho, s);
  EXPECT_EQ(ortho.FIR_EQ.size(), 2 * ortho.FIR_time.size());
}

TEST(FIROrtho, LimitsTheGeometryOfTheRoom) {
  const auto lattice_of = [](DimProperties<float> axis) {
    Room room = {axis, {3, 0, 0}};
    FIROrtho<float> ortho;
    ortho.update_dim_props(room, 60);
    ortho.update_Gauss_volume();
    return std::array<float, 4>{static_cast<float>(ortho.volume.dim_sizes[0]),
                                static_cast<float>(ortho.volume.dim_offsets[0]),
                                ortho.volume.dim_weights[0], static_cast<float>(ortho.radius)};
  };
  using Geometry = std::array<float, 4>;
  EXPECT_EQ(lattice_of({30, 4.9f, 70}), (Geometry{30, 4, 0.7f, 582}));
  EXPECT_EQ(lattice_of({0.9f, -3, 0}), (Geometry{1, 0, 0, 1}));
  EXPECT_EQ(lattice_of({-20, 0, -5}), (Geometry{1, 0, 0, 1}));
  EXPECT_EQ(lattice_of({5.9f, 4, 50}), (Geometry{5, 2, 0.5f, 50}));
  EXPECT_EQ(lattice_of({100, 0, 100}), (Geometry{100, 0, 0.99f, 1701}));
}

TEST(FIROrtho, StartsWithTheOriginOrWithTheFirstImage) {
  Settings s = {{{9, 0, 50}, {8, 0, 50}}, 40, 8000, 1, 0, 0, 1, 1};
  FIROrtho<float> ortho;
  update(ortho, s);
  EXPECT_NEAR(std::abs(ortho.FIR_time[0]), 1.0f, 0.2f);
  EXPECT_EQ(ortho.FIR_trim_offset, 0);
  s.room = {{9, 3, 50}, {8, 4, 50}};
  update(ortho, s);
  // The nearest image is 5 metres away; squared distances are rounded up, so it comes early.
  const auto first = static_cast<std::size_t>(ortho.FIR_trim_offset);
  EXPECT_NEAR(ortho.FIR_trim_offset * 340.29 / 8000, 5.0, 0.15);
  for (std::size_t k = 0; k < first; ++k) ASSERT_EQ(ortho.FIR_time[k], 0.0f);
  EXPECT_NE(ortho.FIR_time[first], 0.0f);
  EXPECT_GT(ortho.FIR[0], 0.0f);
}

TEST(FIROrtho, TrimsSilenceOffEitherEndAndTurnsTheStartPositive) {
  FIROrtho<float> ortho;
  const Samples quiet = {0, 1e-6f, -0.5f, 0, 0.25f, -1e-6f, 0};
  const struct {
    bool front;
    bool back;
    int cut;
    Samples expected;
  } cases[] = {
      {true, true, 2, {0.5f, 0, -0.25f}},
      {true, false, 2, {0.5f, 0, -0.25f, 1e-6f, 0}},
      {false, true, 0, {0, 1e-6f, -0.5f, 0, 0.25f}},
      {false, false, 0, quiet},
  };
  for (const auto& [front, back, cut, expected] : cases) {
    Samples x = quiet;
    EXPECT_EQ(ortho.trim_FIR(x, 1e-6f, front, back), cut);
    EXPECT_EQ(x, expected);
  }
  const struct {
    Samples x;
    int cut;
  } silent[] = {{{}, 0}, {{0, 0, 1e-7f}, 3}, {{std::nanf("")}, 1}};
  for (const auto& [signal, cut] : silent) {
    Samples x = signal;
    EXPECT_EQ(ortho.trim_FIR(x, 1e-6f, true, true), cut);
    EXPECT_EQ(x, Samples{1.0f});
  }
}

TEST(FIROrtho, ScalesDownToAPeakOfOneButNeverUp) {
  FIROrtho<float> ortho;
  ortho.FIR = {0, 0.5f, -4.0f, 1.0f};
  ortho.update_FIR_finalize();
  EXPECT_EQ(ortho.FIR, (Samples{0.125f, -1.0f, 0.25f}));
  EXPECT_EQ(ortho.FIR_size, 3);
  EXPECT_EQ(ortho.FIR_trim_offset, 1);
  ortho.FIR = {0.25f, -0.5f};
  ortho.update_FIR_finalize();
  EXPECT_EQ(ortho.FIR, (Samples{0.25f, -0.5f}));
  ortho.FIR = {};
  ortho.update_FIR_finalize();
  EXPECT_EQ(ortho.FIR, Samples{1.0f});
}

TEST(FIROrtho, ClosedFormsInvertEachOther) {
  FIROrtho<float> ortho;
  ortho.num_dims = 3;
  for (const float dB : {10.0f, 40.0f, 60.0f}) {
    const float dist = ortho.dB_to_radius_attenuation(dB, 99, 1.3f);
    EXPECT_NEAR(mag_to_dB(ortho.attenuation_divisor_at_dist(dist, 3, 1.3f)), dB, 1e-3) << dB;
    const float reach = ortho.dB_to_radius_refl(dB, 7.0f, 0.8f);
    EXPECT_NEAR(mag_to_dB(std::pow(0.8f, reach / 7.0f)), -dB, 1e-3) << dB;
  }
  EXPECT_EQ(ortho.attenuation_divisor_at_dist(123.0f, 1, 2.0f), 2.0f);
  ortho.num_dims = 1;
  EXPECT_TRUE(std::isinf(ortho.dB_to_radius_attenuation(60.0f, 3, 1.0f)));
  EXPECT_EQ(ortho.num_refl_at_dist(20.9f, 7.0f), 2);
  EXPECT_EQ(ortho.num_refl_at_dist(1.0f, 0.0f), std::numeric_limits<int>::max());
  EXPECT_FLOAT_EQ(ortho.refl_at_dist(20.9f, 0.5f, 7.0f), 0.25f);
  for (const float p : {0.5f, 1.0f, 2.5f}) {
    const float N_pow_p = std::pow(100.0f, p);
    const float x = ortho.p_norm_sampling(p, 100.0f, N_pow_p, 40.0f);
    EXPECT_NEAR(x, ortho.p_norm_sampling_double(p, 100.0, std::pow(100.0, p), 40.0), 1e-3) << p;
    EXPECT_NEAR(ortho.p_norm_sampling_inverse(p, 100.0f, N_pow_p, x), 40.0f, 1e-2) << p;
    EXPECT_EQ(ortho.p_norm_sampling(p, 100.0f, N_pow_p, 100.0f), 100.0f) << p;
  }
  EXPECT_FLOAT_EQ(ortho.p_norm_sampling(1.0f, 100.0f, 100.0f, 40.0f), 40.0f);
}

TEST(FIROrtho, SurvivesEveryValueInEverySettingAndRecovers) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const std::vector<std::function<float&(Settings&)>> fields = {
      [](Settings& s) -> float& { return s.room[0].size; },
      [](Settings& s) -> float& { return s.room[1].offset; },
      [](Settings& s) -> float& { return s.room[0].refl; },
      [](Settings& s) -> float& { return s.dB_range; },
      [](Settings& s) -> float& { return s.stretch; },
      [](Settings& s) -> float& { return s.linearity; },
      [](Settings& s) -> float& { return s.attenuation; },
      [](Settings& s) -> float& { return s.decay_low; },
      [](Settings& s) -> float& { return s.decay_high; }};
  FIROrtho<float> good;
  update(good, kRoom);
  FIROrtho<float> ortho;
  for (std::size_t field = 0; field < fields.size(); ++field) {
    for (const float value : {std::nanf(""), kInfinity, -kInfinity, 3e9f, -3e9f, 1e-40f, 0.0f}) {
      const bool long_response = field == 4 && value > 1e9f;
      if (long_response) continue;  // a case of its own
      Settings s = kRoom;
      s.sample_rate = 500;
      fields[field](s) = value;
      update(ortho, s);
      ASSERT_FALSE(ortho.FIR.empty()) << field << ", " << value;
      ASSERT_LE(ortho.radius, 1701) << field << ", " << value;
    }
    update(ortho, kRoom);
    EXPECT_TRUE(reference::same_bits(ortho.FIR, good.FIR)) << field;
  }
  for (const int rate : {0, -44100}) {
    Settings s = kRoom;
    s.sample_rate = rate;
    update(ortho, s);
    EXPECT_EQ(ortho.FIR, Samples{1.0f}) << rate;
  }
}

TEST(FIROrtho, LimitsTheLengthOfAResponse) {
  FIROrtho<float> ortho;
  Settings s = {{{3, 0, 10}}, 20, 44100, std::numeric_limits<float>::infinity(), 0, 0, 1, 1};
  update(ortho, s);
  EXPECT_EQ(ortho.num_samples, 1 << 24);
}

}  // namespace
