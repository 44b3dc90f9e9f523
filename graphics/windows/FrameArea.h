// What of a window a frame asks for.
#pragma once

#include "graphics/IGraphicsTypes.h"

// kept: one pixel more on the right and below than the controls that changed, as the request
// counts both ends.
constexpr IRECT FrameArea(const IRECT& dirty) {
  return {dirty.L, dirty.T, dirty.R + 1, dirty.B + 1};
}
