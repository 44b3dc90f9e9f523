// Filled triangles and convex polygons.
#include <cstdint>

#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_Pen.h"
#include "graphics/lice/LICE_Surface.h"

namespace {

struct Corner {
  std::int64_t x, y;
};

// Bound at which the products below stay in 64 bits.
Corner CornerAt(int x, int y) {
  constexpr int kReach = 1 << 29;
  return {std::clamp(x, -kReach, kReach), std::clamp(y, -kReach, kReach)};
}

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {  // b > 0
  return a >= 0 ? a / b : -((-a + b - 1) / b);
}

// The pixels of one row inside the figure: first to last.
struct Span {
  std::int64_t first = INT64_MAX, last = INT64_MIN;

  void Include(std::int64_t from, std::int64_t to) {
    first = std::min(first, from);
    last = std::max(last, to);
  }
};

// Widens the span by where the edge from p to q crosses row y.
void CrossEdge(Corner p, Corner q, std::int64_t y, Span& span) {
  if (p.y > q.y) std::swap(p, q);
  if (y < p.y || y > q.y) return;
  if (p.y == q.y) return span.Include(std::min(p.x, q.x), std::max(p.x, q.x));
  const std::int64_t rise = q.y - p.y;
  const std::int64_t along = (y - p.y) * (q.x - p.x);
  // The crossing is a left or a right border: its nearest pixels inward.
  span.Include(p.x - FloorDiv(-along, rise), p.x + FloorDiv(along, rise));
}

}  // namespace

void LICE_FillConvexPolygon(LICE_IBitmap* dest, const int* x, const int* y, int n, LICE_pixel color,
                            float alpha, int mode) {
  const LICE_Surface s(dest);
  if (n < 1 || s.h == 0) return;
  const int top = std::max(0, *std::min_element(y, y + n));
  const int bottom = std::min(s.h - 1, *std::max_element(y, y + n));
  LICE_WithPen(color, alpha, mode, [&](const auto& pen) {
    for (int row = top; row <= bottom; ++row) {
      Span span;
      for (int i = 0, before = n - 1; i < n; before = i++) {
        CrossEdge(CornerAt(x[before], y[before]), CornerAt(x[i], y[i]), row, span);
      }
      const auto first = std::max<std::int64_t>(span.first, 0);
      const auto last = std::min<std::int64_t>(span.last, s.w - 1);
      for (std::int64_t i = first; i <= last; ++i) {
        LICE_pixel& p = *s.at(static_cast<int>(i), row);
        p = pen(p);
      }
    }
  });
}

void LICE_FillTriangle(LICE_IBitmap* dest, int x1, int y1, int x2, int y2, int x3, int y3,
                       LICE_pixel color, float alpha, int mode) {
  const int x[] = {x1, x2, x3};
  const int y[] = {y1, y2, y3};
  LICE_FillConvexPolygon(dest, x, y, 3, color, alpha, mode);
}
