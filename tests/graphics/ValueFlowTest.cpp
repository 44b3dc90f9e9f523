// Values between controls and plug-in, in both directions.
#include "graphics/ITextControls.h"
#include "tests/graphics/Fixture.h"

namespace {

using ValueFlow = EditorTest;

TEST_F(ValueFlow, AttachingGivesEachControlItsParametersValueAsItsDefault) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  auto* count = Attach<ProbeControl>(IRECT(10, 0, 20, 10), kCount);
  auto* free = Attach<ProbeControl>(IRECT(20, 0, 30, 10));
  EXPECT_LT(level->GetDefaultValue(), 0.0);
  Show();
  EXPECT_EQ(level->GetValue(), 0.25);
  EXPECT_EQ(level->GetDefaultValue(), 0.25);
  EXPECT_EQ(count->GetValue(), 0.4);
  EXPECT_LT(free->GetDefaultValue(), 0.0);
}

TEST_F(ValueFlow, AChangeFromTheHostDirtiesTheControlForTwoFramesAndGoesNoFurther) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  Show();
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

  plug.TakeCalls();
  control->GetAuxParam(1)->mValue = 0.5;
  control->SetAllAuxParamsFromGUI();
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 1 0.700", "changed 1", "set 4 0.500", "changed 4"}));
}

TEST_F(ValueFlow, AChangeByTheUserIsClampedAndPushedOnce) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  Show();
  graphics->ClampControl(kLevel, 0.2, 0.6, false);
  level->SetValueFromUserInput(0.9);
  EXPECT_EQ(level->GetValue(), 0.6);
  EXPECT_EQ(plug.GetParam(kLevel)->Value(), 0.6);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.600", "changed 0"}));
  level->SetValueFromUserInput(0.6);
  EXPECT_EQ(plug.TakeCalls(), Calls());
  level->SetValueFromUserInput(0.0);
  EXPECT_EQ(level->GetValue(), 0.2);
  Settle();
  EXPECT_FALSE(level->IsDirty());
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
  IMouseMod control(true, false, false, true);
  graphics->OnMouseWheel(1, 1, &control, 2);
  EXPECT_DOUBLE_EQ(level->GetValue(), 0.261);
  graphics->OnMouseWheel(1, 1, &left, 1000);
  EXPECT_EQ(level->GetValue(), 1.0);
  plug.TakeCalls();
  graphics->OnMouseDblClick(1, 1, &left);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.250", "changed 0"}));
}

TEST_F(ValueFlow, LinkedTextsShowNameAndValueOfWhatTheUserChanges) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  auto* value = Attach<ITextControl>(IRECT(10, 0, 50, 10), IText());
  auto* name = Attach<ITextControl>(IRECT(50, 0, 90, 10), IText());
  level->SetValDisplayControl(value);
  level->SetNameDisplayControl(name);
  Show();
  graphics->SetParameterFromPlug(kLevel, 0.5, true);
  EXPECT_STREQ(value->GetTextString(), "");
  level->SetValueFromUserInput(0.75);
  EXPECT_STREQ(value->GetTextString(), "0.75");
  EXPECT_STREQ(name->GetTextString(), "Level");
  EXPECT_TRUE(value->IsDirty());
  Settle();
  value->SetTextFromPlug("0.75");
  EXPECT_FALSE(value->IsDirty());
}

TEST_F(ValueFlow, HidingAndGrayingReachEveryControlOfTheParameter) {
  auto* a = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  auto* b = Attach<ProbeControl>(IRECT(10, 0, 20, 10), kLevel);
  auto* other = Attach<ProbeControl>(IRECT(20, 0, 30, 10), kCount);
  Show();
  graphics->GrayOutControl(kLevel, true);
  EXPECT_TRUE(a->IsGrayed() && b->IsGrayed());
  EXPECT_FALSE(other->IsGrayed());
  EXPECT_EQ(a->GetBlend().mWeight, 0.25F);
  graphics->GrayOutControl(kLevel, false);
  EXPECT_EQ(b->GetBlend().mWeight, 1.0F);
  graphics->HideControl(kLevel, true);
  EXPECT_TRUE(a->IsHidden() && b->IsHidden());
  EXPECT_FALSE(other->IsHidden());
  EXPECT_TRUE(graphics->Tick());
  EXPECT_TRUE(graphics->Tick());
  EXPECT_FALSE(graphics->Tick()) << "a hidden control must not stay dirty";
}

TEST_F(ValueFlow, AbsurdValuesFromTheHostAreForgottenAtTheNextGoodOne) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  Show();
  for (const double absurd : {-1e300, 1e300, -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()}) {
    graphics->SetParameterFromPlug(kLevel, absurd, true);
    graphics->Tick();
  }
  graphics->SetParameterFromPlug(kLevel, 0.5, true);
  EXPECT_EQ(level->GetValue(), 0.5);
  EXPECT_EQ(level->GetDefaultValue(), 0.25);
}

}  // namespace
