// Counting and painting of the segments within a column.
#include "display/AdditivePolyline.h"

#include <algorithm>

#include "graphics/IGraphics.h"

namespace {

constexpr IChannelBlend kAdd(IChannelBlend::kBlendAdd, 1.0f);
constexpr float kWidest = 65536.0f;  // columns of any canvas lie below

// How many additions of a colour take every channel that it touches from 0 to 255. An addition
// raises a channel of value c by at least c * A / 256.
int AdditionsToFill(const IColor& color) {
  int additions = 1;
  for (const int channel : {color.A, color.R, color.G, color.B}) {
    if (channel == 0) continue;
    const int step = std::max(1, channel * color.A / 256);
    additions = std::max(additions, (255 + step - 1) / step);
  }
  return additions;
}

// The column of pixels at x, -1 outside of any canvas and for NaN.
int ColumnOf(float x) { return x >= 0.0f && x < kWidest ? static_cast<int>(x) : -1; }

}  // namespace

AdditivePolyline::AdditivePolyline(IGraphics& graphics, const IColor& color, float x, float y,
                                   int top, int bottom)
    : mGraphics(graphics),
      mColor(color),
      mX(x),
      mY(y),
      mColumn(ColumnOf(x)),
      mTop(top),
      mLimit(AdditionsToFill(color)),
      mDiff(static_cast<std::size_t>(std::max(0, bottom - top + 1)) + 1) {
  mRow = RowOf(y);
}

AdditivePolyline::~AdditivePolyline() { PaintColumn(); }

// Row of a height, counted from mTop; -1 outside of the counted rows and for NaN.
int AdditivePolyline::RowOf(float y) const {
  const auto top = static_cast<float>(mTop);
  const bool inside = y >= top && y < top + static_cast<float>(mDiff.size() - 1);
  return inside ? static_cast<int>(y) - mTop : -1;
}

void AdditivePolyline::LineTo(float x, float y) {
  const int column = ColumnOf(x);
  const int row = RowOf(y);
  if (column >= 0 && column == mColumn && row >= 0 && mRow >= 0) {
    ++mDiff[static_cast<std::size_t>(std::min(row, mRow))];
    --mDiff[static_cast<std::size_t>(std::max(row, mRow)) + 1];
    mCounted = true;
  } else {
    if (column != mColumn) PaintColumn();
    Line(mX, mY, x, y);
  }
  mColumn = column;
  mRow = row;
  mX = x;
  mY = y;
}

void AdditivePolyline::PaintColumn() {
  if (!mCounted) return;
  for (int times = 1; times <= mLimit; ++times) PaintRuns(times);
  std::fill(mDiff.begin(), mDiff.end(), 0);
  mCounted = false;
}

// Paints once every row of the column that was met at least so many times.
void AdditivePolyline::PaintRuns(int times) {
  const auto x = static_cast<float>(mColumn);
  int count = 0;
  int first = -1;
  for (std::size_t i = 0; i < mDiff.size(); ++i) {
    count += mDiff[i];
    const int row = mTop + static_cast<int>(i);
    if (count >= times) {
      if (first < 0) first = row;
    } else if (first >= 0) {
      Line(x, static_cast<float>(first), x, static_cast<float>(row - 1));
      first = -1;
    }
  }
}

void AdditivePolyline::Line(float x1, float y1, float x2, float y2) {
  mGraphics.DrawLine(&mColor, x1, y1, x2, y2, &kAdd, false);
}
