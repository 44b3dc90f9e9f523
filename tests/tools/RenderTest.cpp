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
  // A sample of 1 and then silence.
  void WriteImpulse(const std::string& name, int rate, std::size_t frames) {
    Sound impulse{1, rate, kWavFloat, std::vector<double>(frames, 0.0)};
    impulse.samples[0] = 1;
    Write(name, impulse);
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
  };
  for (const Case& c : cases) {
    Write(c.name, NoiseSound(c.channels, c.rate, c.frames, c.format));
    const Sound dry = Read(c.name);
    const std::string out = std::string("out_") + c.name;
    Works({"render", c.name, out, "--plugin", "full_effect.so", "--block", c.block});
    const Sound wet = Read(out);
    EXPECT_EQ(wet.format, dry.format) << c.name;
    EXPECT_EQ(wet.rate, dry.rate) << c.name;
    EXPECT_EQ(wet.channels, dry.channels) << c.name;
    EXPECT_EQ(wet.samples, dry.samples) << c.name;
  }
}

TEST_F(RenderTest, KeepsTheLengthOfAnOggFile) {
  Write("in.ogg", NoiseSound(2, 44100, 20000, SF_FORMAT_OGG | SF_FORMAT_VORBIS));
  Works({"render", "in.ogg", "out.ogg", "--tail", "0", "--plugin", "full_effect.so"});
  const Sound wet = Read("out.ogg");
  EXPECT_EQ(wet.format, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
  EXPECT_EQ(wet.Frames(), 20000U);
}

TEST_F(RenderTest, TakesTheContainerFromTheNameAndTheDepthFromTheInputOrTheUser) {
  Write("in.wav", NoiseSound(1, 44100, 100, kWavFloat));
  struct Case {
    const char* out;
    std::vector<std::string> extra;
    int format;
  };
  const Case cases[] = {
      {"a.wav", {}, kWavFloat},
      {"b.sound", {}, kWavFloat},
      {"c.flac", {}, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
      {"d.AIF", {}, SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
      {"e.wav", {"--depth", "24"}, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
      {"f.flac", {"--depth", "16"}, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
      {"g.wav", {"--depth", "double"}, SF_FORMAT_WAV | SF_FORMAT_DOUBLE},
      {"h.ogg", {}, SF_FORMAT_OGG | SF_FORMAT_VORBIS},
  };
  for (const Case& c : cases) {
    std::vector<std::string> arguments = {"render", "in.wav", c.out, "--plugin", "full_effect.so"};
    arguments.insert(arguments.end(), c.extra.begin(), c.extra.end());
    Works(arguments);
    EXPECT_EQ(Read(c.out).format, c.format) << c.out;
  }
}

TEST_F(RenderTest, SettingsSoundFromTheFirstSampleOn) {
  Write("in.wav", NoiseSound(2, 44100, 2000, kWavFloat));
  const Sound dry = Read("in.wav");
  Works({"save-preset", "five.fxp", "--set", "level=2.5", "--plugin", "full_effect.so"});
  struct Case {
    std::vector<std::string> settings;
    double factor;
  };
  const Case cases[] = {
      {{"--set", "Level=1.5"}, 1.5},
      {{"--preset", "doubled"}, 2},
      {{"--preset", "Doubled", "--set", "Invert=on"}, -2},
      {{"--set", "0=3", "--set", "5=1", "--set", "Level = 0.5"}, -0.5},
      {{"--load-fxp", "five.fxp"}, 2.5},
  };
  for (const Case& c : cases) {
    std::vector<std::string> arguments = {"render", "in.wav", "out.wav", "--plugin",
                                          "full_effect.so"};
    arguments.insert(arguments.end(), c.settings.begin(), c.settings.end());
    Works(arguments);
    const Sound wet = Read("out.wav");
    ASSERT_EQ(wet.samples.size(), dry.samples.size());
    for (std::size_t i = 0; i < wet.samples.size(); ++i)
      ASSERT_NEAR(wet.samples[i], c.factor * dry.samples[i], 1e-6) << c.settings[1] << " at " << i;
  }
}

TEST_F(RenderTest, HostsAnEffectWithoutTextsChunksOrDoublePrecision) {
  Write("in.wav", NoiseSound(1, 44100, 1000, kWavFloat));
  Works({"render", "in.wav", "out.wav", "--plugin", "plain_effect.so", "--set", "Level=0.5"});
  const Sound dry = Read("in.wav");
  Sound wet = Read("out.wav");
  for (double& x : wet.samples) x /= 2;  // position 0.5 is a level of 2
  EXPECT_EQ(wet.samples, dry.samples);
}

TEST_F(RenderTest, KeepsTheTailUntilItHasFadedOrAsLongAsAsked) {
  WriteImpulse("in.wav", 8000, 100);
  const std::vector<std::string> echoes = {"--plugin",  "full_effect.so", "--set",
                                           "Echo=1000", "--set",          "Decay=0.5"};
  auto render = [&](std::vector<std::string> tail) {
    tail.insert(tail.begin(), {"render", "in.wav", "out.wav"});
    tail.insert(tail.end(), echoes.begin(), echoes.end());
    Works(tail);
    return Read("out.wav").samples;
  };
  // Fourteen halvings are -84.3 dB, fifteen are -90.3 dB.
  const std::vector<double> faded = render({});
  ASSERT_EQ(faded.size(), 14U * 8000 + 1);
  EXPECT_EQ(faded.back(), std::ldexp(1.0, -14));
  EXPECT_EQ(render({"--tail", "0"}).size(), 100U);
  const std::vector<double> fixed = render({"--tail", "1.5"});
  ASSERT_EQ(fixed.size(), 100U + 12000);
  EXPECT_EQ(fixed[8000], 0.5);
}

TEST_F(RenderTest, CutsATailThatNeverFadesAndSaysSo) {
  WriteImpulse("in.wav", 1000, 100);
  const Ended ended = Tolmara({"render", "in.wav", "out.wav", "--plugin", "full_effect.so", "--set",
                               "Echo=500", "--set", "Decay=1"});
  EXPECT_EQ(ended.code, 0);
  EXPECT_NE(ended.err.find("was cut"), std::string::npos) << ended.err;
  EXPECT_NEAR(static_cast<double>(Read("out.wav").Frames()), 120000, 1000);
}

TEST_F(RenderTest, RepeatsAreIdenticalByteForByte) {
  Write("in.wav", NoiseSound(2, 44100, 5000, kWavFloat));
  for (const std::string kind : {".wav", ".flac", ".aiff"}) {
    Works({"render", "in.wav", "first" + kind, "--set", "Echo=30", "--plugin", "full_effect.so"});
    Works({"render", "in.wav", "again" + kind, "--set", "Echo=30", "--plugin", "full_effect.so"});
    EXPECT_EQ(Bytes("first" + kind), Bytes("again" + kind)) << kind;
    // The chunk of this name holds the time of day.
    EXPECT_EQ(Bytes("first" + kind).find("PEAK"), std::string::npos) << kind;
  }
}

TEST_F(RenderTest, IntegersSaturateWithAWarningAndFloatsKeepTheirOvers) {
  Write("in.wav", NoiseSound(1, 44100, 1000, kWav16));
  const Sound dry = Read("in.wav");
  const std::vector<std::string> loud = {"--plugin", "full_effect.so", "--set", "Level=4"};
  auto render = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), loud.begin(), loud.end());
    return Tolmara(arguments).err;
  };
  EXPECT_NE(render({"render", "in.wav", "out.wav"}).find("samples were clipped"),
            std::string::npos);
  EXPECT_EQ(render({"render", "in.wav", "float.wav", "--depth", "float"}).find("clipped"),
            std::string::npos);
  const Sound held = Read("out.wav");
  const Sound kept = Read("float.wav");
  for (std::size_t i = 0; i < dry.samples.size(); ++i) {
    EXPECT_EQ(kept.samples[i], 4 * dry.samples[i]);
    EXPECT_EQ(held.samples[i], std::clamp(4 * dry.samples[i], -1.0, 32767.0 / 32768)) << i;
  }
}

TEST_F(RenderTest, TellsTheDelayThatAnEffectHidesAndBelievesAnotherIfTold) {
  WriteImpulse("in.wav", 44100, 3000);
  Works({"render", "in.wav", "out.wav", "--plugin", "full_effect.so", "--block", "64", "--delay",
         "24", "--tail", "0"});
  const Sound wet = Read("out.wav");
  EXPECT_EQ(wet.samples[40], 1);  // of the block's 64 only 24 were taken out
}

TEST_F(RenderTest, NeedsNoMoreMemoryForALongerFile) {
  long memory[2];
  for (const int i : {0, 1}) {
    const std::string name = i == 0 ? "short.wav" : "long.wav";
    const std::size_t seconds = i == 0 ? 20 : 400;
    Write(name, {2, 44100, kWav16, std::vector<double>(seconds * 88200, 0.25)});
    const Ended ended = Tolmara({"render", name, "out.wav", "--plugin", "full_effect.so"});
    ASSERT_EQ(ended.code, 0) << ended.err;
    memory[i] = ended.peakMemory;
  }
  EXPECT_LT(memory[1] - memory[0], 4000) << "kB, for 67 MB more of sound";
}

TEST_F(RenderTest, ResponseIsTheAnswerToAnImpulseAndEndsWithTheLastAudibleSample) {
  Works({"response", "response.wav", "--rate", "8000", "--plugin", "full_effect.so", "--set",
         "Echo=100", "--set", "Decay=-0", "--set", "Decay=0.1"});
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
  const Ended silent =
      Tolmara({"response", "none.wav", "--plugin", "full_effect.so", "--set", "Level=0"});
  EXPECT_EQ(silent.code, 4);
  EXPECT_EQ(Files(), std::vector<std::string>{"response.wav"});
}

}  // namespace
