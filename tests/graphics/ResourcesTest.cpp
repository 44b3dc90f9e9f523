// Bitmaps from files, the caches that editors share, fonts, and the windowless platform's paths.
#include <fontconfig/fontconfig.h>
#include <png.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "graphics/controls/ICircleKnobMultiControlText.h"
#include "graphics/controls/IControls.h"
#include "graphics/controls/IFaderMultiControlText.h"
#include "graphics/controls/ITextControls.h"
#include "tests/graphics/Fixture.h"

namespace {

namespace fs = std::filesystem;

void WritePNG(const fs::path& path, int w, int h) {
  const std::vector<unsigned char> pixels(static_cast<std::size_t>(w * h * 4), 255);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<unsigned>(w);
  image.height = static_cast<unsigned>(h);
  image.format = PNG_FORMAT_RGBA;
  ASSERT_NE(png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr), 0);
}

// A folder of bitmaps, this process' own, as cases run side by side. The cache outlives every case,
// so each case uses ids of its own.
class Resources : public EditorTest {
 protected:
  Resources() : folder(fs::path(::testing::TempDir()) / ("tolmara_" + std::to_string(getpid()))) {
    fs::create_directories(folder);
    WritePNG(folder / "Two.png", 12, 20);
    IGraphicsOffscreen::SetResourceFolder(folder.string());
  }
  ~Resources() override {
    IGraphicsOffscreen::SetResourceFolder("");
    fs::remove_all(folder);
  }

  fs::path folder;
};

TEST_F(Resources, EditorsShareTheBitmapOfAnIdFromItsFirstSuccessOn) {
  const IBitmap two = graphics->LoadIBitmap(1, "resources/img/Two.png", 2);
  ASSERT_NE(two.mData, nullptr);
  EXPECT_EQ(IRECT(0, 0, two), IRECT(0, 0, 12, 10));
  EXPECT_EQ(two.H, 20) << "the size is that of the whole picture";
  TestGraphics other(&plug, 10, 10);
  EXPECT_EQ(other.LoadIBitmap(1, "Missing.png", 3).mData, two.mData);
  for (const char* name : {"resources/img/Two.jpg", "png", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(other.LoadIBitmap(2, name).mData, nullptr);
  }
  const void* const upper = other.LoadIBitmap(2, "elsewhere/Two.PNG").mData;
  EXPECT_TRUE(upper && upper != two.mData) << "folder and case of the extension do not count";
}

TEST_F(Resources, EditorsOnSeveralThreadsMayLoadAndWriteAtOnce) {
  const auto work = [this](const IColor& own, const IColor& foreign) {
    TestGraphics editor(&plug, 52, 50);
    editor.PrepDraw();
    IRECT rect(0, 0, 50, 50);
    for (int i = 0; i < 50; ++i) {
      EXPECT_NE(editor.LoadIBitmap(20 + i % 7, "Two.png").mData, nullptr);
      IText text(8 + i % 5, own);
      editor.DrawIText(&text, "0.5", &rect);
    }
    EXPECT_EQ(editor.CountOf(foreign.Pixel()), 0);
  };
  std::thread other(work, kColorRed, kColorGreen);
  work(kColorGreen, kColorRed);
  other.join();
}

TEST_F(Resources, TheBackgroundGoesBelowAllThatWasAttachedBefore) {
  auto* early = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  graphics->AttachBackground(30, "Two.png");
  EXPECT_EQ(graphics->GetControl(1), early);
  EXPECT_EQ(graphics->GetControl(0)->GetRECT(), IRECT(0, 0, 12, 20));
  EXPECT_EQ(graphics->GetControl(0)->ParamIdx(), -1);
  Show();
  EXPECT_EQ(graphics->PixelAt(11, 19), kColorWhite.Pixel());
}

TEST_F(Resources, AMissingPictureLeavesEverythingElseWorking) {
  graphics->AttachBackground(40, "NoBackground.png");
  const IBitmap missing = graphics->LoadIBitmap(41, "NoHandle.png", 2);
  Attach<ISwitchControl>(10, 10, kOnOff, missing);
  auto* fader =
      Attach<IFaderMultiControlText>(0, 40, 100, kLevel, missing, kHorizontal, false, IText(), 2.5);
  auto* probe = Attach<ProbeControl>(IRECT(50, 50, 60, 60));
  Attach<ICaptionControl>(IRECT(80, 10, 120, 30), kCount, IText(14, kColorBlue));
  Show();
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(50, 50, 60, 60));
  Click(55, 55);
  EXPECT_EQ(probe->TakeEvents().back(), "up 55 55");
  fader->OnMouseDown(25, 40, &left);
  EXPECT_EQ(plug.GetParam(kLevel)->Value(), 0.25);
  // Nothing covers the last value's text, and yet it goes.
  const auto before = graphics->Pixels();
  for (const double value : {0.8, 0.4}) {
    plug.GetParam(kCount)->SetNormalized(value);
    graphics->SetParameterFromPlug(kCount, value, true);
    Settle();
    EXPECT_EQ(graphics->Pixels() == before, value == 0.4);
  }
}

TEST_F(Resources, AMissingFontLeavesEverythingElseWorking) {
  FcConfig* const before = FcConfigReference(nullptr);
  FcConfig* const none = FcConfigCreate();
  FcConfigSetCurrent(none);
  IText text(77, kColorWhite);  // of a size that no other case brings into the cache
  auto* knob = Attach<ICircleKnobMultiControlText>(kLevel, 60, 50, 40, text, kColorRed);
  Show();
  EXPECT_GT(graphics->CountOf(kRed), 10);
  EXPECT_FALSE(knob->Draw(graphics));
  FcConfigSetCurrent(before);
  EXPECT_TRUE(knob->Draw(graphics)) << "a failure is not remembered";
  FcConfigDestroy(none);
  FcConfigDestroy(before);
}

TEST_F(Resources, TextIsMeasuredAndDrawnWhereItsAlignmentPutsIt) {
  graphics->AttachPanelBackground(&kColorBlack);
  Show();
  IText text(14, kColorRed);
  const auto measured = [&] {
    IRECT rect(20, 30, 180, 50);
    EXPECT_TRUE(IGraphics::DrawTextOn(nullptr, &text, "HOH", &rect, true));
    return rect;
  };
  const int width = measured().W(), middle = 100 - width / 2;
  for (const auto& [align, start, measure] :
       {std::tuple(IText::kAlignCenter, middle, IRECT(middle, 30, middle + width, 44)),
        std::tuple(IText::kAlignFar, 180 - width, IRECT(180 - width, 30, 180, 44)),
        std::tuple(IText::kAlignNear, 20, IRECT(20, 30, width, 44))}) {
    text.mAlign = align;
    EXPECT_EQ(measured(), measure);
    graphics->DrawEverything();
    for (const char* str : {"HOH", "", static_cast<const char*>(nullptr)}) {
      IRECT rect(20, 30, 180, 50);
      EXPECT_TRUE(graphics->DrawIText(&text, str, &rect));
    }
    const IRECT ink = graphics->BoundsOf(kRed);
    EXPECT_NEAR(ink.L, start, 1);
    EXPECT_NEAR(ink.W(), width, 2);
    EXPECT_TRUE(ink.T >= 30 && ink.B <= 44);
  }
  for (const int size : {2, 8, 11, 14, 60}) {
    text = IText(size, kColorRed);
    EXPECT_EQ(measured().H(), size) << "lines are as high as the style asks";
  }
}

TEST_F(Resources, StylesGiveWeightSlantTurnAndBlackAndWhite) {
  graphics->AttachPanelBackground(&kColorBlack);
  Show();
  // Sum of all red, and how many pixels lie between black and full.
  const auto inkOf = [this](int style, int orientation, int quality) {
    graphics->DrawEverything();
    static int size = 30;  // the cache does not tell qualities apart
    IText text(quality ? ++size : 30, kColorRed, nullptr, style, IText::kAlignNear, orientation,
               quality);
    IRECT rect(5, 5, 195, 95);
    graphics->DrawIText(&text, "Hall", &rect);
    int sum = 0, between = 0;
    for (int i = 0; i < kWidth * kHeight; ++i) {
      const int red = graphics->GetPoint(i % kWidth, i / kWidth).R;
      sum += red;
      between += red > 0 && red < 255;
    }
    return std::pair(sum, between);
  };
  const auto plain = inkOf(IText::kStyleNormal, 0, 0);
  EXPECT_GT(plain.second, 20);
  EXPECT_GT(inkOf(IText::kStyleBold, 0, 0).first, plain.first * 5 / 4);
  EXPECT_NE(inkOf(IText::kStyleItalic, 0, 0), plain);
  EXPECT_NE(inkOf(IText::kStyleNormal, 90, 0), plain);
  for (const auto& [quality, smooth] :
       {std::pair(1, false), std::pair(2, true), std::pair(3, true), std::pair(4, false)}) {
    EXPECT_EQ(inkOf(IText::kStyleNormal, 0, quality).second > 0, smooth) << quality;
  }
}

TEST_F(Resources, TheOffscreenPlatformKnowsItsPathsAndDeclinesEveryQuestion) {
  IGraphicsOffscreen::SetResourceFolder("");
  const fs::path program = fs::read_symlink("/proc/self/exe");
  EXPECT_EQ(IGraphicsOffscreen::GetResourceFolder(), program.parent_path() / "resources/img");
  ::setenv("HOME", "/home/somebody", 1);
  IGraphicsOffscreen offscreen(&plug, 8, 8, -5);
  HeapString host, own, desktop, file("kept.fxp"), dir;
  offscreen.HostPath(&host);
  offscreen.PluginPath(&own);
  offscreen.DesktopPath(&desktop);
  EXPECT_EQ(host.Get(), program.string());
  EXPECT_EQ(own.Get(), program.parent_path().string() + "/");
  EXPECT_STREQ(desktop.Get(), "/home/somebody/Desktop/");

  offscreen.PromptForFile(&file, IGraphics::kFileOpen, &dir, "fxp");
  EXPECT_STREQ(file.Get(), "");
  IPopupMenu menu;
  IRECT rect;
  IColor colour;
  EXPECT_FALSE(offscreen.OpenWindow(&plug) || offscreen.WindowIsOpen() ||
               offscreen.OpenURL("https://www.example.com/") ||
               offscreen.CreateIPopupMenu(&menu, &rect) || offscreen.PromptForColor(&colour, "") ||
               offscreen.DrawScreen(&rect));
}

}  // namespace
