// Plain stock controls: panels, bitmaps, switches, radio buttons. Tolmara uses the bitmap and the
// switch.
#pragma once

#include <vector>

#include "graphics/IControl.h"

enum EDirection { kVertical = 0, kHorizontal = 1 };

// The frame, counted from 1, that a normalised value selects among `nFrames`.
int FrameOf(double value, int nFrames);

// A filled rectangle.
class IPanelControl : public IControl {
 public:
  IPanelControl(IPlugBase* plug, IRECT rect, int paramIdx, const IColor& color);
  bool Draw(IGraphics* graphics) override;

 private:
  IColor mColor;
};

// The frame of a bitmap that the value selects.
class IBitmapControl : public IControl {
 public:
  // Covers one frame at (x, y).
  IBitmapControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                 IChannelBlend blend = IChannelBlend::kBlendClobber);
  IBitmapControl(IPlugBase* plug, IRECT rect, int paramIdx, const IBitmap& bitmap,
                 IChannelBlend blend = IChannelBlend::kBlendClobber);
  bool Draw(IGraphics* graphics) override;

  const IBitmap& GetBitmap() const { return mBitmap; }

 protected:
  IBitmap mBitmap;
};

// A press goes to the next frame, and from the last to the first.
class ISwitchControl : public IBitmapControl {
 public:
  using IBitmapControl::IBitmapControl;
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  void OnMouseDblClick(int x, int y, IMouseMod* mod) override;
};

// A two-state switch over a part of the background.
class IInvisibleSwitchControl : public IControl {
 public:
  IInvisibleSwitchControl(IPlugBase* plug, IRECT rect, int paramIdx);
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;
};

// A row or column of buttons, one of which is lit: frame 2 of the bitmap, the others frame 1.
class IRadioButtonsControl : public IControl {
 public:
  // Spreads `nButtons` over `rect`: from the left or the top, with `reverse` from the other end.
  IRadioButtonsControl(IPlugBase* plug, IRECT rect, int paramIdx, int nButtons,
                       const IBitmap& bitmap, int direction = kVertical, bool reverse = false);
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;

 protected:
  std::vector<IRECT> mRECTs;  // one a button

 private:
  IBitmap mBitmap;
};

// On only while the mouse is down.
class IContactControl : public ISwitchControl {
 public:
  IContactControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                  IChannelBlend blend = IChannelBlend());
  void OnMouseUp(int x, int y, IMouseMod* mod) override;
};

// A picture that a press on a small area opens, and a press on the picture closes.
class IBitmapOverlayControl : public ISwitchControl {
 public:
  IBitmapOverlayControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                        IRECT targetArea);
  bool Draw(IGraphics* graphics) override;

 private:
  IRECT mTargetArea;  // hit area while closed
};
