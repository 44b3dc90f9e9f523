// Drawing of the dial and its way of following the mouse.
#include "graphics/controls/ICircleKnobMultiControlText.h"

#include <cmath>
#include <numbers>

#include "graphics/IGraphics.h"
#include "iplug/IParam.h"

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kGearing = 6.0;
constexpr double kRestingDotSize = 0.15;
constexpr double kRestingTextScale = 1.0;
constexpr double kSwollenDotSize = 0.19999999999999996;
constexpr double kSwollenTextScale = 1.15;
constexpr double kTrackScale = 0.8;  // radius of the dot's track as a part of the dial's

IRECT DialRECT(int cx, int cy, int r) { return {cx - r, cy - r, cx + r, cy + r}; }

// Over the width of the dial, around its middle.
IRECT ValueRECT(int cx, int cy, int r, int textSize) {
  const float top = static_cast<float>(cy) - 9.0f * static_cast<float>(textSize) / 17.0f;
  return {cx - r, static_cast<int>(top), cx + r, cy + 11};
}

}  // namespace

ICircleKnobMultiControlText::ICircleKnobMultiControlText(IPlugBase* plug, int paramIdx, int centerX,
                                                         int centerY, int radius, const IText& text,
                                                         const IColor& color)
    : IKnobControl(plug, DialRECT(centerX, centerY, radius), paramIdx, kVertical, kGearing),
      mTextRECT(ValueRECT(centerX, centerY, radius, text.mSize)),
      mColor(color),
      mCenterX(centerX),
      mCenterY(centerY),
      mRadius(radius),
      mDotSize(kRestingDotSize) {
  mText = text;
}

void ICircleKnobMultiControlText::SetBitmap(const IBitmap& bitmap, const IRECT& rect) {
  mHasBitmap = true;
  mBitmap = bitmap;
  mBitmapRECT = rect;
}

void ICircleKnobMultiControlText::OnMouseDrag(int x, int y, int dX, int dY, IMouseMod* mod) {
  if (mCircular) {
    Turn(DragDistance(dX, dY, *mod));
  } else {
    IKnobControl::OnMouseDrag(x, y, dX, dY, mod);
  }
}

void ICircleKnobMultiControlText::OnMouseWheel(int x, int y, IMouseMod* mod, int d) {
  if (mCircular) {
    Turn(d * (mod->C || mod->S ? 0.001 : 0.01));
  } else {
    IKnobControl::OnMouseWheel(x, y, mod, d);
  }
}

void ICircleKnobMultiControlText::Turn(double distance) {
  double value = GetValue() + distance;
  if (value > 1.0 || value < 0.0) value -= std::floor(value);
  SetValue(value);
  SetDirty(true);
}

void ICircleKnobMultiControlText::OnMouseOver(int, int, IMouseMod*) {
  Swell(kSwollenDotSize, kSwollenTextScale);
}

void ICircleKnobMultiControlText::OnMouseOut() { Swell(kRestingDotSize, kRestingTextScale); }

void ICircleKnobMultiControlText::Swell(double dotSize, double textScale) {
  mDotSize = dotSize;
  mTextScale = textScale;
  MarkDirty();
  MarkRedraw();
}

bool ICircleKnobMultiControlText::Draw(IGraphics* graphics) {
  if (mDrawCircle) {
    graphics->DrawCircle(&mColor, static_cast<float>(mCenterX), static_cast<float>(mCenterY),
                         static_cast<float>(mRadius), nullptr, false);
  }
  if (mDrawDot) DrawDot(graphics);
  if (mHasBitmap) {
    return graphics->DrawBitmap(&mBitmap, &mBitmapRECT, FrameOf(GetValue(), mBitmap.N), &mBlend);
  }
  return DrawValue(graphics);
}

void ICircleKnobMultiControlText::DrawDot(IGraphics* graphics) const {
  // Zero points along positive x, and y grows downward.
  const double start = mCircular ? 0.5 * kPi : 0.75 * kPi;
  const double end = mCircular ? 2.5 * kPi : 2.25 * kPi;
  const double t = (GetValue() - GetClampLo()) / (GetClampHi() - GetClampLo());
  const double angle = start + (end - start) * t;
  const double track = kTrackScale * mRadius;
  const double dot = mDotSize * track;
  const auto x = static_cast<float>(TruncateToPixel(mCenterX + std::cos(angle) * track));
  const auto y = static_cast<float>(TruncateToPixel(mCenterY + std::sin(angle) * track));
  const IChannelBlend blend(IChannelBlend::kBlendNone, 1.0f);
  const IColor inverse(mColor.A, 255 - mColor.R, 255 - mColor.G, 255 - mColor.B);
  graphics->FillCircle(&mColor, x, y, static_cast<float>(dot), &blend, true);
  graphics->FillCircle(&inverse, x, y, static_cast<float>(dot * 0.5), &blend, true);
}

bool ICircleKnobMultiControlText::DrawValue(IGraphics* graphics) {
  char display[IParam::kTextSize];
  GetParamDisplay(display);
  if (!*display) return false;
  IText text = mText;
  text.mSize = static_cast<int>(text.mSize * mTextScale);
  return graphics->DrawIText(&text, display, &mTextRECT);
}
