// The demo sound that ships is what its generator makes.
#include "tests/tools/ToolRun.h"

namespace {

class DemoSoundTest : public ToolTest {};

TEST_F(DemoSoundTest, TheGeneratorGivesTheShippedSoundAgain) {
  ASSERT_EQ(Run(TOLMARA_BINARY_DIR "/tools/make_demo_sound", {"again.flac"}).code, 0);
  const std::string shipped = TOLMARA_SOURCE_DIR "/resources/demo/dry.flac";
  std::filesystem::copy_file(shipped, In("shipped.flac"));
  const Sound sound = Read("shipped.flac");
  EXPECT_GT(sound.Frames(), 6U * 44100);
  EXPECT_EQ(Read("again.flac").samples, sound.samples);
  EXPECT_LT(std::filesystem::file_size(shipped), 1000000U);
}

}  // namespace
