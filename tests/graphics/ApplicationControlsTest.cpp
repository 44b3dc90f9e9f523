// The product's dial, fader and pop-ups.
#include "graphics/ICircleKnobMultiControlText.h"
#include "graphics/IFaderMultiControlText.h"
#include "graphics/IPopupMenuControls.h"
#include "tests/graphics/Fixture.h"

namespace {

constexpr IColor kAmber(255, 255, 187, 0);
constexpr IColor kAmberInverse(255, 0, 68, 255);
const IText kNoText(12, kColorTransparent);

class ApplicationControls : public EditorTest {
 protected:
  ApplicationControls() { graphics->AttachPanelBackground(&kColorBlack); }

  // Middle of the inner dot, in half pixels.
  std::pair<int, int> InnerDot() const {
    const IRECT r = graphics->BoundsOf(kAmberInverse.Pixel());
    return {r.L + r.R - 1, r.T + r.B - 1};
  }
  // Bounds of what is brighter than a third within `area`.
  IRECT Ink(const IRECT& area) const {
    IRECT ink;
    for (int y = area.T; y < area.B; ++y) {
      for (int x = area.L; x < area.R; ++x) {
        if (graphics->GetPoint(x, y).B > 85) ink = ink.Union({x, y, x + 1, y + 1});
      }
    }
    return ink;
  }
};

TEST_F(ApplicationControls, TheDialsDotRunsFromLowerLeftOverTheTopToLowerRight) {
  auto* knob = Attach<ICircleKnobMultiControlText>(kLevel, 60, 50, 40, kNoText, kAmber);
  EXPECT_EQ(knob->GetRECT(), IRECT(20, 10, 100, 90));
  Show();
  // The dot's track has 0.8 of the radius. Both coordinates are truncated, which takes the top,
  // whose cosine is a hair below zero, one pixel to the left.
  const auto at = [](int x, int y) { return std::pair(2 * x, 2 * y); };
  SetLevel(0.0);
  EXPECT_EQ(InnerDot(), at(37, 72));
  SetLevel(0.5);
  EXPECT_EQ(InnerDot(), at(59, 18));
  SetLevel(1.0);
  EXPECT_EQ(InnerDot(), at(82, 72));
  graphics->ClampControl(kLevel, 0.5, 1.0, true);
  SetLevel(0.75);
  EXPECT_EQ(InnerDot(), at(59, 18)) << "a narrowed range spreads over the full arc";
}

TEST_F(ApplicationControls, ACircularDialStartsAtTheBottomAndWraps) {
  auto* knob = Attach<ICircleKnobMultiControlText>(kLevel, 60, 50, 40, kNoText, kAmber);
  knob->SetCircular(true);
  Show();
  SetLevel(0.0);
  EXPECT_EQ(InnerDot(), std::pair(120, 164));
  SetLevel(0.5);
  EXPECT_EQ(InnerDot(), std::pair(118, 36));
  graphics->OnMouseWheel(60, 50, &left, 60);
  EXPECT_NEAR(knob->GetValue(), 0.1, 1e-12);
  graphics->OnMouseWheel(60, 50, &shifted, -200);
  EXPECT_NEAR(knob->GetValue(), 0.9, 1e-12);
  graphics->OnMouseDown(60, 50, &left);
  graphics->OnMouseDrag(60, 50 - 96, &left);  // 96 / 80 / 6
  EXPECT_NEAR(knob->GetValue(), 0.1, 1e-12);
  EXPECT_NEAR(plug.GetParam(kLevel)->Value(), 0.1, 1e-12);
}

TEST_F(ApplicationControls, ADialSwellsUnderTheMouseAndSettlesWhenItLeaves) {
  graphics->HandleMouseOver(true);
  Attach<ICircleKnobMultiControlText>(kLevel, 50, 50, 40, kNoText, kAmber);
  Attach<ICircleKnobMultiControlText>(kCount, 150, 50, 40, kNoText, kColorGreen);
  Show();
  const int resting = graphics->CountOf(kAmber.Pixel());
  graphics->OnMouseOver(50, 50, &left);
  EXPECT_TRUE(graphics->Tick());
  EXPECT_EQ(graphics->lastStyle.mSize, 13) << "12 * 1.15, truncated";
  EXPECT_TRUE(graphics->Tick());
  EXPECT_FALSE(graphics->Tick());
  EXPECT_GT(graphics->CountOf(kAmber.Pixel()), resting * 3 / 2);
  graphics->OnMouseOver(150, 50, &left);
  Settle();
  EXPECT_EQ(graphics->CountOf(kAmber.Pixel()), resting);
}

TEST_F(ApplicationControls, ADialWritesItsValueInItsMiddleUnlessItHasAFilmstrip) {
  const IText text(12, kColorWhite);
  auto* knob = Attach<ICircleKnobMultiControlText>(kLevel, 60, 50, 31, text, kAmber);
  EXPECT_EQ(knob->GetTextRECT(), IRECT(29, 43, 91, 61)) << "50 - 9 * 12 / 17 is 43.6";
  Show();
  SetLevel(0.5);
  const IRECT ink = Ink(knob->GetRECT().Intersect({0, 35, kWidth, kHeight}));
  EXPECT_NEAR(ink.L + ink.R, 120, 3);
  EXPECT_GE(ink.T, 43);
  EXPECT_LE(ink.B, 56);
  EXPECT_TRUE(knob->Draw(graphics));

  ICircleKnobMultiControlText nameless(&plug, -1, 60, 50, 31, text, kAmber);
  EXPECT_FALSE(nameless.Draw(graphics)) << "there is nothing to write";
  knob->SetBitmap(FramesOf(10, 10, {kColorRed, kColorGreen, kColorBlue}), {55, 40, 65, 50});
  SetLevel(1.0);
  EXPECT_EQ(graphics->BoundsOf(kColorBlue.Pixel()), IRECT(55, 40, 65, 50));
  EXPECT_EQ(graphics->CountOf(kColorWhite.Pixel()), 0);
  knob->SetDrawDot(false);
  knob->SetDrawCircle(true);
  knob->SetDirty(false);
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kAmber.Pixel()), IRECT(29, 19, 92, 82).Intersect(knob->GetRECT()));
}

TEST_F(ApplicationControls, TheFadersValueRidesBelowTheTopOfItsHandle) {
  const IBitmap handle = FramesOf(30, 20, {kColorRed});
  const IText text(10, kColorWhite);
  auto* fader =
      Attach<IFaderMultiControlText>(10, 20, 150, kLevel, handle, kHorizontal, true, text, 2.5);
  Attach<IFaderMultiControlText>(10, 60, 150, kLevel, handle, kHorizontal, true, text, 4.0);
  Show();
  SetLevel(0.5);
  EXPECT_EQ(fader->GetHandleRECT(), IRECT(70, 20, 100, 40));
  const IRECT ink = Ink({0, 0, kWidth, kHeight});
  EXPECT_NEAR(ink.L + ink.R, 170, 3);
  EXPECT_GE(ink.T, 20 + 8) << "20 / 2.5 below the top";
  EXPECT_LE(ink.T, 20 + 8 + 5);
  EXPECT_GE(ink.B, 60 + 5 + 4) << "20 / 4 below the top";
  EXPECT_LE(ink.B, 60 + 5 + 10);
  IFaderMultiControlText nameless(&plug, 10, 20, 150, -1, handle, kHorizontal, true, text, 2.5);
  EXPECT_FALSE(nameless.Draw(graphics));
}

class PopupControls : public ApplicationControls {
 protected:
  std::string ShownBy(IPopupMenuControl* control) {
    control->Draw(graphics);
    EXPECT_EQ(graphics->lastStyle.mSize, 12);
    EXPECT_EQ(graphics->lastStyle.mColor, kColorWhite);
    return graphics->lastText;
  }
};

TEST_F(PopupControls, ItemsStandForTheirNumberOverTheLastOne) {
  auto* sizes = Attach<IFFTSizePopupMenu>(IRECT(10, 10, 90, 30), kLevel);
  auto* modes = Attach<IComputeModePopupMenu>(IRECT(10, 40, 90, 60), kLevel);
  auto* norms = Attach<INormModePopupMenu>(IRECT(10, 70, 90, 90), kLevel);
  Show();
  struct Case {
    double value;
    const char *size, *mode, *norm;
  };
  for (const Case& c :
       {Case{0.0, "0 Blocks", "Low Mem", "None"}, Case{1.0, "12 Blocks", "Fast", "RMS"},
        Case{4.0 / 12.0, "4 Blocks", "Low Mem", "None"},
        Case{1.0 / 12.0, "1 Blocks", "Low Mem", "None"}}) {
    SetLevel(c.value);
    EXPECT_EQ(ShownBy(sizes), c.size);
    EXPECT_EQ(ShownBy(modes), c.mode);
    EXPECT_EQ(ShownBy(norms), c.norm);
  }
  graphics->ClampControl(kLevel, 0.0, 4.0, true);
  SetLevel(2.0);
  EXPECT_EQ(ShownBy(sizes), "11 Blocks") << "24 starts over after 13 items";
}

TEST_F(PopupControls, AChoiceIsPushedAndSoIsTheLackOfOne) {
  auto* sizes = Attach<IFFTSizePopupMenu>(IRECT(10, 10, 90, 30), kLevel);
  Show();
  graphics->chooseItem = [](IPopupMenu* menu) {
    menu->SetChosenItemIdx(9);
    return menu;
  };
  graphics->OnMouseDown(20, 20, &left);
  EXPECT_EQ(graphics->lastRect, IRECT(10, 10, 90, 30));
  EXPECT_EQ(sizes->GetValue(), 0.75);
  EXPECT_EQ(plug.TakeCalls(),
            (Calls{"set 0 0.750", "changed 0", "set 0 0.750", "changed 0", "begin 0"}));
  EXPECT_EQ(graphics->GetMouseCapture(), -1) << "the menu releases the mouse";
  graphics->OnMouseDown(20, 20, &right);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.750", "changed 0", "begin 0"}))
      << "the present item is no change, but is pushed";
  graphics->chooseItem = nullptr;
  graphics->OnMouseDown(20, 20, &left);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.750", "changed 0", "begin 0"}));

  sizes->GetAuxMenu().AddItem("a");
  graphics->chooseItem = [&](IPopupMenu*) {
    sizes->GetAuxMenu().SetChosenItemIdx(0);
    return &sizes->GetAuxMenu();
  };
  graphics->OnMouseDown(20, 20, &left);
  EXPECT_TRUE(sizes->GetAuxMenu().IsItemChecked(0)) << "the other menu only checks its choice";
  EXPECT_EQ(sizes->GetValue(), 0.75);
}

}  // namespace
