// Menus in the window and beyond it.
#include <thread>

#include "graphics/x11/MenuLayout.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

using Entries = std::vector<std::string>;
constexpr xcb_keysym_t kReturn = 0xFF0D, kEscape = 0xFF1B, kUpKey = 0xFF52, kDownKey = 0xFF54,
                       kLeftKey = 0xFF51, kRightKey = 0xFF53, kEndKey = 0xFF57;
constexpr uint32_t kLit = 0xFFBB00;  // ground of the row in hand

// Every press of the probe opens the menu; what was chosen is noted as "chose <text>".
class MenuTest : public EditorHostTest {
 protected:
  MenuTest() {
    EXPECT_TRUE(Open());
    mPlug->onProbe = [this] { Ask(HostedPlug::kProbeRect); };
  }
  ~MenuTest() override { Close(); }  // before the menu goes
  Journal& Notes() { return mPlug->Notes(); }

  void Ask(IRECT rect) {
    const IPopupMenu* chosen = mPlug->Graphics()->CreateIPopupMenu(&mMenu, &rect);
    if (chosen) mChosenMenu = chosen;
    Notes().Note(chosen ? std::string("chose ") + chosen->GetItemText(chosen->GetChosenItemIdx())
                        : "dismissed");
  }
  void OpenByPress(const IRECT& rect = HostedPlug::kProbeRect) {
    Point(rect);
    mUser.Click(2);  // so that the next press is no double click
    mUser.Click();
    ASSERT_TRUE(Eventually([&] { return MenuIsOpen(); }));
  }
  bool MenuIsOpen() { return !mUser.ChildrenOf(Window()).empty(); }
  IRECT Place(xcb_window_t window) {
    const X11Reply<xcb_get_geometry_reply_t> g(
        xcb_get_geometry_reply(mUser.Get(), xcb_get_geometry(mUser.Get(), window), nullptr));
    return g ? IRECT(g->x, g->y, g->x + g->width, g->y + g->height) : IRECT();
  }
  IRECT MenuPlace() {
    const auto panels = mUser.ChildrenOf(Window());
    return panels.empty() ? IRECT() : Place(panels.back());
  }
  // Moves the mouse into a row of a panel that stands at `place` in the window.
  void PointAtRow(const IRECT& place, int row) {
    mUser.MoveTo(kLeft + place.L + 25, kTop + place.T + 4 + 20 * row + 10);
  }
  bool IsLit(const IRECT& place, int row) {
    const int y = kTop + place.T + 4 + 20 * row + 2;
    return Eventually([&] { return mUser.ScreenPixel(kLeft + place.L + 3, y) == kLit; });
  }

  IPopupMenu mMenu;
  const IPopupMenu* mChosenMenu = nullptr;
};

TEST_F(MenuTest, AParameterWithTextsIsSetFromItsMenu) {
  OpenByPress(HostedPlug::kColourRect);
  const IRECT place = MenuPlace();
  EXPECT_EQ(place.L, HostedPlug::kColourRect.L);
  EXPECT_EQ(place.T, HostedPlug::kColourRect.B + 4);
  PointAtRow(place, 2);
  ASSERT_TRUE(IsLit(place, 2));
  mUser.Click();
  ASSERT_TRUE(Notes().EndsWith("end 2"));
  EXPECT_EQ(Notes().Take(), (Entries{"set 2 1.000", "begin 2", "end 2"}));
  EXPECT_EQ(Value(kColour), 2.0);
  EXPECT_TRUE(Eventually([&] { return !MenuIsOpen(); }));

  // Press, drag and release choose as well.
  Point(HostedPlug::kColourRect);
  mUser.Click(2);
  mUser.Press(1);
  ASSERT_TRUE(Eventually([&] { return MenuIsOpen(); }));
  PointAtRow(MenuPlace(), 1);
  ASSERT_TRUE(IsLit(MenuPlace(), 1));
  mUser.Release(1);
  ASSERT_TRUE(Notes().EndsWith("end 2"));
  ExpectBalancedEdits(Notes().Take());
  EXPECT_EQ(Value(kColour), 1.0);
}

TEST_F(MenuTest, KeysAndWheelGoAroundTheItemsThatCanBeChosen) {
  mMenu.AddItem("off", -1, IPopupMenuItem::kDisabled);
  mMenu.AddItem("head", -1, IPopupMenuItem::kTitle);
  mMenu.AddSeparator();
  mMenu.AddItem("three");
  mMenu.AddItem("four", -1, IPopupMenuItem::kChecked);
  OpenByPress();
  mUser.Type(kDownKey);  // over the disabled one
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().Comes("chose head"));
  OpenByPress();
  mUser.Type(kDownKey);
  mUser.Type(kUpKey);  // around the end
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().Comes("chose four"));
  OpenByPress();
  mUser.Wheel(-2);  // downward, over the separator
  mUser.Type(" ");
  ASSERT_TRUE(Notes().Comes("chose three"));
  EXPECT_EQ(mMenu.GetChosenItemIdx(), 3);

  // Neither a disabled item nor a separator takes a click.
  OpenByPress();
  PointAtRow(MenuPlace(), 0);
  mUser.Click();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(MenuIsOpen());
  mUser.Type(kEscape);
  EXPECT_TRUE(Notes().Comes("dismissed"));
}

TEST_F(MenuTest, SubMenusOpenBesideTheirItem) {
  IPopupMenu inner, innermost;
  innermost.AddItem("deep");
  inner.AddItem("first");
  inner.AddItem("more", &innermost);
  mMenu.AddItem("alone");
  mMenu.AddItem("others", &inner);
  // By the mouse.
  OpenByPress({190, 10, 210, 20});
  const IRECT outer = MenuPlace();
  PointAtRow(outer, 1);
  ASSERT_TRUE(Eventually([&] { return mUser.ChildrenOf(Window()).size() == 2; }));
  const IRECT second = MenuPlace();
  EXPECT_LT(second.L, outer.L) << "there is no room on the right";
  PointAtRow(second, 0);
  ASSERT_TRUE(IsLit(second, 0));
  mUser.Click();
  ASSERT_TRUE(Notes().Comes("chose first"));
  EXPECT_EQ(mChosenMenu, &inner);
  // By keys, in and out again.
  OpenByPress();
  mUser.Type(kEndKey);
  for (const xcb_keysym_t key : {kRightKey, kLeftKey, kRightKey, kDownKey, kReturn, kReturn}) {
    mUser.Type(key);
  }
  ASSERT_TRUE(Notes().Comes("chose deep"));
  EXPECT_EQ(mChosenMenu, &innermost);
}

TEST_F(MenuTest, APressElsewhereDismissesItWithoutGoingThrough) {
  mMenu.AddItem("one");
  OpenByPress();
  Notes().Take();
  Point(HostedPlug::kLevelRect);
  mUser.Click();
  ASSERT_TRUE(Notes().Comes("dismissed"));
  // In the host's window, too: the menu holds the mouse.
  OpenByPress();
  mUser.MoveTo(kLeft + 400, kTop + 300);
  mUser.Click();
  ASSERT_TRUE(Notes().Comes("dismissed"));
  // Mouse and keyboard are free again.
  EXPECT_TRUE(Eventually([&] { return mUser.CanGrab(); }));
  Point(HostedPlug::kLevelRect);
  mUser.Press(1);
  EXPECT_TRUE(Notes().EndsWith("begin 0"));
  mUser.Release(1);
  EXPECT_TRUE(Notes().EndsWith("end 0"));
}

TEST_F(MenuTest, ClosingWhileItIsOpenDismissesIt) {
  mMenu.AddItem("one");
  OpenByPress();
  Close();
  EXPECT_EQ(Notes().Take().back(), "dismissed");
  EXPECT_TRUE(Eventually([&] { return mUser.CanGrab(); }));

  // With the edit of the parameter that it belongs to, and with the window gone under it.
  ASSERT_TRUE(Open());
  OpenByPress(HostedPlug::kColourRect);
  Notes().Take();
  mUser.Destroy(mParent);
  ASSERT_TRUE(Notes().EndsWith("end 2"));
  ExpectBalancedEdits(Notes().Take());
  Close();
}

TEST_F(MenuTest, TheEditorGoesOnBehindItAndTheLockIsFree) {
  mMenu.AddItem("one");
  mPlug->onProbe = [this] {
    // As if a control asked from inside a call that holds the lock.
    const PlugLock::Guard guard(mPlug->GetLock());
    Ask(HostedPlug::kProbeRect);
    Notes().Note(mPlug->GetLock().IsMine() ? "locked again" : "lock lost");
  };
  OpenByPress();
  const auto before = mUser.Picture(Window(), HostedPlug::kLevelRect);
  AEffect* effect = mPlug->GetAEffect();
  effect->setParameter(effect, kLevel, 0.9F);  // waits for the lock
  EXPECT_TRUE(
      Eventually([&] { return mUser.Picture(Window(), HostedPlug::kLevelRect) != before; }));
  EXPECT_TRUE(MenuIsOpen());
  mUser.Type(kEscape);
  EXPECT_TRUE(Notes().Comes("locked again"));
}

TEST_F(MenuTest, OneThatIsLargerThanTheWindowStaysOnTheScreen) {
  for (int i = 0; i < 40; ++i) mMenu.AddItem(("item " + std::to_string(i)).c_str());
  Point(HostedPlug::kProbeRect);
  const size_t windows = mUser.ChildrenOf(mUser.Screen().root).size();
  mUser.Click();
  ASSERT_TRUE(
      Eventually([&] { return mUser.ChildrenOf(mUser.Screen().root).size() == windows + 1; }));
  const IRECT place = Place(mUser.ChildrenOf(mUser.Screen().root).back());
  EXPECT_EQ(place.T, 0);
  EXPECT_EQ(place.B, XServer::kHeight);  // of 40 rows 29 fit, the rest is scrolled to
  mUser.Type(kEndKey);
  EXPECT_TRUE(Eventually(
      [&] { return mUser.ScreenPixel(place.L + 3, XServer::kHeight - 4 - 18) == kLit; }));
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().Comes("chose item 39"));
  EXPECT_TRUE(Eventually([&] { return mUser.ChildrenOf(mUser.Screen().root).size() == windows; }));
}

TEST_F(MenuTest, OneNearTheEdgeMovesInside) {
  mMenu.AddItem("first");
  mMenu.AddItem("second");
  mPlug->onProbe = [this] { Ask({290, 190, 300, 200}); };
  OpenByPress();
  const IRECT place = MenuPlace();
  EXPECT_EQ(place.R, HostedPlug::kWidth);
  EXPECT_EQ(place.B, HostedPlug::kHeight);
}

TEST_F(MenuTest, AMessageWaitsForItsButton) {
  mPlug->onProbe = [this] {
    const int answer = mPlug->Graphics()->ShowMessageBox("Overwrite it?", "Preset", 3);
    Notes().Note("answer " + std::to_string(answer));
  };
  const std::pair<std::vector<xcb_keysym_t>, const char*> cases[] = {
      {{kDownKey, kReturn}, "answer 6"},
      {{kDownKey, kDownKey, kReturn}, "answer 7"},
      {{kUpKey, kReturn}, "answer 2"},
      {{kEscape}, "answer 2"}};
  for (const auto& [keys, answer] : cases) {
    OpenByPress();
    for (const xcb_keysym_t key : keys) mUser.Type(key);
    ASSERT_TRUE(Notes().Comes(answer));
  }
  EXPECT_EQ(mPlug->Graphics()->ShowMessageBox("from", "elsewhere", 0), 0);
}

TEST(MenuLayout, NumbersItemsAndKeepsTitlesApart) {
  IPopupMenu menu, inner;
  menu.SetPrefix(2);
  menu.AddItem("one");
  menu.AddSeparator();
  menu.AddItem("three", -1, IPopupMenuItem::kTitle | IPopupMenuItem::kChecked);
  menu.AddItem("four", &inner);
  menu.AddItem("five", -1, IPopupMenuItem::kDisabled);
  const MenuLayout layout(menu,
                          [](const std::string& s) { return 10 * static_cast<int>(s.size()); });
  EXPECT_EQ(layout.Row(0).text, "01: one");
  EXPECT_TRUE(layout.Row(1).separator);
  EXPECT_EQ(layout.Row(2).text, "03: three");
  EXPECT_TRUE(layout.Row(2).indented && layout.Row(2).checked && layout.Row(2).enabled);
  EXPECT_EQ(layout.Row(3).submenu, &inner);
  EXPECT_FALSE(layout.Row(4).enabled);
  // "03: three", behind check mark and indentation, is the widest.
  EXPECT_EQ(layout.Width(), MenuLayout::kTextLeft + MenuLayout::kIndentation + 90 + 20);
  EXPECT_EQ(layout.RowAt(layout.Row(2).top), 2);
  EXPECT_EQ(layout.RowAt(0), -1);
  EXPECT_EQ(layout.Next(-1, 1), 0);
  EXPECT_EQ(layout.Next(0, 1), 2);
  EXPECT_EQ(layout.Next(-1, -1), 3);
  EXPECT_EQ(layout.Next(3, 1), 0);
  menu.SetPrefix(3);
  EXPECT_EQ(MenuLayout(menu, [](const std::string&) { return 0; }).Row(0).text, "001: one");
  EXPECT_EQ(MovedInto({90, 90, 150, 120}, {0, 0, 100, 110}), IRECT(40, 80, 100, 110));
  EXPECT_EQ(MovedInto({-5, 0, 150, 20}, {0, 10, 100, 110}), IRECT(0, 10, 100, 30));
}

}  // namespace
