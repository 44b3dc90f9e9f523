// The fader's handle and how it follows the mouse.
#include "graphics/controls/IFaderControl.h"

#include "graphics/IGraphics.h"

namespace {

IRECT TrackRECT(int x, int y, int len, const IBitmap& bitmap, int direction) {
  return direction == kVertical ? IRECT(x, y, x + bitmap.W, y + len)
                                : IRECT(x, y, x + len, y + bitmap.H);
}

}  // namespace

IFaderControl::IFaderControl(IPlugBase* plug, int x, int y, int len, int paramIdx,
                             const IBitmap& bitmap, int direction, bool onlyHandle)
    : IControl(plug, TrackRECT(x, y, len, bitmap, direction), paramIdx),
      mLen(len),
      mHandleHeadroom(direction == kVertical ? bitmap.H : bitmap.W),
      mBitmap(bitmap),
      mDirection(direction),
      mOnlyHandle(onlyHandle) {}

IRECT IFaderControl::GetHandleRECT(double value) const {
  if (value < 0.0) value = GetValue();
  IRECT r(mRECT.L, mRECT.T, mRECT.L + mBitmap.W, mRECT.T + mBitmap.H);
  const bool vertical = mDirection == kVertical;
  const int travel = TruncateToPixel(Span() * (vertical ? 1.0 - value : value));
  (vertical ? r.T : r.L) += travel;
  (vertical ? r.B : r.R) += travel;
  return r;
}

void IFaderControl::OnMouseDown(int x, int y, IMouseMod* mod) {
  if (mod->R) {
    PromptUserInput();
  } else {
    SnapToMouse(x, y);
  }
}

void IFaderControl::OnMouseDrag(int x, int y, int, int, IMouseMod*) { SnapToMouse(x, y); }

void IFaderControl::SnapToMouse(int x, int y) {
  if (Span() == 0) return;
  const double span = Span();
  const int half = mHandleHeadroom / 2;
  SetValue(mDirection == kVertical ? 1.0 - (y - half - mRECT.T) / span
                                   : (x - half - mRECT.L) / span);
  SetDirty(true);
}

bool IFaderControl::Draw(IGraphics* graphics) {
  const IRECT handle = GetHandleRECT();
  return graphics->DrawBitmap(&mBitmap, &handle, 1, &mBlend);
}

bool IFaderControl::IsHit(int x, int y) {
  return mOnlyHandle ? GetHandleRECT().Contains(x, y) : IControl::IsHit(x, y);
}
