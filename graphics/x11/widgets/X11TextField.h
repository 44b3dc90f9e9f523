// The field in which a value is typed.
#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <string>

#include "graphics/x11/server/X11Keys.h"
#include "graphics/x11/server/X11Window.h"
#include "graphics/x11/widgets/LineEdit.h"

class IControl;
class IParam;
class X11Clipboard;

// A window over the editor that edits one line and draws itself. Which control it is for and what
// becomes of the text is up to its owner.
class X11TextField {
 public:
  enum class Use { kNone, kTaken, kCommit, kAbandon };  // what a key did

  // `param` null: any text of any length.
  X11TextField(X11Connection& connection, const X11Look& look, xcb_window_t parent,
               IControl* control, const IText& style, const IRECT& rect, const char* str,
               IParam* param);

  IControl* Control() const { return mControl; }
  IParam* Param() const { return mParam; }
  std::string Text() const;
  X11Pane& Pane() { return mPane; }
  const IRECT& Place() const { return mPane.Place(); }

  // `x` is relative to the field; `clicks` counts presses in quick succession.
  void Press(int x, bool extend, int clicks);
  void Drag(int x);
  Use Key(const X11Key& key, X11Clipboard& clipboard, xcb_timestamp_t time);
  void Paste(const std::string& text);
  void Blink(std::chrono::steady_clock::time_point now);

 private:
  bool Move(const X11Key& key);
  bool Shortcut(const X11Key& key, X11Clipboard& clipboard, xcb_timestamp_t time);
  bool Type(const X11Key& key);
  int WidthOf(int from, int to);
  int TextLeft();  // keeps the caret in sight
  std::string Part(int from, int to) const;
  int PositionAt(int x);
  void Redraw();  // after a change: the caret shows at once
  void Draw();
  void DrawPart(int from, int to, int left, bool selected);

  IControl* mControl;  // not owned
  IParam* mParam;      // not owned, null for none
  int mAlign;          // of the text in the field
  IText mStyle;        // of the pieces that are drawn, each from its left end
  LineEdit mEdit;
  X11Pane mPane;
  int mScroll = 0;          // pixels of a long text that lie left of the field
  bool mSelecting = false;  // the button is down after a single press
  bool mCaretShown = true;
  std::chrono::steady_clock::time_point mBlinkTime;  // of the last change of the caret
};
