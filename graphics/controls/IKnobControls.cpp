// Dragging of knobs and their four looks.
#include "graphics/controls/IKnobControls.h"

#include <cmath>

#include "graphics/IGraphics.h"

IKnobControl::IKnobControl(IPlugBase* plug, IRECT rect, int paramIdx, int direction, double gearing,
                           IChannelBlend blend)
    : IControl(plug, rect, paramIdx, blend), mDirection(direction), mGearing(gearing) {}

double IKnobControl::DragDistance(int dX, int dY, const IMouseMod& mod) const {
  const double gearing = mod.C || mod.S ? mGearing * 10.0 : mGearing;
  return (mDirection == kVertical ? static_cast<double>(dY) / (mRECT.T - mRECT.B)
                                  : static_cast<double>(dX) / (mRECT.R - mRECT.L)) /
         gearing;
}

void IKnobControl::OnMouseDrag(int, int, int dX, int dY, IMouseMod* mod) {
  SetValue(GetValue() + DragDistance(dX, dY, *mod));
  SetDirty(true);
}

IKnobLineControl::IKnobLineControl(IPlugBase* plug, IRECT rect, int paramIdx, const IColor& color,
                                   double innerRadius, double outerRadius, double minAngle,
                                   double maxAngle, int direction, double gearing)
    : IKnobControl(plug, rect, paramIdx, direction, gearing, IChannelBlend::kBlendClobber),
      mColor(color),
      mMinAngle(static_cast<float>(minAngle)),
      mMaxAngle(static_cast<float>(maxAngle)),
      mInnerRadius(static_cast<float>(innerRadius)),
      mOuterRadius(static_cast<float>(outerRadius == 0.0 ? 0.5 * rect.W() : outerRadius)) {}

bool IKnobLineControl::Draw(IGraphics* graphics) {
  const double angle = mMinAngle + (mMaxAngle - mMinAngle) * GetValue();
  const auto s = static_cast<float>(std::sin(angle));
  const auto c = static_cast<float>(std::cos(angle));
  const float cx = mRECT.MW();
  const float cy = mRECT.MH();
  return graphics->DrawLine(&mColor, cx + s * mInnerRadius, cy - c * mInnerRadius,
                            cx + s * mOuterRadius, cy - c * mOuterRadius, &mBlend, true);
}

IKnobRotaterControl::IKnobRotaterControl(IPlugBase* plug, int x, int y, int paramIdx,
                                         const IBitmap& bitmap, double minAngle, double maxAngle,
                                         int yOffsetZeroDeg, int direction, double gearing)
    : IKnobControl(plug, IRECT(x, y, bitmap), paramIdx, direction, gearing),
      mBitmap(bitmap),
      mMinAngle(minAngle),
      mMaxAngle(maxAngle),
      mYOffset(yOffsetZeroDeg) {}

bool IKnobRotaterControl::Draw(IGraphics* graphics) {
  const double angle = mMinAngle + (mMaxAngle - mMinAngle) * GetValue();
  return graphics->DrawRotatedBitmap(&mBitmap, (mRECT.L + mRECT.R) / 2, (mRECT.T + mRECT.B) / 2,
                                     angle, mYOffset, &mBlend);
}

IKnobMultiControl::IKnobMultiControl(IPlugBase* plug, int x, int y, int paramIdx,
                                     const IBitmap& bitmap, int direction, double gearing)
    : IKnobControl(plug, IRECT(x, y, bitmap), paramIdx, direction, gearing), mBitmap(bitmap) {}

bool IKnobMultiControl::Draw(IGraphics* graphics) {
  return graphics->DrawBitmap(&mBitmap, &mRECT, FrameOf(GetValue(), mBitmap.N), &mBlend);
}

IKnobRotatingMaskControl::IKnobRotatingMaskControl(IPlugBase* plug, int x, int y, int paramIdx,
                                                   const IBitmap& base, const IBitmap& mask,
                                                   const IBitmap& top, double minAngle,
                                                   double maxAngle, int direction, double gearing)
    : IKnobControl(plug, IRECT(x, y, base), paramIdx, direction, gearing),
      mBase(base),
      mMask(mask),
      mTop(top),
      mMinAngle(minAngle),
      mMaxAngle(maxAngle) {}

bool IKnobRotatingMaskControl::Draw(IGraphics* graphics) {
  const double angle = mMinAngle + (mMaxAngle - mMinAngle) * GetValue();
  return graphics->DrawRotatedMask(&mBase, &mMask, &mTop, mRECT.L, mRECT.T, angle, &mBlend);
}
