// Typed entry of a parameter, and the menu of one that has texts.
#include <cstring>

#include "graphics/IGraphics.h"
#include "iplug/IParam.h"
#include "iplug/Numbers.h"

void IGraphics::PromptUserInput(IControl* control, IParam* param, IRECT* textRect) {
  if (!control || !param || !textRect) return;
  const bool hasMenu =
      param->Type() == kTypeEnum || (param->Type() == kTypeBool && param->GetNDisplayTexts() > 0);
  if (hasMenu) {
    PromptWithMenu(control, param, textRect);
    return;
  }
  char display[IParam::kTextSize];
  param->GetDisplayForHost(param->Value(), false, display, false);
  CreateTextEntry(control, &control->GetText(), textRect, display, param);
}

void IGraphics::PromptWithMenu(IControl* control, IParam* param, IRECT* rect) {
  char current[IParam::kTextSize];
  param->GetDisplayForHost(param->Value(), false, current, true);
  IPopupMenu menu;
  for (int i = 0; i < param->GetNDisplayTexts(); ++i) {
    const char* text = param->GetDisplayText(i);
    const bool isCurrent = std::strcmp(text, current) == 0;
    menu.AddItem(text, -1, isCurrent ? IPopupMenuItem::kChecked : IPopupMenuItem::kNoFlags);
  }
  const IPopupMenu* chosen = CreateIPopupMenu(&menu, rect);
  if (!chosen) return;
  control->SetValueFromUserInput(param->GetNormalized(chosen->GetChosenItemIdx()));
}

void IGraphics::SetFromStringAfterPrompt(IControl* control, IParam* param, const char* text) {
  if (!control || !param || !text) return;
  double value = 0.0;
  if (param->Type() == kTypeBool || param->Type() == kTypeEnum) {
    int mapped = 0;
    if (param->MapDisplayText(text, &mapped)) value = mapped;
  } else {
    value = NumberFromText(text);
    if (param->GetNegateDisplay()) value = -value;
  }
  control->SetValueFromUserInput(param->GetNormalized(value));
}
