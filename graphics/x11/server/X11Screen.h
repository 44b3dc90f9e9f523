// Where windows and monitors are, asked of the server each time, because hosts move windows
// without a notice.
#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "graphics/IGraphicsTypes.h"

class X11Connection;

struct X11Point {
  int x = 0, y = 0;
};

// The upper left corner of a window on the screen; none when it has gone.
std::optional<X11Point> X11OriginOf(X11Connection& connection, xcb_window_t window);
// The monitor that a point of the screen lies on, else the whole screen.
IRECT X11MonitorAt(X11Connection& connection, const X11Point& point);
// The window that the window manager handles around this one.
xcb_window_t X11TopLevelOf(X11Connection& connection, xcb_window_t window);
