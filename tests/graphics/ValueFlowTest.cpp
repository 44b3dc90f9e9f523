// Values between controls and plug-in, in both directions.
#include <limits>

#include "graphics/controls/ITextControls.h"
#include "tests/graphics/Fixture.h"

namespace {

using ValueFlow = EditorTest;

TEST_F(ValueFlow, AChangeFromTheHostDirtiesTheControlForTwoFramesAndGoesNoFurther) {
  auto* level = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  auto* free = Attach<ProbeControl>(IRECT(20, 0, 30, 10));
  EXPECT_LT(level->GetDefaultValue(), 0.0);
  Show();
  EXPECT_EQ(level->GetValue(), 0.25);
  EXPECT_LT(free->GetDefaultValue(), 0.0);
  graphics->SetParameterFromPlug(kLevel, 0.25, true);
  EXPECT_FALSE(level->IsDirty()) << "an equal value is no change";
  graphics->SetParameterFromPlug(kLevel, 0.75, true);
  EXPECT_TRUE(graphics->Tick());
  EXPECT_TRUE(graphics->Tick()) << "a change that arrives while drawing must be seen";
  EXPECT_FALSE(graphics->Tick());
  using Limits = std::numeric_limits<double>;
  for (const double value : {0.75, -1e300, 1e300, -Limits::infinity(), Limits::quiet_NaN(), 0.5}) {
    SetLevel(value);
  }
  EXPECT_EQ(level->GetValue(), 0.5) << "absurd values leave no trace";
  EXPECT_EQ(level->GetDefaultValue(), 0.25) << "the first value is the default";
  EXPECT_EQ(plug.TakeCalls(), Calls());
}

TEST_F(ValueFlow, RealValuesAreNormalisedAndAuxiliaryParametersFollow) {
  auto* control = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kLevel);
  control->AddAuxParam(kCount);
  control->AddAuxParam(kNegated);
  Show();
  graphics->SetParameterFromPlug(kCount, 7.0, false);
  graphics->SetParameterFromPlug(99, 1.0, false);
  EXPECT_EQ(control->GetAuxParam(0)->mValue, 0.7);
  EXPECT_EQ(control->GetValue(), 0.25);
  EXPECT_TRUE(control->IsDirty());
  EXPECT_EQ(control->AuxParamIdx(kNegated), 1);
  EXPECT_EQ(control->AuxParamIdx(kLevel), -1);
  EXPECT_EQ(control->GetAuxParam(2), nullptr);
  control->SetAllAuxParamsFromGUI();
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 1 0.700", "changed 1", "set 4 0.250", "changed 4"}));
}

TEST_F(ValueFlow, AChangeByTheUserIsClampedPushedOnceAndShownByLinkedTexts) {
  auto* count = Attach<ProbeControl>(IRECT(0, 0, 10, 10), kCount);
  auto* value = Attach<ITextControl>(IRECT(10, 0, 50, 10), -1, IText());
  auto* name = Attach<ITextControl>(IRECT(50, 0, 90, 10), -1, IText());
  count->mValDisplayControl = value;
  count->mNameDisplayControl = name;
  Show();
  graphics->ClampControl(kCount, 2.0, 6.0, false);
  count->SetValueFromUserInput(0.9);
  EXPECT_EQ(count->GetValue(), 0.6);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 1 0.600", "changed 1"}));
  for (const auto& [control, text] : {std::pair(value, "6"), std::pair(name, "Count")}) {
    control->Draw(graphics);
    EXPECT_EQ(graphics->lastText, text);
  }
  count->SetValueFromUserInput(0.6);
  EXPECT_EQ(plug.TakeCalls(), Calls());
  Settle();
  value->SetTextFromPlug("6");
  EXPECT_FALSE(value->IsDirty());
  count->SetValueFromUserInput(0.0);
  EXPECT_EQ(count->GetValue(), 0.2);
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
  IMouseMod controlled{true, false, false, true};
  for (const auto& [mod, distance, value] :
       {std::tuple(&left, 1, 0.26), std::tuple(&shifted, -1, 0.259),
        std::tuple(&controlled, -1, 0.258), std::tuple(&left, 1000, 1.0)}) {
    graphics->OnMouseWheel(1, 1, mod, distance);
    EXPECT_DOUBLE_EQ(level->GetValue(), value);
  }
  plug.TakeCalls();
  graphics->OnMouseDblClick(1, 1, &left);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.250", "changed 0"}));
}

TEST_F(ValueFlow, HidingAndGrayingReachEveryControlOfTheParameter) {
  graphics->AttachPanelBackground(&kColorBlack);
  for (const int x : {0, 10}) Attach<ProbeControl>(IRECT(x, 0, x + 10, 10), kLevel, kColorRed);
  Attach<ProbeControl>(IRECT(20, 0, 30, 10), kCount, kColorRed);
  Show();
  graphics->GrayOutControl(kLevel, true);
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(20, 0, 30, 10));
  for (const int x : {5, 15}) EXPECT_NEAR(graphics->GetPoint(x, 5).R, 64, 2) << "a quarter";
  graphics->GrayOutControl(kLevel, false);
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(0, 0, 30, 10));
  graphics->HideControl(kLevel, true);
  Settle();
  EXPECT_EQ(graphics->BoundsOf(kRed), IRECT(20, 0, 30, 10));
  EXPECT_EQ(graphics->GetPoint(15, 5).R, 0);
  EXPECT_FALSE(graphics->Tick()) << "a hidden control must not stay dirty";
}

}  // namespace
