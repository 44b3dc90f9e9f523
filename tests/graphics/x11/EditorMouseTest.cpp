// Mouse and keys, from the user's hand to the host.
#include "graphics/x11/ClickCounter.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

class EditorMouseTest : public EditorHostTest {
 protected:
  EditorMouseTest() { EXPECT_TRUE(Open()); }
};

TEST_F(EditorMouseTest, ADragIsOneEditWithItsEndOutsideTheWindow) {
  PressAt(HostedPlug::kLevelRect);
  ASSERT_TRUE(Notes().Comes("begin 0"));
  // A second button does not disturb it.
  mUser.Press(3);
  Point(195, 35);
  mUser.Release(3);
  // Ten pixels of a knob of 50 at a gearing of 4 are a twentieth.
  Point(35, 25);
  ASSERT_TRUE(Notes().Comes("set 0 0.300"));
  mUser.MoveTo(kLeft + 37, 0);
  mUser.Release(1);
  // 78 more, above the window's upper edge; the mouse is elsewhere then.
  EXPECT_EQ(Notes().UpTo("out"), (Entries{"set 0 0.690", "end 0", "out"}));
  EXPECT_NEAR(Value(kLevel), 69.0, 1e-6);
  Point(195, 15);
  ASSERT_TRUE(Notes().Comes("over 195 15"));
  mUser.MoveTo(0, 0);
  EXPECT_TRUE(Notes().Comes("out"));
}

TEST_F(EditorMouseTest, ModifiersAndButtonsReachTheControl) {
  const struct {
    xcb_keysym_t key;
    int button;
    const char* marks;
  } cases[] = {{0, 1, "L"},          {0, 3, "R"},
               {kShiftKey, 1, "LS"}, {kControlKey, 1, "LC"},
               {kAltKey, 3, "RA"},   {kSuperKey, 1, "LR"}};
  int x = 190;
  for (const auto& [key, button, marks] : cases) {
    const std::string place = std::to_string(x += 8) + " 15";
    Point(x, 15);
    if (key) mUser.HoldKey(key);
    mUser.Click(button);
    if (key) mUser.ReleaseKey(key);
    EXPECT_EQ(Notes().UpTo("up " + place),
              (Entries{"over " + place, "down " + place + " " + marks, "up " + place}));
  }
  // Back, forward and sideways wheel are nobody's.
  for (const int button : {2, 6, 8}) mUser.Click(button);
  Point(230, 20);
  EXPECT_EQ(Notes().UpTo("over 230 20"), Entries{"over 230 20"});
}

TEST_F(EditorMouseTest, ADoubleClickRestoresTheDefaultWithoutAnOpenEdit) {
  Point(HostedPlug::kLevelRect);
  mUser.Wheel(3);
  mUser.HoldKey(kShiftKey);
  mUser.Wheel(-10);  // a tenth of a step each
  mUser.ReleaseKey(kShiftKey);
  ASSERT_TRUE(Eventually([&] { return std::abs(Value(kLevel) - 27.0) < 1e-6; })) << Value(kLevel);
  // The second release ends nothing; the third press is a double click again.
  mUser.Click(1, 3);
  Point(195, 15);
  const Entries entries = Notes().UpTo("over 195 15");
  ExpectBalancedEdits(entries);
  EXPECT_EQ(std::count(entries.begin(), entries.end(), "begin 0"), 14);
  EXPECT_EQ(Value(kLevel), 25.0);
}

TEST_F(EditorMouseTest, AnEditEndsWithTheEffect) {
  PressAt(HostedPlug::kLevelRect);
  ASSERT_TRUE(Notes().Comes("begin 0"));
  Journal journal;  // that outlives the effect
  mEffect->user = &journal;
  EndPlug();
  EXPECT_EQ(journal.Take(), Entries{"end 0"});
}

TEST_F(EditorMouseTest, KeysGoToTheControlUnderTheMouseAndOthersToTheHost) {
  Point(195, 15);
  ASSERT_TRUE(Notes().Comes("over 195 15"));
  for (const xcb_keysym_t key : {kX11Up, kX11Down, kX11Left, kX11Right}) mUser.Type(key);
  mUser.Type("09az");
  EXPECT_EQ(Notes().UpTo("key 40"),
            (Entries{"key 1", "key 2", "key 3", "key 4", "key 5", "key 14", "key 15", "key 40"}));
  // A key that the host sent here itself, and that nobody takes, stays here; else both would send
  // it for ever. The space bar, which this control leaves alone, plays and stops in the host.
  xcb_key_press_event_t key{};
  key.response_type = XCB_KEY_PRESS;
  key.detail = mUser.CodeOf('-');
  key.root = mUser.Screen().root;
  key.event = Window();
  mUser.Send(Window(), 0, &key);
  mUser.Type(" ");
  const X11Event event = mUser.NextEvent(XCB_KEY_PRESS);
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->pad0, mUser.CodeOf(' '));
  EXPECT_EQ(Notes().Take(), Entries{});
}

TEST_F(EditorMouseTest, AHiddenCursorComesBackWhereItWas) {
  mPlug->onProbe = [this] { Graphics().HideMouseCursor(); };
  ClickAt(195, 15);
  ASSERT_TRUE(Notes().Comes("up 195 15"));
  mPlug->onProbe = [this] { Graphics().ShowMouseCursor(); };
  ClickAt(220, 40);
  EXPECT_TRUE(Eventually([&] {
    const X11Point place = mUser.Pointer();
    return place.x == kLeft + 197 && place.y == kTop + 18;
  }));
}

TEST(ClickCounter, CountsPressesThatAreNearInTimeAndPlace) {
  const struct {
    int button, x, y;
    xcb_timestamp_t time;
    int count;
  } presses[] = {{1, 50, 50, 1000, 1},     {1, 55, 45, 1400, 2}, {1, 55, 45, 1801, 1},  // too late
                 {1, 61, 45, 1850, 1},                                                  // too far
                 {3, 61, 45, 1900, 1},                          // another button
                 {1, 0, 0, 0xFFFFFFF0, 1}, {1, 0, 0, 0x20, 2},  // the server's clock wraps
                 {1, 0, 0, 0x30, 3}};
  ClickCounter clicks;
  for (const auto& p : presses) {
    EXPECT_EQ(clicks.Press(p.button, p.x, p.y, p.time), p.count) << p.time;
  }
}

}  // namespace
