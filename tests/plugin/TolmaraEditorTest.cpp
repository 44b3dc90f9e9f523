// The product's editor, read back from a living plug-in: what stands where, what a change redraws,
// and that the display shows what the worker rendered.
#include <gtest/gtest.h>

#include <string>
#include <typeinfo>
#include <vector>

#include "display/ITolmaraWaveformSpectrogram.h"
#include "graphics/IGraphicsOffscreen.h"
#include "graphics/controls/ICircleKnobMultiControlText.h"
#include "graphics/controls/IControls.h"
#include "graphics/controls/IFaderMultiControlText.h"
#include "graphics/controls/ILinkControls.h"
#include "graphics/controls/IPopupMenuControls.h"
#include "plugin/ParamTable.h"
#include "tests/plugin/TolmaraProbe.h"

namespace {

using Picture = std::vector<uint32_t>;

class TolmaraEditor : public ::testing::Test {
 protected:
  TolmaraEditor() : probe((IGraphicsOffscreen::SetResourceFolder(kPictures), 64)) {}
  ~TolmaraEditor() override { IGraphicsOffscreen::SetResourceFolder(""); }

  IGraphics& Graphics() { return *probe.Plugin().GetGraphics(); }
  template <class T>
  const T& At(int idx) {
    const IControl& control = *Graphics().GetControl(idx);
    EXPECT_EQ(typeid(control), typeid(T)) << idx;
    return static_cast<const T&>(control);
  }
  // Frames, as the window's timer draws them, until nothing is dirty.
  Picture Settled() {
    IRECT dirty;
    for (int i = 0; i < 4 && Graphics().IsDirty(&dirty); ++i) Graphics().Draw(&dirty);
    const auto pixels = static_cast<size_t>(Graphics().Width() * Graphics().Height());
    return {Graphics().GetBits(), Graphics().GetBits() + pixels};
  }
  Picture DrawnAnew() {
    Graphics().SetAllControlsDirty();
    return Settled();
  }

  static constexpr const char* kPictures = TOLMARA_SOURCE_DIR "/resources/img";
  TolmaraProbe probe;
};

struct Place {
  int param;
  IRECT rect;
};

void ExpectPlace(const IControl& control, const Place& place) {
  EXPECT_EQ(control.ParamIdx(), place.param);
  EXPECT_EQ(control.GetRECT(), place.rect) << place.param;
}

void ExpectText(const IText& text, int size, const IColor& color) {
  EXPECT_STREQ(text.mFont, "Monaco");
  EXPECT_EQ(text.mSize, size);
  EXPECT_EQ(text.mColor, color);
  EXPECT_EQ(text.mAlign, IText::kAlignCenter);
  EXPECT_EQ(text.mTextEntryBGColor, kColorWhite);
  EXPECT_EQ(text.mTextEntryFGColor, kColorBlack);
}

constexpr IColor kCream(255, 255, 231, 168);

void ExpectKnob(const ICircleKnobMultiControlText& knob, const Place& place, int textSize,
                int textTop) {
  ExpectPlace(knob, place);
  const IRECT& r = place.rect;
  EXPECT_EQ(knob.GetTextRECT(), IRECT(r.L, textTop, r.R, (r.T + r.B) / 2 + 11)) << place.param;
  EXPECT_EQ(knob.GetColor(), IColor(255, 255, 187, 0));
  ExpectText(knob.GetText(), textSize, kCream);
  EXPECT_FALSE(knob.DisablesPrompt()) << "values can be typed";
}

}  // namespace

TEST_F(TolmaraEditor, EveryKnobStandsAtItsPlaceInOrder) {
  static constexpr Place kKnobs[] = {
      {0, {691, 118, 753, 180}},  {35, {691, 219, 753, 281}}, {1, {768, 118, 830, 180}},
      {34, {843, 118, 905, 180}}, {2, {768, 219, 830, 281}},  {36, {843, 219, 905, 281}},
      {3, {692, 378, 752, 438}},  {4, {768, 378, 828, 438}},  {5, {845, 378, 905, 438}},
      {6, {845, 466, 905, 526}},  {7, {692, 466, 752, 526}},  {8, {768, 466, 828, 526}},
      {9, {536, 134, 600, 198}},  {10, {536, 228, 600, 292}}, {32, {607, 178, 651, 222}},
      {33, {607, 240, 651, 284}}};
  int idx = 2;  // after the background and the first pop-up
  for (const Place& place : kKnobs) {
    // 9 * 12 / 17 = 6.35 above the middle, cut to whole pixels
    const int textTop = (place.rect.T + place.rect.B) / 2 - 7;
    ExpectKnob(At<ICircleKnobMultiControlText>(idx++), place, 12, textTop);
  }
}

TEST_F(TolmaraEditor, EveryDimensionHasItsRowOfASwitchTwoFadersAndAKnob) {
  for (int d = 0; d < 5; ++d) {
    const int y = 360 + 47 * d;
    const int idx = 20 + 4 * d;
    const int param = 11 + 4 * d;
    const auto& onOff = At<ISwitchControl>(idx);
    ExpectPlace(onOff, {param, {60, y - 16, 92, y + 16}});
    EXPECT_EQ(onOff.GetBitmap().N, 2);
    EXPECT_TRUE(onOff.DisablesPrompt());
    for (int i : {1, 2}) {
      const auto& fader = At<IFaderMultiControlText>(idx + i);
      const int top = i == 1 ? y - 24 : y;
      EXPECT_EQ(fader.ParamIdx(), param + i);
      EXPECT_EQ(fader.GetRECT(), IRECT(120, top, 484, top + 22));
      EXPECT_EQ(fader.GetLength(), 364);
      EXPECT_EQ(fader.GetDirection(), kHorizontal);
      EXPECT_TRUE(fader.OnlyHandle());
      EXPECT_EQ(fader.GetTextOffsetDivisor(), i == 1 ? 2.5 : 4.0);
      EXPECT_TRUE(fader.DisablesPrompt());
      ExpectText(fader.GetText(), 11, kColorWhite);
    }
    // 9 * 11 / 17 = 5.8
    ExpectKnob(At<ICircleKnobMultiControlText>(idx + 3), {param + 3, {492, y - 20, 532, y + 20}},
               11, y - 6);
  }
}

TEST_F(TolmaraEditor, PopUpsLinksAndTheDisplayCompleteIt) {
  EXPECT_EQ(Graphics().Width(), 960);
  EXPECT_EQ(Graphics().Height(), 600);
  EXPECT_EQ(Graphics().FPS(), 25);
  ExpectPlace(At<IBitmapControl>(0), {-1, {0, 0, 960, 600}});
  ExpectPlace(At<IFFTSizePopupMenu>(1), {39, {610, 125, 655, 140}});
  ExpectPlace(At<IComputeModePopupMenu>(18), {37, {855, 343, 893, 355}});
  ExpectPlace(At<INormModePopupMenu>(19), {38, {707, 343, 740, 355}});
  struct Link {
    IRECT rect;
    const char *pathEnd, *failure;
  };
  static constexpr Link kLinks[] = {
      {{701, 549, 896, 569}, "/about/", "Homepage unavailable"},
      {{565, 17, 631, 35}, "/tag/Tolmara/", "Homepage unavailable"},
      {{758, 17, 830, 35}, "/board/3/tolmara", "Forum page unavailable"}};
  for (int i = 0; i < 3; ++i) {
    const auto& link = At<IURLControl>(40 + i);
    ExpectPlace(link, {-1, kLinks[i].rect});
    const std::string url = link.GetURL();
    EXPECT_EQ(url, link.GetBackupURL() + std::string(kLinks[i].pathEnd + 1))
        << "the root page is the fallback";
    EXPECT_EQ(url.rfind("http", 0), 0U);
    EXPECT_STREQ(link.GetErrMsg(), kLinks[i].failure);
  }
  ExpectPlace(At<ITolmaraWaveformSpectrogram>(43), {-1, {68, 44, 496, 306}});
  EXPECT_EQ(Graphics().NControls(), 44);
}

TEST_F(TolmaraEditor, ControlsKnowTheDefaultsAndFollowPresets) {
  probe.Plugin().RestorePreset(16);
  int followers = 0;
  for (int i = 0; i < Graphics().NControls(); ++i) {
    const IControl& control = *Graphics().GetControl(i);
    if (control.ParamIdx() < 0) continue;
    const ParamSpec& spec = kParamTable[static_cast<size_t>(control.ParamIdx())];
    EXPECT_NEAR(control.GetDefaultValue(), (spec.defaultValue - spec.min) / (spec.max - spec.min),
                1e-12)
        << spec.name;
    EXPECT_EQ(control.GetValue(), probe.Plugin().GetParam(control.ParamIdx())->GetNormalized())
        << spec.name;
    followers += control.GetValue() != control.GetDefaultValue();
  }
  EXPECT_GT(followers, 10) << "the preset is no default";
}

TEST_F(TolmaraEditor, AChangeLeavesThePictureThatAWholeRedrawMakes) {
  // Some texts stand out of their control's rectangle.
  Settled();
  for (int param = 0; param < kNumParams; ++param) {
    for (const double value : {1.0, 0.0, 0.37, 1.0}) {
      probe.Plugin().GetParam(param)->SetNormalized(value);
      Graphics().SetParameterFromPlug(param, value, true);
      const Picture changed = Settled();
      EXPECT_TRUE(changed == DrawnAnew()) << param << " at " << value;
    }
  }
}

TEST_F(TolmaraEditor, TheDisplayShowsTheResponseThatTheWorkerRendered) {
  const Picture before = Settled();
  probe.Set(kTimeStretch, 4.0);
  probe.Settle();
  const Picture after = Settled();
  int inDisplay = 0, outside = 0;
  for (int i = 0; i < 960 * 600; ++i) {
    const bool inside = IRECT(68, 44, 496, 306).Contains(i % 960, i / 960);
    (inside ? inDisplay : outside) +=
        before[static_cast<size_t>(i)] != after[static_cast<size_t>(i)];
  }
  EXPECT_GT(inDisplay, 1000);
  EXPECT_EQ(outside, 0) << "the parameter was set behind the editor's back";
}
