// Typed entry in the window.
#include <thread>

#include "graphics/x11/LineEdit.h"
#include "graphics/x11/Utf8.h"
#include "tests/graphics/x11/EditorHost.h"

namespace {

using Entries = std::vector<std::string>;
constexpr xcb_keysym_t kReturn = 0xFF0D, kEscape = 0xFF1B, kHome = 0xFF50, kLeftKey = 0xFF51,
                       kEnd = 0xFF57, kBackSpace = 0xFF08, kDelete = 0xFFFF;

class TextEntryTest : public EditorHostTest {
 protected:
  TextEntryTest() {
    EXPECT_TRUE(Open());
    mUser.SetFocus(mParent);
  }
  Journal& Notes() { return mPlug->Notes(); }

  // A right click on a knob opens its field with the whole text selected.
  void OpenField(const IRECT& rect = HostedPlug::kLevelRect, const std::string& end = "end 0") {
    Point(rect);
    mUser.Click(3);
    ASSERT_TRUE(Notes().EndsWith(end));
    ASSERT_TRUE(Eventually([&] { return FieldIsOpen(); }));
    ASSERT_TRUE(Eventually([&] { return mUser.Focus() == Window(); }));
    Notes().Take();
  }
  bool FieldIsOpen() { return !mUser.ChildrenOf(Window()).empty(); }
  void ExpectClosed() {
    EXPECT_TRUE(Eventually([&] { return !FieldIsOpen(); }));
    EXPECT_TRUE(Eventually([&] { return mUser.Focus() == mParent; })) << mUser.Focus();
  }
};

TEST_F(TextEntryTest, EnterCommitsWhatWasTypedAsOneEdit) {
  OpenField();
  mUser.Type("12.5x");  // the letter is not let in
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_EQ(Notes().Take(), (Entries{"begin 0", "set 0 0.125", "end 0"}));
  ExpectClosed();

  // The keypad's keys, and the least text.
  OpenField();
  for (const xcb_keysym_t key : {0xFFB4U, 0xFFAEU, 0xFFB5U}) {
    mUser.TypeWith(kShiftKey, key);  // without the lock for numbers
  }
  mUser.Type(0xFF8D);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 4.5, 1e-9);
  ExpectClosed();
}

TEST_F(TextEntryTest, EscapeAbandons) {
  OpenField();
  mUser.Type("99");
  mUser.Type(kEscape);
  ExpectClosed();
  EXPECT_EQ(Notes().Take(), Entries{});
  EXPECT_EQ(Value(kLevel), 25.0);
}

TEST_F(TextEntryTest, CaretAndSelectionFollowKeysAndMouse) {
  OpenField();
  mUser.Type("1357");
  mUser.Type(kHome);
  mUser.Type(kDelete);  // 357
  mUser.Type(kEnd);
  mUser.Type(kLeftKey);
  mUser.Type(kBackSpace);  // 37
  mUser.TypeWith(kShiftKey, kHome);
  mUser.Type("4");  // 47
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 47.0, 1e-9);

  // A press puts the caret, a second one takes the whole number.
  OpenField();
  mUser.Click();
  mUser.Click();
  mUser.Type("8");
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 8.0, 1e-9);

  // Left of the text, then with shift to its right end.
  OpenField();
  mUser.MoveTo(kLeft + 21, kTop + 35);
  mUser.Click();
  mUser.HoldKey(kShiftKey);
  mUser.MoveTo(kLeft + 48, kTop + 35);
  mUser.Click();
  mUser.ReleaseKey(kShiftKey);
  mUser.Type("6");
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 6.0, 1e-9);
}

TEST_F(TextEntryTest, CopiesAndPastes) {
  OpenField();
  mUser.Type("31");
  mUser.TypeWith(kControlKey, 'a');
  mUser.TypeWith(kControlKey, 'x');
  mUser.TypeWith(kControlKey, 'v');
  mUser.TypeWith(kControlKey, 'v');
  mUser.TypeWith(kControlKey, 'a');
  mUser.TypeWith(kControlKey, 'c');
  mUser.Type(kEscape);
  ExpectClosed();

  // The host pastes it.
  const xcb_atom_t clipboard = mUser.Atom("CLIPBOARD");
  const xcb_atom_t utf8 = mUser.Atom("UTF8_STRING");
  xcb_convert_selection(mUser.Get(), mParent, clipboard, utf8, utf8, XCB_CURRENT_TIME);
  ASSERT_TRUE(Eventually([&] { return mUser.Property(mParent, utf8) == "3131"; }));

  // The host copies, and this editor pastes: blanks around a number are none of it, and a text
  // that would not be let in changes nothing.
  for (const auto& [copied, value] : {std::pair{" 64.5\n", 64.5}, {"12345678", 64.5}}) {
    OpenField();
    xcb_set_selection_owner(mUser.Get(), mParent, clipboard, XCB_CURRENT_TIME);
    mUser.Sync();
    mUser.TypeWith(kControlKey, 'v');
    ASSERT_TRUE(mUser.ServeSelection(copied));
    mUser.Sync();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    mUser.Type(kReturn);
    ExpectClosed();
    EXPECT_NEAR(Value(kLevel), value, 1e-9);
  }
}

TEST_F(TextEntryTest, EndsWhereTheUserGoesElsewhere) {
  // A click beside it commits and goes on to what it hit.
  OpenField();
  mUser.Type("50");
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Notes().EndsWith("up 195 15"));
  EXPECT_EQ(Notes().Take(), (Entries{"over 195 15", "begin 0", "set 0 0.500", "end 0",
                                     "down 195 15 L", "up 195 15"}));
  ExpectClosed();

  // So does the loss of the keyboard.
  OpenField();
  mUser.Type("60");
  mUser.SetFocus(mUser.MakeWindow({500, 0, 600, 50}));
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 60.0, 1e-9);
  EXPECT_TRUE(Eventually([&] { return !FieldIsOpen(); }));
  mUser.SetFocus(mParent);

  // The wheel ends it first, and the text is gone.
  OpenField();
  mUser.Type("90");
  mUser.Wheel(1);
  ASSERT_TRUE(Notes().EndsWith("end 0"));
  EXPECT_NEAR(Value(kLevel), 61.0, 1e-9);
  ExpectClosed();

  // So does closing.
  OpenField();
  mUser.Type("90");
  Close();
  EXPECT_NEAR(Value(kLevel), 61.0, 1e-9);
  EXPECT_TRUE(Eventually([&] { return mUser.Focus() == mParent; }));
}

TEST_F(TextEntryTest, OneFieldFollowsAnother) {
  OpenField();
  mUser.Type("7");
  OpenField(HostedPlug::kCountRect, "end 1");
  EXPECT_NEAR(Value(kLevel), 7.0, 1e-9);
  mUser.Type("9.");  // no point in a whole number
  mUser.Type(kReturn);
  ASSERT_TRUE(Notes().EndsWith("end 1"));
  EXPECT_EQ(Value(kCount), 9.0);
  ExpectClosed();
}

TEST_F(TextEntryTest, AFieldWithoutParameterTakesAnyText) {
  mPlug->onProbe = [this] {
    IText style;
    IRECT rect(190, 70, 290, 90);
    IControl* probe = mPlug->Graphics()->GetControl(4);
    mPlug->Graphics()->CreateTextEntry(probe, &style, &rect, "old", nullptr);
  };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Eventually([&] { return FieldIsOpen(); }));
  // Its colours are those of the style, and the selected text stands in exchanged ones.
  EXPECT_TRUE(HasPicture({190, 70, 192, 90}, 0xFFFFFF));
  mUser.Type("A longer text, 100% free");
  mUser.Type(kReturn);
  EXPECT_TRUE(Notes().EndsWith("A longer text, 100% free"));
}

TEST(LineEdit, KeepsWhatTheFilterWouldNotLetIn) {
  LineFilter filter;
  filter.filterCharacterSet = U"0123456789-";
  filter.maxLength = 4;
  filter.maxValue = 500;
  LineEdit edit(U"123", filter);
  EXPECT_EQ(edit.Selected(), U"123");
  EXPECT_TRUE(edit.Insert(U"-42"));
  EXPECT_FALSE(edit.Insert(U"."));
  EXPECT_FALSE(edit.Insert(U"00"));  // five characters
  edit.MoveTo(0, false);
  edit.Erase(true);
  EXPECT_EQ(edit.Text(), U"42");
  edit.MoveTo(2, false);
  EXPECT_FALSE(edit.Insert(U"42"));  // 4242
  EXPECT_TRUE(edit.Insert(U"4"));    // 424
  edit.Step(-1, true);
  edit.Step(-1, true);
  EXPECT_EQ(edit.Selected(), U"24");
  edit.Step(1, false);  // collapses to the end on that side
  EXPECT_EQ(edit.Caret(), 3);
  edit.Erase(true);  // nothing behind the last
  edit.Erase(false);
  EXPECT_EQ(edit.Text(), U"42");
}

TEST(LineEdit, SelectsAWordBetweenBlanks) {
  LineEdit edit(U"one two  three", {});
  edit.SelectWord(5);
  EXPECT_EQ(edit.Selected(), U"two");
  edit.SelectWord(14);
  EXPECT_EQ(edit.Selected(), U"three");
  edit.SelectWord(8);  // between two blanks
  EXPECT_EQ(edit.Selected(), U"");
}

TEST(Utf8, GoesBothWaysAndLeavesOutWhatIsNone) {
  const std::u32string text = U"aß€😀";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  EXPECT_EQ(ToUtf8(text), "a\xC3\x9F\xE2\x82\xAC\xF0\x9F\x98\x80");
  // Cut short, too long for the character, half of a pair, beyond the last character.
  EXPECT_EQ(FromUtf8("a\xE2\x82"), U"a");
  EXPECT_EQ(FromUtf8("\xC0\xAF\xE0\x80\xAF"
                     "b"),
            U"b");
  EXPECT_EQ(FromUtf8("\xED\xA0\x80\xF4\x90\x80\x80"
                     "c"),
            U"c");
}

}  // namespace
