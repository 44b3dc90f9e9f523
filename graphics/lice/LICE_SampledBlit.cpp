// Blits that sample the source between its pixels: scaled and rotated.
#include <cmath>

#include "graphics/lice/LICE_Blend.h"
#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_Surface.h"

namespace {

// Reads the source at a point, where pixel (i, j) is the square from (i, j) to (i + 1, j + 1).
// Points outside read the nearest pixel of the border; with `fade` its alpha is 0 there.
class Sampler {
 public:
  Sampler(const LICE_Surface& src, bool bilinear, bool fade)
      : mSrc(src), mBilinear(bilinear), mFade(fade) {}

  LICE_pixel operator()(double x, double y) const {
    if (!mBilinear) return Fetch(std::floor(x), std::floor(y));
    const double left = std::floor(x - 0.5), top = std::floor(y - 0.5);
    const auto fx = static_cast<int>((x - 0.5 - left) * 256.0);
    const auto fy = static_cast<int>((y - 0.5 - top) * 256.0);
    const LICE_pixel upper = Mix(Fetch(left, top), Fetch(left + 1, top), fx);
    const LICE_pixel lower = Mix(Fetch(left, top + 1), Fetch(left + 1, top + 1), fx);
    return Mix(upper, lower, fy);
  }

 private:
  // `weight` 256ths of q, the rest of p.
  static LICE_pixel Mix(LICE_pixel p, LICE_pixel q, int weight) {
    return LICE_CopyMode::Mix(p, q, weight);
  }

  LICE_pixel Fetch(double x, double y) const {
    const double cx = std::clamp(x, 0.0, mSrc.w - 1.0), cy = std::clamp(y, 0.0, mSrc.h - 1.0);
    const LICE_pixel p = *mSrc.at(static_cast<int>(cx), static_cast<int>(cy));
    return mFade && (cx != x || cy != y) ? p & ~LICE_pixel{0xFF} : p;
  }

  const LICE_Surface& mSrc;
  bool mBilinear, mFade;
};

// Pixels of the destination: right and bottom are outside.
struct Target {
  int left, top, right, bottom;
};

struct Point {
  double x, y;
};

// `place(x, y)` gives the source point of a point of `area`; `margin` is how far beyond the source
// that may lie for the pixel to be painted.
template <typename Place>
void PaintSampled(const LICE_Surface& to, const LICE_Surface& from, const Target& area,
                  double margin, float alpha, int mode, const Place& place) {
  const int a = LICE_Weight256(alpha);
  if (a == 0) return;
  const bool use_alpha = (mode & LICE_BLIT_USE_ALPHA) != 0;
  const Sampler sample(from, (mode & LICE_BLIT_FILTER_BILINEAR) != 0, margin > 0.0);
  const auto inside = [margin](double v, int size) { return v >= -margin && v < size + margin; };
  LICE_WithMode(mode, [&]<typename Mode>(Mode) {
    for (int y = area.top; y < area.bottom; ++y) {
      for (int x = area.left; x < area.right; ++x) {
        const Point at = place(x + 0.5, y + 0.5);
        if (!inside(at.x, from.w) || !inside(at.y, from.h)) continue;
        LICE_pixel& d = *to.at(x, y);
        const LICE_pixel s = sample(at.x, at.y);
        d = use_alpha ? Mode::MixAlpha(d, s, a) : Mode::Mix(d, s, a);
      }
    }
  });
}

// 0 to size; NaN is 0.
int ClipTo(double v, int size) {
  if (!(v > 0.0)) return 0;
  return v < size ? static_cast<int>(v) : size;
}

}  // namespace

void LICE_ScaledBlit(LICE_IBitmap* dest, const LICE_IBitmap* src, int dstx, int dsty, int dstw,
                     int dsth, float srcx, float srcy, float srcw, float srch, float alpha,
                     int mode) {
  const LICE_Surface to(dest), from(src);
  if (!to.top || !from.top || dstw <= 0 || dsth <= 0) return;
  const Target area{ClipTo(dstx, to.w), ClipTo(dsty, to.h), ClipTo(dstx + 0.0 + dstw, to.w),
                    ClipTo(dsty + 0.0 + dsth, to.h)};
  const double step_x = double{srcw} / dstw, step_y = double{srch} / dsth;
  PaintSampled(to, from, area, 0.0, alpha, mode, [&](double x, double y) {
    return Point{srcx + (x - dstx) * step_x, srcy + (y - dsty) * step_y};
  });
}

void LICE_RotatedBlit(LICE_IBitmap* dest, const LICE_IBitmap* src, float dstx, float dsty,
                      float srcx, float srcy, float angle, float alpha, int mode) {
  const LICE_Surface to(dest), from(src);
  if (!to.top || !from.top) return;
  const double c = std::cos(double{angle}), s = std::sin(double{angle});
  // The farthest corner from the turning point bounds what is reached in any direction.
  const double far_x = std::max(std::abs(double{srcx}), std::abs(from.w - double{srcx}));
  const double far_y = std::max(std::abs(double{srcy}), std::abs(from.h - double{srcy}));
  const double reach = std::hypot(far_x, far_y) + 1.0;
  const Target area{ClipTo(dstx - reach, to.w), ClipTo(dsty - reach, to.h),
                    ClipTo(dstx + reach + 1.0, to.w), ClipTo(dsty + reach + 1.0, to.h)};
  const bool smooth_border = (mode & LICE_BLIT_USE_ALPHA) && (mode & LICE_BLIT_FILTER_BILINEAR);
  PaintSampled(to, from, area, smooth_border ? 0.5 : 0.0, alpha, mode, [&](double x, double y) {
    const double dx = x - dstx, dy = y - dsty;
    return Point{srcx + dx * c + dy * s, srcy - dx * s + dy * c};
  });
}
