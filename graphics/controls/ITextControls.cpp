// Text, captions of parameters and text in a font of pictures.
#include "graphics/controls/ITextControls.h"

#include <cstring>

#include "graphics/IGraphics.h"
#include "iplug/IParam.h"
#include "iplug/IPlugBase.h"

ITextControl::ITextControl(IPlugBase* plug, IRECT rect, int paramIdx, const IText& text,
                           const char* str)
    : IControl(plug, rect, paramIdx), mStr(str) {
  mText = text;
}

bool ITextControl::Draw(IGraphics* graphics) {
  return mStr.IsEmpty() || graphics->DrawIText(&mText, mStr.Get(), &mRECT);
}

void ITextControl::SetTextFromPlug(const char* text) {
  if (std::strcmp(mStr.Get(), text) == 0) return;
  SetDirty(false);
  mStr.Set(text);
}

ICaptionControl::ICaptionControl(IPlugBase* plug, IRECT rect, int paramIdx, const IText& text,
                                 bool showParamLabel)
    : ITextControl(plug, rect, paramIdx, text, ""), mShowParamLabel(showParamLabel) {}

void ICaptionControl::OnMouseDown(int, int, IMouseMod* mod) {
  if (mod->L || mod->R) PromptUserInput();
}

void ICaptionControl::OnMouseDblClick(int, int, IMouseMod*) { PromptUserInput(); }

bool ICaptionControl::Draw(IGraphics* graphics) {
  char display[IParam::kTextSize];
  GetParamDisplay(display);
  mStr.Set(display);
  const IParam* param = mPlug ? mPlug->GetParam(mParamIdx) : nullptr;
  if (mShowParamLabel && param) {
    mStr.Append(" ");
    mStr.Append(param->GetLabelForHost());
  }
  return ITextControl::Draw(graphics);
}

IBitmapTextControl::IBitmapTextControl(IPlugBase* plug, IRECT rect, int paramIdx,
                                       const IBitmap& textBitmap, const char* str, int charWidth,
                                       int charHeight)
    : IControl(plug, rect, paramIdx),
      mStr(str),
      mCharWidth(charWidth),
      mCharHeight(charHeight),
      mTextBitmap(textBitmap) {}

void IBitmapTextControl::SetTextFromPlug(const char* text) {
  if (std::strcmp(mStr.Get(), text) == 0) return;
  SetDirty(false);
  mStr.Set(text);
}

bool IBitmapTextControl::Draw(IGraphics* graphics) {
  if (mStr.IsEmpty() || mCharWidth <= 0) return true;
  constexpr int kFirstFrame = 31;  // the blank, character 32, is frame 1
  const bool centred = mText.mAlign == IText::kAlignCenter;
  const int n = std::min(mStr.GetLength(), (mRECT.W() - 2 * mCharWidth) / mCharWidth);
  const int margin = centred ? (mRECT.W() - mStr.GetLength() * mCharWidth) / 2 : mCharWidth;
  const int y = mRECT.T + (mRECT.H() - mCharHeight) / 2;
  for (int i = 0; i < n; ++i) {
    const int x = mRECT.L + margin + i * mCharWidth;
    const IRECT cell(x, y, x + mCharWidth, y + mCharHeight);
    const int frame = static_cast<unsigned char>(mStr.Get()[i]) - kFirstFrame;
    graphics->DrawBitmap(&mTextBitmap, &cell, frame, &mBlend);
  }
  return true;
}
