// Which control an event reaches, and what the host hears of it.
#include "tests/graphics/Fixture.h"

namespace {

class MouseRouting : public EditorTest {
 protected:
  // A background, and two controls that overlap from x = 20 to 30.
  MouseRouting()
      : background(Attach<ProbeControl>(IRECT(0, 0, kWidth, kHeight))),
        lower(Attach<ProbeControl>(IRECT(10, 10, 30, 30), kLevel)),
        upper(Attach<ProbeControl>(IRECT(20, 10, 40, 30), kCount)) {
    Show();
    for (auto* control : {background, lower, upper}) control->TakeEvents();
  }

  ProbeControl* background;
  ProbeControl* lower;
  ProbeControl* upper;
};

TEST_F(MouseRouting, ThePressGoesToTheTopmostHitAndItsEditIsAnnouncedUntilTheRelease) {
  graphics->OnMouseDown(25, 15, &left);
  EXPECT_EQ(upper->TakeEvents(), Calls{"down 25 15"});
  EXPECT_EQ(plug.TakeCalls(), Calls{"begin 1"});
  graphics->OnMouseDrag(-50, 400, &left);
  graphics->OnMouseDrag(-50, 400, &left);
  EXPECT_EQ(upper->TakeEvents(), Calls{"drag -75 385"}) << "no drag without a motion";
  graphics->OnMouseUp(0, 0, &left);
  EXPECT_EQ(upper->TakeEvents(), Calls{"up 0 0"}) << "capture holds outside the control";
  EXPECT_EQ(plug.TakeCalls(), Calls{"end 1"});
  graphics->OnMouseDrag(15, 15, &left);
  EXPECT_EQ(lower->TakeEvents(), Calls()) << "no drag without a press";
}

TEST_F(MouseRouting, HiddenAndGrayedControlsLetThePressThrough) {
  upper->GrayOut(true);
  upper->mMOWhenGrayed = true;
  graphics->OnMouseDown(25, 15, &left);
  EXPECT_EQ(lower->TakeEvents(), Calls{"down 25 15"});
  lower->Hide(true);
  plug.TakeCalls();
  graphics->OnMouseDown(25, 15, &left);
  graphics->OnMouseUp(999, 15, &left);
  EXPECT_EQ(background->TakeEvents(), (Calls{"down 25 15", "up 999 15"}));
  EXPECT_EQ(plug.TakeCalls(), Calls()) << "without a parameter nobody is informed";
}

TEST_F(MouseRouting, ADoubleClickIsNoEditForTheHostAndCapturesOnlyAsAPress) {
  EXPECT_FALSE(graphics->OnMouseDblClick(15, 15, &left));
  EXPECT_EQ(lower->TakeEvents(), Calls{"double 15 15"});
  EXPECT_EQ(graphics->GetMouseCapture(), -1);
  lower->mDblAsSingleClick = true;
  EXPECT_TRUE(graphics->OnMouseDblClick(15, 15, &left));
  EXPECT_EQ(lower->TakeEvents(), Calls{"down 15 15"});
  EXPECT_EQ(graphics->GetMouseCapture(), 1);
  EXPECT_EQ(plug.TakeCalls(), Calls());
  graphics->OnMouseWheel(35, 15, &left, 3);
  EXPECT_EQ(lower->TakeEvents(), Calls{"wheel 3 0"}) << "the wheel follows the capture";
}

TEST_F(MouseRouting, MouseOverEntersLeavesAndReachesGrayedControlsOnRequest) {
  graphics->OnMouseOver(15, 15, &left);
  EXPECT_EQ(lower->TakeEvents(), Calls()) << "off until asked for";
  graphics->HandleMouseOver(true);
  for (const int x : {15, 16, 35}) graphics->OnMouseOver(x, 15, &left);
  EXPECT_EQ(lower->TakeEvents(), (Calls{"over 15 15", "over 16 15", "out 0 0"}));
  EXPECT_EQ(upper->TakeEvents(), Calls{"over 35 15"});
  graphics->OnMouseOver(500, 500, &left);
  EXPECT_EQ(upper->TakeEvents(), Calls()) << "no hit changes nothing";
  upper->GrayOut(true);
  for (const bool asked : {false, true}) {
    upper->mMOWhenGrayed = asked;
    graphics->OnMouseOver(35, 15, &left);
    EXPECT_EQ(upper->TakeEvents(), asked ? Calls{"over 35 15"} : Calls{"out 0 0"});
  }
  lower->TakeEvents();
  graphics->OnMouseOut();
  for (auto* control : {lower, upper}) EXPECT_EQ(control->TakeEvents(), Calls{"out 0 0"});
  graphics->OnMouseOver(15, 15, &left);
  EXPECT_EQ(upper->TakeEvents(), Calls()) << "a control that was left is not left again";
}

TEST_F(MouseRouting, KeysGoToTheControlUnderTheMouseElseToTheCatcherAndNeverToTheBackground) {
  EXPECT_TRUE(graphics->OnKeyDown(15, 15, IGraphics::kKeyUp));
  EXPECT_EQ(lower->TakeEvents(), Calls{"key 1 0"});
  EXPECT_FALSE(graphics->OnKeyDown(5, 5, IGraphics::kKeySpace));
  auto* catcher = new ProbeControl(&plug, IRECT());
  graphics->SetKeyCatcher(catcher);
  EXPECT_TRUE(graphics->OnKeyDown(5, 5, IGraphics::kKeyA + 25));
  EXPECT_EQ(catcher->TakeEvents(), Calls{"key 40 0"});
  EXPECT_EQ(background->TakeEvents(), Calls());
  lower->takesKeys = false;
  EXPECT_FALSE(graphics->OnKeyDown(15, 15, IGraphics::kKey0));
  EXPECT_EQ(catcher->TakeEvents(), Calls()) << "a control that declines is not passed over";
}

}  // namespace
