// Double clicks, which an X server does not know.
#pragma once

#include <xcb/xcb.h>

// Counts presses in quick succession. Times are the server's, in milliseconds, and wrap.
class ClickCounter {
 public:
  int Press(int button, int x, int y, xcb_timestamp_t time);

 private:
  int mCount = 0;
  int mButton = 0, mX = 0, mY = 0;
  xcb_timestamp_t mTime = 0;
};
