// Circles, arcs and rounded rectangles: figures given by how much of a pixel they cover.
#include <cmath>
#include <numbers>

#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_Pen.h"
#include "graphics/lice/LICE_Surface.h"

namespace {

struct Box {
  double left, top, right, bottom;
};

// Calls `coverage(x, y)`, 0.0 to 1.0, for each pixel of the bitmap in the box, and paints by it.
template <typename Coverage>
void PaintCovered(LICE_IBitmap* dest, const Box& box, LICE_pixel color, float alpha, int mode,
                  const Coverage& coverage) {
  const LICE_Surface s(dest);
  if (!(box.left <= box.right && box.top <= box.bottom)) return;  // NaN ends here
  const auto clip = [](double v, int size) {
    return static_cast<int>(std::clamp(v, -1.0, size + 0.0));
  };
  const int left = std::max(0, clip(std::floor(box.left), s.w));
  const int top = std::max(0, clip(std::floor(box.top), s.h));
  const int right = std::min(s.w - 1, clip(std::ceil(box.right), s.w));
  const int bottom = std::min(s.h - 1, clip(std::ceil(box.bottom), s.h));
  LICE_WithPen(color, alpha, mode, [&](const auto& pen) {
    for (int y = top; y <= bottom; ++y) {
      for (int x = left; x <= right; ++x) {
        LICE_PaintCovered(*s.at(x, y), pen, coverage(x, y));
      }
    }
  });
}

// How far the pixel that is (dx, dy) from its centre lies outside a circle, along its longer axis.
double MissOf(double dx, double dy, double r) {
  const double major = std::max(std::abs(dx), std::abs(dy));
  const double minor = std::min(std::abs(dx), std::abs(dy));
  const double square = r * r - minor * minor;
  return square < 0.0 ? major : major - std::sqrt(square);
}

// Coverage of that pixel by a disc of radius r. The sharp disc is the sharp ring and all inside.
double Disc(double dx, double dy, double r) {
  return std::clamp(r + 0.5 - std::sqrt(dx * dx + dy * dy), 0.0, 1.0);
}
double SharpDisc(double dx, double dy, double r) { return MissOf(dx, dy, r) < 0.5 ? 1.0 : 0.0; }

// Coverage by a ring of radius r, one pixel wide. The sharp ring takes one pixel per step along
// its longer axis.
double Ring(double dx, double dy, double r) {
  return std::max(0.0, 1.0 - std::abs(std::sqrt(dx * dx + dy * dy) - r));
}
double SharpRing(double dx, double dy, double r) {
  const double miss = MissOf(dx, dy, r);
  return miss >= -0.5 && miss < 0.5 ? 1.0 : 0.0;
}

Box Around(double cx, double cy, double reach) {
  return {cx - reach, cy - reach, cx + reach, cy + reach};
}

// A rounded rectangle as the points at a distance of `r` from an inner box.
struct RoundBox {
  RoundBox(double x, double y, double w, double h, double corner)
      : r(std::clamp(corner, 0.0, std::max(0.0, std::min(w, h) / 2.0 - 0.5))),
        outer{x, y, x + w - 1.0, y + h - 1.0},
        inner{x + r, y + r, outer.right - r, outer.bottom - r} {}

  // Distance of a pixel to the inner box, by axis.
  double dx(int x) const { return std::max({inner.left - x, x - inner.right, 0.0}); }
  double dy(int y) const { return std::max({inner.top - y, y - inner.bottom, 0.0}); }

  double r;
  Box outer, inner;
};

}  // namespace

void LICE_FillCircle(LICE_IBitmap* dest, float cx, float cy, float r, LICE_pixel color, float alpha,
                     int mode, bool antiAlias) {
  if (!(r >= 0.0f)) return;
  PaintCovered(dest, Around(cx, cy, r + 1.0), color, alpha, mode, [&](int x, int y) {
    const double dx = x - double{cx}, dy = y - double{cy};
    return antiAlias ? Disc(dx, dy, r) : SharpDisc(dx, dy, r);
  });
}

void LICE_Circle(LICE_IBitmap* dest, float cx, float cy, float r, LICE_pixel color, float alpha,
                 int mode, bool antiAlias) {
  LICE_Arc(dest, cx, cy, r, 0.0f, 7.0f, color, alpha, mode, antiAlias);
}

void LICE_Arc(LICE_IBitmap* dest, float cx, float cy, float r, float minAngle, float maxAngle,
              LICE_pixel color, float alpha, int mode, bool antiAlias) {
  constexpr double kTurn = 2.0 * std::numbers::pi;
  const double sweep = double{maxAngle} - double{minAngle};
  if (!(r >= 0.0f && sweep >= 0.0)) return;
  const auto inside = [&](double dx, double dy) {
    if (sweep >= kTurn) return true;
    const double past = std::atan2(dx, -dy) - double{minAngle};
    return past - kTurn * std::floor(past / kTurn) <= sweep;
  };
  PaintCovered(dest, Around(cx, cy, r + 1.0), color, alpha, mode, [&](int x, int y) {
    const double dx = x - double{cx}, dy = y - double{cy};
    const double coverage = antiAlias ? Ring(dx, dy, r) : SharpRing(dx, dy, r);
    return coverage > 0.0 && inside(dx, dy) ? coverage : 0.0;
  });
}

void LICE_RoundRect(LICE_IBitmap* dest, float x, float y, float w, float h, float cornerRadius,
                    LICE_pixel color, float alpha, int mode, bool antiAlias) {
  const RoundBox box(x, y, w, h, cornerRadius);
  PaintCovered(dest, box.outer, color, alpha, mode, [&](int px, int py) {
    const double dx = box.dx(px), dy = box.dy(py);
    if (dx > 0.0 && dy > 0.0) return antiAlias ? Ring(dx, dy, box.r) : SharpRing(dx, dy, box.r);
    const double inside = std::min(
        {px - box.outer.left, box.outer.right - px, py - box.outer.top, box.outer.bottom - py});
    if (!antiAlias) return inside >= -0.5 && inside < 0.5 ? 1.0 : 0.0;
    return std::max(0.0, 1.0 - std::abs(inside));
  });
}

void LICE_FillRoundRect(LICE_IBitmap* dest, float x, float y, float w, float h, float cornerRadius,
                        LICE_pixel color, float alpha, int mode, bool antiAlias) {
  const RoundBox box(x, y, w, h, cornerRadius);
  PaintCovered(dest, box.outer, color, alpha, mode, [&](int px, int py) {
    const double dx = box.dx(px), dy = box.dy(py);
    return antiAlias ? Disc(dx, dy, box.r + 0.5) : SharpDisc(dx, dy, box.r);
  });
}
