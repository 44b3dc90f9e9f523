// A handle on a straight track. Tolmara uses it horizontally, under IFaderMultiControlText.
#pragma once

#include "graphics/controls/IControls.h"

// The handle, the first frame of a bitmap, travels along `len` pixels from (x, y): upwards when
// vertical, rightwards when horizontal.
class IFaderControl : public IControl {
 public:
  // With `onlyHandle` the track beside the handle takes no press.
  IFaderControl(IPlugBase* plug, int x, int y, int len, int paramIdx, const IBitmap& bitmap,
                int direction = kVertical, bool onlyHandle = false);
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  void OnMouseDrag(int x, int y, int dX, int dY, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;
  bool IsHit(int x, int y) override;

  // Where the handle stands at a value; a negative one means the control's own.
  IRECT GetHandleRECT(double value = -1.0) const;
  int GetLength() const { return mLen; }
  bool OnlyHandle() const { return mOnlyHandle; }
  int GetDirection() const { return mDirection; }

 private:
  void SnapToMouse(int x, int y);
  int Span() const { return mLen - mHandleHeadroom; }  // the handle's way, in pixels

  int mLen;             // of the track, in pixels
  int mHandleHeadroom;  // size of the handle along the track
  IBitmap mBitmap;
  int mDirection;  // EDirection
  bool mOnlyHandle;
};
