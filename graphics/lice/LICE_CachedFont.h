// Text on bitmaps, from a cache of glyph images. Tolmara uses all of it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/lice/LICE_PlatformFont.h"

// SetFromHFont flags.
constexpr int LICE_FONT_FLAG_OWNS_HFONT = 0x200;
constexpr int LICE_FONT_FLAG_FORCE_NATIVE = 0x400;  // the platform draws no other way than this

// DrawText flags: one of the three alignments, and options.
constexpr int LICE_TEXT_NEAR = 0x100;
constexpr int LICE_TEXT_CENTRE = 0x104;
constexpr int LICE_TEXT_FAR = 0x120;
constexpr int LICE_TEXT_MEASURE = 1;             // draw nothing, fill in the rectangle
constexpr int LICE_TEXT_USE_ALPHA = 0x40000000;  // weigh by the colour's alpha

struct LICE_Rect {
  int left, top, right, bottom;  // right and bottom are outside
};

// Where a text of that width begins when it is centred between two columns.
constexpr std::int64_t LICE_CentredLeft(std::int64_t left, std::int64_t right, int width) {
  return (left + right) / 2 - width / 2;
}

// A font as text is drawn with: glyphs are rendered at their first use and kept, sorted by
// character code. One thread at a time: threads that share a font hold a lock from the choice of
// the colour to the end of its text.
class LICE_CachedFont {
 public:
  LICE_CachedFont() = default;
  LICE_CachedFont(const LICE_CachedFont&) = delete;
  LICE_CachedFont& operator=(const LICE_CachedFont&) = delete;

  // Takes a font (null: none) and forgets all glyphs. Without LICE_FONT_FLAG_OWNS_HFONT the
  // caller keeps `font` alive while it is set here.
  void SetFromHFont(LICE_PlatformFont* font, int flags);
  void SetTextColor(LICE_pixel color);

  // Draws UTF-8 `text` of `length` bytes (-1: up to the terminating zero) on one line: aligned
  // horizontally in `rect` by `flags`, its line box starting at the top of `rect`, clipped to
  // nothing but the bitmap. Returns the height of the text, 0 without a font. With
  // LICE_TEXT_MEASURE (`bitmap` may be null) it only sets rect's right and bottom to its left and
  // top plus the size of the text. Drawing widens `inked`, if given, to hold all pixels that it
  // may have changed.
  int DrawText(LICE_IBitmap* bitmap, const char* text, int length, LICE_Rect* rect, int flags,
               LICE_Rect* inked = nullptr);
  int GetLineHeight();  // pixels; 0 without a font

  struct Extent {
    int left, right;  // columns; right is outside
  };

 private:
  struct Glyph {
    char32_t code;
    LICE_GlyphImage image;
  };

  // Both need a font. A glyph is valid until the next call.
  const LICE_GlyphImage& GlyphOf(char32_t code);
  Extent ExtentOf(const std::vector<char32_t>& codes);

  LICE_PlatformFont* mFont = nullptr;
  std::unique_ptr<LICE_PlatformFont> mOwned;  // mFont, when it is ours
  std::vector<Glyph> mGlyphs;                 // ascending code
  LICE_pixel mColor = 0;
};
