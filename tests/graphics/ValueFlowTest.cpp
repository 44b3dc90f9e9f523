// Values between controls and plug-in, in both directions.
#include <limits>

#include "graphics/ITextControls.h"
#include "tests/graphics/Fixture.h"

namespace {

using ValueFlow = EditorTest;

TEST_F(ValueFlow, AChangeFromTheHostDirtiesTheControlForTwoFramesAndGoesNoFurther) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  auto* free = Attach<ProbeControl>(IRECT(20, 0, 30, 10));
  EXPECT_LT(level->GetDefaultValue(), 0.0);
  Show();
  EXPECT_EQ(level->GetValue(), 0.25);
  EXPECT_EQ(level->GetDefaultValue(), 0.25) << "the first value is the default";
  EXPECT_LT(free->GetDefaultValue(), 0.0);
  graphics->SetParameterFromPlug(kLevel, 0.25, true);
  EXPECT_FALSE(level->IsDirty()) << "an equal value is no change";

  graphics->SetParameterFromPlug(kLevel, 0.75, true);
  EXPECT_EQ(level->GetValue(), 0.75);
  EXPECT_EQ(level->GetDefaultValue(), 0.25);
  EXPECT_TRUE(graphics->Tick());
  EXPECT_TRUE(graphics->Tick()) << "a change that arrives while drawing must be seen";
  EXPECT_FALSE(graphics->Tick());
  EXPECT_EQ(plug.TakeCalls(), Calls());
}

TEST_F(ValueFlow, RealValuesAreNormalisedAndAuxiliaryParametersFollow) {
  auto* control = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  control->AddAuxParam(kCount);
  control->AddAuxParam(kNegated);
  Show();
  graphics->SetParameterFromPlug(kCount, 7.0, false);
  EXPECT_EQ(control->GetAuxParam(0)->mValue, 0.7);
  EXPECT_EQ(control->GetValue(), 0.25);
  EXPECT_TRUE(control->IsDirty());
  EXPECT_EQ(control->AuxParamIdx(kNegated), 1);
  EXPECT_EQ(control->AuxParamIdx(kLevel), -1);
  EXPECT_EQ(control->GetAuxParam(2), nullptr);
  graphics->SetParameterFromPlug(99, 1.0, false);
  control->SetAllAuxParamsFromGUI();
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 1 0.700", "changed 1", "set 4 0.250", "changed 4"}));
}

TEST_F(ValueFlow, AChangeByTheUserIsClampedPushedOnceAndShownByLinkedTexts) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  auto* value = Attach<ITextControl>(IRECT(10, 0, 50, 10), IText());
  auto* name = Attach<ITextControl>(IRECT(50, 0, 90, 10), IText());
  level->SetValDisplayControl(value);
  level->SetNameDisplayControl(name);
  Show();
  graphics->ClampControl(kLevel, 0.2, 0.6, false);
  level->SetValueFromUserInput(0.9);
  EXPECT_EQ(level->GetValue(), 0.6);
  EXPECT_EQ(plug.GetParam(kLevel)->Value(), 0.6);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.600", "changed 0"}));
  EXPECT_STREQ(value->GetTextString(), "0.60");
  EXPECT_STREQ(name->GetTextString(), "Level");
  level->SetValueFromUserInput(0.6);
  EXPECT_EQ(plug.TakeCalls(), Calls());
  Settle();
  value->SetTextFromPlug("0.60");
  EXPECT_FALSE(value->IsDirty());
  level->SetValueFromUserInput(0.0);
  EXPECT_EQ(level->GetValue(), 0.2);
  EXPECT_TRUE(value->IsDirty());
}

TEST_F(ValueFlow, DoubleClickRestoresAKnownDefaultAndWheelMovesBySmallSteps) {
  struct Plain : IControl {
    using IControl::IControl;
    bool Draw(IGraphics*) override { return true; }
  };
  auto* level = Attach<Plain>(IRECT(0, 0, 10, 10), kLevel);
  level->OnMouseDblClick(1, 1, &left);
  EXPECT_EQ(level->GetValue(), 0.0) << "no default is known yet";
  Show();
  graphics->OnMouseWheel(1, 1, &left, 1);
  EXPECT_DOUBLE_EQ(level->GetValue(), 0.26);
  graphics->OnMouseWheel(1, 1, &shifted, -1);
  EXPECT_DOUBLE_EQ(level->GetValue(), 0.259);
  graphics->OnMouseWheel(1, 1, &left, 1000);
  EXPECT_EQ(level->GetValue(), 1.0);
  plug.TakeCalls();
  graphics->OnMouseDblClick(1, 1, &left);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.250", "changed 0"}));
}

TEST_F(ValueFlow, HidingAndGrayingReachEveryControlOfTheParameter) {
  graphics->AttachPanelBackground(&kColorBlack);
  auto* a = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel, kColorWhite);
  auto* b = Attach<ProbeControl>(IRECT(10, 0, 20, 10), kLevel, kColorWhite);
  auto* other = Attach<ProbeControl>(IRECT(20, 0, 30, 10), kCount, kColorWhite);
  Show();
  graphics->GrayOutControl(kLevel, true);
  Settle();
  EXPECT_TRUE(a->IsGrayed() && b->IsGrayed() && !other->IsGrayed());
  EXPECT_NEAR(graphics->GetPoint(5, 5).R, 64, 2) << "grayed controls are drawn at a quarter";
  EXPECT_EQ(graphics->GetPoint(25, 5), kColorWhite);
  graphics->GrayOutControl(kLevel, false);
  graphics->HideControl(kLevel, true);
  Settle();
  EXPECT_TRUE(a->IsHidden() && b->IsHidden() && !other->IsHidden());
  EXPECT_EQ(graphics->BoundsOf(kColorWhite.Pixel()), IRECT(20, 0, 30, 10));
  EXPECT_FALSE(graphics->Tick()) << "a hidden control must not stay dirty";
}

TEST_F(ValueFlow, AbsurdValuesFromTheHostAreForgottenAtTheNextGoodOne) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  Show();
  using Limits = std::numeric_limits<double>;
  for (const double absurd : {-1e300, 1e300, -Limits::infinity(), Limits::quiet_NaN(), 0.5}) {
    SetLevel(absurd);
  }
  EXPECT_EQ(level->GetValue(), 0.5);
  EXPECT_EQ(level->GetDefaultValue(), 0.25);
}

}  // namespace
