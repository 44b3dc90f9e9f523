// tolmara screenshot: the editor's picture, without any window.
#include <png.h>

#include "tests/tools/ToolRun.h"

namespace {

// Red, green and blue of each pixel of a picture as large as the editor.
std::vector<unsigned char> Pixels(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_NE(png_image_begin_read_from_file(&image, path.c_str()), 0);
  EXPECT_EQ(image.width, 960U);
  EXPECT_EQ(image.height, 600U);
  image.format = PNG_FORMAT_RGB;
  std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
  EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
  return pixels;
}

using ScreenshotTest = ToolTest;

TEST_F(ScreenshotTest, ShowsTheArtAndTheSettingsAlikeEachTime) {
  mPlugin = "";  // the program holds the editor's own plug-in
  const Words room = {"--preset", "X-zone-curt"};
  Works(Words{"screenshot", "one.png"} + room);
  Works(Words{"screenshot", "again.png"} + room);
  Works(Words{"screenshot", "gain.png", "--set", "Gain=12"} + room);
  EXPECT_EQ(Bytes("one.png"), Bytes("again.png"));
  const auto art = Pixels(TOLMARA_SOURCE_DIR "/resources/img/Tolmara_v2_small.png");
  const auto one = Pixels(In("one.png")), gain = Pixels(In("gain.png"));
  int changed = 0, drawn = 0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    const std::size_t x = i / 3 % 960, y = i / 3 / 960;
    const bool inKnob = x >= 845 && x < 905 && y >= 466 && y < 526;
    changed += inKnob && one[i] != gain[i];
    drawn += one[i] != art[i];
    ASSERT_TRUE(inKnob || one[i] == gain[i]) << x << " " << y;
  }
  EXPECT_GT(changed, 50);
  EXPECT_GT(drawn, 20000);
  EXPECT_LT(drawn, 960 * 600) << "most of it is the art";
}

}  // namespace
