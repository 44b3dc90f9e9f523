// Bitmaps from files, the caches that editors share, fonts, and the windowless platform's paths.
#include <png.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "graphics/IControls.h"
#include "graphics/IFaderMultiControlText.h"
#include "tests/graphics/Fixture.h"

namespace {

namespace fs = std::filesystem;

void WritePNG(const fs::path& path, int w, int h) {
  const std::vector<unsigned char> pixels(static_cast<size_t>(w * h * 4), 255);
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

TEST_F(Resources, OnlyTheLastPartOfANameAndItsExtensionCount) {
  const IBitmap two = graphics->LoadIBitmap(1, "resources/img/Two.png", 2);
  ASSERT_NE(two.mData, nullptr);
  EXPECT_EQ(two.W, 12);
  EXPECT_EQ(two.H, 20) << "the size is that of the whole picture";
  EXPECT_EQ(two.FrameHeight(), 10);
  EXPECT_NE(graphics->LoadIBitmap(2, "Two.PNG").mData, nullptr);
  for (const char* name : {"resources/img/Two.jpg", "png", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(graphics->LoadIBitmap(3, name).mData, nullptr);
  }
}

TEST_F(Resources, EditorsShareTheBitmapOfAnIdFromThenOn) {
  const void* first = graphics->LoadIBitmap(10, "Two.png").mData;
  ASSERT_NE(first, nullptr);
  TestGraphics other(&plug, 10, 10);
  EXPECT_EQ(other.LoadIBitmap(10, "Missing.png", 3).mData, first);
  EXPECT_NE(other.LoadIBitmap(11, "Two.png").mData, first);
  IBitmap missing = other.LoadIBitmap(12, "Later.png");
  EXPECT_EQ(missing.mData, nullptr);
  WritePNG(folder / "Later.png", 5, 5);
  EXPECT_NE(other.LoadIBitmap(12, "Later.png").mData, nullptr) << "a failure is not remembered";
}

TEST_F(Resources, EditorsOnSeveralThreadsMayLoadAndWriteAtOnce) {
  const auto work = [this](int seed) {
    TestGraphics editor(&plug, 50, 50);
    editor.PrepDraw();
    IRECT rect(0, 0, 50, 50);
    for (int i = 0; i < 50; ++i) {
      EXPECT_NE(editor.LoadIBitmap(20 + (seed + i) % 7, "Two.png").mData, nullptr);
      IText text(8 + i % 5, seed ? kColorRed : kColorGreen);
      editor.DrawIText(&text, "0.5", &rect);
    }
    EXPECT_EQ(editor.CountOf((seed ? kColorGreen : kColorRed).Pixel()), 0);
  };
  std::thread a(work, 0);
  std::thread b(work, 1);
  a.join();
  b.join();
}

TEST_F(Resources, TheBackgroundGoesBelowAllThatWasAttachedBefore) {
  auto* early = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  graphics->AttachBackground(30, "Two.png");
  EXPECT_EQ(graphics->GetControl(1), early);
  EXPECT_EQ(graphics->GetControl(0)->GetRECT(), IRECT(0, 0, 12, 20));
  EXPECT_EQ(graphics->GetControl(0)->ParamIdx(), -1);
  EXPECT_EQ(graphics->GetControl(0)->GetBlend().mMethod, IChannelBlend::kBlendClobber);
  Show();
  EXPECT_EQ(graphics->PixelAt(11, 19), kColorWhite.Pixel());
}

TEST_F(Resources, AMissingPictureLeavesEverythingElseWorking) {
  graphics->AttachBackground(40, "NoBackground.png");
  const IBitmap missing = graphics->LoadIBitmap(41, "NoHandle.png", 2);
  Attach<ISwitchControl>(10, 10, kOnOff, missing);
  auto* fader =
      Attach<IFaderMultiControlText>(0, 40, 100, kLevel, missing, kHorizontal, false, IText(), 2.5);
  auto* probe = Attach<ProbeControl>(IRECT(50, 50, 60, 60), kCount);
  Show();
  EXPECT_EQ(graphics->BoundsOf(kColorRed.Pixel()), IRECT(50, 50, 60, 60));
  graphics->OnMouseDown(55, 55, &left);
  EXPECT_EQ(probe->TakeEvents().back(), "down 55 55");
  fader->OnMouseDown(25, 40, &left);
  EXPECT_EQ(plug.GetParam(kLevel)->Value(), 0.25);
}

TEST_F(Resources, TextIsMeasuredWhereItsAlignmentPutsIt) {
  const auto measured = [this](IText text) {
    IRECT rect(10, 20, 110, 90);
    EXPECT_TRUE(graphics->MeasureIText(&text, "0.50", &rect));
    return rect;
  };
  IText text(12, kColorBlack);
  const int width = measured(text).W();
  EXPECT_GT(width, 12);
  EXPECT_EQ(measured(text), IRECT(60 - width / 2, 20, 60 - width / 2 + width, 32));
  text.mAlign = IText::kAlignFar;
  EXPECT_EQ(measured(text), IRECT(110 - width, 20, 110, 32));
  text.mAlign = IText::kAlignNear;
  EXPECT_EQ(measured(text), IRECT(10, 20, width, 32));
  for (const int size : {2, 8, 11, 14, 60}) {
    text.mSize = size;  // a copy gets the font of its own size
    EXPECT_EQ(measured(text).H(), size) << "lines are as high as the style asks";
  }
}

TEST_F(Resources, TextIsDrawnCentredNearOrFarInItsColour) {
  graphics->AttachPanelBackground(&kColorBlack);
  Show();
  const auto inkOf = [this](IText text, const char* str) {
    graphics->DrawEverything();
    IRECT rect(20, 30, 180, 50);
    EXPECT_TRUE(graphics->DrawIText(&text, str, &rect));
    IRECT ink;
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const IColor c = graphics->GetPoint(x, y);
        EXPECT_EQ(c.G, 0);
        if (c.R > 100) ink = ink.Union({x, y, x + 1, y + 1});
      }
    }
    return ink;
  };
  IText text(14, kColorRed);
  const IRECT centred = inkOf(text, "HOH");
  EXPECT_NEAR(centred.L + centred.R, 200, 2);
  EXPECT_GE(centred.T, 30);
  EXPECT_LE(centred.B, 44);
  text.mAlign = IText::kAlignNear;
  EXPECT_NEAR(inkOf(text, "HOH").L, 20, 3);
  text.mAlign = IText::kAlignFar;
  EXPECT_NEAR(inkOf(text, "HOH").R, 180, 3);
  EXPECT_TRUE(inkOf(text, "").Empty());
  EXPECT_TRUE(inkOf(text, nullptr).Empty());
}

TEST_F(Resources, BitmapsLieBesideTheBinaryUnlessToldOtherwise) {
  IGraphicsOffscreen::SetResourceFolder("");
  const fs::path program = fs::read_symlink("/proc/self/exe");
  EXPECT_EQ(IGraphicsOffscreen::GetResourceFolder(), (program.parent_path() / "resources/img"));
  HeapString path;
  graphics->HostPath(&path);
  EXPECT_EQ(path.Get(), program.string());
  graphics->PluginPath(&path);
  EXPECT_EQ(path.Get(), program.parent_path().string() + "/");
  ::setenv("HOME", "/home/somebody", 1);
  graphics->DesktopPath(&path);
  EXPECT_STREQ(path.Get(), "/home/somebody/Desktop/");
}

TEST_F(Resources, WithoutAWindowEveryQuestionIsDeclined) {
  const std::unique_ptr<IGraphics> offscreen =
      std::make_unique<IGraphicsOffscreen>(&plug, 8, 8, -5);
  EXPECT_EQ(offscreen->FPS(), 25);
  EXPECT_EQ(offscreen->OpenWindow(&plug), nullptr);
  EXPECT_FALSE(offscreen->WindowIsOpen());
  EXPECT_FALSE(offscreen->OpenURL("https://www.example.com/"));
  HeapString file("kept.fxp");
  HeapString dir;
  offscreen->PromptForFile(&file, IGraphics::kFileOpen, &dir, "fxp");
  EXPECT_STREQ(file.Get(), "");
  IPopupMenu menu;
  IRECT rect;
  EXPECT_EQ(offscreen->CreateIPopupMenu(&menu, &rect), nullptr);
  IColor colour;
  EXPECT_FALSE(offscreen->PromptForColor(&colour, ""));
  EXPECT_FALSE(offscreen->DrawScreen(&rect));
}

}  // namespace
