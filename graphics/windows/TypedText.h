// Which text a field takes, and how the text becomes a value.
#pragma once

#include <string>

class IControl;
class IGraphics;
class IParam;
struct IText;

// Which texts a field takes, even in passing.
struct LineFilter {
  std::u32string filterCharacterSet;  // every character must be one of these; empty: any
  int maxLength = 0;                  // in characters; 0: any
  int maxValue = 0;                   // limit of the text read as a whole number; 0: none

  bool Accepts(const std::u32string& text) const;
};

// That of a field for a value of `param`; with null any text of any length.
LineFilter FilterFor(const IControl& control, const IParam* param);

// Size of the text in a field, in pixels.
int EntryTextSize(const IText& text);

// Gives the text to the parameter as one edit, or without one to the control.
void CommitTypedText(IGraphics& graphics, IControl& control, IParam* param, const char* text);
