// Menus as data, and typed entry of parameters.
#include "tests/graphics/Fixture.h"

namespace {

TEST(PopupMenu, ItemsGoWhereTheirIndexSaysAndChecksStayWithinBounds) {
  IPopupMenu sub;
  IPopupMenu menu;
  menu.AddItem("one");
  menu.AddItem("zero", 0, IPopupMenuItem::kDisabled | IPopupMenuItem::kTitle);
  menu.AddSeparator(1);
  menu.AddItem("more", &sub);
  menu.AddItem("last", 99);
  ASSERT_EQ(menu.GetNItems(), 5);
  EXPECT_STREQ(menu.GetItemText(0), "zero");
  EXPECT_EQ(menu.GetItem(0)->GetFlags(), 3);
  EXPECT_EQ(menu.GetItem(1)->GetFlags(), IPopupMenuItem::kSeparator);
  EXPECT_STREQ(menu.GetItemText(2), "one");
  EXPECT_EQ(menu.GetItem(3)->GetSubmenu(), &sub);
  EXPECT_STREQ(menu.GetItemText(4), "last");
  EXPECT_STREQ(menu.GetItemText(5), "");
  EXPECT_EQ(menu.GetItem(-1), nullptr);
  menu.CheckItem(0, true);
  menu.CheckItem(4, true);
  menu.CheckItem(7, true);
  EXPECT_TRUE(menu.IsItemChecked(0) && menu.IsItemChecked(4));
  menu.CheckItemAlone(2);
  EXPECT_TRUE(menu.IsItemChecked(2));
  EXPECT_FALSE(menu.IsItemChecked(0) || menu.IsItemChecked(4) || menu.IsItemChecked(7));
  menu.SetPrefix(3);
  menu.SetPrefix(4);
  EXPECT_EQ(menu.GetPrefix(), 3);
}

class Prompt : public EditorTest {
 protected:
  ProbeControl* Promptable(int param) {
    auto* control = Attach<ProbeControl>(IRECT(10, 10, 61, 51), param);
    control->DisablePrompt(false);
    return control;
  }
};

TEST_F(Prompt, ANumberIsTypedInASmallFieldInTheMiddleOfTheControl) {
  auto* level = Promptable(kLevel);
  Show();
  graphics->typedText = "0.75";
  level->PromptUserInput();
  EXPECT_EQ(graphics->fieldText, "0.25");
  EXPECT_EQ(graphics->lastRect, IRECT(20, 22, 50, 38)) << "around (35.5, 30.5), truncated";
  graphics->typedText = "";
  EXPECT_EQ(level->GetValue(), 0.75);
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.750", "changed 0"}));
  IRECT own(1, 2, 3, 4);
  level->PromptUserInput(&own);
  EXPECT_EQ(graphics->lastRect, own);
}

TEST_F(Prompt, TypedNumbersAreReadAsFarAsTheyGoAndClamped) {
  auto* level = Promptable(kLevel);
  auto* negated = Promptable(kNegated);
  Show();
  struct Case {
    const char* typed;
    double value;
  };
  for (const Case& c : {Case{"0.5", 0.5}, Case{"+.25", 0.25}, Case{"7", 1.0}, Case{"-2", 0.0},
                        Case{"", 0.0}, Case{"--", 0.0}, Case{"0.5.5", 0.5}}) {
    graphics->SetFromStringAfterPrompt(level, plug.GetParam(kLevel), c.typed);
    EXPECT_EQ(level->GetValue(), c.value) << c.typed;
  }
  graphics->SetFromStringAfterPrompt(negated, plug.GetParam(kNegated), "-6");
  EXPECT_EQ(negated->GetValue(), 0.5) << "what shows with opposite sign is typed with it";
}

TEST_F(Prompt, AListIsChosenFromAMenuOverTheControlOrByName) {
  auto* colour = Promptable(kColour);
  Show();
  graphics->chooseItem = [](IPopupMenu* menu) {
    EXPECT_EQ(menu->GetNItems(), 3);
    EXPECT_STREQ(menu->GetItemText(2), "blue");
    EXPECT_TRUE(menu->IsItemChecked(1));
    EXPECT_FALSE(menu->IsItemChecked(0) || menu->IsItemChecked(2));
    EXPECT_EQ(menu->GetPrefix(), 0);
    menu->SetChosenItemIdx(2);
    return menu;
  };
  colour->PromptUserInput();
  EXPECT_EQ(graphics->lastRect, IRECT(10, 10, 61, 51));
  EXPECT_EQ(colour->GetValue(), 1.0);
  plug.TakeCalls();
  graphics->chooseItem = nullptr;
  colour->PromptUserInput();
  EXPECT_EQ(plug.TakeCalls(), Calls()) << "a dismissed menu changes nothing";
  EXPECT_TRUE(graphics->Tick()) << "but what it covered is drawn again";
  graphics->SetFromStringAfterPrompt(colour, plug.GetParam(kColour), "green");
  EXPECT_EQ(colour->GetValue(), 0.5);
  graphics->SetFromStringAfterPrompt(colour, plug.GetParam(kColour), "mauve");
  EXPECT_EQ(colour->GetValue(), 0.0);
}

TEST_F(Prompt, NothingOpensWhenDisabledOrWithoutParameterOrEditor) {
  auto* level = Promptable(kLevel);
  auto* free = Promptable(-1);
  graphics->fieldText = "untouched";
  level->PromptUserInput();
  Show();
  free->PromptUserInput();
  level->DisablePrompt(true);
  level->PromptUserInput();
  graphics->PromptUserInput(level, plug.GetParam(kLevel), nullptr);
  EXPECT_EQ(graphics->fieldText, "untouched");
  EXPECT_EQ(plug.TakeCalls(), Calls());
}

}  // namespace
