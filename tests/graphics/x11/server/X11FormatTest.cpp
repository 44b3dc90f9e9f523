// Pixels and keys as servers have them.
#include <vector>

#include "graphics/IGraphics.h"
#include "graphics/x11/server/X11Keys.h"
#include "graphics/x11/server/X11PixelFormat.h"
#include "tests/graphics/x11/XServer.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(X11PixelFormat, PutsEachColourInItsPlaceInEitherByteOrder) {
  constexpr LICE_pixel kPixels[] = {LICE_RGBA(0x12, 0x34, 0x56, 0x00),
                                    LICE_RGBA(0xFF, 0x80, 0x07, 0xFF)};
  const struct {
    X11PixelFormat::Layout layout;  // with the least significant byte first
    Bytes first, second;
    std::size_t rowOfFive;
  } cases[] = {
      {{}, {0x56, 0x34, 0x12, 0}, {0x07, 0x80, 0xFF, 0}, 20},
      {{32}, {0x56, 0x34, 0x12, 0xFF}, {0x07, 0x80, 0xFF, 0xFF}, 20},  // opaque
      {{24, 24}, {0x56, 0x34, 0x12}, {0x07, 0x80, 0xFF}, 16},
      {{24, 32, 32, false, 0xFF, 0xFF00, 0xFF0000}, {0x12, 0x34, 0x56, 0}, {0xFF, 0x80, 7, 0}, 20},
      // 0x12 >> 3 = 2, 0x34 >> 2 = 13, 0x56 >> 3 = 10: 0x11AA. 31, 32, 0: 0xFC00.
      {{16, 16, 32, false, 0xF800, 0x07E0, 0x001F}, {0xAA, 0x11}, {0x00, 0xFC}, 12},
      {{15, 16, 16, false, 0x7C00, 0x03E0, 0x001F}, {0xCA, 0x08}, {0x00, 0x7E}, 10},
      // Ten bits each: the byte's upper bits follow below it, so that white stays white.
      {{30, 32, 32, false, 0x3FF00000, 0x000FFC00, 0x000003FF},
       {0x59, 0x41, 0x83, 0x04},
       {0x1C, 0x08, 0xF8, 0x3F},
       20}};
  for (auto [layout, first, second, rowOfFive] : cases) {
    SCOPED_TRACE(layout.depth);
    EXPECT_EQ(X11PixelFormat(layout).RowBytes(5), rowOfFive);
    for (const bool reversed : {false, true}) {
      layout.mostSignificantFirst = reversed;
      if (reversed) std::reverse(first.begin(), first.end());
      if (reversed) std::reverse(second.begin(), second.end());
      Bytes expected = first, bytes(2 * first.size());
      expected.insert(expected.end(), second.begin(), second.end());
      X11PixelFormat(layout).Convert(kPixels, 2, bytes.data());
      EXPECT_EQ(bytes, expected) << reversed;
    }
  }
}

TEST(X11Keymap, TurnsKeysIntoSymbolsCharactersAndTheCodesOfControls) {
  const XServer server(XServer::kUsual);
  XUser user;
  X11Connection connection(-1);
  X11Keymap keymap;
  keymap.Load(connection);
  constexpr uint16_t kShift = 1, kCaps = 2, kControl = 4, kAlt = 8, kNumLock = 16, kSuper = 64;
  const struct {
    xcb_keysym_t key;  // whose symbol without modifiers this is
    uint16_t state;
    xcb_keysym_t symbol;
    char32_t character;
    int code;
  } cases[] = {{'q', 0, 'q', 'q', 31},
               {'q', kShift, 'Q', 'Q', 31},
               {'q', kCaps, 'Q', 'Q', 31},
               {'q', kControl, 'q', 'q', -1},
               {'q', kAlt, 'q', 'q', -1},
               {'q', kSuper, 'q', 'q', -1},
               {'7', 0, '7', '7', 12},
               {'7', kCaps, '7', '7', 12},
               {'7', kShift, '&', '&', -1},
               {' ', 0, ' ', ' ', 0},
               {kX11Up, 0, kX11Up, 0, 1},
               {kX11Down, kShift, kX11Down, 0, 2},
               {kX11Left, kControl, kX11Left, 0, 3},
               {kX11Right, 0, kX11Right, 0, 4},
               {kX11Escape, 0, kX11Escape, 0, -1},
               {kKeypadEnter, 0, kX11Return, 0, -1},
               {0xFF95, 0, kX11Home, 0, -1},  // seven on the keypad
               {0xFF95, kNumLock, 0xFFB7, '7', 12},
               {0xFF95, kNumLock | kShift, kX11Home, 0, -1},
               {0xFF95, kShift, 0xFFB7, '7', 12},
               {0xFF9F, 0, kX11Delete, 0, -1},
               {0xFF9F, kNumLock, 0xFFAE, '.', -1},
               {0xFFAD, 0, 0xFFAD, '-', -1}};
  for (const auto& c : cases) {
    const X11Key key = keymap.Find(user.CodeOf(c.key), c.state);
    EXPECT_EQ(key.symbol, c.symbol) << c.key << " " << c.state;
    EXPECT_EQ(key.character, c.character) << c.key << " " << c.state;
    EXPECT_EQ(key.Code(), c.code) << c.key << " " << c.state;
  }
  X11Key letter;
  letter.character = 0xE9;  // but none of the 26
  EXPECT_EQ(letter.Code(), -1);
}

}  // namespace
