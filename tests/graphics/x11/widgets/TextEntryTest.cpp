// Typed entry in the window.
#include "graphics/windows/Utf8.h"
#include "graphics/x11/widgets/LineEdit.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

class TextEntryTest : public EditorHostTest {
 protected:
  TextEntryTest() {
    EXPECT_TRUE(Open());
    mUser.SetFocus(mParent);
  }

  // A right click on a knob opens its field with the whole text selected.
  void OpenField(const IRECT& rect = HostedPlug::kLevelRect) {
    Point(rect);
    mUser.Click(3);
    ASSERT_TRUE(Eventually([&] { return HasChild() && mUser.Focus() == Window(); }));
    Notes().Take();
  }
  void ExpectClosed() { ExpectClosed(mParent); }
  void ExpectClosed(xcb_window_t focus) {
    EXPECT_TRUE(Eventually([&] { return !HasChild() && mUser.Focus() == focus; }));
  }
  void Commit(double level) {
    mUser.Type(kX11Return);
    ExpectClosed();
    EXPECT_NEAR(Value(kLevel), level, 1e-9);
  }
};

TEST_F(TextEntryTest, EnterCommitsWhatWasTypedAsOneEdit) {
  OpenField();
  mUser.Type("12.5x");  // the letter is not let in
  Commit(12.5);
  EXPECT_EQ(Notes().Take(), (Entries{"begin 0", "set 0 0.125", "end 0"}));
  // The keypad's keys, without the lock for numbers.
  OpenField();
  for (const xcb_keysym_t key : {0xFFB4U, 0xFFAEU, 0xFFB5U}) mUser.TypeWith(kShiftKey, key);
  mUser.Type(kKeypadEnter);
  ExpectClosed();
  EXPECT_NEAR(Value(kLevel), 4.5, 1e-9);
  // No more than seven characters.
  OpenField();
  mUser.Type("1.234567");
  Commit(1.23456);
}

TEST_F(TextEntryTest, EscapeAbandonsAndTheFocusGoesBackToWhoIsLeft) {
  const xcb_window_t other = mUser.MakeWindow({500, 0, 600, 50});
  for (const xcb_window_t before : {mParent, other, Window()}) {
    mUser.SetFocus(before);
    OpenField();
    mUser.Type("99");
    if (before == other) mUser.Destroy(other);
    mUser.Type(kX11Escape);
    ExpectClosed(before == other ? mParent : before);
  }
  EXPECT_EQ(Notes().Take(), Entries{});
  EXPECT_EQ(Value(kLevel), 25.0);
  // In the last round the focus is there before the editor asks for it. A frame comes after that.
  const auto shown = mUser.Picture(Window(), HostedPlug::kLevelRect);
  Set(kLevel, 1.0);
  EXPECT_TRUE(Eventually([&] { return mUser.Picture(Window(), HostedPlug::kLevelRect) != shown; }));
  EXPECT_EQ(mUser.Focus(), Window());
}

TEST_F(TextEntryTest, CaretAndSelectionFollowKeysAndMouse) {
  OpenField();
  mUser.Type("1357");
  mUser.Type(kX11Home);
  mUser.Type(kX11Delete);  // 357
  mUser.Type(kX11End);
  mUser.Type(kX11Left);
  mUser.Type(kX11BackSpace);  // 37
  mUser.TypeWith(kShiftKey, kX11Home);
  mUser.Type("4");
  Commit(47.0);
  // A press puts the caret, a second one takes the whole number.
  OpenField();
  mUser.Click(1, 2);
  mUser.Type("8");
  Commit(8.0);
  // A press left of the text, a drag or a press with shift to its right end.
  for (const bool withShift : {false, true}) {
    OpenField();
    mUser.MoveTo(kLeft + 21, kTop + 35);
    mUser.Press(1);
    if (withShift) mUser.Release(1);
    if (withShift) mUser.HoldKey(kShiftKey);
    mUser.MoveTo(kLeft + 48, kTop + 35);
    if (withShift) mUser.Press(1);
    mUser.Release(1);
    if (withShift) mUser.ReleaseKey(kShiftKey);
    mUser.Type("6");
    Commit(6.0);
  }
}

TEST_F(TextEntryTest, CopiesToTheHost) {
  OpenField();
  mUser.Type("31");
  for (const char key : {'a', 'x', 'v', 'v', 'a', 'c'}) {
    mUser.TypeWith(kControlKey, static_cast<xcb_keysym_t>(key));
  }
  mUser.Type(kX11Escape);
  ExpectClosed();
  const xcb_atom_t utf8 = mUser.Atom("UTF8_STRING");
  xcb_convert_selection(mUser.Get(), mParent, mUser.Atom("CLIPBOARD"), utf8, utf8,
                        XCB_CURRENT_TIME);
  EXPECT_TRUE(Eventually([&] { return mUser.Text(mParent, utf8) == "3131"; }));
}

TEST_F(TextEntryTest, PastesWhatTheHostCopiedIfItIsLetIn) {
  enum { kText, kRefusal, kPieces, kSilence, kElsewhere };
  const struct {
    int answer;
    std::string text;
    double level;
  } cases[] = {{kText, " 64.5\n", 64.5},  // blanks around a number are none of it
               {kText, "12345678", 64.5}, {kText, std::string(100'000, '1'), 64.5},
               {kRefusal, "", 64.5},      {kPieces, "7", 64.5},
               {kSilence, "", 64.5},      {kElsewhere, "8", 64.5},
               {kText, "9", 9.0}};
  xcb_set_selection_owner(mUser.Get(), mParent, mUser.Atom("CLIPBOARD"), XCB_CURRENT_TIME);
  for (const auto& [answer, text, level] : cases) {
    OpenField();
    mUser.TypeWith(kControlKey, 'v');
    const X11Event event = mUser.NextEvent(XCB_SELECTION_REQUEST);
    ASSERT_NE(event, nullptr);
    const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
    const xcb_atom_t property = answer == kRefusal     ? XCB_NONE
                                : answer == kElsewhere ? mUser.Atom("_NET_WM_NAME")
                                                       : request.property;
    const xcb_atom_t type = answer == kPieces ? mUser.Atom("INCR") : request.target;
    if (property) mUser.SetText(request.requestor, property, text, type);
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = property;
    if (answer != kSilence) mUser.Send(request.requestor, 0, &notice);
    Commit(level);
    // What nobody asked for is not taken.
    OpenField();
    mUser.SetText(request.requestor, request.property, "5", request.target);
    notice.property = request.property;
    mUser.Send(request.requestor, 0, &notice);
    Commit(level);
  }
}

TEST_F(TextEntryTest, EndsWhereTheUserGoesElsewhere) {
  // A click beside it commits and goes on to what it hit.
  OpenField();
  mUser.Type("50");
  ClickAt(195, 15);
  EXPECT_EQ(Notes().UpTo("up 195 15"), (Entries{"over 195 15", "begin 0", "set 0 0.500", "end 0",
                                                "down 195 15 L", "up 195 15"}));
  ExpectClosed();
  // So does the loss of the keyboard.
  OpenField();
  mUser.Type("60");
  const xcb_window_t other = mUser.MakeWindow({500, 0, 600, 50});
  mUser.SetFocus(other);
  ExpectClosed(other);
  EXPECT_NEAR(Value(kLevel), 60.0, 1e-9);
  mUser.SetFocus(mParent);
  // The wheel ends it first, and the text is gone.
  OpenField();
  mUser.Type("90");
  mUser.Wheel(1);
  EXPECT_EQ(Notes().UpTo("end 0"), (Entries{"begin 0", "set 0 0.610", "end 0"}));
  ExpectClosed();
  // Another field may follow at once, here that of a whole number without a point.
  OpenField();
  mUser.Type("7");
  Point(HostedPlug::kCountRect);
  mUser.Click(3);
  ASSERT_TRUE(Notes().Comes("end 1"));
  mUser.Type("9.");
  Commit(7.0);
  EXPECT_EQ(Value(kCount), 9.0);
  // Closing ends it like the wheel.
  OpenField();
  mUser.Type("90");
  Close();
  EXPECT_NEAR(Value(kLevel), 7.0, 1e-9);
  EXPECT_TRUE(Eventually([&] { return mUser.Focus() == mParent; }));
}

TEST_F(TextEntryTest, AFieldWithoutParameterTakesAnyText) {
  mPlug->onProbe = [this] {
    IText style;
    IRECT rect(190, 70, 290, 90);
    Graphics().CreateTextEntry(Graphics().GetControl(4), &style, &rect, "old", nullptr);
  };
  ClickAt(195, 15);
  ASSERT_TRUE(Eventually([&] { return HasChild(); }));
  // Its colours are those of the style.
  EXPECT_TRUE(Eventually([&] {
    return mUser.Picture(Window(), {190, 70, 192, 90}) == std::vector<uint32_t>(40, 0xFFFFFF);
  }));
  mUser.Type("A longer text, 100% free");
  mUser.Type(kX11Return);
  EXPECT_TRUE(Notes().Comes("A longer text, 100% free"));
}

TEST(LineEdit, KeepsWhatTheFilterWouldNotLetIn) {
  LineEdit edit(U"123", {U"0123456789-", 4, 500});
  EXPECT_TRUE(edit.Insert(U"42"));  // everything was selected
  EXPECT_FALSE(edit.Insert(U"."));
  EXPECT_FALSE(edit.Insert(U"-00"));  // five characters
  EXPECT_FALSE(edit.Insert(U"42"));   // 4242
  edit.Step(-1, true);
  EXPECT_EQ(edit.Selected(), U"2");
  edit.Step(1, false);  // collapses to the end on that side
  edit.Erase(true);     // nothing behind the last
  edit.Erase(false);
  EXPECT_EQ(edit.Text(), U"4");
  LineEdit words(U"one two  three", {});
  words.SelectWord(5);
  EXPECT_EQ(words.Selected(), U"two");
}

TEST(Utf8, GoesBothWaysAndLeavesOutWhatIsNone) {
  const std::u32string text = U"aß€😀";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  EXPECT_EQ(ToUtf8(text), "a\xC3\x9F\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(FromUtf8("a\xE2\x82\xC0\xAF\x62"), U"ab");
}

}  // namespace
