// Routing of mouse and keys to the controls.
#include "graphics/IGraphics.h"
#include "iplug/IPlugBase.h"

int IGraphics::GetMouseControlIdx(int x, int y, bool mouseOver) const {
  if (mMouseCapture >= 0) return mMouseCapture;
  for (int i = mControls.GetSize() - 1; i >= 0; --i) {
    IControl* control = mControls.Get(i);
    if (control->IsHidden()) continue;
    if (control->IsGrayed() && !(mouseOver && control->MouseOverWhenGrayed())) continue;
    if (control->IsHit(x, y)) return i;
  }
  return -1;
}

void IGraphics::ReleaseMouseCapture() { mMouseCapture = mMouseX = mMouseY = -1; }

void IGraphics::CaptureMouse(int controlIdx, int x, int y) {
  mMouseCapture = controlIdx;
  mMouseX = x;
  mMouseY = y;
}

void IGraphics::OnMouseDown(int x, int y, IMouseMod* mod) {
  ReleaseMouseCapture();
  const int idx = GetMouseControlIdx(x, y);
  IControl* control = GetControl(idx);
  if (!control) return;
  // Read first: the control may resize the editor, which deletes it.
  const int paramIdx = control->ParamIdx();
  CaptureMouse(idx, x, y);
  control->OnMouseDown(x, y, mod);
  if (paramIdx < 0) return;
  mLastClickedParam = paramIdx;
  if (mPlug) mPlug->BeginInformHostOfParamChange(paramIdx);
}

void IGraphics::OnMouseUp(int x, int y, IMouseMod* mod) {
  IControl* control = GetControl(GetMouseControlIdx(x, y));
  ReleaseMouseCapture();
  if (!control) return;
  const int paramIdx = control->ParamIdx();
  control->OnMouseUp(x, y, mod);
  if (paramIdx >= 0 && mPlug) mPlug->EndInformHostOfParamChange(paramIdx);
}

void IGraphics::OnMouseDrag(int x, int y, IMouseMod* mod) {
  IControl* control = GetControl(mMouseCapture);
  if (!control || (x == mMouseX && y == mMouseY)) return;
  const int dX = x - mMouseX;
  const int dY = y - mMouseY;
  mMouseX = x;
  mMouseY = y;
  control->OnMouseDrag(x, y, dX, dY, mod);
}

bool IGraphics::OnMouseDblClick(int x, int y, IMouseMod* mod) {
  ReleaseMouseCapture();
  const int idx = GetMouseControlIdx(x, y);
  IControl* control = GetControl(idx);
  if (!control) return false;
  if (!control->DblAsSingleClick()) {
    control->OnMouseDblClick(x, y, mod);
    return false;
  }
  CaptureMouse(idx, x, y);
  control->OnMouseDown(x, y, mod);
  return true;
}

void IGraphics::OnMouseOver(int x, int y, IMouseMod* mod) {
  if (!mHandleMouseOver) return;
  const int idx = GetMouseControlIdx(x, y, true);
  IControl* control = GetControl(idx);
  if (!control) return;
  mMouseX = x;
  mMouseY = y;
  control->OnMouseOver(x, y, mod);
  IControl* previous = GetControl(mMouseOver);
  if (previous && previous != control) previous->OnMouseOut();
  mMouseOver = idx;
}

void IGraphics::OnMouseOut() {
  for (IControl* control : mControls) control->OnMouseOut();
  mMouseOver = -1;
}

void IGraphics::OnMouseWheel(int x, int y, IMouseMod* mod, int d) {
  if (IControl* control = GetControl(GetMouseControlIdx(x, y))) control->OnMouseWheel(x, y, mod, d);
}

bool IGraphics::OnKeyDown(int x, int y, int key) {
  // kept: control 0, the background, never gets a key, so that keys beside the controls reach the
  // key catcher or, as the host's shortcuts, the host.
  const int idx = GetMouseControlIdx(x, y);
  if (idx > 0) return mControls.Get(idx)->OnKeyDown(x, y, key);
  return mKeyCatcher && mKeyCatcher->OnKeyDown(x, y, key);
}
