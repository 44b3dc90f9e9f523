// The product's dial, fader and pop-ups.
#include "graphics/controls/ICircleKnobMultiControlText.h"
#include "graphics/controls/IFaderMultiControlText.h"
#include "graphics/controls/IPopupMenuControls.h"
#include "tests/graphics/Fixture.h"

namespace {

constexpr IColor kAmber(255, 255, 187, 0);
constexpr uint32_t kInnerDot = IColor(255, 0, 68, 255).Pixel();
const IText kText(12, kColorWhite);

class ApplicationControls : public EditorTest {
 protected:
  ApplicationControls() { graphics->AttachPanelBackground(&kColorBlack); }

  // Middle of the inner dot at a value.
  std::pair<int, int> DotAt(double value) {
    SetLevel(value);
    const IRECT r = graphics->BoundsOf(kInnerDot);
    EXPECT_EQ(r.W() % 2 + r.H() % 2, 2);
    return {r.L + r.W() / 2, r.T + r.H() / 2};
  }
};

TEST_F(ApplicationControls, TheDialsDotRunsFromLowerLeftOverTheTopToLowerRight) {
  Attach<ICircleKnobMultiControlText>(kLevel, 60, 50, 40, IText(12, kColorTransparent), kAmber);
  Show();
  // The dot's track has 0.8 of the radius. Both coordinates are truncated, which takes the top,
  // whose cosine is a hair below zero, one pixel to the left.
  EXPECT_EQ(DotAt(0.0), std::pair(37, 72));
  EXPECT_EQ(DotAt(0.5), std::pair(59, 18));
  EXPECT_EQ(DotAt(1.0), std::pair(82, 72));
  graphics->ClampControl(kLevel, 0.5, 1.0, true);
  EXPECT_EQ(DotAt(0.75), std::pair(59, 18)) << "a narrowed range spreads over the full arc";
}

TEST_F(ApplicationControls, ACircularDialStartsAtTheBottomAndWraps) {
  auto* knob =
      Attach<ICircleKnobMultiControlText>(kLevel, 60, 50, 40, IText(12, kColorTransparent), kAmber);
  knob->SetCircular(true);
  Show();
  EXPECT_EQ(DotAt(0.0), std::pair(60, 82));
  EXPECT_EQ(DotAt(0.5), std::pair(59, 18));
  graphics->OnMouseWheel(60, 50, &left, 60);
  EXPECT_NEAR(knob->GetValue(), 0.1, 1e-12);
  graphics->OnMouseWheel(60, 50, &shifted, -200);
  EXPECT_NEAR(knob->GetValue(), 0.9, 1e-12);
  graphics->OnMouseDown(60, 50, &left);
  graphics->OnMouseDrag(60, 50 - 96, &left);  // 96 / 80 / 6
  EXPECT_NEAR(plug.GetParam(kLevel)->Value(), 0.1, 1e-12);
}

TEST_F(ApplicationControls, ADialSwellsUnderTheMouseAndSettlesWhenItLeaves) {
  graphics->HandleMouseOver(true);
  Attach<ICircleKnobMultiControlText>(kLevel, 50, 50, 40, kText, kAmber);
  Attach<ICircleKnobMultiControlText>(kCount, 150, 50, 40, kText, kColorGreen);
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
  auto* knob = Attach<ICircleKnobMultiControlText>(kCount, 60, 50, 31, kText, kAmber);
  Show();
  EXPECT_TRUE(knob->Draw(graphics));
  EXPECT_EQ(graphics->lastText, "4");
  EXPECT_EQ(graphics->lastTextRect, IRECT(29, 43, 91, 61)) << "50 - 9 * 12 / 17 is 43.6";
  ICircleKnobMultiControlText nameless(&plug, -1, 60, 50, 31, kText, kAmber);
  EXPECT_FALSE(nameless.Draw(graphics)) << "there is nothing to write";
  knob->SetBitmap(FramesOf(10, 10, {kColorRed, kColorGreen, kColorBlue}), {55, 40, 65, 50});
  knob->SetDrawDot(false);
  knob->SetDrawCircle(true);
  graphics->SetParameterFromPlug(kCount, 1.0, true);
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kBlue), IRECT(55, 40, 65, 50));
  EXPECT_EQ(graphics->CountOf(kColorWhite.Pixel()), 0);
  EXPECT_EQ(graphics->BoundsOf(kAmber.Pixel()), knob->GetRECT());
}

TEST_F(ApplicationControls, TheFadersValueRidesBelowTheTopOfItsHandle) {
  const IBitmap handle = FramesOf(30, 22, {kColorRed});
  Show();
  for (const auto& [divisor, top] : {std::pair(2.5, 28), std::pair(4.0, 25)}) {
    IFaderMultiControlText fader(&plug, 10, 20, 150, kLevel, handle, kHorizontal, true, kText,
                                 divisor);
    fader.SetValueFromPlug(0.5);
    EXPECT_TRUE(fader.Draw(graphics));
    EXPECT_EQ(graphics->lastText, "0.25") << "that of the parameter";
    EXPECT_EQ(graphics->lastTextRect, IRECT(70, top, 100, top + 22));
  }
  IFaderMultiControlText nameless(&plug, 10, 20, 150, -1, handle, kHorizontal, true, kText, 2.5);
  EXPECT_FALSE(nameless.Draw(graphics));
}

TEST_F(ApplicationControls, ItemsOfPopUpsStandForTheirNumberOverTheLastOne) {
  IFFTSizePopupMenu sizes(&plug, IRECT(10, 10, 90, 30), kLevel);
  IComputeModePopupMenu modes(&plug, IRECT(10, 40, 90, 60), kLevel);
  INormModePopupMenu norms(&plug, IRECT(10, 70, 90, 90), kLevel);
  sizes.SetClamp(0.0, 4.0);
  struct Case {
    IPopupMenuControl& control;
    double value;
    const char* text;
  };
  for (const Case& c :
       {Case{sizes, 0.0, "0 Blocks"}, Case{sizes, 1.0 / 12.0, "1 Blocks"},
        Case{sizes, 4.0 / 12.0, "4 Blocks"}, Case{sizes, 1.0, "12 Blocks"},
        Case{sizes, 2.0, "11 Blocks"},  // 24 starts over after 13 items
        Case{modes, 0.0, "Low Mem"}, Case{modes, 0.4, "Low Mem"}, Case{modes, 1.0, "Fast"},
        Case{norms, 0.0, "None"}, Case{norms, 1.0, "RMS"}}) {
    c.control.SetValueFromPlug(c.value);
    c.control.Draw(graphics);
    EXPECT_EQ(graphics->lastText, c.text);
    EXPECT_EQ(graphics->lastTextRect, c.control.GetRECT());
    EXPECT_EQ(graphics->lastStyle.mSize, 12);
    EXPECT_EQ(graphics->lastStyle.mColor, kColorWhite);
  }
}

TEST_F(ApplicationControls, AChoiceInAPopUpIsPushedAndSoIsTheLackOfOne) {
  auto* sizes = Attach<IFFTSizePopupMenu>(IRECT(10, 10, 90, 30), kLevel);
  sizes->GetAuxMenu().AddItem("a");
  Show();
  enum { kMain, kAux, kNone };
  const auto callsFor = [&](int from, int item) {
    graphics->chooseItem = [&](IPopupMenu* menu) -> IPopupMenu* {
      if (from == kNone) return nullptr;
      if (from == kAux) menu = &sizes->GetAuxMenu();
      menu->SetChosenItemIdx(item);
      return menu;
    };
    graphics->OnMouseDown(20, 20, &right);
    EXPECT_EQ(graphics->GetMouseCapture(), -1) << "the menu releases the mouse";
    EXPECT_EQ(sizes->GetValue(), 0.75);
    return plug.TakeCalls();
  };
  const Calls onlyPushed = {"set 0 0.750", "changed 0", "begin 0"};
  EXPECT_EQ(callsFor(kMain, 9),
            (Calls{"set 0 0.750", "changed 0", "set 0 0.750", "changed 0", "begin 0"}));
  EXPECT_EQ(graphics->lastRect, IRECT(10, 10, 90, 30));
  EXPECT_EQ(callsFor(kMain, 9), onlyPushed) << "the present item is no change";
  EXPECT_EQ(callsFor(kNone, 0), onlyPushed);
  EXPECT_EQ(callsFor(kAux, 0), onlyPushed);
  EXPECT_TRUE(sizes->GetAuxMenu().IsItemChecked(0)) << "the other menu only checks its choice";

  IComputeModePopupMenu modes(&plug, IRECT(10, 40, 90, 60), kOnOff);
  INormModePopupMenu norms(&plug, IRECT(10, 40, 90, 60), kOnOff);
  for (IPopupMenuControl* control :
       {static_cast<IPopupMenuControl*>(&modes), static_cast<IPopupMenuControl*>(&norms)}) {
    graphics->chooseItem = [](IPopupMenu* menu) { return menu->SetChosenItemIdx(1), menu; };
    control->OnMouseDown(0, 0, &left);
    EXPECT_EQ(control->GetValue(), 1.0);
  }
}

}  // namespace
