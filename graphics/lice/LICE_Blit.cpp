// The straight blit: pixel by pixel, neither turned nor scaled.
#include <cassert>
#include <cstring>

#include "graphics/lice/LICE_Blend.h"
#include "graphics/lice/LICE_Draw.h"
#include "graphics/lice/LICE_Surface.h"

namespace {

// Clips one axis of the rectangle against both bitmaps; the two origins move together.
void ClipAxis(std::int64_t& dst, std::int64_t& src, std::int64_t& size, int dst_size,
              int src_size) {
  const std::int64_t skip = std::max<std::int64_t>({0, -dst, -src});
  dst += skip;
  src += skip;
  size = std::min({size - skip, dst_size - dst, src_size - src});
}

// The part of a blit that lies in both bitmaps.
struct Area {
  LICE_pixel* dest;
  std::ptrdiff_t dest_stride;
  const LICE_pixel* src;
  std::ptrdiff_t src_stride;
  int w, h;
};

// Calls `row` with destination, source and length of each row.
template <typename Row>
void ForRows(const Area& area, Row&& row) {
  for (int y = 0; y < area.h; ++y) {
    row(area.dest + area.dest_stride * y, area.src + area.src_stride * y, area.w);
  }
}

// Fast path of a full copy.
void CopyRow(LICE_pixel* d, const LICE_pixel* s, int n) {
  std::memcpy(d, s, static_cast<std::size_t>(n) * sizeof *d);
}

// kept: the half weight rounds each operand down by itself, which differs from the copy mode at
// 128 / 256 by up to one step; pictures at half weight must look the same.
void HalveRow(LICE_pixel* d, const LICE_pixel* s, int n) {
  for (int i = 0; i < n; ++i) d[i] = (s[i] >> 1 & 0x7F7F7F7F) + (d[i] >> 1 & 0x7F7F7F7F);
}

template <typename Mode>
void MixArea(const Area& area, int a, bool use_alpha) {
  ForRows(area, [&](LICE_pixel* d, const LICE_pixel* s, int n) {
    if (use_alpha) {
      for (int i = 0; i < n; ++i) d[i] = Mode::MixAlpha(d[i], s[i], a);
    } else {
      for (int i = 0; i < n; ++i) d[i] = Mode::Mix(d[i], s[i], a);
    }
  });
}

}  // namespace

void LICE_Blit(LICE_IBitmap* dest, const LICE_IBitmap* src, int dstx, int dsty, int srcx, int srcy,
               int w, int h, float alpha, int mode) {
  if (alpha == 0.0f) return;
  const LICE_Surface to(dest), from(src);
  std::int64_t dx = dstx, dy = dsty, sx = srcx, sy = srcy, cw = w, ch = h;
  ClipAxis(dx, sx, cw, to.w, from.w);
  ClipAxis(dy, sy, ch, to.h, from.h);
  if (cw <= 0 || ch <= 0) return;
  assert(to.top != from.top);
  const Area area{to.at(static_cast<int>(dx), static_cast<int>(dy)),
                  to.stride,
                  from.at(static_cast<int>(sx), static_cast<int>(sy)),
                  from.stride,
                  static_cast<int>(cw),
                  static_cast<int>(ch)};

  const bool use_alpha = (mode & LICE_BLIT_USE_ALPHA) != 0;
  const bool plain_copy = !use_alpha && (mode & LICE_BLIT_MODE_MASK) == LICE_BLIT_MODE_COPY;
  if (plain_copy && alpha == 1.0f) return ForRows(area, CopyRow);
  if (plain_copy && alpha == 0.5f) return ForRows(area, HalveRow);
  const int a = LICE_Weight256(alpha);
  if (a == 0) return;
  LICE_WithMode(mode, [&]<typename Mode>(Mode) { MixArea<Mode>(area, a, use_alpha); });
}
