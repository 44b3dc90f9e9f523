// tolmara render and tolmara response, with effects whose output can be told exactly.
#include <sndfile.h>

#include <algorithm>
#include <cmath>

#include "tests/tools/ToolRun.h"

namespace {

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;

class RenderTest : public ToolTest {
 protected:
  // in.wav: a sample of 1 and then silence.
  void WriteImpulse(int rate, std::size_t frames) {
    Sound impulse{1, rate, kWavFloat, std::vector<double>(frames, 0.0)};
    impulse.samples[0] = 1;
    Write("in.wav", impulse);
  }
  // in.wav to out.wav.
  Sound Rendered(const Words& options) {
    Works(Words{"render", "in.wav", "out.wav"} + options);
    return Read("out.wav");
  }
};

TEST_F(RenderTest, PassesEverySampleUnchangedAndUndelayedInEveryFormat) {
  struct Case {
    const char* name;
    int format, channels, rate;
    std::size_t frames;
    const char* block;
  };
  const Case cases[] = {
      {"a.wav", kWav16, 1, 8000, 1, "512"},
      {"b.wav", kWav16, 2, 44100, 511, "512"},
      {"c.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, 48000, 512, "512"},
      {"d.wav", kWavFloat, 2, 96000, 513, "16"},
      {"e.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 44100, 30000, "1000"},
      {"f.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1, 22050, 3000, "64"},
      {"g.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 2, 192000, 3000, "4096"},
      {"h.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 1, 11025, 3000, "512"},
      {"i.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 2, 44100, 3000, "512"},
      {"j.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2, 44100, 20000, "512"},
  };
  for (const Case& c : cases) {
    Write(c.name, NoiseSound(c.channels, c.rate, c.frames, c.format));
    const Sound dry = Read(c.name);
    const std::string out = std::string("out_") + c.name;
    Works({"render", c.name, out, "--tail", "0", "--block", c.block});
    const Sound wet = Read(out);
    EXPECT_EQ(wet.Frames(), c.frames) << c.name;
    EXPECT_EQ(wet.format, c.format) << c.name;
    EXPECT_TRUE(wet == dry || out.ends_with(".ogg")) << c.name;
  }
}

TEST_F(RenderTest, TakesTheContainerFromTheNameAndTheDepthFromTheInputOrTheUser) {
  Write("in.wav", NoiseSound(1, 44100, 100, kWavFloat));
  Write("in.mp3", NoiseSound(1, 44100, 5000, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III));
  Works({"render", "in.mp3", "mp3.wav"});
  EXPECT_EQ(Read("mp3.wav").format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
  struct Case {
    const char* out;
    Words extra;
    int format;
  };
  const Case cases[] = {
      {"a.wav", {}, kWavFloat},
      {"b", {}, kWavFloat},
      {"c.flac", {}, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
      {"d.AIF", {}, SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
      {"e.wav", {"--depth", "24"}, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
      {"f.flac", {"--depth", "16"}, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
      {"g.wav", {"--depth", "double"}, SF_FORMAT_WAV | SF_FORMAT_DOUBLE},
      {"h.ogg", {}, SF_FORMAT_OGG | SF_FORMAT_VORBIS},
  };
  for (const Case& c : cases) {
    Works(Words{"render", "in.wav", c.out} + c.extra);
    EXPECT_EQ(Read(c.out).format, c.format) << c.out;
  }
}

TEST_F(RenderTest, SettingsSoundFromTheFirstSampleOn) {
  Write("in.wav", NoiseSound(1, 44100, 2000, kWavFloat));
  Works({"save-preset", "five.fxp", "--set", "level=2.5"});
  struct Case {
    Words settings;
    double factor;
  };
  const Case cases[] = {
      {{"--set", "Level=1.5"}, 1.5},
      {{"--preset", "doubled"}, 2},
      {{"--preset", "Doubled", "--set", "Invert=on"}, -2},
      {{"--set", "0=3", "--set", "5=1", "--set", "Level = 0.5"}, -0.5},
      {{"--load-fxp", "five.fxp"}, 2.5},
      // An effect without texts, chunks or double precision; position 0.5 is a level of 2.
      {{"--set", "Level=0.5", "--plugin", "plain_effect.so"}, 2},
  };
  const Sound dry = Read("in.wav");
  for (const Case& c : cases) {
    const Sound wet = Rendered(c.settings);
    ASSERT_EQ(wet.samples.size(), dry.samples.size());
    for (std::size_t i = 0; i < wet.samples.size(); ++i)
      ASSERT_NEAR(wet.samples[i], c.factor * dry.samples[i], 1e-6) << c.settings[1] << " at " << i;
  }
}

TEST_F(RenderTest, KeepsTheTailUntilItHasFadedOrAsLongAsAskedButNotForEver) {
  WriteImpulse(8000, 100);
  const Words echoes = {"--set", "Echo=1000", "--set", "Decay=0.5"};
  // Fourteen halvings are -84.3 dB, fifteen are -90.3 dB.
  const std::vector<double> faded = Rendered(echoes).samples;
  ASSERT_EQ(faded.size(), 14U * 8000 + 1);
  EXPECT_EQ(faded.back(), std::ldexp(1.0, -14));
  EXPECT_EQ(Rendered(echoes + Words{"--tail", "0"}).samples.size(), 100U);
  const std::vector<double> fixed = Rendered(echoes + Words{"--tail", "1.5"}).samples;
  ASSERT_EQ(fixed.size(), 100U + 12000);
  EXPECT_EQ(fixed[8000], 0.5);
  const Ended endless =
      Tolmara({"render", "in.wav", "out.wav", "--set", "Echo=500", "--set", "Decay=1"});
  EXPECT_NE(endless.err.find("was cut"), std::string::npos) << endless.err;
  EXPECT_NEAR(static_cast<double>(Read("out.wav").Frames()), 120 * 8000, 8000);
}

TEST_F(RenderTest, RepeatsAreIdenticalByteForByte) {
  Write("in.wav", NoiseSound(2, 44100, 5000, kWavFloat));
  for (const std::string kind : {".wav", ".flac", ".aiff"}) {
    for (const std::string name : {"first", "again"})
      Works({"render", "in.wav", name + kind, "--set", "Echo=30"});
    EXPECT_EQ(Bytes("first" + kind), Bytes("again" + kind)) << kind;
    // The chunk of this name holds the time of day.
    EXPECT_EQ(Bytes("first" + kind).find("PEAK"), std::string::npos) << kind;
  }
}

TEST_F(RenderTest, IntegersSaturateWithAWarningAndFloatsKeepTheirOvers) {
  Write("in.wav", NoiseSound(1, 44100, 1000, kWav16));
  const Sound dry = Read("in.wav");
  for (const bool floats : {false, true}) {
    const Ended ended = Tolmara(
        {"render", "in.wav", "out.wav", "--set", "Level=4", "--depth", floats ? "float" : "16"});
    EXPECT_EQ(ended.err.find("samples were clipped") == std::string::npos, floats) << ended.err;
    const Sound wet = Read("out.wav");
    for (std::size_t i = 0; i < dry.samples.size(); ++i) {
      const double loud = 4 * dry.samples[i];
      EXPECT_EQ(wet.samples[i], floats ? loud : std::clamp(loud, -1.0, 32767.0 / 32768)) << i;
    }
  }
}

TEST_F(RenderTest, TakesOutTheDelayThatItIsToldAndNoOther) {
  WriteImpulse(44100, 3000);
  const Sound wet = Rendered({"--block", "64", "--delay", "24", "--tail", "0"});
  EXPECT_EQ(wet.samples[40], 1);  // of the block's 64 only 24 were taken out
}

TEST_F(RenderTest, NeedsNoMoreMemoryForALongerFile) {
  long memory[2];
  for (const std::size_t i : {0U, 1U}) {
    const std::size_t seconds = i == 0 ? 20 : 400;
    Write("in.wav", {2, 44100, kWav16, std::vector<double>(seconds * 88200, 0.25)});
    memory[i] = Tolmara({"render", "in.wav", "out.wav"}).peakMemory;
    ASSERT_EQ(Read("out.wav").Frames(), seconds * 44100);
  }
  EXPECT_LT(memory[1] - memory[0], 4000) << "kB, for 67 MB more of sound";
}

TEST_F(RenderTest, ResponseIsTheAnswerToAnImpulseAndEndsWithTheLastAudibleSample) {
  Works({"response", "response.wav", "--rate", "8000", "--set", "Echo=100", "--set", "Decay=-0",
         "--set", "Decay=0.1"});
  const Sound response = Read("response.wav");
  EXPECT_EQ(response.format, kWavFloat);
  EXPECT_EQ(response.rate, 8000);
  EXPECT_EQ(response.channels, 1);
  // A tenth per echo: six echoes are within 140 dB, and the seventh is on the limit.
  ASSERT_GE(response.Frames(), 6U * 800 + 1);
  ASSERT_LE(response.Frames(), 7U * 800 + 1);
  for (std::size_t i = 0; i < response.Frames(); ++i) {
    const double expected = i % 800 == 0 ? std::pow(0.1, static_cast<double>(i / 800)) : 0;
    ASSERT_NEAR(response.samples[i], expected, 1e-7) << i;
  }
  EXPECT_EQ(Tolmara({"response", "none.wav", "--set", "Level=0"}).code, 4) << "silence is none";
  EXPECT_EQ(Files(), Words{"response.wav"});
}

}  // namespace
