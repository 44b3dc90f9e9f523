// The pixel word and the blit mode word of the rasteriser. Tolmara uses the modes copy and add.
#pragma once

#include <algorithm>
#include <cstdint>

// One pixel; on this little-endian platform its bytes in memory are A, R, G, B.
using LICE_pixel = std::uint32_t;

constexpr int LICE_GETA(LICE_pixel p) { return static_cast<int>(p & 0xFF); }
constexpr int LICE_GETR(LICE_pixel p) { return static_cast<int>(p >> 8 & 0xFF); }
constexpr int LICE_GETG(LICE_pixel p) { return static_cast<int>(p >> 16 & 0xFF); }
constexpr int LICE_GETB(LICE_pixel p) { return static_cast<int>(p >> 24 & 0xFF); }

// Packs four channels; a value beyond a byte keeps its low eight bits and never spills into its
// neighbour.
constexpr LICE_pixel LICE_RGBA(int r, int g, int b, int a) {
  return (static_cast<LICE_pixel>(a) & 0xFF) | (static_cast<LICE_pixel>(r) & 0xFF) << 8 |
         (static_cast<LICE_pixel>(g) & 0xFF) << 16 | (static_cast<LICE_pixel>(b) & 0xFF) << 24;
}

constexpr LICE_pixel LICE_RGBA_CLAMP(int r, int g, int b, int a) {
  return LICE_RGBA(std::clamp(r, 0, 255), std::clamp(g, 0, 255), std::clamp(b, 0, 255),
                   std::clamp(a, 0, 255));
}

// The mode word: an operation in the low byte, and flags.
constexpr int LICE_BLIT_MODE_COPY = 0;
constexpr int LICE_BLIT_MODE_ADD = 1;
constexpr int LICE_BLIT_MODE_DODGE = 2;
constexpr int LICE_BLIT_MODE_MULTIPLY = 3;
constexpr int LICE_BLIT_MODE_OVERLAY = 4;
constexpr int LICE_BLIT_MODE_HSVADJUST = 5;
constexpr int LICE_BLIT_MODE_MASK = 0xFF;
constexpr int LICE_BLIT_FILTER_BILINEAR = 0x100;  // for the scaled and the rotated blit
constexpr int LICE_BLIT_USE_ALPHA = 0x10000;      // weigh by the source's or the colour's alpha
