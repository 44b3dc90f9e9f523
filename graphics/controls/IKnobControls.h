// Stock knobs: dragged along one direction, drawn in four ways. Tolmara uses only the base,
// IKnobControl, for its dial.
#pragma once

#include "graphics/controls/IControls.h"

constexpr double kDefaultGearing = 4.0;

// A drag over `gearing` heights (or widths, when horizontal) of the knob covers the whole range;
// ten times as many with control or shift held.
class IKnobControl : public IControl {
 public:
  IKnobControl(IPlugBase* plug, IRECT rect, int paramIdx, int direction = kVertical,
               double gearing = kDefaultGearing, IChannelBlend blend = IChannelBlend());
  void OnMouseDrag(int x, int y, int dX, int dY, IMouseMod* mod) override;

 protected:
  // Change of the value for a drag by (dX, dY).
  double DragDistance(int dX, int dY, const IMouseMod& mod) const;

  int mDirection;  // EDirection
  double mGearing;
};

// A pointer line. Angles in radians, 0 upright, clockwise; radii in pixels.
class IKnobLineControl : public IKnobControl {
 public:
  // An outer radius of 0 means half the width of `rect`.
  IKnobLineControl(IPlugBase* plug, IRECT rect, int paramIdx, const IColor& color,
                   double innerRadius = 0.0, double outerRadius = 0.0,
                   double minAngle = -0.75 * 3.141592653589793,
                   double maxAngle = 0.75 * 3.141592653589793, int direction = kVertical,
                   double gearing = kDefaultGearing);
  bool Draw(IGraphics* graphics) override;

 private:
  IColor mColor;
  float mMinAngle, mMaxAngle;
  float mInnerRadius, mOuterRadius;
};

// A picture that turns.
class IKnobRotaterControl : public IKnobControl {
 public:
  IKnobRotaterControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                      double minAngle = -0.75 * 3.141592653589793,
                      double maxAngle = 0.75 * 3.141592653589793, int yOffsetZeroDeg = 0,
                      int direction = kVertical, double gearing = kDefaultGearing);
  bool Draw(IGraphics* graphics) override;

 private:
  IBitmap mBitmap;
  double mMinAngle, mMaxAngle;
  int mYOffset;
};

// A filmstrip.
class IKnobMultiControl : public IKnobControl {
 public:
  IKnobMultiControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& bitmap,
                    int direction = kVertical, double gearing = kDefaultGearing);
  bool Draw(IGraphics* graphics) override;

 private:
  IBitmap mBitmap;
};

// A fixed base under a turning mask and a fixed top.
class IKnobRotatingMaskControl : public IKnobControl {
 public:
  IKnobRotatingMaskControl(IPlugBase* plug, int x, int y, int paramIdx, const IBitmap& base,
                           const IBitmap& mask, const IBitmap& top,
                           double minAngle = -0.75 * 3.141592653589793,
                           double maxAngle = 0.75 * 3.141592653589793, int direction = kVertical,
                           double gearing = kDefaultGearing);
  bool Draw(IGraphics* graphics) override;

 private:
  IBitmap mBase, mMask, mTop;
  double mMinAngle, mMaxAngle;
};
