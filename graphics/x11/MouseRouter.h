// From pointer events to the editor's mouse operations.
#pragma once

#include <xcb/xcb.h>

#include "graphics/IGraphicsTypes.h"

class IGraphicsX11;

// Counts presses in quick succession. Times are the server's, in milliseconds, and wrap.
class ClickCounter {
 public:
  int Press(int button, int x, int y, xcb_timestamp_t time);

 private:
  int mCount = 0;
  int mButton = 0, mX = 0, mY = 0;
  xcb_timestamp_t mTime = 0;
};

// Routes presses, drags and wheel steps, one button at a time, so that the host hears exactly one
// end for each beginning of an edit, whatever becomes of the release. Places are those of the
// window; controls get them moved by the editor's fixed offset.
class MouseRouter {
 public:
  explicit MouseRouter(IGraphicsX11& graphics) : mGraphics(graphics) {}

  // `clicks` of 2 or more make a press of the left button a double click.
  void Press(int button, int clicks, int x, int y, uint16_t state);
  void Release(int button, int x, int y, uint16_t state);
  // With `dragging` false a held button moves nothing.
  void Motion(int x, int y, uint16_t state, bool dragging);
  void Wheel(int distance, int x, int y, uint16_t state);
  void Leave();
  // As if the button were released where the mouse was last; nothing when none is held.
  void Cancel();
  // The release of a held button went to a menu or dialog.
  void Swallow() { mSwallowed = true; }

  bool IsPressed() const { return mButton != 0; }
  // The last place, as controls get it.
  int X() const { return mX; }
  int Y() const { return mY; }

 private:
  void MoveTo(int x, int y, uint16_t state);
  IMouseMod Modifiers(int button) const;
  int ParamAt(int x, int y) const;
  void EndPress();
  void EndEdit(int param);

  IGraphicsX11& mGraphics;
  int mButton = 0;          // held, 1 or 3; 0 for none
  bool mEditing = false;    // the host was told that an edit began
  bool mSwallowed = false;  // no release will come
  bool mIsInside = false;   // the mouse, in the window
  int mX = 0, mY = 0;
  uint16_t mState = 0;  // modifiers of the last event
};
