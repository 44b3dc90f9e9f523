// Menus in the window and beyond it.
#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include "graphics/x11/widgets/MenuLayout.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

using Keys = std::vector<xcb_keysym_t>;
constexpr uint32_t kLit = 0xFFBB00;  // ground of the row in hand

// Every press of the probe opens the menu; what was chosen is noted as "chose <text>".
class MenuTest : public EditorHostTest {
 protected:
  MenuTest() {
    EXPECT_TRUE(Open());
    mPlug->onProbe = [this] { Ask(HostedPlug::kProbeRect); };
  }
  ~MenuTest() override { Close(); }  // before the menu goes

  void Ask(IRECT rect) {
    const IPopupMenu* chosen = Graphics().CreateIPopupMenu(&mMenu, &rect);
    if (chosen) mChosenMenu = chosen;
    Notes().Note(chosen ? std::string("chose ") + chosen->GetItemText(chosen->GetChosenItemIdx())
                        : "dismissed");
  }
  void PressOpens(const IRECT& rect = HostedPlug::kProbeRect) {
    Point(rect);
    mUser.Click(2);  // so that the next press is no double click
    mUser.Press(1);
    ASSERT_TRUE(Eventually([&] { return HasChild(); }));
  }
  void OpenByClick(const IRECT& rect = HostedPlug::kProbeRect) {
    PressOpens(rect);
    mUser.Release(1);
  }
  void Type(const Keys& keys) {
    for (const xcb_keysym_t key : keys) mUser.Type(key);
  }
  IRECT MenuPlace() { return mUser.Place(mUser.ChildrenOf(Window()).back()); }
  // Moves the mouse into a row of a panel that stands at `place` in the window.
  void PointAtRow(const IRECT& place, int row) {
    mUser.MoveTo(kLeft + place.L + 25, kTop + place.T + 4 + 20 * row + 10);
    EXPECT_TRUE(Eventually([&] {
      const int y = kTop + place.T + 4 + 20 * row + 2;
      return mUser.ScreenPixel(kLeft + place.L + 3, y) == kLit;
    }));
  }

  // In bytes of our own, as the library's operation sends others.
  void AddMonitor(const IRECT& place, const char* name) {
    struct {
      xcb_randr_set_monitor_request_t head;
      xcb_randr_monitor_info_t info;
    } request{};
    request.head.window = mUser.Screen().root;
    request.info.name = mUser.Atom(name);
    request.info.x = static_cast<int16_t>(place.L);
    request.info.width = static_cast<uint16_t>(place.W());
    request.info.height = static_cast<uint16_t>(place.H());
    iovec parts[4] = {{}, {}, {&request, sizeof request}, {}};
    const xcb_protocol_request_t kind{2, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    xcb_send_request(mUser.Get(), 0, parts + 2, &kind);
  }

  IPopupMenu mMenu;
  const IPopupMenu* mChosenMenu = nullptr;
};

TEST_F(MenuTest, AParameterWithTextsIsSetFromItsMenu) {
  OpenByClick(HostedPlug::kColourRect);
  const IRECT place = MenuPlace();
  EXPECT_EQ(place.L, HostedPlug::kColourRect.L);
  EXPECT_EQ(place.T, HostedPlug::kColourRect.B + 4);
  PointAtRow(place, 1);
  for (const int button : {6, 7}) mUser.Click(button);  // sideways wheels choose nothing
  PointAtRow(place, 2);
  mUser.Click();
  EXPECT_EQ(Notes().UpTo("end 2"), (Entries{"set 2 1.000", "begin 2", "end 2"}));
  EXPECT_EQ(Value(kColour), 2.0);
  EXPECT_TRUE(Eventually([&] { return !HasChild(); }));
  // Press, drag and release choose as well; also when somebody else holds the keyboard.
  ASSERT_TRUE(mUser.GrabKeys());
  PressOpens(HostedPlug::kColourRect);
  PointAtRow(MenuPlace(), 1);
  mUser.Release(1);
  ExpectBalancedEdits(Notes().UpTo("end 2"));
  EXPECT_EQ(Value(kColour), 1.0);
  EXPECT_TRUE(Eventually([&] { return mUser.CanGrab(); }));
}

TEST_F(MenuTest, KeysAndWheelGoAroundTheItemsThatCanBeChosen) {
  mMenu.AddItem("off", -1, IPopupMenuItem::kDisabled);
  mMenu.AddItem("head", -1, IPopupMenuItem::kTitle);
  mMenu.AddSeparator();
  mMenu.AddItem("three");
  mMenu.AddItem("four", -1, IPopupMenuItem::kChecked);
  const struct {
    Keys keys;
    int wheel;
    const char* result;
  } cases[] = {{{kX11Down}, 0, "chose head"},          // over the disabled one
               {{kX11Down, kX11Up}, 0, "chose four"},  // around the end
               {{kX11Home}, -1, "chose three"},        // over the separator
               {{kX11End}, 1, "chose three"},
               {{kX11Escape}, 0, "dismissed"}};
  for (const auto& [keys, wheel, result] : cases) {
    OpenByClick();
    // Neither a disabled item nor a separator takes a click.
    for (const int y : {10, 47}) {
      mUser.MoveTo(kLeft + MenuPlace().L + 25, kTop + MenuPlace().T + 4 + y);
      mUser.Click();
    }
    Type(keys);
    mUser.Wheel(wheel);
    mUser.Type(kX11Return);
    ASSERT_TRUE(Notes().Comes(result));
  }
}

TEST_F(MenuTest, SubMenusOpenBesideTheirItem) {
  IPopupMenu inner, innermost;
  innermost.AddItem("deep");
  inner.AddItem("first");
  inner.AddItem("more", &innermost);
  mMenu.AddItem("alone");
  mMenu.AddItem("others", &inner);
  // By the mouse.
  OpenByClick({190, 10, 210, 20});
  const IRECT outer = MenuPlace();
  PointAtRow(outer, 1);
  ASSERT_TRUE(Eventually([&] { return mUser.ChildrenOf(Window()).size() == 2; }));
  const IRECT second = MenuPlace();
  EXPECT_LT(second.L, outer.L) << "there is no room on the right";
  PointAtRow(second, 0);
  mUser.Click();
  ASSERT_TRUE(Notes().Comes("chose first"));
  EXPECT_EQ(mChosenMenu, &inner);
  // By keys, in and out again.
  OpenByClick();
  Type({kX11End, kX11Right, kX11Left, kX11Right, kX11Down, kX11Return, kX11Return});
  ASSERT_TRUE(Notes().Comes("chose deep"));
  EXPECT_EQ(mChosenMenu, &innermost);
}

TEST_F(MenuTest, APressElsewhereDismissesItWithoutGoingThrough) {
  mMenu.AddItem("one");
  // In the window, and in the host's: the menu holds the mouse.
  for (const auto& [x, y] : {std::pair{35, 35}, {400, 300}}) {
    OpenByClick();
    ClickAt(x, y);
    ASSERT_TRUE(Notes().Comes("dismissed"));
  }
  EXPECT_TRUE(Eventually([&] { return mUser.CanGrab(); }));
  ClickAt(HostedPlug::kLevelRect);
  const Entries entries = Notes().UpTo("end 0");
  EXPECT_EQ(std::count(entries.begin(), entries.end(), "begin 0"), 1);
}

TEST_F(MenuTest, ClosingWhileItIsOpenDismissesIt) {
  mMenu.AddItem("one");
  OpenByClick();
  Close();
  EXPECT_EQ(Notes().Take().back(), "dismissed");
  EXPECT_TRUE(Eventually([&] { return mUser.CanGrab(); }));
  // With the edit of the parameter that it belongs to, and with the window gone under it.
  ASSERT_TRUE(Open());
  OpenByClick(HostedPlug::kColourRect);
  Notes().Take();
  mUser.Destroy(mParent);
  ExpectBalancedEdits(Notes().UpTo("end 2"));
}

TEST_F(MenuTest, TheEditorGoesOnBehindItAndTheLockIsFree) {
  mMenu.AddItem("one");
  mPlug->onProbe = [this] {
    // As if a control asked from inside a call that holds the lock.
    const PlugLock::Guard guard(mPlug->GetLock());
    Ask(HostedPlug::kProbeRect);
    Notes().Note(mPlug->GetLock().IsMine() ? "locked again" : "lock lost");
  };
  OpenByClick();
  const auto before = mUser.Picture(Window(), HostedPlug::kLevelRect);
  Set(kLevel, 0.9);  // waits for the lock
  EXPECT_TRUE(
      Eventually([&] { return mUser.Picture(Window(), HostedPlug::kLevelRect) != before; }));
  EXPECT_TRUE(HasChild());
  mUser.Type(kX11Escape);
  EXPECT_TRUE(Notes().Comes("locked again"));
}

TEST_F(MenuTest, OneThatIsLargerThanTheWindowStaysOnTheMonitor) {
  for (int i = 0; i < 40; ++i) mMenu.AddItem(("item " + std::to_string(i)).c_str());
  const auto desktop = [&] { return mUser.ChildrenOf(mUser.Screen().root); };
  const std::size_t windows = desktop().size();
  for (const bool twoMonitors : {false, true}) {
    constexpr int kSplit = kLeft + 215;
    if (twoMonitors) {
      AddMonitor({0, 0, kSplit, 500}, "left");
      AddMonitor({kSplit, 0, XServer::kWidth, 500}, "right");
    }
    Point(HostedPlug::kProbeRect);
    mUser.Click(2);
    mUser.Click();
    ASSERT_TRUE(Eventually([&] { return desktop().size() == windows + 1; }));
    const IRECT place = mUser.Place(desktop().back());
    EXPECT_EQ(place.T, 0);
    // Of 40 rows 29 fit, the rest is scrolled to.
    EXPECT_EQ(place.B, twoMonitors ? 500 : XServer::kHeight);
    EXPECT_EQ(place.R <= kSplit, twoMonitors);
    mUser.Type(kX11End);
    EXPECT_TRUE(
        Eventually([&] { return mUser.ScreenPixel(place.L + 3, place.B - 4 - 18) == kLit; }));
    mUser.Type(kX11Return);
    ASSERT_TRUE(Notes().Comes("chose item 39"));
    EXPECT_TRUE(Eventually([&] { return desktop().size() == windows; }));
  }
}

TEST_F(MenuTest, AMessageWaitsForItsButton) {
  const struct {
    int type;
    Keys keys;
    int answer;
  } cases[] = {
      {0, {kX11Down}, 1}, {1, {kX11Up}, 2},     {3, {kX11Down}, 6}, {3, {kX11Down, kX11Down}, 7},
      {3, {kX11Up}, 2},   {3, {kX11Escape}, 2}, {4, {kX11Up}, 7},   {4, {kX11Down}, 6}};
  for (const auto& [type, keys, answer] : cases) {
    mPlug->onProbe = [this, kind = type] {
      const int result = Graphics().ShowMessageBox("Overwrite it?", "Preset", kind);
      Notes().Note("answer " + std::to_string(result));
    };
    OpenByClick();
    Type(keys);
    mUser.Type(kX11Return);
    ASSERT_TRUE(Notes().Comes("answer " + std::to_string(answer)));
  }
  EXPECT_EQ(Graphics().ShowMessageBox("from", "elsewhere", 0), 0);
}

TEST(MenuLayout, NumbersItemsAndKeepsTitlesApart) {
  IPopupMenu menu;
  menu.AddItem("one");
  menu.AddSeparator();
  menu.AddItem("three", -1, IPopupMenuItem::kTitle | IPopupMenuItem::kChecked);
  const char* texts[] = {"three", "3: three", "03: three", "003: three"};
  for (int prefix = 0; prefix < 4; ++prefix) {
    menu.SetPrefix(prefix);
    const MenuLayout layout(menu, [](const std::string&) { return 90; });
    const MenuRow& row = layout.Row(2);
    EXPECT_EQ(row.text, texts[prefix]);
    EXPECT_TRUE(row.indented && row.checked && row.enabled);
    EXPECT_EQ(layout.Width(), MenuLayout::kTextLeft + MenuLayout::kIndentation + 90 + 20);
  }
  EXPECT_EQ(MovedInto({90, 90, 150, 120}, {0, 0, 100, 110}), IRECT(40, 80, 100, 110));
  EXPECT_EQ(MovedInto({-5, 0, 150, 20}, {0, 10, 100, 110}), IRECT(0, 10, 100, 30));
}

}  // namespace
