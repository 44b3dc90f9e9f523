// The process-wide cache of fonts, and text on the canvas.
#include <climits>
#include <cstring>
#include <vector>

#include "graphics/IGraphics.h"
#include "graphics/lice/LICE.h"
#include "iplug/Numbers.h"
#include "iplug/PlugLock.h"

namespace {

std::unique_ptr<LICE_PlatformFont> MakePlatformFont(const IText& text, int height) {
  static constexpr int kQualities[] = {0, 3, 4, 4};
  const bool hasQuality = text.mQuality >= 0 && text.mQuality < 4;
  LICE_FontRequest request;
  request.face = text.mFont;
  request.height = height;
  request.weight = text.mStyle == IText::kStyleBold ? 700 : 400;
  request.italic = text.mStyle == IText::kStyleItalic;
  request.escapement = request.orientation = text.mOrientation * 10;
  request.quality = hasQuality ? kQualities[text.mQuality] : 3;
  return LICE_PlatformFont::Create(request);
}

// A font whose lines are as high as the style asks, or null.
std::unique_ptr<LICE_CachedFont> MakeFont(const IText& text) {
  constexpr int kFlags = LICE_FONT_FLAG_OWNS_HFONT;
  const int size = std::max(text.mSize, 2);
  auto font = std::make_unique<LICE_CachedFont>();
  font->SetFromHFont(MakePlatformFont(text, size).release(), kFlags);
  const int lineHeight = font->GetLineHeight();
  if (lineHeight <= 0) return nullptr;
  if (lineHeight != size) {
    const double corrected = static_cast<double>(size) * size / lineHeight + 0.5;
    font->SetFromHFont(MakePlatformFont(text, SaturateToInt(corrected)).release(), kFlags);
  }
  return font;
}

// Fonts that every editor of the process shares, until the module is unloaded.
class FontCache {
 public:
  // Guards the list, and a font from the choice of its colour to the end of its text.
  PlugLock& Lock() { return mLock; }

  // Makes it at the first use; null when it cannot be made. Needs the lock.
  LICE_CachedFont* FindOrMake(const IText& text) {
    for (const Entry& entry : mEntries) {
      if (entry.Fits(text)) return entry.font.get();
    }
    auto font = MakeFont(text);
    if (!font) return nullptr;
    Entry& entry = mEntries.emplace_back();
    entry.size = text.mSize;
    entry.orientation = text.mOrientation;
    entry.style = text.mStyle;
    CopyText(entry.name, text.mFont);
    entry.font = std::move(font);
    return entry.font.get();
  }

 private:
  struct Entry {
    int size, orientation, style;
    char name[sizeof(IText::mFont)];
    std::unique_ptr<LICE_CachedFont> font;

    bool Fits(const IText& text) const {
      return size == text.mSize && orientation == text.mOrientation && style == text.mStyle &&
             std::strcmp(name, text.mFont) == 0;
    }
  };

  PlugLock mLock;
  std::vector<Entry> mEntries;
};

FontCache gFonts;

int AlignmentFlag(int align) {
  switch (align) {
    case IText::kAlignNear: return LICE_TEXT_NEAR;
    case IText::kAlignFar: return LICE_TEXT_FAR;
    default: return LICE_TEXT_CENTRE;
  }
}

// Where a text of the size of `extent` comes to lie in `rect`.
IRECT Placed(const IRECT& rect, const LICE_Rect& extent, int align) {
  const int width = extent.right - extent.left;
  const int height = extent.bottom - extent.top;
  IRECT r = rect;
  if (align == IText::kAlignNear) {
    // kept: a near text is measured as if the rectangle began at 0. Layouts that were made with
    // this width would move.
    r.R = width;
  } else if (align == IText::kAlignFar) {
    r.L = r.R - width;
  } else {
    r.L = static_cast<int>(LICE_CentredLeft(rect.L, rect.R, width));
    r.R = r.L + width;
  }
  r.B = r.T + height;
  return r;
}

}  // namespace

bool IGraphics::DrawTextOn(LICE_IBitmap* bitmap, IText* text, const char* str, IRECT* rect,
                           bool measure, IRECT* ink) {
  if (!str || !*str) return true;
  const PlugLock::Guard guard(gFonts.Lock());
  LICE_CachedFont*& font = text->mCachedFont.font;
  if (!font) font = gFonts.FindOrMake(*text);
  if (!font) return false;

  int flags = AlignmentFlag(text->mAlign);
  LICE_Rect area{rect->L, rect->T, rect->R, rect->B};
  if (measure) {
    font->DrawText(nullptr, str, -1, &area, flags | LICE_TEXT_MEASURE);
    *rect = Placed(*rect, area, text->mAlign);
    return true;
  }
  if (text->mColor.A < 255) flags |= LICE_TEXT_USE_ALPHA;
  font->SetTextColor(text->mColor.Pixel());
  LICE_Rect inked{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
  font->DrawText(bitmap, str, -1, &area, flags, &inked);
  if (ink && inked.left < inked.right) {
    *ink = ink->Union({inked.left, inked.top, inked.right, inked.bottom});
  }
  return true;
}
