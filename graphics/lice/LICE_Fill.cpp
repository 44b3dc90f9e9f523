// Rectangles and single pixels.
#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_Pen.h"
#include "graphics/lice/LICE_Surface.h"

void LICE_FillRect(LICE_IBitmap* dest, int x, int y, int w, int h, LICE_pixel color, float alpha,
                   int mode) {
  const LICE_Surface s(dest);
  const auto end = [](int at, int size, int limit) {
    return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{at} + size, 0, limit));
  };
  const int left = std::max(x, 0), right = end(x, w, s.w);
  const int top = std::max(y, 0), bottom = end(y, h, s.h);
  if (left >= right) return;
  LICE_WithPen(color, alpha, mode, [&](const auto& pen) {
    for (int row = top; row < bottom; ++row) {
      LICE_pixel* const p = s.at(left, row);
      for (int i = 0; i < right - left; ++i) p[i] = pen(p[i]);
    }
  });
}

void LICE_PutPixel(LICE_IBitmap* dest, int x, int y, LICE_pixel color, float alpha, int mode) {
  LICE_FillRect(dest, x, y, 1, 1, color, alpha, mode);
}

LICE_pixel LICE_GetPixel(const LICE_IBitmap* src, int x, int y) {
  const LICE_Surface s(src);
  return s.holds(x, y) ? *s.at(x, y) : 0;
}
