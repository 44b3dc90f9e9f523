// Drawing of the value on the fader's handle.
#include "graphics/controls/IFaderMultiControlText.h"

#include <cstdlib>

#include "graphics/IGraphics.h"
#include "iplug/IParam.h"

IFaderMultiControlText::IFaderMultiControlText(IPlugBase* plug, int x, int y, int len, int paramIdx,
                                               const IBitmap& bitmap, int direction,
                                               bool onlyHandle, const IText& text,
                                               double textOffsetDivisor)
    : IFaderControl(plug, x, y, len, paramIdx, bitmap, direction, onlyHandle),
      mTextOffsetDivisor(textOffsetDivisor) {
  mText = text;
}

bool IFaderMultiControlText::Draw(IGraphics* graphics) {
  if (!IFaderControl::Draw(graphics)) return false;
  char display[IParam::kTextSize];
  GetParamDisplay(display);
  if (!*display) return false;
  IRECT r = GetHandleRECT();
  const double shift = std::abs(r.T - r.B) / mTextOffsetDivisor;
  r.T = TruncateToPixel(r.T + shift);
  r.B = TruncateToPixel(r.B + shift);
  return graphics->DrawIText(&mText, display, &r);
}
