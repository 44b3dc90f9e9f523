// How a visual of the server wants its pixels.
#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>

#include "graphics/lice/LICE_Pixel.h"

// Turns canvas pixels into those of a true-colour visual of 16, 24 or 32 bits in either byte order.
// Bits that belong to no colour are set, so that a visual with transparency shows opaque pixels.
class X11PixelFormat {
 public:
  struct Layout {
    int depth = 24;         // bits that count
    int bitsPerPixel = 32;  // in memory: 16, 24 or 32
    int scanlinePad = 32;   // rows take a multiple of so many bits
    bool mostSignificantFirst = false;
    uint32_t red = 0xFF0000, green = 0xFF00, blue = 0xFF;  // masks
  };

  explicit X11PixelFormat(const Layout& layout);
  // None for a visual whose colours are looked up, or with pixels of another size.
  static std::optional<X11PixelFormat> Find(const xcb_setup_t* setup, const xcb_screen_t& screen,
                                            xcb_visualid_t visual, int depth);

  int Depth() const { return mLayout.depth; }
  // Bytes of a row of `width` pixels, with its padding.
  std::size_t RowBytes(int width) const;
  std::size_t PixelBytes() const { return static_cast<std::size_t>(mLayout.bitsPerPixel) / 8; }
  // Writes `count` pixels to `out`, which holds count * PixelBytes() bytes.
  void Convert(const LICE_pixel* pixels, int count, uint8_t* out) const;

 private:
  using Table = std::array<uint32_t, 256>;  // a channel's value in its place of the word

  uint32_t Word(LICE_pixel p) const;
  template <int kBytes>
  void ConvertAs(const LICE_pixel* pixels, int count, uint8_t* out) const;

  Layout mLayout;
  Table mRed, mGreen, mBlue;
  uint32_t mFiller;  // all bits of the depth that are no colour
};
