// Presses, releases and what lies between.
#include "graphics/x11/MouseRouter.h"

#include <cstdlib>

#include "graphics/x11/EditOfParam.h"
#include "graphics/x11/IGraphicsX11.h"

namespace {

// kept: where the canvas takes the mouse to be, against where the window has it.
constexpr int kOffsetX = 2;
constexpr int kOffsetY = 3;

constexpr xcb_timestamp_t kDoubleClickTime_ms = 400;
constexpr int kDoubleClickDistance = 5;  // pixels

constexpr int kLeft = XCB_BUTTON_INDEX_1;
constexpr int kRight = XCB_BUTTON_INDEX_3;

uint16_t MaskOf(int button) { return button == kLeft ? XCB_BUTTON_MASK_1 : XCB_BUTTON_MASK_3; }

}  // namespace

int ClickCounter::Press(int button, int x, int y, xcb_timestamp_t time) {
  const bool near =
      std::abs(x - mX) <= kDoubleClickDistance && std::abs(y - mY) <= kDoubleClickDistance;
  const bool goesOn =
      mCount > 0 && button == mButton && near && time - mTime <= kDoubleClickTime_ms;
  mCount = goesOn ? mCount + 1 : 1;
  mButton = button;
  mX = x;
  mY = y;
  mTime = time;
  return mCount;
}

void MouseRouter::MoveTo(int x, int y, uint16_t state) {
  mX = x - kOffsetX;
  mY = y - kOffsetY;
  mState = state;
}

// The left button with the Super key counts as the right one too.
IMouseMod MouseRouter::Modifiers(int button) const {
  const bool left = button == kLeft;
  const bool right = button == kRight || (left && (mState & XCB_MOD_MASK_4));
  return IMouseMod(left, right, (mState & XCB_MOD_MASK_SHIFT) != 0,
                   (mState & XCB_MOD_MASK_CONTROL) != 0, (mState & XCB_MOD_MASK_1) != 0);
}

int MouseRouter::ParamAt(int x, int y) const {
  const IControl* control = mGraphics.ControlAt(x, y);
  return control ? control->ParamIdx() : -1;
}

void MouseRouter::Press(int button, int clicks, int x, int y, uint16_t state) {
  if (button != kLeft && button != kRight) return;
  if (mButton) {
    // A second button waits until the first is up, unless the first one's release was lost.
    if (button != mButton && (state & MaskOf(mButton))) return;
    Cancel();
  }
  MoveTo(x, y, state);
  mButton = button;
  mSwallowed = false;
  IMouseMod mod = Modifiers(button);
  if (button == kLeft && clicks >= 2) {
    mGraphics.OnMouseDblClick(mX, mY, &mod);
  } else {
    const int param = ParamAt(mX, mY);
    mGraphics.OnMouseDown(mX, mY, &mod);
    mEditing = param >= 0;
    // Who opened a menu has let go of the mouse, so that no release would end its edit.
    if (mGraphics.GetMouseCapture() < 0) EndEdit(param);
  }
  if (mSwallowed) Cancel();
}

void MouseRouter::EndEdit(int param) {
  if (mEditing && mGraphics.GetPlug()) mGraphics.GetPlug()->EndInformHostOfParamChange(param);
  mEditing = false;
}

void MouseRouter::Release(int button, int x, int y, uint16_t state) {
  if (!mButton || button != mButton) return;
  MoveTo(x, y, state);
  EndPress();
}

void MouseRouter::EndPress() {
  IMouseMod mod = Modifiers(mButton);
  mButton = 0;
  if (mEditing) {
    mEditing = false;
    mGraphics.OnMouseUp(mX, mY, &mod);
    return;
  }
  // No edit began, so none ends; the control still hears that the button is up, but not the one
  // that happens to lie where a menu was.
  const bool wasMenu = mSwallowed && mGraphics.GetMouseCapture() < 0;
  IControl* control = wasMenu ? nullptr : mGraphics.ControlAt(mX, mY);
  mGraphics.ReleaseMouseCapture();
  if (control) control->OnMouseUp(mX, mY, &mod);
}

void MouseRouter::Cancel() {
  if (mButton) EndPress();
}

void MouseRouter::Motion(int x, int y, uint16_t state, bool dragging) {
  if (mButton && !(state & MaskOf(mButton))) Cancel();
  // The server tells of an entry and then of the motion that led to it.
  const bool isNews = !mIsInside || mX != x - kOffsetX || mY != y - kOffsetY;
  mIsInside = true;
  MoveTo(x, y, state);
  IMouseMod mod = Modifiers(mButton);
  if (!mButton) {
    if (isNews) mGraphics.OnMouseOver(mX, mY, &mod);
  } else if (dragging) {
    mGraphics.OnMouseDrag(mX, mY, &mod);
  }
}

void MouseRouter::Wheel(int distance, int x, int y, uint16_t state) {
  MoveTo(x, y, state);
  IMouseMod mod = Modifiers(mButton);
  const int param = mEditing ? -1 : ParamAt(mX, mY);
  const EditOfParam edit(mGraphics.GetPlug(), param);
  mGraphics.OnMouseWheel(mX, mY, &mod, distance);
}

void MouseRouter::Leave() {
  mIsInside = false;
  if (!mButton) mGraphics.OnMouseOut();
}
