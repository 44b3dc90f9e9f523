// The command-line host and Tolmara together: what the one writes is what the other promises.
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tests/tools/ToolRun.h"

namespace {

using Json = nlohmann::json;

constexpr int kWavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
constexpr const char* kPlugin = TOLMARA_BINARY_DIR "/Tolmara.so";

class TolmaraTest : public ToolTest {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(kPlugin)) GTEST_SKIP() << "the plug-in is not built";
  }
};

std::vector<double> Convolved(const std::vector<double>& in, const std::vector<double>& response) {
  std::vector<double> out(in.size() + response.size() - 1, 0.0);
  for (std::size_t i = 0; i < in.size(); ++i) {
    if (in[i] == 0) continue;
    for (std::size_t k = 0; k < response.size(); ++k) out[i + k] += in[i] * response[k];
  }
  return out;
}

// One channel of an interleaved sound.
std::vector<double> Channel(const Sound& sound, std::size_t c) {
  std::vector<double> samples;
  for (std::size_t i = c; i < sound.samples.size(); i += static_cast<std::size_t>(sound.channels))
    samples.push_back(sound.samples[i]);
  return samples;
}

TEST_F(TolmaraTest, WetSoundIsTheInputConvolvedWithTheResponse) {
  // Bursts, so that the direct convolution stays short.
  Sound dry = NoiseSound(2, 44100, 3000, kWavFloat);
  for (std::size_t i = 0; i < dry.samples.size(); ++i)
    if (i / 2 % 1500 >= 25) dry.samples[i] = 0;
  Write("in.wav", dry);
  const std::vector<std::vector<std::string>> settings = {
      {"--preset", "X-zone"},
      {"--preset", "Y-zone", "--set", "Reverse Percent=10", "--set", "Low Cut Freq.=120"},
      {"--set", "Dimension 3=on", "--set", "Dimension 4=on", "--set", "Time Stretch=0.3"},
  };
  for (const std::vector<std::string>& room : settings) {
    std::vector<std::string> render = {"render", "in.wav", "wet.wav", "--block", "256"};
    std::vector<std::string> response = {"response", "response.wav"};
    render.insert(render.end(), room.begin(), room.end());
    response.insert(response.end(), room.begin(), room.end());
    Works(render);
    Works(response);
    const Sound wet = Read("wet.wav");
    for (const std::size_t c : {0U, 1U}) {
      const std::vector<double> expected = Convolved(Channel(dry, c), Read("response.wav").samples);
      const std::vector<double> got = Channel(wet, c);
      double peak = 0, worst = 0;
      std::size_t at = 0;
      for (std::size_t i = 0; i < std::min(got.size(), expected.size()); ++i) {
        peak = std::max(peak, std::abs(expected[i]));
        const double error = std::abs(got[i] - expected[i]);
        if (error > worst) at = i;
        worst = std::max(worst, error);
      }
      ASSERT_GT(peak, 0);
      EXPECT_LT(20 * std::log10(worst / peak), -100)
          << room[1] << ", channel " << c << ", at " << at;
    }
  }
}

TEST_F(TolmaraTest, DrySoundComesThroughBitForBit) {
  for (const int channels : {1, 2}) {
    Write("in.flac", NoiseSound(channels, 48000, 7001, SF_FORMAT_FLAC | SF_FORMAT_PCM_24));
    Works({"render", "in.flac", "out.flac", "--set", "Mix=0", "--preset", "Hall", "--tail", "0"});
    EXPECT_EQ(Read("out.flac").samples, Read("in.flac").samples) << channels;
  }
}

TEST_F(TolmaraTest, RepeatsAreIdenticalByteForByteAndDoNotDependOnWhatWasSetBefore) {
  Write("in.wav", NoiseSound(2, 44100, 30000, kWavFloat));
  Works({"render", "in.wav", "first.wav", "--preset", "Cathedral", "--set", "Pan=6"});
  Works({"render", "in.wav", "again.wav", "--preset", "Cathedral", "--set", "Pan=6"});
  EXPECT_EQ(Bytes("first.wav"), Bytes("again.wav"));
  Works({"render", "in.wav", "other.wav", "--preset", "Cathedral", "--set", "Size 0=4", "--set",
         "Pan=-20", "--set", "Size 0=15", "--set", "Pan=6"});
  EXPECT_EQ(Bytes("first.wav"), Bytes("other.wav"));
}

TEST_F(TolmaraTest, APresetFileGivesItsSettingsToAFreshInstance) {
  Works({"save-bank", "factory.fxb"});
  const Json bank = Json::parse(Works({"show", "factory.fxb", "--json"}))["presets"];
  ASSERT_EQ(bank.size(), 28U);
  for (const std::size_t i : {std::size_t{0}, std::size_t{12}, std::size_t{18}, std::size_t{27}}) {
    const std::string name = bank[i]["name"];
    Works({"save-preset", "one.fxp", "--preset", name});
    const Json loaded = Json::parse(Works({"params", "--load-fxp", "one.fxp", "--json"}));
    const Json chosen = Json::parse(Works({"params", "--preset", name, "--json"}));
    ASSERT_EQ(loaded.size(), 46U);
    for (std::size_t id = 0; id < loaded.size(); ++id) {
      const double value = chosen[id]["value"];
      EXPECT_NEAR(loaded[id]["value"], value, 1e-7) << name << " " << id;
      EXPECT_NEAR(bank[i]["parameters"][id]["value"], value, 1e-7) << name << " " << id;
    }
  }
}

}  // namespace
