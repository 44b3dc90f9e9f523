// Pixels and keys as servers have them, without a server.
#include <gtest/gtest.h>

#include <vector>

#include "graphics/IGraphics.h"
#include "graphics/x11/X11Keys.h"
#include "graphics/x11/X11PixelFormat.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr LICE_pixel kPixels[] = {LICE_RGBA(0x12, 0x34, 0x56, 0x00),
                                  LICE_RGBA(0xFF, 0x80, 0x07, 0xFF)};

Bytes Converted(const X11PixelFormat::Layout& layout) {
  const X11PixelFormat format(layout);
  Bytes bytes(2 * format.PixelBytes());
  format.Convert(kPixels, 2, bytes.data());
  return bytes;
}

TEST(X11PixelFormat, PutsEachColourInItsPlaceInEitherByteOrder) {
  X11PixelFormat::Layout layout;  // the usual: 24 bits in 32
  EXPECT_EQ(Converted(layout), (Bytes{0x56, 0x34, 0x12, 0, 0x07, 0x80, 0xFF, 0}));
  layout.mostSignificantFirst = true;
  EXPECT_EQ(Converted(layout), (Bytes{0, 0x12, 0x34, 0x56, 0, 0xFF, 0x80, 0x07}));
  layout.depth = 32;  // with transparency: opaque
  EXPECT_EQ(Converted(layout), (Bytes{0xFF, 0x12, 0x34, 0x56, 0xFF, 0xFF, 0x80, 0x07}));

  layout = {};
  layout.bitsPerPixel = 24;
  EXPECT_EQ(Converted(layout), (Bytes{0x56, 0x34, 0x12, 0x07, 0x80, 0xFF}));
  layout.mostSignificantFirst = true;
  EXPECT_EQ(Converted(layout), (Bytes{0x12, 0x34, 0x56, 0xFF, 0x80, 0x07}));

  layout = {};
  layout.depth = layout.bitsPerPixel = 16;
  layout.red = 0xF800, layout.green = 0x07E0, layout.blue = 0x001F;
  // 0x12 >> 3 = 2, 0x34 >> 2 = 13, 0x56 >> 3 = 10: 0x11AA. 31, 32, 0: 0xFC00.
  EXPECT_EQ(Converted(layout), (Bytes{0xAA, 0x11, 0x00, 0xFC}));
  layout.mostSignificantFirst = true;
  EXPECT_EQ(Converted(layout), (Bytes{0x11, 0xAA, 0xFC, 0x00}));

  // Ten bits each: the byte's upper bits follow below it, so that white stays white.
  layout = {};
  layout.depth = 30;
  layout.red = 0x3FF00000, layout.green = 0x000FFC00, layout.blue = 0x000003FF;
  const Bytes deep = Converted(layout);
  const uint32_t word =
      deep[4] | deep[5] << 8 | deep[6] << 16 | static_cast<uint32_t>(deep[7]) << 24;
  EXPECT_EQ(word, 0x3FFU << 20 | 0x202U << 10 | 0x01CU);
}

TEST(X11PixelFormat, PadsRowsAsTheServerCounts) {
  X11PixelFormat::Layout layout;
  layout.bitsPerPixel = 24;
  EXPECT_EQ(X11PixelFormat(layout).RowBytes(5), 16U);
  layout.bitsPerPixel = 16;
  EXPECT_EQ(X11PixelFormat(layout).RowBytes(5), 12U);
  layout.bitsPerPixel = 32;
  EXPECT_EQ(X11PixelFormat(layout).RowBytes(5), 20U);
}

TEST(X11Key, ControlsGetPlainKeysOnly) {
  X11Key key;
  key.character = key.symbol = 'q';
  EXPECT_EQ(key.Code(), IGraphics::kKeyA + 16);
  key.control = true;
  EXPECT_EQ(key.Code(), -1);
  key = {};
  key.character = 0xE9;  // a letter, but none of the 26
  EXPECT_EQ(key.Code(), -1);
  key = {};
  key.symbol = kX11Escape;
  EXPECT_EQ(key.Code(), -1);
  key.symbol = kX11Left;
  EXPECT_EQ(key.Code(), IGraphics::kKeyLeft);
}

}  // namespace
