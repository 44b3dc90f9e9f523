// Drawing on the canvas.
#include <cmath>

#include "graphics/IGraphics.h"
#include "graphics/lice/LICE.h"

namespace {

struct BlendMode {
  int mode;
  float weight;
};

BlendMode ModeOf(const IChannelBlend* blend) {
  if (blend) {
    switch (blend->mMethod) {
      case IChannelBlend::kBlendNone:
        return {LICE_BLIT_MODE_COPY | LICE_BLIT_USE_ALPHA, blend->mWeight};
      case IChannelBlend::kBlendClobber: return {LICE_BLIT_MODE_COPY, blend->mWeight};
      case IChannelBlend::kBlendAdd:
        return {LICE_BLIT_MODE_ADD | LICE_BLIT_USE_ALPHA, blend->mWeight};
      case IChannelBlend::kBlendColorDodge:
        return {LICE_BLIT_MODE_DODGE | LICE_BLIT_USE_ALPHA, blend->mWeight};
      default: break;
    }
  }
  return {LICE_BLIT_MODE_COPY | LICE_BLIT_USE_ALPHA, 1.0f};
}

LICE_IBitmap* PixelsOf(const IBitmap* bitmap) {
  return bitmap ? static_cast<LICE_IBitmap*>(bitmap->mData) : nullptr;
}

// A plain line, colour stored as it is.
void OpaqueLine(LICE_IBitmap* canvas, const IColor& color, int x1, int y1, int x2, int y2) {
  LICE_Line(canvas, static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2),
            static_cast<float>(y2), color.Pixel(), 1.0f, LICE_BLIT_MODE_COPY, false);
}

// Part of a length, in whole pixels.
int FractionOf(int length, float fraction) {
  return TruncateToPixel(std::clamp(fraction, 0.0f, 1.0f) * static_cast<float>(length));
}

}  // namespace

bool IGraphics::DrawBitmap(const IBitmap* bitmap, const IRECT* dest, int srcX, int srcY,
                           const IChannelBlend* blend) {
  const IRECT r = dest->Intersect(mDrawRECT);
  if (r.Empty()) return true;
  const auto [mode, weight] = ModeOf(blend);
  LICE_Blit(mDrawBitmap.get(), PixelsOf(bitmap), r.L, r.T, srcX + r.L - dest->L,
            srcY + r.T - dest->T, r.W(), r.H(), weight, mode);
  return true;
}

bool IGraphics::DrawBitmap(const IBitmap* bitmap, const IRECT* dest, int state,
                           const IChannelBlend* blend) {
  if (state < 2 || bitmap->N < 2) return DrawBitmap(bitmap, dest, 0, 0, blend);
  const int length = bitmap->mFramesAreHorizontal ? bitmap->W : bitmap->H;
  const int offset = TruncateToPixel((state - 1.0) * length / bitmap->N + 0.5);
  return bitmap->mFramesAreHorizontal ? DrawBitmap(bitmap, dest, offset, 0, blend)
                                      : DrawBitmap(bitmap, dest, 0, offset, blend);
}

bool IGraphics::DrawRotatedBitmap(const IBitmap* bitmap, int destCtrX, int destCtrY, double angle,
                                  int yOffsetZeroDeg, const IChannelBlend* blend) {
  // The pivot lies below the picture's middle by the offset, and the upright picture is centred.
  const auto [mode, weight] = ModeOf(blend);
  const int left = destCtrX - bitmap->W / 2;
  const int top = destCtrY - bitmap->H / 2;
  const float pivotX = 0.5f * static_cast<float>(bitmap->W);
  const float pivotY = 0.5f * static_cast<float>(bitmap->H) + static_cast<float>(yOffsetZeroDeg);
  LICE_RotatedBlit(mDrawBitmap.get(), PixelsOf(bitmap), static_cast<float>(left) + pivotX,
                   static_cast<float>(top) + pivotY, pivotX, pivotY, static_cast<float>(angle),
                   weight, mode | LICE_BLIT_FILTER_BILINEAR);
  return true;
}

bool IGraphics::DrawRotatedMask(const IBitmap* base, const IBitmap* mask, const IBitmap* top, int x,
                                int y, double angle, const IChannelBlend* blend) {
  const int w = base->W;
  const int h = base->H;
  LICE_MemBitmap* tmp = mTmpBitmap.get();
  if (!tmp || !PixelsOf(base)) return true;
  tmp->resize(w, h);
  LICE_Blit(tmp, PixelsOf(base), 0, 0, 0, 0, w, h, 1.0f, LICE_BLIT_MODE_COPY);
  const float cx = 0.5f * static_cast<float>(w);
  const float cy = 0.5f * static_cast<float>(h);
  LICE_RotatedBlit(tmp, PixelsOf(mask), cx, cy, 0.5f * static_cast<float>(mask->W),
                   0.5f * static_cast<float>(mask->H), static_cast<float>(angle), 1.0f,
                   LICE_BLIT_MODE_ADD | LICE_BLIT_FILTER_BILINEAR | LICE_BLIT_USE_ALPHA);
  LICE_Blit(tmp, PixelsOf(top), 0, 0, 0, 0, w, h, 1.0f, LICE_BLIT_MODE_COPY | LICE_BLIT_USE_ALPHA);
  const IBitmap combined(static_cast<LICE_IBitmap*>(tmp), w, h);
  const IRECT dest(x, y, x + w, y + h);
  return DrawBitmap(&combined, &dest, 0, 0, blend);
}

bool IGraphics::DrawPoint(const IColor* color, float x, float y, const IChannelBlend* blend) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_PutPixel(mDrawBitmap.get(), TruncateToPixel(x + 0.5f), TruncateToPixel(y + 0.5f),
                color->Pixel(), weight, mode);
  return true;
}

bool IGraphics::ForcePixel(const IColor* color, int x, int y) {
  LICE_SysBitmap* canvas = mDrawBitmap.get();
  if (!canvas || !IRECT(0, 0, canvas->getWidth(), canvas->getHeight()).Contains(x, y)) return false;
  canvas->getBits()[ptrdiff_t{y} * canvas->getRowSpan() + x] = color->Pixel();
  return true;
}

IColor IGraphics::GetPoint(int x, int y) const {
  const LICE_pixel p = LICE_GetPixel(mDrawBitmap.get(), x, y);
  return {LICE_GETA(p), LICE_GETR(p), LICE_GETG(p), LICE_GETB(p)};
}

bool IGraphics::DrawLine(const IColor* color, float x1, float y1, float x2, float y2,
                         const IChannelBlend* blend, bool antiAlias) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_Line(mDrawBitmap.get(), x1, y1, x2, y2, color->Pixel(), weight, mode, antiAlias);
  return true;
}

bool IGraphics::DrawArc(const IColor* color, float cx, float cy, float r, float minAngle,
                        float maxAngle, const IChannelBlend* blend, bool antiAlias) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_Arc(mDrawBitmap.get(), cx, cy, r, minAngle, maxAngle, color->Pixel(), weight, mode,
           antiAlias);
  return true;
}

bool IGraphics::DrawCircle(const IColor* color, float cx, float cy, float r,
                           const IChannelBlend* blend, bool antiAlias) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_Circle(mDrawBitmap.get(), cx, cy, r, color->Pixel(), weight, mode, antiAlias);
  return true;
}

bool IGraphics::FillCircle(const IColor* color, float cx, float cy, float r,
                           const IChannelBlend* blend, bool antiAlias) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_FillCircle(mDrawBitmap.get(), cx, cy, r, color->Pixel(), weight, mode, antiAlias);
  return true;
}

bool IGraphics::RoundRect(const IColor* color, const IRECT* rect, const IChannelBlend* blend,
                          int cornerRadius, bool antiAlias) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_RoundRect(mDrawBitmap.get(), static_cast<float>(rect->L), static_cast<float>(rect->T),
                 static_cast<float>(rect->W()), static_cast<float>(rect->H()),
                 static_cast<float>(cornerRadius), color->Pixel(), weight, mode, antiAlias);
  return true;
}

bool IGraphics::FillRoundRect(const IColor* color, const IRECT* rect, const IChannelBlend* blend,
                              int cornerRadius, bool antiAlias) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_FillRoundRect(mDrawBitmap.get(), static_cast<float>(rect->L), static_cast<float>(rect->T),
                     static_cast<float>(rect->W()), static_cast<float>(rect->H()),
                     static_cast<float>(cornerRadius), color->Pixel(), weight, mode, antiAlias);
  return true;
}

bool IGraphics::FillIRect(const IColor* color, const IRECT* rect, const IChannelBlend* blend) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_FillRect(mDrawBitmap.get(), rect->L, rect->T, rect->W(), rect->H(), color->Pixel(), weight,
                mode);
  return true;
}

bool IGraphics::FillTriangle(const IColor* color, int x1, int y1, int x2, int y2, int x3, int y3,
                             const IChannelBlend* blend) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_FillTriangle(mDrawBitmap.get(), x1, y1, x2, y2, x3, y3, color->Pixel(), weight, mode);
  return true;
}

bool IGraphics::FillIConvexPolygon(const IColor* color, const int* x, const int* y, int nPoints,
                                   const IChannelBlend* blend) {
  const auto [mode, weight] = ModeOf(blend);
  LICE_FillConvexPolygon(mDrawBitmap.get(), x, y, nPoints, color->Pixel(), weight, mode);
  return true;
}

bool IGraphics::DrawRect(const IColor* color, const IRECT* rect) {
  const int right = rect->R - 1;
  const int bottom = rect->B - 1;
  return DrawHorizontalLine(color, rect->T, rect->L, right) &&
         DrawHorizontalLine(color, bottom, rect->L, right) &&
         DrawVerticalLine(color, rect->L, rect->T, bottom) &&
         DrawVerticalLine(color, right, rect->T, bottom);
}

bool IGraphics::DrawVerticalLine(const IColor* color, int x, int y1, int y2) {
  OpaqueLine(mDrawBitmap.get(), *color, x, y1, x, y2);
  return true;
}

bool IGraphics::DrawHorizontalLine(const IColor* color, int y, int x1, int x2) {
  OpaqueLine(mDrawBitmap.get(), *color, x1, y, x2, y);
  return true;
}

bool IGraphics::DrawVerticalLine(const IColor* color, const IRECT* rect, float fraction) {
  return DrawVerticalLine(color, rect->L + FractionOf(rect->W(), fraction), rect->T, rect->B);
}

bool IGraphics::DrawHorizontalLine(const IColor* color, const IRECT* rect, float fraction) {
  return DrawHorizontalLine(color, rect->T + FractionOf(rect->H(), fraction), rect->L, rect->R);
}

bool IGraphics::DrawRadialLine(const IColor* color, float cx, float cy, float angle, float rMin,
                               float rMax, const IChannelBlend* blend, bool antiAlias) {
  const float s = std::sin(angle);
  const float c = std::cos(angle);
  return DrawLine(color, cx + rMin * s, cy - rMin * c, cx + rMax * s, cy - rMax * c, blend,
                  antiAlias);
}

uint32_t* IGraphics::GetBits() const { return mDrawBitmap ? mDrawBitmap->getBits() : nullptr; }
