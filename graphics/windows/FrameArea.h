// The area of the window that a frame redraws.
#pragma once

#include "graphics/IGraphicsTypes.h"

// kept: one pixel more on the right and below than the controls that changed, because a line at the
// right or lower edge of a rectangle lies just outside it and would leave a trace.
constexpr IRECT FrameArea(const IRECT& dirty) {
  return {dirty.L, dirty.T, dirty.R + 1, dirty.B + 1};
}
