// The product's dial: a dot on a round track with the value written inside. Tolmara uses the arc
// with the dot, not the ring, the full turn or the filmstrip.
#pragma once

#include "graphics/controls/IKnobControls.h"

// The dot runs clockwise over 270 degrees with the gap at the bottom, or, when circular, over the
// full turn from the bottom. The dial swells while the mouse is over it.
class ICircleKnobMultiControlText : public IKnobControl {
 public:
  // Covers the square around the centre (window pixels); the text runs over its width.
  ICircleKnobMultiControlText(IPlugBase* plug, int paramIdx, int centerX, int centerY, int radius,
                              const IText& text, const IColor& color);
  void OnMouseDrag(int x, int y, int dX, int dY, IMouseMod* mod) override;
  void OnMouseWheel(int x, int y, IMouseMod* mod, int d) override;
  void OnMouseOver(int x, int y, IMouseMod* mod) override;
  void OnMouseOut() override;
  bool Draw(IGraphics* graphics) override;

  void SetDrawCircle(bool draw) { mDrawCircle = draw; }
  void SetDrawDot(bool draw) { mDrawDot = draw; }
  void SetCircular(bool circular) { mCircular = circular; }
  void SetBitmap(const IBitmap& bitmap, const IRECT& rect);  // a filmstrip instead of the text

  const IRECT& GetTextRECT() const { return mTextRECT; }
  const IColor& GetColor() const { return mColor; }

 private:
  void DrawDot(IGraphics* graphics) const;
  bool DrawValue(IGraphics* graphics);
  void Swell(double dotSize, double textScale);
  void Turn(double distance);

  IRECT mTextRECT;           // where the value is written
  IColor mColor;             // of ring and dot
  bool mDrawCircle = false;  // draw the ring
  bool mDrawDot = true;
  bool mCircular = false;              // the value wraps around
  double mCenterX, mCenterY, mRadius;  // window pixels
  double mDotSize;                     // dot radius as a part of its track's radius
  double mTextScale = 1.0;             // factor on the text size
  bool mHasBitmap = false;             // a filmstrip replaces the text
  IBitmap mBitmap;
  IRECT mBitmapRECT;
};
