// A colour with a weight and a mode, as one function over the destination pixel. Private to the
// rasteriser.
#pragma once

#include "graphics/lice/LICE_Blend.h"

#if defined(__SSE2__) && !defined(TOLMARA_SCALAR)
#include <emmintrin.h>
#endif

// Any mode at any weight. The two-argument form has the weight scaled by a coverage in 256ths.
template <typename Mode>
struct LICE_ModePen {
  LICE_pixel color;
  int a;

  LICE_pixel operator()(LICE_pixel d) const { return Mode::Mix(d, color, a); }
  LICE_pixel operator()(LICE_pixel d, int coverage) const {
    return Mode::Mix(d, color, a * coverage / 256);
  }
};

// A copy by the colour's alpha, which the weight already holds: the destination's alpha adds up as
// under a bitmap.
struct LICE_OverPen {
  LICE_pixel color;
  int a;

  LICE_pixel operator()(LICE_pixel d) const { return LICE_CopyMode::MixOver(d, color, a, a); }
  LICE_pixel operator()(LICE_pixel d, int coverage) const {
    const int weight = a * coverage / 256;
    return LICE_CopyMode::MixOver(d, color, weight, weight);
  }
};

// Fast path: a copy at full weight stores the colour. `Pen` is the copy that it stands for.
template <typename Pen>
struct LICE_StorePen : Pen {
  LICE_pixel operator()(LICE_pixel) const { return Pen::color; }
  LICE_pixel operator()(LICE_pixel d, int coverage) const { return Pen::operator()(d, coverage); }
};

// Adds four bytes, each up to 255.
inline LICE_pixel LICE_AddSaturated(LICE_pixel d, LICE_pixel s) {
#if defined(__SSE2__) && !defined(TOLMARA_SCALAR)
  return static_cast<LICE_pixel>(_mm_cvtsi128_si32(_mm_adds_epu8(
      _mm_cvtsi32_si128(static_cast<int>(d)), _mm_cvtsi32_si128(static_cast<int>(s)))));
#else
  // Lower seven bits add without crossing bytes; the top bits and their carries follow.
  constexpr LICE_pixel kTop = 0x80808080;
  const LICE_pixel low = (d & ~kTop) + (s & ~kTop);
  const LICE_pixel carry = ((d & s) | ((d | s) & low)) & kTop;
  return (low ^ ((d ^ s) & kTop)) | ((carry >> 7) * 0xFF);
#endif
}

// Fast path: what an addition adds is the same everywhere. For weights of 0 to 256, at which two
// bytes at a time stay within their 16 bits.
struct LICE_AddPen : LICE_ModePen<LICE_AddMode> {
  LICE_AddPen(LICE_pixel c, int weight)
      : LICE_ModePen{c, weight}, sum(Even(c, weight) | Even(c >> 8, weight) << 8) {}

  LICE_pixel operator()(LICE_pixel d) const { return LICE_AddSaturated(d, sum); }
  LICE_pixel operator()(LICE_pixel d, int coverage) const {
    return LICE_ModePen::operator()(d, coverage);
  }

  static LICE_pixel Even(LICE_pixel c, int weight) {
    return (c & 0x00FF00FF) * static_cast<LICE_pixel>(weight) >> 8 & 0x00FF00FF;
  }

  LICE_pixel sum;
};

// Not inlined: the fast pens above then keep their loops in registers.
template <typename Fn>
[[gnu::noinline]] void LICE_WithModePen(LICE_pixel color, int a, int mode, const Fn& fn) {
  LICE_WithMode(mode, [&]<typename Mode>(Mode) { fn(LICE_ModePen<Mode>{color, a}); });
}

template <typename Pen, typename Fn>
void LICE_WithCopyPen(const Pen& pen, const Fn& fn) {
  if (pen.a == 256) return fn(LICE_StorePen<Pen>{pen});
  fn(pen);
}

// Calls `fn` with the pen of a colour; not at all if it would paint nothing.
template <typename Fn>
void LICE_WithPen(LICE_pixel color, float alpha, int mode, const Fn& fn) {
  const bool useAlpha = (mode & LICE_BLIT_USE_ALPHA) != 0;
  if (useAlpha) alpha *= static_cast<float>(LICE_GETA(color)) / 255.0f;
  const int a = LICE_Weight256(alpha);
  if (a == 0) return;
  const int op = mode & LICE_BLIT_MODE_MASK;
  if (op == LICE_BLIT_MODE_COPY && useAlpha) return LICE_WithCopyPen(LICE_OverPen{color, a}, fn);
  if (op == LICE_BLIT_MODE_COPY) {
    return LICE_WithCopyPen(LICE_ModePen<LICE_CopyMode>{color, a}, fn);
  }
  if (op == LICE_BLIT_MODE_ADD && a > 0 && a <= 256) return fn(LICE_AddPen(color, a));
  LICE_WithModePen(color, a, mode, fn);
}

// Paints a pixel of which the pen covers a share of 0.0 to 1.0.
template <typename Pen>
void LICE_PaintCovered(LICE_pixel& p, const Pen& pen, double coverage) {
  const auto c = static_cast<int>(std::lround(coverage * 256.0));
  if (c > 0) p = c >= 256 ? pen(p) : pen(p, c);
}
