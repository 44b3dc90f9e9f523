// A polyline of very many short segments, drawn additively.
#pragma once

#include <vector>

#include "graphics/IGraphicsTypes.h"

class IGraphics;

// Draws a line from each point to the next, both ends painted, each line added to the picture in
// turn: pixel for pixel what IGraphics::DrawLine with kBlendAdd at full weight draws. The segments
// that stay within one column of pixels are counted by row first and painted as a few runs, since
// additions of one colour may come in any order and change nothing once a channel is full.
class AdditivePolyline {
 public:
  // Begins at (x, y). Only rows from `top` to `bottom`, neither below 0, are counted; segments that
  // leave them are drawn at once. `graphics` and `color` outlive the object.
  AdditivePolyline(IGraphics& graphics, const IColor& color, float x, float y, int top, int bottom);
  ~AdditivePolyline();  // paints what is left
  AdditivePolyline(const AdditivePolyline&) = delete;
  AdditivePolyline& operator=(const AdditivePolyline&) = delete;

  void LineTo(float x, float y);

 private:
  int RowOf(float y) const;
  void PaintColumn();
  void PaintRuns(int times);
  void Line(float x1, float y1, float x2, float y2);

  IGraphics& mGraphics;
  const IColor& mColor;
  float mX, mY;            // the last point
  int mColumn = -1;        // column being counted; -1 for none
  int mRow;                // row of the last point, -1 outside
  int mTop;                // first row counted
  int mLimit;              // additions that fill every channel
  std::vector<int> mDiff;  // change of the count from row to row, one beyond the last
  bool mCounted = false;   // any segment in mDiff
};
