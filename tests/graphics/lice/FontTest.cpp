// Text, measured in the pixels that it paints.
#include <array>
#include <climits>
#include <cstring>
#include <string>

#include "tests/graphics/lice/Pixels.h"

namespace {

constexpr LICE_pixel kWhite = 0xFFFFFFFF;

LICE_FontRequest Request(int height) {
  LICE_FontRequest request;
  request.face = "No Such Face";
  request.height = height;
  return request;
}

void Set(LICE_CachedFont& font, const LICE_FontRequest& request) {
  font.SetFromHFont(LICE_PlatformFont::Create(request).release(), LICE_FONT_FLAG_OWNS_HFONT);
  font.SetTextColor(kWhite);
}

// The smallest rectangle that holds all painted pixels.
LICE_Rect Ink(const LICE_IBitmap& b) {
  LICE_Rect ink{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
  for (int y = 0; y < b.getHeight(); ++y) {
    for (int x = 0; x < b.getWidth(); ++x) {
      if (!LICE_GetPixel(&b, x, y)) continue;
      ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
             std::max(ink.bottom, y + 1)};
    }
  }
  return ink;
}

LICE_Rect Drawn(LICE_CachedFont& font, const char* text, LICE_Rect rect, int flags) {
  LICE_MemBitmap b(300, 120);
  font.DrawText(&b, text, -1, &rect, flags);
  return Ink(b);
}

TEST(CachedFont, AlignsTheInkInItsRectangle) {
  for (int height = 8; height <= 24; ++height) {
    LICE_CachedFont font;
    Set(font, Request(height));
    EXPECT_EQ(font.GetLineHeight(), height);
    for (const char* text : {"H", "1", "-12.50", "100 HX"}) {
      const LICE_Rect rect{51, 30, 250, 60};
      const LICE_Rect near = Drawn(font, text, rect, LICE_TEXT_NEAR);
      const LICE_Rect centre = Drawn(font, text, rect, LICE_TEXT_CENTRE);
      const LICE_Rect far = Drawn(font, text, rect, LICE_TEXT_FAR);
      EXPECT_EQ(near.left, rect.left) << text << " " << height;
      EXPECT_EQ(far.right, rect.right) << text << " " << height;
      EXPECT_EQ(centre.left, (rect.left + rect.right) / 2 - (near.right - near.left) / 2)
          << text << " " << height;
      // Capitals stand in the middle of the line, which starts at the rectangle's top.
      EXPECT_LE(std::abs((near.top - rect.top) - (rect.top + height - near.bottom)), 1)
          << text << " " << height;

      LICE_Rect measured{7, 5, 0, 0};
      EXPECT_EQ(font.DrawText(nullptr, text, -1, &measured, LICE_TEXT_CENTRE | LICE_TEXT_MEASURE),
                height);
      EXPECT_EQ(measured.right - 7, near.right - near.left);
      EXPECT_EQ(measured.bottom - 5, height);
    }
  }
}

// Each character is a bar as wide as its code's last decimal digit.
class CountingFont : public LICE_PlatformFont {
 public:
  int LineHeight() const override { return 9; }
  int Baseline() const override { return 7; }
  double Turn() const override { return 0.0; }
  LICE_GlyphImage Render(char32_t character) override {
    ++renders;
    const int width = static_cast<int>(character % 10);
    return {0, 5, width, 1, width + 1, std::vector<unsigned char>(character % 10, 255)};
  }
  int renders = 0;
};

TEST(CachedFont, RendersEachCharacterOnceInWhateverOrder) {
  CountingFont bars;
  LICE_CachedFont font;
  font.SetFromHFont(&bars, LICE_FONT_FLAG_FORCE_NATIVE);
  font.SetTextColor(kWhite);
  for (const char* text : {"fcebad", "abcdef", "dad"})
    Drawn(font, text, {0, 0, 200, 9}, LICE_TEXT_NEAR);
  EXPECT_EQ(bars.renders, 6);
  LICE_MemBitmap b(20, 9);
  LICE_Rect rect{2, 1, 20, 10};
  font.DrawText(&b, "fe", -1, &rect, LICE_TEXT_NEAR);  // 102 and 101
  for (int x = 0; x < 20; ++x) {
    EXPECT_EQ(LICE_GetPixel(&b, x, 3) != 0, x == 2 || x == 3 || x == 5) << x;
  }
  EXPECT_EQ(PaintedCount(b), 3);
  EXPECT_EQ(font.DrawText(&b, nullptr, -1, &rect, LICE_TEXT_NEAR), 9);
  font.SetFromHFont(nullptr, 0);
  EXPECT_EQ(font.GetLineHeight() + font.DrawText(&b, "fe", -1, &rect, LICE_TEXT_NEAR), 0);
}

TEST(CachedFont, MixesItsColourByCoverageAndAlpha) {
  LICE_CachedFont font;
  Set(font, Request(20));
  LICE_MemBitmap full(60, 30), half(60, 30);
  LICE_FillRect(&full, 0, 0, 60, 30, LICE_RGBA(0, 0, 100, 255));
  LICE_FillRect(&half, 0, 0, 60, 30, LICE_RGBA(0, 0, 100, 255));
  LICE_Rect rect{5, 5, 55, 25};
  font.SetTextColor(LICE_RGBA(250, 100, 100, 128));
  font.DrawText(&full, "H", -1, &rect, LICE_TEXT_CENTRE);
  font.DrawText(&half, "H", -1, &rect, LICE_TEXT_CENTRE | LICE_TEXT_USE_ALPHA);
  for (const auto& [picture, brightest] : {std::pair(&full, 250), std::pair(&half, 125)}) {
    int red = 0;
    for (const LICE_pixel p : Screen(*picture)) {
      red = std::max(red, LICE_GETR(p));
      EXPECT_EQ(LICE_GETB(p), 100);
      EXPECT_EQ(LICE_GETA(p), 255);
    }
    EXPECT_NEAR(red, brightest, 1);
  }
}

TEST(CachedFont, ClipsToTheBitmapAndNotToTheRectangle) {
  LICE_CachedFont font;
  Set(font, Request(18));
  LICE_MemBitmap whole(200, 60);
  LICE_Rect rect{40, 20, 60, 24}, inked{50, 30, 51, 31};
  font.DrawText(&whole, "Reverberation", -1, &rect, LICE_TEXT_CENTRE, &inked);
  const LICE_Rect ink = Ink(whole);
  EXPECT_TRUE(ink.left < 40 && ink.right > 60);
  EXPECT_EQ((std::array{inked.left, inked.top, inked.right, inked.bottom}),
            (std::array{ink.left, ink.top, ink.right, ink.bottom}));
  for (const auto& [x, y] : {std::pair{0, 24}, {30, 15}, {80, 30}, {60, 28}}) {
    FlippedBitmap window(40, 12);
    LICE_Rect moved{40 - x, 20 - y, 60 - x, 24 - y};
    font.DrawText(&window, "Reverberation", -1, &moved, LICE_TEXT_CENTRE);
    EXPECT_TRUE(SameScreen(window, Part(whole, x, y, 40, 12))) << x << " " << y;
  }
  LICE_MemBitmap none(5, 5);
  for (LICE_Rect far : {LICE_Rect{INT_MIN, INT_MIN, INT_MAX, INT_MAX},
                        LICE_Rect{INT_MAX, INT_MAX, INT_MAX, INT_MAX}}) {
    font.DrawText(&none, "far away", -1, &far, LICE_TEXT_CENTRE);
  }
  EXPECT_EQ(PaintedCount(none), 0);
}

TEST(CachedFont, ReadsUtf8AndReplacesWhatIsNot) {
  LICE_CachedFont font;
  Set(font, Request(16));
  const auto width = [&font](const std::string& text) {
    LICE_Rect rect{0, 0, 0, 0};
    font.DrawText(nullptr, text.c_str(), -1, &rect, LICE_TEXT_NEAR | LICE_TEXT_MEASURE);
    return rect.right;
  };
  // Between two bars, each character of a monospaced font takes the same.
  const int one = width("|x|") - width("||");
  EXPECT_GT(one, 0);
  for (const char* text : {"\xC3\xA9", "\xE2\x82\xAC", "\xFF", "\xC3", "\x80", "\xEF\xBF\xBD"}) {
    EXPECT_EQ(width(std::string("|") + text + "|"), width("|x|")) << text;
  }
  // Overlong forms, surrogates and cut sequences are as many replacements as bytes.
  for (const std::string bytes : {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_EQ(width("|" + bytes + "|"), width("|" + std::string(bytes.size(), 'x') + "|"));
  }
  EXPECT_EQ(width("|\xE2\x82"), width("|\xEF\xBF\xBD\xEF\xBF\xBD"));
  EXPECT_EQ(width("|a\nb|"), width("|ab|"));

  LICE_Rect rect{0, 0, 0, 0};
  font.DrawText(nullptr, "|x|yyyy", 3, &rect, LICE_TEXT_NEAR | LICE_TEXT_MEASURE);
  EXPECT_EQ(rect.right, width("|x|"));
  font.DrawText(nullptr, "|x|", 0, &rect, LICE_TEXT_NEAR | LICE_TEXT_MEASURE);
  EXPECT_EQ(rect.right, 0);
}

TEST(PlatformFont, TurnsTheBoxOfItsTextAboutItsMiddle) {
  LICE_FontRequest up = Request(24);
  up.escapement = up.orientation = 900;
  LICE_CachedFont font, turned;
  Set(font, Request(24));
  Set(turned, up);
  const LICE_Rect rect{100, 10, 200, 110};
  const LICE_Rect flat = Drawn(font, "Hall", rect, LICE_TEXT_CENTRE);
  const LICE_Rect tall = Drawn(turned, "Hall", rect, LICE_TEXT_CENTRE);
  EXPECT_NEAR(tall.bottom - tall.top, flat.right - flat.left, 2);
  EXPECT_NEAR(tall.right - tall.left, flat.bottom - flat.top, 2);
  EXPECT_NEAR((tall.left + tall.right) / 2, 150, 2);
}

}  // namespace
