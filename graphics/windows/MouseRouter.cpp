// Presses, releases and what lies between.
#include "graphics/windows/MouseRouter.h"

#include "graphics/IGraphics.h"
#include "graphics/windows/EditOfParam.h"

namespace {

// kept: the canvas takes the mouse to be this far up and left of its place in the window. Without
// it every press would hit beside the point that users are used to.
constexpr int kOffsetX = 2;
constexpr int kOffsetY = 3;

bool Holds(const MouseInput& input, EMouseButton button) {
  return button == kLeftButton ? input.left : input.right;
}

}  // namespace

MouseInput MouseInput::At(int x, int y) {
  MouseInput input;
  input.x = x - kOffsetX;
  input.y = y - kOffsetY;
  return input;
}

IMouseMod MouseRouter::Modifiers(EMouseButton button) const {
  const bool left = button == kLeftButton;
  const bool right = button == kRightButton || (left && mInput.command);
  return IMouseMod(left, right, mInput.shift, mInput.control, mInput.alt);
}

int MouseRouter::ParamAt(int x, int y) const {
  const IControl* control = mGraphics.ControlAt(x, y);
  return control ? control->ParamIdx() : -1;
}

void MouseRouter::Press(EMouseButton button, int clicks, const MouseInput& input) {
  if (button == kNoButton) return;
  if (IsPressed()) {
    // A second button waits until the first is up, unless the first one's release was lost.
    if (button != mButton && Holds(input, mButton)) return;
    Cancel();
  }
  mInput = input;
  mButton = button;
  mSwallowed = false;
  IMouseMod mod = Modifiers(button);
  if (button == kLeftButton && clicks >= 2) {
    mGraphics.OnMouseDblClick(X(), Y(), &mod);
  } else {
    const int param = ParamAt(X(), Y());
    mGraphics.OnMouseDown(X(), Y(), &mod);
    mEditing = param >= 0;
    // A control that opened a menu has released the mouse, so that no release would end its edit.
    if (mGraphics.GetMouseCapture() < 0) EndEdit(param);
  }
  if (mSwallowed) Cancel();
}

void MouseRouter::EndEdit(int param) {
  if (mEditing && mGraphics.GetPlug()) mGraphics.GetPlug()->EndInformHostOfParamChange(param);
  mEditing = false;
}

void MouseRouter::Release(EMouseButton button, const MouseInput& input) {
  if (!IsPressed() || button != mButton) return;
  mInput = input;
  EndPress();
}

void MouseRouter::EndPress() {
  IMouseMod mod = Modifiers(mButton);
  mButton = kNoButton;
  if (mEditing) {
    mEditing = false;
    mGraphics.OnMouseUp(X(), Y(), &mod);
    return;
  }
  // No edit began, so none ends. The control still learns that the button is up, but not a control
  // that merely lies where a menu was.
  const bool wasMenu = mSwallowed && mGraphics.GetMouseCapture() < 0;
  IControl* control = wasMenu ? nullptr : mGraphics.ControlAt(X(), Y());
  mGraphics.ReleaseMouseCapture();
  if (control) control->OnMouseUp(X(), Y(), &mod);
}

void MouseRouter::Cancel() {
  if (IsPressed()) EndPress();
}

void MouseRouter::Motion(const MouseInput& input, bool dragging) {
  if (IsPressed() && !Holds(input, mButton)) Cancel();
  // The same place can come twice, with an entry and with the motion that caused it.
  const bool isNews = !mIsInside || X() != input.x || Y() != input.y;
  mIsInside = true;
  mInput = input;
  IMouseMod mod = Modifiers(mButton);
  if (!IsPressed()) {
    if (isNews) mGraphics.OnMouseOver(X(), Y(), &mod);
  } else if (dragging) {
    mGraphics.OnMouseDrag(X(), Y(), &mod);
  }
}

void MouseRouter::Wheel(int distance, const MouseInput& input) {
  mInput = input;
  IMouseMod mod = Modifiers(mButton);
  const int param = mEditing ? -1 : ParamAt(X(), Y());
  const EditOfParam edit(mGraphics.GetPlug(), param);
  mGraphics.OnMouseWheel(X(), Y(), &mod, distance);
}

void MouseRouter::Leave() {
  mIsInside = false;
  if (!IsPressed()) mGraphics.OnMouseOut();
}
