// Mouse and keys, from the user's hand to the host.
#include <thread>

#include "graphics/x11/MouseRouter.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

using Entries = std::vector<std::string>;

class EditorMouseTest : public EditorHostTest {
 protected:
  EditorMouseTest() { EXPECT_TRUE(Open()); }
  Journal& Notes() { return mPlug->Notes(); }
};

TEST_F(EditorMouseTest, ADragIsOneEditWithItsEndOutsideTheWindow) {
  Point(HostedPlug::kLevelRect);
  mUser.Press(1);
  ASSERT_TRUE(Notes().EndsWith("begin 0"));
  // Ten pixels of a knob of 50 at a gearing of 4 are a twentieth.
  Point(35, 25);
  ASSERT_TRUE(Notes().EndsWith("set 0 0.300"));
  mUser.MoveTo(kLeft + 37, 0);
  ASSERT_TRUE(Notes().EndsWith("set 0 0.690"));  // 78 more, above the window's upper edge
  mUser.Release(1);
  ASSERT_TRUE(Notes().EndsWith("out"));  // the mouse is elsewhere
  EXPECT_EQ(Notes().Take(), (Entries{"begin 0", "set 0 0.300", "set 0 0.690", "end 0", "out"}));
  EXPECT_NEAR(Value(kLevel), 69.0, 1e-6);
}

TEST_F(EditorMouseTest, ModifiersAndButtonsReachTheControl) {
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Notes().EndsWith("up 195 15"));
  EXPECT_EQ(Notes().Take(), (Entries{"over 195 15", "down 195 15 L", "up 195 15"}));
  mUser.Click(3);
  ASSERT_TRUE(Notes().EndsWith("up 195 15"));
  EXPECT_EQ(Notes().Take(), (Entries{"down 195 15 R", "up 195 15"}));
  const std::pair<xcb_keysym_t, const char*> keys[] = {
      {kShiftKey, "LS"}, {kControlKey, "LC"}, {0xFFE9, "LA"}, {kSuperKey, "LR"}};
  int x = 200;
  for (const auto& [key, marks] : keys) {
    Point(x, 15);
    mUser.HoldKey(key);
    mUser.Click();
    mUser.ReleaseKey(key);
    const std::string place = std::to_string(x) + " 15";
    ASSERT_TRUE(Notes().EndsWith("up " + place));
    EXPECT_EQ(Notes().Take(),
              (Entries{"over " + place, "down " + place + " " + marks, "up " + place}));
    x += 10;
  }
  // Back, forward and sideways wheel are nobody's.
  for (const int button : {2, 6, 8}) mUser.Click(button);
  Point(230, 20);
  ASSERT_TRUE(Notes().EndsWith("over 230 20"));
  EXPECT_EQ(Notes().Take(), Entries{"over 230 20"});
}

TEST_F(EditorMouseTest, ADoubleClickRestoresTheDefaultWithoutAnOpenEdit) {
  Point(HostedPlug::kLevelRect);
  mUser.Wheel(3);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 28.0, 1e-6);
  const auto wheel = Notes().Take();
  EXPECT_EQ(wheel.size(), 9U) << ::testing::PrintToString(wheel);
  ExpectBalancedEdits(wheel);

  mUser.Click();
  mUser.Click();
  ASSERT_TRUE(Notes().EndsWith("set 0 0.250"));
  // The second release ends nothing; the third press is a double click again.
  mUser.Click();
  ASSERT_TRUE(Eventually([&] { return Value(kLevel) == 25.0; }));
  Point(195, 15);
  ASSERT_TRUE(Notes().EndsWith("over 195 15"));
  ExpectBalancedEdits(Notes().Take());
}

TEST_F(EditorMouseTest, ASecondButtonDoesNotDisturbADrag) {
  Point(HostedPlug::kLevelRect);
  mUser.Press(1);
  ASSERT_TRUE(Notes().EndsWith("begin 0"));
  mUser.Press(3);
  Point(195, 35);
  mUser.Release(3);
  Point(35, 25);
  ASSERT_TRUE(Notes().EndsWith("set 0 0.300"));
  mUser.Release(1);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  ExpectBalancedEdits(Notes().Take());
}

TEST_F(EditorMouseTest, AnEditEndsWithTheWindow) {
  Point(HostedPlug::kCountRect);
  mUser.Press(1);
  ASSERT_TRUE(Notes().EndsWith("begin 1"));
  Close();
  EXPECT_EQ(Notes().Take().back(), "end 1");
  mUser.Release(1);
  ASSERT_TRUE(Open());
  Point(HostedPlug::kLevelRect);
  mUser.Press(1);
  ASSERT_TRUE(Notes().EndsWith("begin 0"));
  HostedPlug* plug = mPlug;
  mPlug = nullptr;
  AEffect* effect = plug->GetAEffect();
  effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0F);  // with the button down
}

TEST_F(EditorMouseTest, LeavingTheWindowIsToldToTheControls) {
  Point(195, 15);
  ASSERT_TRUE(Notes().EndsWith("over 195 15"));
  mUser.MoveTo(0, 0);
  EXPECT_TRUE(Notes().EndsWith("out"));
}

TEST_F(EditorMouseTest, KeysGoToTheControlUnderTheMouseAndOthersToTheHost) {
  Point(195, 15);
  ASSERT_TRUE(Notes().EndsWith("over 195 15"));
  Notes().Take();
  for (const xcb_keysym_t key : {0xFF52U, 0xFF54U, 0xFF51U, 0xFF53U}) mUser.Type(key);
  mUser.Type("09aZ");
  ASSERT_TRUE(Notes().EndsWith("key 40"));
  EXPECT_EQ(Notes().Take(),
            (Entries{"key 1", "key 2", "key 3", "key 4", "key 5", "key 14", "key 15", "key 40"}));
  // The space bar, which this control leaves alone, plays and stops in the host.
  mUser.Type(" ");
  X11Event event;
  do {
    event = mUser.NextEvent();
    ASSERT_NE(event, nullptr);
  } while (X11TypeOf(*event) != XCB_KEY_PRESS);
  EXPECT_EQ(Notes().Take(), Entries{});
}

TEST_F(EditorMouseTest, AHiddenCursorComesBackWhereItWas) {
  mPlug->onProbe = [this] { mPlug->Graphics()->HideMouseCursor(); };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Notes().EndsWith("up 195 15"));
  mPlug->onProbe = [this] { mPlug->Graphics()->ShowMouseCursor(); };
  Point(220, 40);
  mUser.Click();
  EXPECT_TRUE(Eventually([&] {
    const X11Point place = mUser.Pointer();
    return place.x == kLeft + 197 && place.y == kTop + 18;
  }));
}

TEST(ClickCounter, CountsPressesThatAreNearInTimeAndPlace) {
  ClickCounter clicks;
  EXPECT_EQ(clicks.Press(1, 50, 50, 1000), 1);
  EXPECT_EQ(clicks.Press(1, 55, 45, 1400), 2);
  EXPECT_EQ(clicks.Press(1, 55, 45, 1801), 1);  // too late
  EXPECT_EQ(clicks.Press(1, 61, 45, 1850), 1);  // too far
  EXPECT_EQ(clicks.Press(3, 61, 45, 1900), 1);  // another button
  // The server's clock wraps.
  EXPECT_EQ(clicks.Press(1, 0, 0, 0xFFFFFFF0U), 1);
  EXPECT_EQ(clicks.Press(1, 0, 0, 0x20U), 2);
  EXPECT_EQ(clicks.Press(1, 0, 0, 0x30U), 3);
}

}  // namespace
