// Editing of one line.
#include "graphics/x11/widgets/LineEdit.h"

#include <algorithm>

namespace {

bool IsBlank(char32_t c) { return c == U' ' || c == U'\t'; }

}  // namespace

LineEdit::LineEdit(std::u32string text, LineFilter filter)
    : mText(std::move(text)), mFilter(std::move(filter)), mCaret(Length()) {}

bool LineEdit::Insert(const std::u32string& text) {
  const auto start = static_cast<std::size_t>(SelectionStart());
  const auto end = static_cast<std::size_t>(SelectionEnd());
  std::u32string whole = mText.substr(0, start) + text + mText.substr(end);
  if (!mFilter.Accepts(whole)) return false;
  mText = std::move(whole);
  mCaret = mAnchor = static_cast<int>(start + text.size());
  return true;
}

void LineEdit::Erase(bool forward) {
  if (!HasSelection()) MoveTo(mCaret + (forward ? 1 : -1), true);
  const int start = SelectionStart();
  mText.erase(static_cast<std::size_t>(start), static_cast<std::size_t>(SelectionEnd() - start));
  mCaret = mAnchor = start;
}

void LineEdit::MoveTo(int position, bool extend) {
  mCaret = std::clamp(position, 0, Length());
  if (!extend) mAnchor = mCaret;
}

void LineEdit::Step(int direction, bool extend) {
  if (HasSelection() && !extend) {
    MoveTo(direction < 0 ? SelectionStart() : SelectionEnd(), false);
  } else {
    MoveTo(mCaret + direction, extend);
  }
}

void LineEdit::SelectAll() {
  mAnchor = 0;
  mCaret = Length();
}

void LineEdit::SelectWord(int position) {
  const auto blankAt = [this](int i) { return IsBlank(mText[static_cast<std::size_t>(i)]); };
  int start = std::clamp(position, 0, Length());
  int end = start;
  while (start > 0 && !blankAt(start - 1)) --start;
  while (end < Length() && !blankAt(end)) ++end;
  mAnchor = start;
  mCaret = end;
}

std::u32string LineEdit::Selected() const {
  const int start = SelectionStart();
  return mText.substr(static_cast<std::size_t>(start),
                      static_cast<std::size_t>(SelectionEnd() - start));
}
