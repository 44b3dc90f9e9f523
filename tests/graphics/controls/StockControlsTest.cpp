// The stock controls: which pixels a value becomes, and which value the mouse makes.
#include <limits>
#include <numbers>

#include "graphics/controls/IControls.h"
#include "graphics/controls/IFaderControl.h"
#include "graphics/controls/IKnobControls.h"
#include "graphics/controls/ILinkControls.h"
#include "graphics/controls/ITextControls.h"
#include "tests/graphics/Fixture.h"

namespace {

const std::vector<IColor> kThree = {kColorRed, kColorGreen, kColorBlue};

class StockControls : public EditorTest {
 protected:
  StockControls() { graphics->AttachPanelBackground(&kColorBlack); }
};

TEST(FrameOf, RoundsToTheNearestFrameWithinTheStrip) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& [value, frame] :
       {std::pair(0.0, 1), std::pair(1.0, 5), std::pair(0.124, 1), std::pair(0.125, 2),
        std::pair(-9.0, 1), std::pair(1e300, 5), std::pair(nan, 1)}) {
    EXPECT_EQ(FrameOf(value, 5), frame) << value;
  }
  EXPECT_EQ(FrameOf(1.0, 0), 1);
}

TEST_F(StockControls, SwitchesStepThroughTheirFramesAndWrap) {
  const IColor glass(100, 0, 0, 255);
  const IBitmap strip = FramesOf(10, 10, {kColorRed, kColorGreen, glass});
  auto* three = Attach<ISwitchControl>(0, 0, kColour, strip);
  auto* one = Attach<ISwitchControl>(20, 0, -1, FramesOf(10, 10, {kColorRed}));
  auto* toggle = Attach<IInvisibleSwitchControl>(IRECT(40, 0, 50, 10), kOnOff);
  auto* contact = Attach<IContactControl>(60, 0, kCount, strip);
  EXPECT_EQ(three->GetRECT(), IRECT(0, 0, 10, 10)) << "one frame, not the strip";
  Show();
  Click(5, 5);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 2 1.000", "changed 2", "begin 2", "end 2"}));
  for (const auto& [value, pixel] :
       {std::pair(0.0, kRed), std::pair(0.5, kGreen), std::pair(1.0, glass.Pixel())}) {
    graphics->OnMouseDblClick(5, 5, &left);  // a fast second click counts as well
    Settle();
    EXPECT_EQ(three->GetValue(), value);
    EXPECT_EQ(graphics->PixelAt(9, 9), pixel);
  }
  for (const double value : {1.0, 0.0}) {
    Click(25, 5);
    EXPECT_EQ(one->GetValue(), value);
    Click(45, 5);
    EXPECT_EQ(toggle->GetValue(), value);
  }
  plug.TakeCalls();
  graphics->OnMouseDown(65, 5, &left);
  EXPECT_EQ(contact->GetValue(), 0.9);
  Settle();
  EXPECT_NE(graphics->PixelAt(65, 5), glass.Pixel()) << "a contact keeps to the alpha";
  graphics->OnMouseUp(65, 5, &left);
  EXPECT_EQ(plug.TakeCalls(),
            (Calls{"set 1 0.900", "changed 1", "begin 1", "set 1 0.000", "changed 1", "end 1"}))
      << "it falls back";
}

TEST_F(StockControls, RadioButtonsSpreadOverTheirRectangle) {
  const IBitmap button = FramesOf(10, 8, {kColorRed, kColorGreen});
  const IRECT wide(10, 20, 71, 40);
  // Three buttons of 10 in 61: the free 31 leave gaps of 15, and the odd pixel at the far end.
  struct Radio : IRadioButtonsControl {
    using IRadioButtonsControl::IRadioButtonsControl;
    using IRadioButtonsControl::mRECTs;
  };
  auto* across = Attach<Radio>(wide, kColour, 3, button, kHorizontal);
  Radio reverse(&plug, wide, kColour, 3, button, kHorizontal, true);
  Radio down(&plug, IRECT(0, 0, 10, 30), -1, 2, button, kVertical);
  using Buttons = std::vector<IRECT>;
  EXPECT_EQ(across->mRECTs, (Buttons{{10, 20, 20, 28}, {35, 20, 45, 28}, {60, 20, 70, 28}}));
  EXPECT_EQ(reverse.mRECTs, (Buttons{{61, 20, 71, 28}, {36, 20, 46, 28}, {11, 20, 21, 28}}));
  EXPECT_EQ(down.mRECTs, (Buttons{{0, 0, 10, 8}, {0, 22, 10, 30}}));
  down.OnMouseDown(5, 25, &left);
  EXPECT_EQ(down.GetValue(), 1.0);
  Show();
  EXPECT_EQ(graphics->BoundsOf(kGreen), IRECT(35, 20, 45, 28)) << "the default is the middle";
  for (const int x : {65, 25}) {
    Click(x, 24);
    EXPECT_EQ(graphics->BoundsOf(kGreen), IRECT(60, 20, 70, 28));
    EXPECT_EQ(plug.TakeCalls().front(), "set 2 1.000") << "a miss pushes the value again";
  }
}

TEST_F(StockControls, FaderHandlesFollowTheMouseUpAndRightWithinTheirTrack) {
  const IBitmap handle = FramesOf(12, 11, {kColorRed});
  auto* vertical = Attach<IFaderControl>(10, 0, 91, kLevel, handle);
  auto* horizontal = Attach<IFaderControl>(40, 20, 112, kCount, handle, kHorizontal, true);
  EXPECT_EQ(vertical->GetRECT(), IRECT(10, 0, 22, 91));
  EXPECT_EQ(vertical->GetHandleRECT(1.0), IRECT(10, 0, 22, 11));
  EXPECT_EQ(vertical->GetHandleRECT(0.0), IRECT(10, 80, 22, 91));
  EXPECT_EQ(horizontal->GetRECT(), IRECT(40, 20, 152, 31));
  EXPECT_EQ(horizontal->GetHandleRECT(0.256), IRECT(65, 20, 77, 31));
  Show();
  EXPECT_EQ(graphics->PixelAt(15, 65), kRed) << "0.25 of the way up";
  graphics->OnMouseDown(15, 25, &left);
  EXPECT_DOUBLE_EQ(vertical->GetValue(), 1.0 - (25 - 5) / 80.0);
  graphics->OnMouseDrag(15, -300, &left);
  EXPECT_EQ(plug.GetParam(kLevel)->Value(), 1.0);
  plug.TakeCalls();
  graphics->OnMouseDown(130, 25, &left);
  EXPECT_EQ(plug.TakeCalls(), Calls()) << "only the handle takes a press";
  graphics->OnMouseDown(84, 25, &left);
  graphics->OnMouseDrag(76, 25, &left);
  graphics->OnMouseDown(77, 25, &right);
  EXPECT_DOUBLE_EQ(horizontal->GetValue(), 0.3) << "the right button is for typed entry";
  IFaderControl full(&plug, 0, 0, 11, kLevel, handle);
  full.OnMouseDown(5, 5, &left);
  EXPECT_EQ(full.GetValue(), 0.0) << "a handle without way to go keeps the value";
}

TEST_F(StockControls, KnobsTurnByDragsOverTheirGearing) {
  IKnobMultiControl up(&plug, 0, 0, -1, FramesOf(40, 60, kThree), kVertical, 6.0);
  up.OnMouseDrag(0, 0, 5, -60, &left);
  EXPECT_DOUBLE_EQ(up.GetValue(), 1.0 / 6.0);
  up.OnMouseDrag(0, 0, 0, -60, &shifted);
  EXPECT_DOUBLE_EQ(up.GetValue(), 1.0 / 6.0 + 1.0 / 60.0);
  IKnobMultiControl across(&plug, 10, 0, -1, FramesOf(40, 60, kThree), kHorizontal, 2.0);
  across.OnMouseDrag(0, 0, 20, 5, &left);
  EXPECT_DOUBLE_EQ(across.GetValue(), 0.5 / 2.0);
}

TEST_F(StockControls, EachKindOfKnobShowsItsValue) {
  Attach<IKnobMultiControl>(0, 0, kLevel, FramesOf(10, 10, kThree));
  const IBitmap arrow = FramesOf(20, 10, {kColorRed, kColorGreen});
  const IBitmap picture(arrow.mData, 20, 20);
  const IBitmap base = FramesOf(20, 20, {kColorRed});
  const IBitmap light = FramesOf(20, 10, {kColorTransparent, kColorGreen});  // in the lower half
  const IBitmap mask(light.mData, 20, 20);
  const IBitmap top = FramesOf(20, 20, {kColorTransparent});
  LICE_FillRect(static_cast<LICE_IBitmap*>(top.mData), 8, 8, 4, 4, kBlue);
  Attach<IKnobRotaterControl>(40, 20, kLevel, picture, 0.0, std::numbers::pi);
  Attach<IKnobRotatingMaskControl>(80, 20, kLevel, base, mask, top, 0.0, std::numbers::pi);
  // Half the width long by default, from upright to a quarter to the left.
  Attach<IKnobLineControl>(IRECT(110, 10, 150, 50), kLevel, kColorWhite, 5.0, 0.0, 0.0,
                           -0.5 * std::numbers::pi);
  Show();
  for (const auto& [value, strip, upper, dx, dy] :
       {std::tuple(0.0, kRed, kRed, 0, -1), std::tuple(1.0, kBlue, kGreen, -1, 0)}) {
    SetLevel(value);
    EXPECT_EQ(graphics->PixelAt(5, 5), strip);
    EXPECT_EQ(graphics->PixelAt(50, 23), upper);
    const int lit = upper == kRed ? 37 : 23;
    EXPECT_EQ(graphics->PixelAt(90, lit), kColorYellow.Pixel()) << "the mask adds its light";
    EXPECT_EQ(graphics->PixelAt(90, 60 - lit), kRed) << "the base does not turn";
    EXPECT_EQ(graphics->PixelAt(90, 30), kBlue) << "the top covers both";
    for (const int r : {2, 8, 19, 22}) {
      EXPECT_EQ(graphics->GetPoint(130 + r * dx, 30 + r * dy).G > 100, r == 8 || r == 19) << r;
    }
  }
}

TEST_F(StockControls, AnOverlayOpensFromItsTargetAndClosesFromItself) {
  const IBitmap picture = FramesOf(60, 40, {kColorGreen, kColorRed});
  auto* overlay = Attach<IBitmapOverlayControl>(20, 20, -1, picture, IRECT(0, 0, 10, 10));
  Show();
  for (const auto& [at, value] :
       {std::pair(40, 0.0), std::pair(5, 1.0), std::pair(5, 1.0), std::pair(40, 0.0)}) {
    Click(at, at);
    EXPECT_EQ(overlay->GetValue(), value);
    EXPECT_EQ(graphics->BoundsOf(kRed), value > 0.0 ? IRECT(20, 20, 80, 60) : IRECT());
  }
}

TEST_F(StockControls, ACaptionShowsValueAndUnitAndOpensTypedEntry) {
  auto* level = Attach<ICaptionControl>(IRECT(0, 0, 80, 20), kLevel, IText(14, kColorRed));
  ICaptionControl bare(&plug, IRECT(0, 30, 80, 50), kLevel, IText(14, kColorRed), false);
  level->DisablePrompt(false);
  Show();
  EXPECT_EQ(graphics->lastText, "0.25 dB");
  bare.Draw(graphics);
  EXPECT_EQ(graphics->lastText, "0.25");
  graphics->OnMouseDown(5, 5, &left);
  EXPECT_EQ(std::exchange(graphics->fieldText, ""), "0.25");
  graphics->OnMouseDblClick(5, 5, &left);
  EXPECT_EQ(graphics->fieldText, "0.25");
}

TEST_F(StockControls, BitmapTextDrawsOneCellACharacterAndStopsAtTheEdge) {
  // Frames from the blank on: blank clear, '!' red, '"' green, '#' blue.
  const IBitmap font = FramesOf(6, 8, {kColorBlack, kColorRed, kColorGreen, kColorBlue});
  auto* text = Attach<IBitmapTextControl>(IRECT(10, 10, 70, 30), -1, font, "!#", 6, 8);
  Show();
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(34, 16, 40, 24));
  EXPECT_EQ(graphics->BoundsOf(kBlue), IRECT(40, 16, 46, 24));
  text->GetText().mAlign = IText::kAlignNear;
  text->SetTextFromPlug("\"!!!!!!!!!!!!!!!!!");
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kGreen), IRECT(16, 16, 22, 24));
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(22, 16, 64, 24)) << "8 cells fit between the margins";
}

TEST_F(StockControls, ALinkTriesItsFallbackOnlyWhenTheFirstFails) {
  Attach<IURLControl>(IRECT(0, 0, 10, 10), "https://a", "https://b", "gone");
  Attach<IURLControl>(IRECT(20, 0, 30, 10), "", "https://c");
  Attach<IURLControl>(IRECT(40, 0, 50, 10), "", "");
  Attach<IURLControl>(IRECT(60, 0, 70, 10), std::string(1000, 'x').c_str());
  Show();
  Click(5, 5);
  graphics->opensURLs = true;
  for (const int x : {5, 25, 45, 65}) Click(x, 5);
  EXPECT_EQ(graphics->urls,
            (Calls{"https://a", "https://b", "https://a", "https://c", std::string(255, 'x')}));
}

TEST_F(StockControls, AFileSelectorStoresTheChoiceAndTellsThePlugin) {
  auto* selector = Attach<IFileSelectorControl>(IRECT(0, 0, 10, 10), kOnOff,
                                                FramesOf(10, 10, {kColorRed}), 0, "/start/", "wav");
  graphics->chosenFile = "/chosen/a.wav";
  HeapString file;
  selector->OnMouseDown(5, 5, &left);
  selector->GetLastSelectedFileForPlug(&file);
  EXPECT_STREQ(file.Get(), "") << "without an editor there is nothing to ask";
  Show();
  for (const char* push : {"set 3 1.000", "set 3 0.000"}) {
    Click(5, 5);
    EXPECT_EQ(plug.TakeCalls().front(), push);
  }
  selector->GetLastSelectedFileForPlug(&file);
  EXPECT_STREQ(file.Get(), "/chosen/a.wav");
  EXPECT_EQ(graphics->CountOf(kRed), 0) << "the picture shows only while the dialog is open";
  EXPECT_FALSE(graphics->Tick());
  selector->OnMouseDown(5, 5, &left);
  selector->SetClean();
  EXPECT_TRUE(selector->IsDirty()) << "once more after a choice";
  EXPECT_FALSE(selector->IsDirty());
}

}  // namespace
