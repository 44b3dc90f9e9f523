// Straight lines.
#include <cmath>
#include <cstdint>
#include <utility>

#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_Pen.h"
#include "graphics/lice/LICE_Surface.h"

namespace {

struct Segment {
  double x1, y1, x2, y2;
};

// Lines are exact up to this coordinate, in which the integer arithmetic below stays in 64 bits.
constexpr double kReach = 1 << 29;

// Narrows the part [t0, t1] of the line p + t * d to where it lies within +-kReach.
bool Narrow(double p, double d, double& t0, double& t1) {
  if (d == 0.0) return std::abs(p) <= kReach;
  double enter = (-kReach - p) / d;
  double leave = (kReach - p) / d;
  if (enter > leave) std::swap(enter, leave);
  t0 = std::max(t0, enter);
  t1 = std::min(t1, leave);
  return t0 <= t1;
}

// Cuts a line with a far end to within reach. False if nothing of it is left, or for NaN.
bool CutToReach(Segment& s) {
  for (double* v : {&s.x1, &s.y1, &s.x2, &s.y2}) {
    if (std::isnan(*v)) return false;
    *v = std::clamp(*v, -1e39, 1e39);  // just beyond any finite float
  }
  // Measured from the point nearest to the bitmap, the visible part loses the least.
  struct Anchor {
    double x, y, before;  // share of the line before it
    double Distance() const { return std::abs(x) + std::abs(y); }
  };
  const Anchor anchor =
      std::min({Anchor{s.x1, s.y1, 0.0}, Anchor{s.x2, s.y2, 1.0},
                Anchor{(s.x1 + s.x2) / 2.0, (s.y1 + s.y2) / 2.0, 0.5}},
               [](const Anchor& a, const Anchor& b) { return a.Distance() < b.Distance(); });
  const double dx = s.x2 - s.x1, dy = s.y2 - s.y1;
  double t0 = -anchor.before, t1 = 1.0 - anchor.before;
  if (!Narrow(anchor.x, dx, t0, t1) || !Narrow(anchor.y, dy, t0, t1)) return false;
  const auto at = [](double from, double d, double t) {
    return std::clamp(from + d * t, -kReach, kReach);
  };
  s = {at(anchor.x, dx, t0), at(anchor.y, dy, t0), at(anchor.x, dx, t1), at(anchor.y, dy, t1)};
  return true;
}

// A line along its longer axis ("major"): the pixel at step i lies at major m0 + i and minor
// n0 + sign * floor((2 i dn + dm) / (2 dm)), rounding to the nearest and halves away from n0.
struct Walk {
  std::int64_t m0, n0, dm, dn;  // dm >= dn >= 0
  int sign;
};

std::int64_t CeilDiv(std::int64_t a, std::int64_t b) {  // b > 0
  return a >= 0 ? (a + b - 1) / b : -(-a / b);
}

// The steps [first, last] of the walk whose pixels lie in [0, major_size) x [0, minor_size).
bool VisibleSteps(const Walk& w, int major_size, int minor_size, std::int64_t& first,
                  std::int64_t& last) {
  first = std::max<std::int64_t>(0, -w.m0);
  last = std::min(w.dm, major_size - 1 - w.m0);
  // Moves along minor that stay inside: from `lo` to `hi`.
  const std::int64_t lo = w.sign > 0 ? -w.n0 : w.n0 - (minor_size - 1);
  const std::int64_t hi = w.sign > 0 ? minor_size - 1 - w.n0 : w.n0;
  if (hi < 0 || lo > w.dn) return false;
  if (w.dn > 0) {
    if (lo > 0) first = std::max(first, CeilDiv(2 * w.dm * lo - w.dm, 2 * w.dn));
    if (hi < w.dn) last = std::min(last, CeilDiv(2 * w.dm * (hi + 1) - w.dm, 2 * w.dn) - 1);
  }
  return first <= last;
}

// Paints the visible steps of the walk; `steep`: its longer axis is y.
template <typename Pen>
void PaintWalk(const LICE_Surface& s, const Walk& w, bool steep, const Pen& pen) {
  std::int64_t first, last;
  if (!VisibleSteps(w, steep ? s.h : s.w, steep ? s.w : s.h, first, last)) return;
  const std::ptrdiff_t major_step = steep ? s.stride : 1;
  const std::ptrdiff_t minor_step = (steep ? 1 : s.stride) * w.sign;
  std::int64_t moved = 0, rest = 0;
  if (w.dn > 0) {
    moved = (2 * first * w.dn + w.dm) / (2 * w.dm);
    rest = (2 * first * w.dn + w.dm) % (2 * w.dm);
  }
  const std::int64_t major = w.m0 + first, minor = w.n0 + w.sign * moved;
  LICE_pixel* p =
      s.at(static_cast<int>(steep ? minor : major), static_cast<int>(steep ? major : minor));
  for (std::int64_t i = first;; ++i) {
    *p = pen(*p);
    if (i == last) return;
    p += major_step;
    rest += 2 * w.dn;
    if (rest >= 2 * w.dm) {
      rest -= 2 * w.dm;
      p += minor_step;
    }
  }
}

// Fast path of a line within one column: the waveform display draws hundreds of thousands.
// Ordering by minimum and maximum keeps it free of branches that no processor could predict.
void DrawColumn(const LICE_Surface& s, int x, int y1, int y2, LICE_pixel color, float alpha,
                int mode) {
  const int top = std::max(std::min(y1, y2), 0);
  const int bottom = std::min(std::max(y1, y2), s.h - 1);
  if (x < 0 || x >= s.w || top > bottom) return;
  LICE_WithPen(color, alpha, mode, [&](const auto& pen) {
    LICE_pixel* p = s.at(x, top);
    for (int n = bottom - top; n >= 0; --n, p += s.stride) *p = pen(*p);
  });
}

// Makes x the longer axis, along which the line then ascends. True if the axes were exchanged.
template <typename Real>
bool RunAlongX(Real& x1, Real& y1, Real& x2, Real& y2) {
  const bool steep = std::abs(y2 - y1) > std::abs(x2 - x1);
  if (steep) {
    std::swap(x1, y1);
    std::swap(x2, y2);
  }
  if (x1 > x2) {
    std::swap(x1, x2);
    std::swap(y1, y2);
  }
  return steep;
}

template <typename Pen>
void PaintLine(const LICE_Surface& s, int x1, int y1, int x2, int y2, const Pen& pen) {
  const bool steep = RunAlongX(x1, y1, x2, y2);
  const Walk walk{x1, y1, x2 - x1, std::abs(y2 - y1), y2 < y1 ? -1 : 1};
  PaintWalk(s, walk, steep, pen);
}

template <typename Real>
int RoundDown(Real v) {
  const int i = static_cast<int>(v);
  return i - (v < static_cast<Real>(i));
}

// Pixels of both sides of the ideal line, weighted by their distance to it, along the longer
// axis; each position is computed from the line's own start, so clipping doesn't move it.
template <typename Pen>
void PaintSmoothLine(const LICE_Surface& s, Segment l, const Pen& pen) {
  const bool steep = RunAlongX(l.x1, l.y1, l.x2, l.y2);
  const int major_size = steep ? s.h : s.w, minor_size = steep ? s.w : s.h;
  const double slope = l.x2 > l.x1 ? (l.y2 - l.y1) / (l.x2 - l.x1) : 0.0;
  const int first = std::max(0, RoundDown(l.x1));
  const int last = std::min(major_size - 1, -RoundDown(-l.x2));
  const auto paint = [&](int major, int minor, double coverage) {
    if (minor < 0 || minor >= minor_size) return;
    LICE_PaintCovered(steep ? *s.at(minor, major) : *s.at(major, minor), pen, coverage);
  };
  for (int m = first; m <= last; ++m) {
    // The line's caps reach half a pixel beyond its ends.
    const double along = std::min(l.x2 + 0.5, m + 0.5) - std::max(l.x1 - 0.5, m - 0.5);
    const double n = l.y1 + (std::clamp<double>(m, l.x1, l.x2) - l.x1) * slope;
    const int below = RoundDown(n);
    paint(m, below, along * (1.0 - (n - below)));
    paint(m, below + 1, along * (n - below));
  }
}

// A line that is smooth or leaves its column.
[[gnu::noinline]] void DrawSlanted(const LICE_Surface& s, const Segment& l, LICE_pixel color,
                                   float alpha, int mode, bool smooth) {
  LICE_WithPen(color, alpha, mode, [&](const auto& pen) {
    if (smooth) return PaintSmoothLine(s, l, pen);
    PaintLine(s, RoundDown(l.x1), RoundDown(l.y1), RoundDown(l.x2), RoundDown(l.y2), pen);
  });
}

bool WithinReach(float x, float y) {
  constexpr auto kLimit = static_cast<float>(kReach);
  return std::abs(x) <= kLimit && std::abs(y) <= kLimit;
}

}  // namespace

void LICE_Line(LICE_IBitmap* dest, float x1, float y1, float x2, float y2, LICE_pixel color,
               float alpha, int mode, bool antiAlias) {
  const LICE_Surface s(dest);
  if (!s.top) return;
  if (WithinReach(x1, y1) && WithinReach(x2, y2)) {
    const int x = RoundDown(x1);
    if (!antiAlias && x == RoundDown(x2)) {
      return DrawColumn(s, x, RoundDown(y1), RoundDown(y2), color, alpha, mode);
    }
    return DrawSlanted(s, {x1, y1, x2, y2}, color, alpha, mode, antiAlias);
  }
  Segment l{x1, y1, x2, y2};
  if (CutToReach(l)) DrawSlanted(s, l, color, alpha, mode, antiAlias);
}
