// From the mouse events of a window to the editor's mouse operations.
#pragma once

#include "graphics/IGraphicsTypes.h"

class IGraphics;

enum EMouseButton { kNoButton, kLeftButton, kRightButton };

// The mouse as an event has it. `command` is the Command key or what the platform has in its
// place, which turns the left button into the right one too.
struct MouseInput {
  int x = 0, y = 0;                  // as controls get it
  bool left = false, right = false;  // buttons that the event finds held down
  bool shift = false, control = false, alt = false, command = false;

  // At a place in the window, in pixels from its upper left corner.
  static MouseInput At(int x, int y);
};

// Routes presses, drags and wheel steps, one button at a time, so that the host gets exactly one
// end for each begin of an edit, also when the release is lost.
class MouseRouter {
 public:
  explicit MouseRouter(IGraphics& graphics) : mGraphics(graphics) {}

  // `clicks` of 2 or more make a press of the left button a double click.
  void Press(EMouseButton button, int clicks, const MouseInput& input);
  void Release(EMouseButton button, const MouseInput& input);
  // With `dragging` false a held button moves nothing.
  void Motion(const MouseInput& input, bool dragging);
  void Wheel(int distance, const MouseInput& input);
  void Leave();
  // As if the button were released where the mouse was last; nothing when none is held.
  void Cancel();
  // The release of a held button went to a menu or dialog.
  void Swallow() { mSwallowed = true; }

  bool IsPressed() const { return mButton != kNoButton; }
  // The last place, as controls get it.
  int X() const { return mInput.x; }
  int Y() const { return mInput.y; }

 private:
  IMouseMod Modifiers(EMouseButton button) const;
  int ParamAt(int x, int y) const;
  void EndPress();
  void EndEdit(int param);

  IGraphics& mGraphics;
  EMouseButton mButton = kNoButton;  // held
  bool mEditing = false;             // the host was told that an edit began
  bool mSwallowed = false;           // no release will come
  bool mIsInside = false;            // the mouse, in the window
  MouseInput mInput;                 // of the last event
};
