// Which controls a frame draws, and which pixels it may change.
#include "graphics/controls/IControls.h"
#include "graphics/controls/ITextControls.h"
#include "tests/graphics/Fixture.h"
#include "tests/support/AllocationGuard.h"

namespace {

class Frame : public EditorTest {
 protected:
  // How often each was drawn since the last call, as digits.
  static std::string TakeDraws(const std::vector<ProbeControl*>& controls) {
    std::string counts;
    for (auto* control : controls) counts += std::to_string(control->TakeEvents().size());
    return counts;
  }
};

TEST_F(Frame, TheDirtyRectangleIsTheUnionOfDirtyControlsAndAsksForNoMemory) {
  IRECT rect(0, 0, kWidth, kHeight);
  graphics->PrepDraw();
  graphics->Draw(&rect);
  EXPECT_EQ(graphics->screens, 0) << "without controls nothing is drawn";
  EXPECT_FALSE(graphics->IsDirty(&rect));
  EXPECT_TRUE(rect.Empty());
  Attach<ProbeControl>(IRECT(0, 0, kWidth, kHeight));
  auto* a = Attach<ProbeControl>(IRECT(10, 20, 30, 40));
  auto* b = Attach<ProbeControl>(IRECT(50, 10, 60, 25));
  Show();
  const AllocationGuard guard;
  EXPECT_FALSE(graphics->IsDirty(&rect));
  a->SetDirty(false);
  EXPECT_TRUE(graphics->IsDirty(&rect));
  EXPECT_EQ(rect, IRECT(10, 20, 30, 40));
  b->SetDirty(false);
  EXPECT_TRUE(graphics->IsDirty(&rect));
  EXPECT_EQ(rect, IRECT(10, 10, 60, 40));
  EXPECT_EQ(guard.allocations(), 0);
}

TEST_F(Frame, StrictDrawingPaintsInOrderWhatMeetsTheRectangleAndCleansAll) {
  auto* below = Attach<ProbeControl>(IRECT(10, 10, 40, 40), -1, kColorRed);
  auto* above = Attach<ProbeControl>(IRECT(30, 10, 60, 40), -1, kColorGreen);
  auto* hidden = Attach<ProbeControl>(IRECT(10, 10, 60, 40), -1, kColorBlue);
  auto* beside = Attach<ProbeControl>(IRECT(60, 10, 90, 40), -1, kColorBlue);
  hidden->Hide(true);
  Show();
  TakeDraws({below, above, hidden, beside});
  graphics->SetAllControlsDirty();
  IRECT rect(20, 10, 60, 20);
  graphics->Draw(&rect);
  EXPECT_EQ(TakeDraws({below, above, hidden, beside}), "1100") << "the last only touches it";
  EXPECT_EQ(graphics->PixelAt(35, 20), kGreen);
  EXPECT_EQ(graphics->PixelAt(29, 20), kRed);
  IRECT dirty;
  EXPECT_FALSE(graphics->IsDirty(&dirty));
}

// Paint that reaches over the control's rectangle.
struct Glow : ProbeControl {
  using ProbeControl::ProbeControl;
  bool Draw(IGraphics* g) override {
    const IChannelBlend add(IChannelBlend::kBlendAdd, 0.25f);
    const IRECT wide(mRECT.L - 5, mRECT.T, mRECT.R + 5, mRECT.B);
    return g->FillIRect(&kColorWhite, &wide, &add);
  }
};

TEST_F(Frame, PartialFramesLeaveThePictureOfAWholeOne) {
  graphics->AttachPanelBackground(&kColorGray);
  Attach<Glow>(IRECT(20, 20, 120, 80));
  // Texts that stand out of their rectangles, one over the other.
  auto* text = Attach<ITextControl>(IRECT(60, 40, 70, 54), -1, IText(14, kColorRed), "a long text");
  Attach<ITextControl>(IRECT(90, 45, 95, 54), -1, IText(14, kColorGreen), "neighbour");
  Attach<IBitmapControl>(150, 10, -1, FramesOf(20, 20, {kColorBlue}));
  Show();
  for (const bool strict : {true, false}) {
    graphics->SetStrictDrawing(strict);
    EXPECT_TRUE(graphics->Tick());
    for (const char* words : {"short", "", "a much longer text"}) {
      text->SetTextFromPlug(words);
      for (int i = 0; i < 3; ++i) {
        IRECT part(10, 10, 75, 60);
        graphics->Draw(&part);
      }
      const auto drawn = graphics->Pixels();
      graphics->SetAllControlsDirty();
      graphics->DrawEverything();
      EXPECT_TRUE(drawn == graphics->Pixels()) << words << ", strict " << strict;
    }
  }
}

TEST_F(Frame, AControlThatMaySkipFramesKeepsItsPictureWhenItIsNotDrawn) {
  struct Busy : ProbeControl {
    Busy(IPlugBase* p, bool maySkip, int x) : ProbeControl(p, IRECT(x, 0, x + 50, 50)) {
      mMaySkipFrames = maySkip;
    }
    bool Draw(IGraphics* g) override { return !isBusy && ProbeControl::Draw(g); }
    bool isBusy = false;
  };
  graphics->AttachPanelBackground(&kColorBlack);
  auto* skipping = Attach<Busy>(true, 0);
  auto* missing = Attach<Busy>(false, 100);
  Show();
  skipping->isBusy = missing->isBusy = true;
  graphics->SetAllControlsDirty();
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kRed), skipping->GetRECT());
}

TEST_F(Frame, LooseDrawingRedrawsADirtyControlWithItsNeighbours) {
  auto* background = Attach<ProbeControl>(IRECT(0, 0, kWidth, kHeight), -1, kColorGray);
  auto* a = Attach<ProbeControl>(IRECT(10, 10, 30, 30), -1, kColorRed);
  auto* b = Attach<ProbeControl>(IRECT(20, 10, 40, 30), -1, kColorGreen);
  auto* far = Attach<ProbeControl>(IRECT(100, 10, 120, 30), -1, kColorBlue);
  graphics->SetStrictDrawing(false);
  Show();
  const auto drawnFor = [&](std::vector<ProbeControl*> dirty) {
    TakeDraws({background, a, b, far});
    for (auto* control : dirty) control->SetDirty(false);
    EXPECT_TRUE(graphics->Tick());
    return TakeDraws({background, a, b, far});
  };
  EXPECT_EQ(drawnFor({a}), "1110");
  EXPECT_EQ(graphics->PixelAt(25, 20), kGreen);
  EXPECT_EQ(graphics->PixelAt(15, 20), kRed);
  EXPECT_EQ(graphics->PixelAt(110, 20), kBlue);
  EXPECT_EQ(drawnFor({a, far}), "2111") << "each dirty control has its turn";
  far->Hide(true);
  Settle();
  EXPECT_EQ(drawnFor({background}), "1110");
  EXPECT_FALSE(graphics->Tick());
}

TEST_F(Frame, ResizingDeletesTheControlsLastFirstAndTellsThePlugin) {
  struct Mortal : ProbeControl {
    Mortal(IPlugBase* p, std::string* deaths, const char* name)
        : ProbeControl(p, IRECT(0, 0, 50, 50), kLevel), mDeaths(deaths), mName(name) {}
    ~Mortal() override { *mDeaths += mName; }
    std::string* mDeaths;
    const char* mName;
  };
  std::string deaths;
  TestGraphics editor(&plug, 60, 60);
  editor.PrepDraw();
  for (const char* name : {"a", "b", "c"}) editor.AttachControl(new Mortal(&plug, &deaths, name));
  editor.SetKeyCatcher(new Mortal(&plug, &deaths, "key"));
  editor.OnMouseDown(5, 5, &left);
  plug.TakeCalls();
  editor.Resize(60, 60);
  EXPECT_EQ(editor.NControls(), 3) << "an unchanged size does nothing";
  editor.Resize(50, 40);
  EXPECT_EQ(plug.TakeCalls(), Calls{"resized"});
  EXPECT_EQ(deaths, "cba");
  EXPECT_EQ(editor.GetMouseCapture(), -1);
  editor.AttachControl(new ProbeControl(&plug, IRECT(0, 0, 50, 40), -1, kColorGreen));
  EXPECT_TRUE(editor.Tick());
  EXPECT_EQ(editor.PixelAt(49, 39), kGreen);
  EXPECT_EQ(editor.PixelAt(50, 39), 0U);
}

}  // namespace
