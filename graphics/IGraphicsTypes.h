// Small value types of the editor: rectangle, colour, blend, bitmap, text style, mouse modifiers.
// Tolmara uses all of it but turned text and auxiliary parameters.
#pragma once

#include <algorithm>
#include <cstdint>

#include "iplug/Numbers.h"

class LICE_CachedFont;

// Truncates towards zero and limits to a million pixels, so that sums of two cannot overflow; NaN
// becomes 0.
constexpr int TruncateToPixel(double v) {
  constexpr int kLimit = 1 << 20;
  return std::clamp(SaturateToInt(v), -kLimit, kLimit);
}

// Frames of one picture, stacked down or across. The pixels belong to the bitmap cache.
struct IBitmap {
  void* mData = nullptr;              // LICE_IBitmap, null when the file was not found
  int W = 0, H = 0;                   // size of the whole picture, in pixels
  int N = 1;                          // number of frames
  bool mFramesAreHorizontal = false;  // frames run across instead of down

  IBitmap() = default;
  IBitmap(void* data, int w, int h, int n = 1, bool framesAreHorizontal = false)
      : mData(data), W(w), H(h), N(n), mFramesAreHorizontal(framesAreHorizontal) {}

  int FrameWidth() const { return mFramesAreHorizontal && N > 1 ? W / N : W; }
  int FrameHeight() const { return !mFramesAreHorizontal && N > 1 ? H / N : H; }
};

// Rectangle in pixels from the top left; R and B lie just outside. All zero means empty.
struct IRECT {
  int L = 0, T = 0, R = 0, B = 0;

  constexpr IRECT() = default;
  constexpr IRECT(int l, int t, int r, int b) : L(l), T(t), R(r), B(b) {}
  // The area of one frame of `bitmap` with its top left corner at (x, y).
  IRECT(int x, int y, const IBitmap& bitmap)
      : L(x), T(y), R(x + bitmap.FrameWidth()), B(y + bitmap.FrameHeight()) {}

  constexpr bool Empty() const { return L == 0 && T == 0 && R == 0 && B == 0; }
  constexpr void Clear() { *this = IRECT(); }
  constexpr int W() const { return R - L; }
  constexpr int H() const { return B - T; }
  constexpr float MW() const { return 0.5f * static_cast<float>(L + R); }  // middle, across
  constexpr float MH() const { return 0.5f * static_cast<float>(T + B); }  // middle, down
  constexpr bool Contains(int x, int y) const {
    return !Empty() && x >= L && x < R && y >= T && y < B;
  }
  constexpr bool Intersects(const IRECT& o) const {
    return !Empty() && !o.Empty() && L < o.R && o.L < R && T < o.B && o.T < B;
  }
  // The smallest rectangle over both; that with an empty one is the other.
  constexpr IRECT Union(const IRECT& o) const {
    if (Empty()) return o;
    if (o.Empty()) return *this;
    return {std::min(L, o.L), std::min(T, o.T), std::max(R, o.R), std::max(B, o.B)};
  }
  // What both hold; empty where they do not meet.
  constexpr IRECT Intersect(const IRECT& o) const {
    if (!Intersects(o)) return {};
    return {std::max(L, o.L), std::max(T, o.T), std::min(R, o.R), std::min(B, o.B)};
  }
  friend constexpr bool operator==(const IRECT&, const IRECT&) = default;
};

// Colour with opacity, each 0 to 255.
struct IColor {
  int A = 255, R = 0, G = 0, B = 0;

  constexpr IColor() = default;
  constexpr IColor(int a, int r, int g, int b) : A(a), R(r), G(g), B(b) {}
  // The pixel word; of each channel the low eight bits count.
  constexpr uint32_t Pixel() const {
    const auto byte = [](int v) { return static_cast<uint32_t>(v) & 0xFF; };
    return byte(A) | byte(R) << 8 | byte(G) << 16 | byte(B) << 24;
  }
  friend constexpr bool operator==(const IColor&, const IColor&) = default;
};

inline constexpr IColor kColorTransparent(0, 0, 0, 0);
inline constexpr IColor kColorBlack(255, 0, 0, 0);
inline constexpr IColor kColorGray(255, 127, 127, 127);
inline constexpr IColor kColorWhite(255, 255, 255, 255);
inline constexpr IColor kColorRed(255, 255, 0, 0);
inline constexpr IColor kColorGreen(255, 0, 255, 0);
inline constexpr IColor kColorBlue(255, 0, 0, 255);
inline constexpr IColor kColorYellow(255, 255, 255, 0);
inline constexpr IColor kColorOrange(255, 255, 127, 0);

// How a drawing is mixed with what lies under it. An unknown method, and a null blend where a
// pointer is taken, mean kBlendNone at full weight.
struct IChannelBlend {
  enum EMethod {
    kBlendNone = 0,       // copy with alpha
    kBlendClobber = 1,    // copy, alpha ignored
    kBlendAdd = 2,        // add with alpha
    kBlendColorDodge = 3  // dodge with alpha
  };
  int mMethod = kBlendNone;
  float mWeight = 1.0f;  // 0 to 1

  constexpr IChannelBlend() = default;
  constexpr IChannelBlend(int method, float weight = 1.0f) : mMethod(method), mWeight(weight) {}
};

// Style of a text. Drawing it remembers the font found, so a style is used by one thread.
struct IText {
  enum EStyle { kStyleNormal = 0, kStyleBold = 1, kStyleItalic = 2 };
  enum EAlign { kAlignNear = 0, kAlignCenter = 1, kAlignFar = 2 };

  // A copy starts without its font, because it may be given another size before it is drawn.
  struct FontSlot {
    LICE_CachedFont* font = nullptr;  // owned by the font cache

    FontSlot() = default;
    ~FontSlot() = default;
    FontSlot(const FontSlot&) {}
    FontSlot& operator=(const FontSlot& other) {
      if (this != &other) font = nullptr;
      return *this;
    }
  };

  char mFont[32] = "Monaco";    // name of the face
  int mSize = 10;               // line height, in pixels
  IColor mColor = kColorBlack;  // of the drawn text
  IColor mTextEntryBGColor = kColorWhite;
  IColor mTextEntryFGColor = kColorBlack;
  int mStyle = kStyleNormal;
  int mAlign = kAlignCenter;
  int mOrientation = 0;  // degrees
  int mQuality = 0;      // 0 default, up to 4
  FontSlot mCachedFont;  // found at the first use

  IText() = default;
  IText(int size, const IColor& color, const char* font = nullptr, int style = kStyleNormal,
        int align = kAlignCenter, int orientation = 0, int quality = 0,
        const IColor& entryBackground = kColorWhite, const IColor& entryForeground = kColorBlack);
};

// Which buttons and modifier keys an input event came with.
struct IMouseMod {
  bool L, R, S, C, A;  // left, right, shift, control, alt

  explicit constexpr IMouseMod(bool l = false, bool r = false, bool s = false, bool c = false,
                               bool a = false)
      : L(l), R(r), S(s), C(c), A(a) {}
};

// A further parameter of a control that has more than one.
struct AuxParam {
  double mValue = 0.0;  // normalised
  int mParamIdx = -1;
};
