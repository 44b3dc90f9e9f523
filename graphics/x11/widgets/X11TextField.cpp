// Keys, mouse and drawing of the text field.
#include "graphics/x11/widgets/X11TextField.h"

#include "graphics/IControl.h"
#include "graphics/IGraphics.h"
#include "graphics/lice/LICE_Draw.h"
#include "graphics/windows/Utf8.h"
#include "graphics/x11/server/X11Clipboard.h"
#include "iplug/IParam.h"

namespace {

constexpr int kMargin = 2;  // pixels between the edge and the text
constexpr std::chrono::milliseconds kBlinkPeriod(500);

IText StyleOf(const IText& text) {
  IText style = text;
  style.mSize = EntryTextSize(text);
  style.mAlign = IText::kAlignNear;
  return style;
}

std::u32string Trimmed(const std::u32string& text) {
  const auto isGap = [](char32_t c) { return c <= U' '; };
  auto first = std::find_if_not(text.begin(), text.end(), isGap);
  auto last = std::find_if_not(text.rbegin(), text.rend(), isGap).base();
  return first < last ? std::u32string(first, last) : std::u32string();
}

}  // namespace

X11TextField::X11TextField(X11Connection& connection, const X11Look& look, xcb_window_t parent,
                           IControl* control, const IText& style, const IRECT& rect,
                           const char* str, IParam* param)
    : mControl(control),
      mParam(param),
      mAlign(style.mAlign),
      mStyle(StyleOf(style)),
      mEdit(FromUtf8(str ? str : ""), FilterFor(*control, param)),
      mPane(connection, look, parent, rect, X11Window::kChild),
      mBlinkTime(std::chrono::steady_clock::now()) {
  Draw();
}

std::string X11TextField::Text() const { return ToUtf8(mEdit.Text()); }

void X11TextField::Press(int x, bool extend, int clicks) {
  const int position = PositionAt(x);
  mSelecting = clicks < 2;
  if (clicks < 2) {
    mEdit.MoveTo(position, extend);
  } else if (clicks == 2) {
    mEdit.SelectWord(position);
  } else {
    mEdit.SelectAll();
  }
  Redraw();
}

void X11TextField::Drag(int x) {
  if (!mSelecting) return;
  mEdit.MoveTo(PositionAt(x), true);
  Redraw();
}

X11TextField::Use X11TextField::Key(const X11Key& key, X11Clipboard& clipboard,
                                    xcb_timestamp_t time) {
  if (key.symbol == kX11Return || key.symbol == kX11Tab) return Use::kCommit;
  if (key.symbol == kX11Escape) return Use::kAbandon;
  if (!Move(key) && !Shortcut(key, clipboard, time) && !Type(key)) return Use::kNone;
  Redraw();
  return Use::kTaken;
}

bool X11TextField::Move(const X11Key& key) {
  switch (key.symbol) {
    case kX11Left: mEdit.Step(-1, key.shift); return true;
    case kX11Right: mEdit.Step(1, key.shift); return true;
    case kX11Home:
    case kX11Up: mEdit.MoveTo(0, key.shift); return true;
    case kX11End:
    case kX11Down: mEdit.MoveTo(mEdit.Length(), key.shift); return true;
    case kX11BackSpace: mEdit.Erase(false); return true;
    case kX11Delete: mEdit.Erase(true); return true;
    default: return false;
  }
}

bool X11TextField::Shortcut(const X11Key& key, X11Clipboard& clipboard, xcb_timestamp_t time) {
  if (!key.control || key.alt) return false;
  const bool isCapital = key.symbol >= 'A' && key.symbol <= 'Z';  // with the lock for capitals
  const xcb_keysym_t letter = isCapital ? key.symbol + ('a' - 'A') : key.symbol;
  switch (letter) {
    case 'a': mEdit.SelectAll(); return true;
    case 'c':
    case 'x':
      if (!mEdit.HasSelection()) return true;
      clipboard.Copy(ToUtf8(mEdit.Selected()), time);
      if (letter == 'x') mEdit.Erase(true);
      return true;
    case 'v':
      if (const auto text = clipboard.Paste(time)) Paste(*text);
      return true;
    default: return false;
  }
}

bool X11TextField::Type(const X11Key& key) {
  if (!key.character || key.control || key.alt || key.super) return false;
  char32_t c = key.character;
  // The keypad's decimal key types a comma on many layouts; numbers here have a point.
  if (key.keypad && c == U',' && mParam) c = U'.';
  mEdit.Insert(std::u32string(1, c));
  return true;
}

void X11TextField::Paste(const std::string& text) {
  mEdit.Insert(Trimmed(FromUtf8(text)));
  Redraw();
}

void X11TextField::Blink(std::chrono::steady_clock::time_point now) {
  if (now - mBlinkTime < kBlinkPeriod) return;
  mCaretShown = !mCaretShown;
  mBlinkTime = now;
  Draw();
}

int X11TextField::WidthOf(int from, int to) {
  if (from >= to) return 0;
  IRECT extent;
  IGraphics::DrawTextOn(nullptr, &mStyle, Part(from, to).c_str(), &extent, true);
  return extent.W();
}

std::string X11TextField::Part(int from, int to) const {
  return ToUtf8(
      mEdit.Text().substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
}

int X11TextField::TextLeft() {
  const int room = mPane.Place().W() - 2 * kMargin;
  const int width = WidthOf(0, mEdit.Length());
  if (width <= room) {
    mScroll = 0;
    const int spare = room - width;
    return kMargin + (mAlign == IText::kAlignNear  ? 0
                      : mAlign == IText::kAlignFar ? spare
                                                   : spare / 2);
  }
  const int caret = WidthOf(0, mEdit.Caret());
  mScroll = std::clamp(mScroll, std::max(caret - room, 0), caret);
  mScroll = std::min(mScroll, width - room);
  return kMargin - mScroll;
}

int X11TextField::PositionAt(int x) {
  const int left = TextLeft();
  int position = 0;
  while (position < mEdit.Length()) {
    const int middle = (WidthOf(0, position) + WidthOf(0, position + 1)) / 2;
    if (x < left + middle) break;
    ++position;
  }
  return position;
}

void X11TextField::Redraw() {
  mCaretShown = true;
  mBlinkTime = std::chrono::steady_clock::now();
  Draw();
}

void X11TextField::Draw() {
  LICE_IBitmap* bitmap = &mPane.Bitmap();
  const int height = mPane.Place().H();
  const int left = TextLeft();
  LICE_FillRect(bitmap, 0, 0, mPane.Place().W(), height, mStyle.mTextEntryBGColor.Pixel());
  DrawPart(0, mEdit.SelectionStart(), left, false);
  DrawPart(mEdit.SelectionStart(), mEdit.SelectionEnd(), left, true);
  DrawPart(mEdit.SelectionEnd(), mEdit.Length(), left, false);
  if (mCaretShown && !mEdit.HasSelection()) {
    LICE_FillRect(bitmap, left + WidthOf(0, mEdit.Caret()), 1, 1, height - 2,
                  mStyle.mTextEntryFGColor.Pixel());
  }
  mPane.Show();
}

// The characters of [from, to) in their place, a selection in exchanged colours.
void X11TextField::DrawPart(int from, int to, int left, bool selected) {
  if (from >= to) return;
  const int height = mPane.Place().H();
  const int start = left + WidthOf(0, from);
  const int end = left + WidthOf(0, to);
  if (selected) {
    LICE_FillRect(&mPane.Bitmap(), start, 0, end - start, height, mStyle.mTextEntryFGColor.Pixel());
  }
  mStyle.mColor = selected ? mStyle.mTextEntryBGColor : mStyle.mTextEntryFGColor;
  IRECT place(start, (height - mStyle.mSize) / 2, end, height);
  IGraphics::DrawTextOn(&mPane.Bitmap(), &mStyle, Part(from, to).c_str(), &place, false);
}
