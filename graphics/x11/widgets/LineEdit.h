// One line of text being edited: caret, selection, and what may be typed.
#pragma once

#include <string>

#include "graphics/windows/TypedText.h"

// Positions are gaps between characters, from 0 to the length. The selection lies between the
// caret and the anchor, and everything typed replaces it.
class LineEdit {
 public:
  // Begins with everything selected.
  LineEdit(std::u32string text, LineFilter filter);

  // Replaces the selection. False, with nothing changed, if the whole would not be accepted.
  bool Insert(const std::u32string& text);
  void Erase(bool forward);  // the selection, else the character before or after the caret
  // Puts the caret at `position`, clamped; with `extend` the anchor stays.
  void MoveTo(int position, bool extend);
  // One character; without `extend` a selection collapses to its end on that side.
  void Step(int direction, bool extend);
  void SelectAll();
  void SelectWord(int position);  // the run without blanks around it

  const std::u32string& Text() const { return mText; }
  int Length() const { return static_cast<int>(mText.size()); }
  int Caret() const { return mCaret; }
  int SelectionStart() const { return mCaret < mAnchor ? mCaret : mAnchor; }
  int SelectionEnd() const { return mCaret < mAnchor ? mAnchor : mCaret; }
  bool HasSelection() const { return mCaret != mAnchor; }
  std::u32string Selected() const;

 private:
  std::u32string mText;
  LineFilter mFilter;
  int mCaret, mAnchor = 0;
};
