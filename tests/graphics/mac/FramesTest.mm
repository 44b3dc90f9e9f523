// The timer, what it asks to be drawn, and pixels.
#include "graphics/lice/LICE.h"
#include "tests/graphics/mac/CocoaHost.h"

namespace {

std::vector<NSRect> gAsked;  // of the view, to be displayed

// GNUstep's runtime replaces an inherited method for every view.
void NoteDisplay(id view, SEL, NSRect rect) {
  if ([view isKindOfClass:[IGraphicsCocoa class]]) gAsked.push_back(rect);
}

// Writes beyond its rectangle.
class WideText : public IControl {
 public:
  using IControl::IControl;
  bool Draw(IGraphics* graphics) override {
    IRECT wide(0, mRECT.T, 200, mRECT.B);
    return graphics->DrawIText(&mText, words, &wide);
  }
  const char* words = "";
};

class FramesTest : public CocoaTest {
 protected:
  FramesTest() { gAsked.clear(); }
};

TEST_F(FramesTest, TheTimerAsksForWhatIsDirtyAlsoInMenusAndDialogs) {
  auto* const control = Attach<LogControl>(IRECT(20, 30, 60, 70), kLevel);
  IGraphicsCocoa* const view = Open();
  [view drawRect:NSMakeRect(0, 0, kWidth, kHeight)];
  [view drawRect:NSMakeRect(0, 0, kWidth, kHeight)];
  const Replaced display([view class], @selector(setNeedsDisplayInRect:), NoteDisplay);
  for (NSString* const mode :
       {NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode}) {
    gAsked.clear();
    RunFor(0.1, mode);
    EXPECT_EQ(gAsked.size(), 0U);
    control->SetDirty(false);
    RunFor(0.41, mode);
    EXPECT_GE(gAsked.size(), 5U) << [mode UTF8String];
    EXPECT_LE(gAsked.size(), 12U);  // 25 a second
    ASSERT_FALSE(gAsked.empty());
    EXPECT_TRUE(NSEqualRects(gAsked[0], NSMakeRect(20, kHeight - 1 - 70, 41, 41)));
    control->SetClean();
  }
  [view onTimer:nil];  // somebody else's
  gAsked.clear();
  graphics->CloseWindow();
  control->SetDirty(false);
  RunFor(0.1);
  EXPECT_TRUE(gAsked.empty());
}

TEST_F(FramesTest, TextBeyondItsControlComesWithTheNextFrame) {
  auto* const text = Attach<WideText>(IRECT(80, 40, 90, 60));
  IGraphicsCocoa* const view = Open();
  const Replaced display([view class], @selector(setNeedsDisplayInRect:), NoteDisplay);
  text->words = "wider than its control";
  [view drawRect:NSMakeRect(80.5, 40.5, 9, 19)];  // all pixels that it touches
  text->SetClean();
  RunFor(0.06);
  ASSERT_EQ(gAsked.size(), 1U);
  EXPECT_LT(NSMinX(gAsked[0]), 80.0);
  EXPECT_GT(NSMaxX(gAsked[0]), 90.0);
  // When that is drawn too, nothing is left.
  [view drawRect:gAsked[0]];
  text->SetClean();
  gAsked.clear();
  RunFor(0.1);
  EXPECT_TRUE(gAsked.empty());
}

TEST_F(FramesTest, TheWindowShowsTheCanvasPixelForPixel) {
  Attach<ProbeControl>(IRECT(0, 0, kWidth, kHeight), -1, IColor(255, 10, 20, 30));
  Attach<ProbeControl>(IRECT(0, 0, 7, 5), -1, kColorRed);
  Attach<ProbeControl>(IRECT(190, 0, 200, 3), -1, kColorGreen);
  Attach<ProbeControl>(IRECT(0, 99, 1, 100), -1, kColorBlue);
  IGraphicsCocoa* const view = Open();
  [view lockFocus];
  NSBitmapImageRep* const shot =
      [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
  [view unlockFocus];
  ASSERT_EQ([shot pixelsWide], kWidth);
  ASSERT_EQ([shot pixelsHigh], kHeight);
  int different = 0;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      NSUInteger c[5] = {};
      [shot getPixel:c atX:x y:y];
      const IColor seen(255, (int)c[0], (int)c[1], (int)c[2]);
      if (seen.Pixel() != LICE_GetPixel(graphics->GetDrawBitmap(), x, y)) ++different;
    }
  }
  EXPECT_EQ(different, 0);
  EXPECT_EQ(LICE_GetPixel(graphics->GetDrawBitmap(), 199, 2), kGreen);
}

}  // namespace
