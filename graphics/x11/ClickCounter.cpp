// When presses count as one double click.
#include "graphics/x11/ClickCounter.h"

#include <cstdlib>

namespace {

constexpr xcb_timestamp_t kDoubleClickTime_ms = 400;
constexpr int kDoubleClickDistance = 5;  // pixels

}  // namespace

int ClickCounter::Press(int button, int x, int y, xcb_timestamp_t time) {
  const bool near =
      std::abs(x - mX) <= kDoubleClickDistance && std::abs(y - mY) <= kDoubleClickDistance;
  const bool goesOn =
      mCount > 0 && button == mButton && near && time - mTime <= kDoubleClickTime_ms;
  mCount = goesOn ? mCount + 1 : 1;
  mButton = button;
  mX = x;
  mY = y;
  mTime = time;
  return mCount;
}
