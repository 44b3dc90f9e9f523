#include "graphics/lice/LICE_CachedFont.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "graphics/lice/LICE_Blend.h"
#include "graphics/lice/LICE_Surface.h"
#include "graphics/lice/LICE_UTF8.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;  // drawn for what is not UTF-8

std::vector<char32_t> Decode(const char* text, int length) {
  std::vector<char32_t> codes;
  if (!text) return codes;
  const char* const end =
      text + (length < 0 ? std::strlen(text) : static_cast<std::size_t>(length));
  while (text < end) {
    const char32_t code = LICE_NextCharacter(text, end);
    if (code >= 0x20) codes.push_back(code == LICE_NO_CHARACTER ? kReplacement : code);
  }
  return codes;
}

// A turned text's position relative to where its first pen position goes: the box that holds it.
struct TextBox {
  double left, top, width, height;
};

// Box of the turned text whose straight form takes the given columns.
TextBox TurnedBox(const LICE_PlatformFont& font, LICE_CachedFont::Extent columns) {
  const double c = std::cos(font.Turn()), s = std::sin(font.Turn());
  const double x[] = {columns.left + 0.0, columns.right + 0.0};
  const double y[] = {-font.Baseline() + 0.0, font.LineHeight() - font.Baseline() + 0.0};
  double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
  for (const double px : x) {
    for (const double py : y) {
      left = std::min(left, px * c + py * s);
      right = std::max(right, px * c + py * s);
      top = std::min(top, py * c - px * s);
      bottom = std::max(bottom, py * c - px * s);
    }
  }
  return {std::floor(left), std::floor(top), std::ceil(right) - std::floor(left),
          std::ceil(bottom) - std::floor(top)};
}

std::int64_t AlignedLeft(const LICE_Rect& rect, int width, int flags) {
  constexpr int kAlignment = LICE_TEXT_NEAR | LICE_TEXT_CENTRE | LICE_TEXT_FAR;
  switch (flags & kAlignment) {
    case LICE_TEXT_CENTRE: return LICE_CentredLeft(rect.left, rect.right, width);
    case LICE_TEXT_FAR: return std::int64_t{rect.right} - width;
    default: return rect.left;
  }
}

// Mixes the colour into the bitmap as a blit would whose source's alpha is the glyph's coverage.
// Widens `inked` to the part of the glyph that lies in the bitmap.
void PaintGlyph(const LICE_Surface& s, const LICE_GlyphImage& glyph, std::int64_t x, std::int64_t y,
                LICE_pixel color, int a, LICE_Rect& inked) {
  const auto first = [](std::int64_t at) { return std::max<std::int64_t>(0, -at); };
  const auto last = [](std::int64_t at, int n, int size) {
    return std::min<std::int64_t>(n, size - at);
  };
  const std::int64_t columns = last(x, glyph.width, s.w), rows = last(y, glyph.height, s.h);
  for (std::int64_t row = first(y); row < rows; ++row) {
    for (std::int64_t column = first(x); column < columns; ++column) {
      const auto index = static_cast<std::size_t>(row * glyph.width + column);
      LICE_pixel& p = *s.at(static_cast<int>(x + column), static_cast<int>(y + row));
      p = LICE_CopyMode::MixAlpha(p, (color & ~LICE_pixel{0xFF}) | glyph.coverage[index], a);
    }
  }
  if (first(x) >= columns || first(y) >= rows) return;
  inked.left = std::min(inked.left, static_cast<int>(x + first(x)));
  inked.top = std::min(inked.top, static_cast<int>(y + first(y)));
  inked.right = std::max(inked.right, static_cast<int>(x + columns));
  inked.bottom = std::max(inked.bottom, static_cast<int>(y + rows));
}

}  // namespace

void LICE_CachedFont::SetFromHFont(LICE_PlatformFont* font, int flags) {
  mGlyphs.clear();
  if (mOwned.get() != font) mOwned.reset();
  if (!mOwned && (flags & LICE_FONT_FLAG_OWNS_HFONT)) mOwned.reset(font);
  mFont = font;
}

void LICE_CachedFont::SetTextColor(LICE_pixel color) { mColor = color; }

int LICE_CachedFont::GetLineHeight() { return mFont ? mFont->LineHeight() : 0; }

const LICE_GlyphImage& LICE_CachedFont::GlyphOf(char32_t code) {
  const auto at = std::lower_bound(mGlyphs.begin(), mGlyphs.end(), code,
                                   [](const Glyph& g, char32_t c) { return g.code < c; });
  if (at != mGlyphs.end() && at->code == code) return at->image;
  return mGlyphs.insert(at, {code, mFont->Render(code)})->image;
}

// Columns from the first pen position that a straight text inks; a turned or blank one takes its
// advance.
LICE_CachedFont::Extent LICE_CachedFont::ExtentOf(const std::vector<char32_t>& codes) {
  int pen = 0;
  Extent ink{INT_MAX, INT_MIN};
  for (const char32_t code : codes) {
    const LICE_GlyphImage& glyph = GlyphOf(code);
    if (glyph.width > 0) {
      ink.left = std::min(ink.left, pen + glyph.left);
      ink.right = std::max(ink.right, pen + glyph.left + glyph.width);
    }
    pen += glyph.advance;
  }
  if (ink.left > ink.right || mFont->Turn() != 0.0) return {0, pen};
  return ink;
}

int LICE_CachedFont::DrawText(LICE_IBitmap* bitmap, const char* text, int length, LICE_Rect* rect,
                              int flags, LICE_Rect* inked) {
  if (!mFont || !rect) return 0;
  const std::vector<char32_t> codes = Decode(text, length);
  const TextBox box = TurnedBox(*mFont, ExtentOf(codes));
  if (flags & LICE_TEXT_MEASURE) {
    rect->right = rect->left + static_cast<int>(box.width);
    rect->bottom = rect->top + static_cast<int>(box.height);
    return static_cast<int>(box.height);
  }
  const float weight =
      flags & LICE_TEXT_USE_ALPHA ? static_cast<float>(LICE_GETA(mColor)) / 255.0f : 1.0f;
  const LICE_Surface surface(bitmap);
  double x = static_cast<double>(AlignedLeft(*rect, static_cast<int>(box.width), flags)) - box.left;
  double y = rect->top - box.top;
  LICE_Rect unused{};
  for (const char32_t code : codes) {
    const LICE_GlyphImage& glyph = GlyphOf(code);
    PaintGlyph(surface, glyph, std::lround(x) + glyph.left, std::lround(y) - glyph.top, mColor,
               LICE_Weight256(weight), inked ? *inked : unused);
    x += glyph.advance * std::cos(mFont->Turn());
    y -= glyph.advance * std::sin(mFont->Turn());
  }
  return static_cast<int>(box.height);
}
