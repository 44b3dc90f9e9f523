// The product's fader: the value rides on the handle. Tolmara uses all of it.
#pragma once

#include "graphics/controls/IFaderControl.h"

class IFaderMultiControlText : public IFaderControl {
 public:
  // The text stands below the top of the handle by the handle's height over `textOffsetDivisor`.
  IFaderMultiControlText(IPlugBase* plug, int x, int y, int len, int paramIdx,
                         const IBitmap& bitmap, int direction, bool onlyHandle, const IText& text,
                         double textOffsetDivisor);
  bool Draw(IGraphics* graphics) override;

  double GetTextOffsetDivisor() const { return mTextOffsetDivisor; }

 private:
  double mTextOffsetDivisor;
};
