// The command-line host and Tolmara together: what the one writes is what the other promises.
#include <sndfile.h>

#include <algorithm>
#include <cmath>

#include "tests/tools/ToolRun.h"

namespace {

constexpr int kWavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;

class TolmaraTest : public ToolTest {
 protected:
  void SetUp() override {
    mPlugin = "";  // Tolmara lies beside the program
    if (!std::filesystem::exists(TOLMARA_BINARY_DIR "/Tolmara.so"))
      GTEST_SKIP() << "the plug-in is not built";
  }
};

// Each channel of an interleaved sound of two, through the response.
std::vector<double> Convolved(const Sound& in, const std::vector<double>& response) {
  std::vector<double> out(in.samples.size() + 2 * response.size() - 2, 0.0);
  for (std::size_t i = 0; i < in.samples.size(); ++i) {
    if (in.samples[i] == 0) continue;
    for (std::size_t k = 0; k < response.size(); ++k) out[i + 2 * k] += in.samples[i] * response[k];
  }
  return out;
}

TEST_F(TolmaraTest, WetSoundIsTheInputConvolvedWithTheResponse) {
  // Bursts, so that the direct convolution stays short.
  Sound dry = NoiseSound(2, 44100, 3000, kWavFloat);
  for (std::size_t i = 0; i < dry.samples.size(); ++i)
    if (i / 2 % 1500 >= 25) dry.samples[i] = 0;
  Write("in.wav", dry);
  const std::vector<Words> rooms = {
      {"--preset", "X-zone"},
      {"--preset", "Y-zone", "--set", "Reverse Percent=10", "--set", "Low Cut Freq.=120"},
      {"--set", "Dimension 3=on", "--set", "Dimension 4=on", "--set", "Time Stretch=0.3"},
  };
  for (const Words& room : rooms) {
    Works(Words{"render", "in.wav", "wet.wav", "--block", "256"} + room);
    Works(Words{"response", "response.wav"} + room);
    const std::vector<double> wet = Read("wet.wav").samples;
    const std::vector<double> expected = Convolved(dry, Read("response.wav").samples);
    double peak = 0, worst = 0;
    for (std::size_t i = 0; i < std::min(wet.size(), expected.size()); ++i) {
      peak = std::max(peak, std::abs(expected[i]));
      worst = std::max(worst, std::abs(wet[i] - expected[i]));
    }
    ASSERT_GT(peak, 0);
    EXPECT_LT(20 * std::log10(worst / peak), -100) << room[1];
  }
}

TEST_F(TolmaraTest, DrySoundComesThroughBitForBit) {
  for (const int channels : {1, 2}) {
    Write("in.flac", NoiseSound(channels, 48000, 7001, SF_FORMAT_FLAC | SF_FORMAT_PCM_24));
    Works({"render", "in.flac", "out.flac", "--set", "Mix=0", "--preset", "Hall", "--tail", "0"});
    EXPECT_TRUE(Read("out.flac") == Read("in.flac")) << channels;
  }
}

TEST_F(TolmaraTest, RepeatsAreIdenticalByteForByteAndDoNotDependOnWhatWasSetBefore) {
  Write("in.wav", NoiseSound(2, 44100, 30000, kWavFloat));
  const Words wanted = {"--set", "Pan=6"};
  const Words before = {"--set", "Size 0=4", "--set", "Pan=-20", "--set", "Size 0=15"};
  std::string first;
  for (const Words& sets : {wanted, wanted, before + wanted}) {
    Works(Words{"render", "in.wav", "out.wav", "--preset", "Cathedral"} + sets);
    if (first.empty()) first = Bytes("out.wav");
    EXPECT_EQ(Bytes("out.wav"), first);
  }
}

// Files that version 1.0 wrote are read for ever, and written alike.
TEST_F(TolmaraTest, PresetFilesOfVersion1ComeBackByteForByte) {
  const std::string golden = TOLMARA_SOURCE_DIR "/tests/golden/";
  Works({"save-preset", "again.fxp", "--load-fxp", golden + "program-1.0.fxp", "--name",
         "Dark hall"});
  EXPECT_EQ(Bytes("again.fxp"), Bytes(golden + "program-1.0.fxp"));
  const std::string shown = Works({"params", "--load-fxp", golden + "program-1.0.fxp"});
  EXPECT_NE(shown.find("High Decay               200 "), std::string::npos) << shown;
  Works({"save-bank", "again.fxb", "--set", "Gain=-7"});
  EXPECT_EQ(Bytes("again.fxb"), Bytes(golden + "bank-1.0.fxb"));
}

}  // namespace
