// Panels, bitmaps, switches and radio buttons.
#include "graphics/controls/IControls.h"

#include "graphics/IGraphics.h"

int FrameOf(double value, int nFrames) {
  if (nFrames < 2) return 1;
  return std::clamp(TruncateToPixel((nFrames - 1) * value + 0.5) + 1, 1, nFrames);
}

IPanelControl::IPanelControl(IPlugBase* plug, IRECT rect, int paramIdx, const IColor& color)
    : IControl(plug, rect, paramIdx), mColor(color) {}

bool IPanelControl::Draw(IGraphics* graphics) {
  return graphics->FillIRect(&mColor, &mRECT, &mBlend);
}

IBitmapControl::IBitmapControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                               IChannelBlend blend)
    : IBitmapControl(plug, IRECT(x, y, bitmap), paramIdx, bitmap, blend) {}

IBitmapControl::IBitmapControl(IPlugBase* plug, IRECT rect, int paramIdx, const IBitmap& bitmap,
                               IChannelBlend blend)
    : IControl(plug, rect, paramIdx, blend), mBitmap(bitmap) {}

bool IBitmapControl::Draw(IGraphics* graphics) {
  return graphics->DrawBitmap(&mBitmap, &mRECT, FrameOf(GetValue(), mBitmap.N), &mBlend);
}

void ISwitchControl::OnMouseDown(int, int, IMouseMod*) {
  const double value = GetValue() + (mBitmap.N < 2 ? 1.0 : 1.0 / (mBitmap.N - 1));
  // The margin keeps rounding from dropping the top step.
  SetValue(value > 1.001 ? 0.0 : value);
  SetDirty(true);
}

void ISwitchControl::OnMouseDblClick(int x, int y, IMouseMod* mod) {
  ISwitchControl::OnMouseDown(x, y, mod);
}

IInvisibleSwitchControl::IInvisibleSwitchControl(IPlugBase* plug, IRECT rect, int paramIdx)
    : IControl(plug, rect, paramIdx, IChannelBlend::kBlendClobber) {
  mDisablePrompt = true;
}

void IInvisibleSwitchControl::OnMouseDown(int, int, IMouseMod*) {
  SetValue(GetValue() < 0.5 ? 1.0 : 0.0);
  SetDirty(true);
}

bool IInvisibleSwitchControl::Draw(IGraphics*) { return true; }

IRadioButtonsControl::IRadioButtonsControl(IPlugBase* plug, IRECT rect, int paramIdx, int nButtons,
                                           const IBitmap& bitmap, int direction, bool reverse)
    : IControl(plug, rect, paramIdx), mBitmap(bitmap) {
  const bool horizontal = direction == kHorizontal;
  const int w = bitmap.FrameWidth();
  const int h = bitmap.FrameHeight();
  const int size = horizontal ? w : h;
  const int length = horizontal ? rect.W() : rect.H();
  const int gap = nButtons > 1 ? (length - nButtons * size) / (nButtons - 1) : 0;
  for (int i = 0; i < nButtons; ++i) {
    const int fromStart = i * (size + gap);
    const int offset = reverse ? length - size - fromStart : fromStart;
    const int x = rect.L + (horizontal ? offset : 0);
    const int y = rect.T + (horizontal ? 0 : offset);
    mRECTs.emplace_back(x, y, x + w, y + h);
  }
}

void IRadioButtonsControl::OnMouseDown(int x, int y, IMouseMod* mod) {
  if (mod->R) {
    PromptUserInput();
    return;
  }
  const int n = static_cast<int>(mRECTs.size());
  for (int i = 0; i < n; ++i) {
    if (!mRECTs[static_cast<std::size_t>(i)].Contains(x, y)) continue;
    SetValue(n > 1 ? static_cast<double>(i) / (n - 1) : 0.0);
    break;
  }
  SetDirty(true);
}

bool IRadioButtonsControl::Draw(IGraphics* graphics) {
  const int active = FrameOf(GetValue(), static_cast<int>(mRECTs.size())) - 1;
  bool drawn = true;
  for (std::size_t i = 0; i < mRECTs.size(); ++i) {
    const int frame = static_cast<int>(i) == active ? 2 : 1;
    drawn = graphics->DrawBitmap(&mBitmap, &mRECTs[i], frame, &mBlend) && drawn;
  }
  return drawn;
}

IContactControl::IContactControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                                 IChannelBlend blend)
    : ISwitchControl(plug, x, y, paramIdx, bitmap, blend) {}

void IContactControl::OnMouseUp(int, int, IMouseMod*) {
  SetValue(0.0);
  SetDirty(true);
}

IBitmapOverlayControl::IBitmapOverlayControl(IPlugBase* plug, int x, int y, int paramIdx,
                                             const IBitmap& bitmap, IRECT targetArea)
    : ISwitchControl(plug, x, y, paramIdx, bitmap, IChannelBlend()), mTargetArea(targetArea) {}

bool IBitmapOverlayControl::Draw(IGraphics* graphics) {
  const bool open = GetValue() >= 0.5;
  mTargetRECT = open ? mRECT : mTargetArea;
  return !open || IBitmapControl::Draw(graphics);
}
