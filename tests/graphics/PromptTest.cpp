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
  std::string texts;
  for (int i = -1; i <= menu.GetNItems(); ++i) texts += std::string(menu.GetItemText(i)) + ",";
  EXPECT_EQ(texts, ",zero,,one,more,last,,");
  EXPECT_EQ(menu.GetItem(0)->GetFlags(), 3);
  EXPECT_EQ(menu.GetItem(1)->GetFlags(), IPopupMenuItem::kSeparator);
  EXPECT_EQ(menu.GetItem(3)->GetSubmenu(), &sub);
  for (const int i : {0, 4, 7}) menu.CheckItem(i, true);
  EXPECT_TRUE(menu.IsItemChecked(0) && menu.IsItemChecked(4));
  menu.CheckItemAlone(2);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(menu.IsItemChecked(i), i == 2);
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
  auto* negated = Promptable(kNegated);
  Show();
  graphics->typedText = "0.75";
  level->PromptUserInput();
  EXPECT_EQ(graphics->fieldText, "0.25");
  EXPECT_EQ(graphics->lastRect, IRECT(20, 22, 50, 38)) << "around (35.5, 30.5), truncated";
  EXPECT_EQ(plug.TakeCalls(), (Calls{"set 0 0.750", "changed 0"}));
  graphics->typedText = "-6";
  IRECT own(1, 2, 3, 4);
  negated->PromptUserInput(&own);
  EXPECT_EQ(graphics->lastRect, own);
  EXPECT_EQ(negated->GetValue(), 0.5) << "what shows with opposite sign is typed with it";
  for (const auto& [typed, value] :
       {std::pair("0.5", 0.5), std::pair("+.25", 0.25), std::pair("7", 1.0), std::pair("-2", 0.0),
        std::pair("0.5.5", 0.5), std::pair("", 0.0), std::pair("--", 0.0)}) {
    graphics->SetFromStringAfterPrompt(level, plug.GetParam(kLevel), typed);
    EXPECT_EQ(level->GetValue(), value) << typed;
  }
}

TEST_F(Prompt, AListIsChosenFromAMenuOverTheControlOrByName) {
  auto* colour = Promptable(kColour);
  Show();
  graphics->chooseItem = [](IPopupMenu* menu) {
    EXPECT_EQ(menu->GetNItems(), 3);
    EXPECT_STREQ(menu->GetItemText(2), "blue");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(menu->IsItemChecked(i), i == 1);
    EXPECT_EQ(menu->GetPrefix(), 0);
    menu->SetChosenItemIdx(2);
    return menu;
  };
  colour->PromptUserInput();
  EXPECT_EQ(graphics->lastRect, IRECT(10, 10, 61, 51));
  EXPECT_EQ(colour->GetValue(), 1.0);
  plug.TakeCalls();
  graphics->chooseItem = nullptr;
  Settle();
  colour->SetDirty(false);
  colour->PromptUserInput();
  EXPECT_EQ(plug.TakeCalls(), Calls()) << "a dismissed menu changes nothing";
  EXPECT_TRUE(graphics->Tick() && graphics->Tick()) << "but what it covered is drawn again";
  for (const auto& [typed, value] : {std::pair("green", 0.5), std::pair("mauve", 0.0)}) {
    graphics->SetFromStringAfterPrompt(colour, plug.GetParam(kColour), typed);
    EXPECT_EQ(colour->GetValue(), value);
  }
}

TEST_F(Prompt, NothingOpensWhenDisabledOrWithoutParameterOrEditor) {
  auto* level = Promptable(kLevel);
  auto* free = Promptable(-1);
  graphics->typedText = "0.5";
  level->PromptUserInput();
  Show();
  free->PromptUserInput();
  level->DisablePrompt(true);
  level->PromptUserInput();
  graphics->PromptUserInput(level, plug.GetParam(kLevel), nullptr);
  EXPECT_EQ(plug.TakeCalls(), Calls());
}

}  // namespace
