// How one pixel is mixed with another in each blit mode. Private to the rasteriser.
#pragma once

#include <algorithm>
#include <cmath>

#include "graphics/lice/LICE_Pixel.h"

// A weight as a count of 256ths, truncated; 0 for NaN. The limit keeps absurd weights inside the
// integer range of every mode below.
inline int LICE_Weight256(float weight) {
  constexpr float kLimit = 16.0f;
  if (!(std::abs(weight) <= kLimit)) return weight > 0.0f ? 4096 : weight < 0.0f ? -4096 : 0;
  return static_cast<int>(weight * 256.0f);
}

// One byte operation on all four channels.
template <typename ByteOp>
constexpr LICE_pixel LICE_MixBytes(LICE_pixel d, LICE_pixel s, int a, ByteOp op) {
  return LICE_RGBA_CLAMP(op(LICE_GETR(d), LICE_GETR(s), a), op(LICE_GETG(d), LICE_GETG(s), a),
                         op(LICE_GETB(d), LICE_GETB(s), a), op(LICE_GETA(d), LICE_GETA(s), a));
}

// Weight that the source pixel's own alpha leaves of `a`.
constexpr int LICE_AlphaWeight(LICE_pixel s, int a) { return (LICE_GETA(s) + 1) * a / 256; }

// Every mode is a type with two functions over one pixel: destination, source, weight in 256ths.
// `Mix` weighs by `a` alone. `MixAlpha` weighs by the source's alpha too; a source alpha of 0
// leaves the destination alone.

// The modes that treat the four bytes alike: `Derived` has their rule as Byte(d, s, a).
template <typename Derived>
struct LICE_BytewiseMode {
  static constexpr LICE_pixel Mix(LICE_pixel d, LICE_pixel s, int a) {
    return LICE_MixBytes(d, s, a, Derived::Byte);
  }
  static constexpr LICE_pixel MixAlpha(LICE_pixel d, LICE_pixel s, int a) {
    return LICE_GETA(s) == 0 ? d : Mix(d, s, LICE_AlphaWeight(s, a));
  }
};

struct LICE_CopyMode : LICE_BytewiseMode<LICE_CopyMode> {
  static constexpr int Byte(int d, int s, int a) { return s + (d - s) * (256 - a) / 256; }
  // Mixes the colours and adds `alpha` to the destination's alpha, so that what is drawn on a
  // transparent bitmap can be drawn on from there.
  static constexpr LICE_pixel MixOver(LICE_pixel d, LICE_pixel s, int a, int alpha) {
    return LICE_RGBA_CLAMP(Byte(LICE_GETR(d), LICE_GETR(s), a), Byte(LICE_GETG(d), LICE_GETG(s), a),
                           Byte(LICE_GETB(d), LICE_GETB(s), a), LICE_GETA(d) + alpha);
  }
  static constexpr LICE_pixel MixAlpha(LICE_pixel d, LICE_pixel s, int a) {
    const int sa = LICE_GETA(s);
    if (sa == 0) return d;
    const int weight = LICE_AlphaWeight(s, a);
    return MixOver(d, s, weight, a == 256 ? sa : weight);
  }
};

struct LICE_AddMode : LICE_BytewiseMode<LICE_AddMode> {
  static constexpr int Byte(int d, int s, int a) { return d + s * a / 256; }
};

struct LICE_DodgeMode : LICE_BytewiseMode<LICE_DodgeMode> {
  static constexpr int Byte(int d, int s, int a) {
    const int divisor = 256 - s * a / 256;
    return divisor >= 2 ? d * 256 / divisor : d * 256;
  }
};

struct LICE_MultiplyMode : LICE_BytewiseMode<LICE_MultiplyMode> {
  static constexpr int Byte(int d, int s, int a) { return (s * a + (256 - a) * 256) * d / 65536; }
};

// Multiplies where the destination is dark and screens where it is light.
struct LICE_OverlayMode : LICE_BytewiseMode<LICE_OverlayMode> {
  static constexpr int Byte(int d, int s, int a) {
    const int mixed = d < 128 ? 2 * d * s / 255 : 255 - 2 * (255 - d) * (255 - s) / 255;
    return mixed + (d - mixed) * (256 - a) / 256;
  }
};

// `d` with its hue turned and its saturation and value shifted by the R, G and B of `adjust`, each
// neutral at 128; hue in 256ths of a turn.
LICE_pixel LICE_AdjustHSV(LICE_pixel d, LICE_pixel adjust);

struct LICE_HSVAdjustMode {
  static LICE_pixel Mix(LICE_pixel d, LICE_pixel s, int a) {
    return LICE_CopyMode::Mix(d, LICE_AdjustHSV(d, s), a);
  }
  static LICE_pixel MixAlpha(LICE_pixel d, LICE_pixel s, int a) {
    return LICE_GETA(s) == 0 ? d : Mix(d, s, LICE_AlphaWeight(s, a));
  }
};

// Calls `fn` with an object of the mode's type; an unknown operation paints nothing.
template <typename Fn>
void LICE_WithMode(int mode, Fn&& fn) {
  switch (mode & LICE_BLIT_MODE_MASK) {
    case LICE_BLIT_MODE_COPY: fn(LICE_CopyMode{}); break;
    case LICE_BLIT_MODE_ADD: fn(LICE_AddMode{}); break;
    case LICE_BLIT_MODE_DODGE: fn(LICE_DodgeMode{}); break;
    case LICE_BLIT_MODE_MULTIPLY: fn(LICE_MultiplyMode{}); break;
    case LICE_BLIT_MODE_OVERLAY: fn(LICE_OverlayMode{}); break;
    case LICE_BLIT_MODE_HSVADJUST: fn(LICE_HSVAdjustMode{}); break;
    default: break;
  }
}
