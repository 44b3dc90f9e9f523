// A bitmap as the drawing loops see it: rows from the top of the screen. Private to the
// rasteriser.
#pragma once

#include "graphics/lice/LICE_Bitmap.h"

struct LICE_Surface {
  // A null bitmap gives an empty surface; a flipped one is walked from its last row upward.
  explicit LICE_Surface(const LICE_IBitmap* bitmap) {
    if (!bitmap || !bitmap->getBits()) return;
    top = bitmap->getBits();
    stride = bitmap->getRowSpan();
    w = bitmap->getWidth();
    h = bitmap->getHeight();
    if (bitmap->isFlipped()) {
      top += stride * (h - 1);
      stride = -stride;
    }
  }

  LICE_pixel* at(int x, int y) const { return top + stride * y + x; }
  bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < w && y < h; }

  LICE_pixel* top = nullptr;  // upper left pixel
  std::ptrdiff_t stride = 0;  // pixels to the next row down
  int w = 0, h = 0;
};
