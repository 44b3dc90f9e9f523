// Life of the editor, its list of controls, and values that come from the plug-in.
#include "graphics/IGraphics.h"

#include "graphics/controls/IControls.h"
#include "graphics/lice/LICE_Bitmap.h"
#include "iplug/IParam.h"
#include "iplug/IPlugBase.h"
#include "iplug/Numbers.h"

namespace {

constexpr int kDefaultFPS = 25;

}  // namespace

IText::IText(int size, const IColor& color, const char* font, int style, int align, int orientation,
             int quality, const IColor& entryBackground, const IColor& entryForeground)
    : mSize(size),
      mColor(color),
      mTextEntryBGColor(entryBackground),
      mTextEntryFGColor(entryForeground),
      mStyle(style),
      mAlign(align),
      mOrientation(orientation),
      mQuality(quality) {
  if (font) CopyText(mFont, font);
}

IGraphics::IGraphics(IPlugBase* plug, int width, int height, int fps)
    : mPlug(plug), mWidth(width), mHeight(height), mFPS(fps > 0 ? fps : kDefaultFPS) {}

IGraphics::~IGraphics() {
  mKeyCatcher.reset();
  DeleteControls();
}

void IGraphics::DeleteControls() { mControls.Empty(true); }

void IGraphics::Resize(int w, int h) {
  mWidth = w;
  mHeight = h;
  ReleaseMouseCapture();
  mMouseOver = -1;
  DeleteControls();
  PrepDraw();
  if (mPlug) mPlug->ResizeGraphics();
}

bool IGraphics::PromptForColor(IColor*, const char*) { return false; }

void IGraphics::PrepDraw() {
  mDrawBitmap = std::make_unique<LICE_SysBitmap>(mWidth, mHeight);
  mTmpBitmap = std::make_unique<LICE_MemBitmap>();
  mFrameBitmap = std::make_unique<LICE_SysBitmap>(mWidth, mHeight);
}

void IGraphics::AttachBackground(int id, const char* name) {
  const IBitmap bitmap = LoadIBitmap(id, name);
  InsertBackground(
      std::make_unique<IBitmapControl>(mPlug, 0, 0, -1, bitmap, IChannelBlend::kBlendClobber));
}

void IGraphics::AttachPanelBackground(const IColor* color) {
  InsertBackground(
      std::make_unique<IPanelControl>(mPlug, IRECT(0, 0, mWidth, mHeight), -1, *color));
}

void IGraphics::InsertBackground(std::unique_ptr<IControl> control) {
  mControls.InsertOwned(0, std::move(control));
}

int IGraphics::AttachControl(IControl* control) {
  mControls.AddOwned(std::unique_ptr<IControl>(control));
  return mControls.GetSize() - 1;
}

void IGraphics::SetKeyCatcher(IControl* control) { mKeyCatcher.reset(control); }

void IGraphics::SetStrictDrawing(bool strict) {
  mStrict = strict;
  SetAllControlsDirty();
}

void IGraphics::SetParameterFromPlug(int paramIdx, double value, bool normalized) {
  if (!normalized) {
    const IParam* param = mPlug ? mPlug->GetParam(paramIdx) : nullptr;
    if (!param) return;
    value = param->GetNormalized(value);
  }
  for (IControl* control : mControls) {
    if (control->ParamIdx() == paramIdx) control->SetValueFromPlug(value);
    const int auxIdx = control->AuxParamIdx(paramIdx);
    if (auxIdx >= 0) control->SetAuxParamValueFromPlug(auxIdx, value);
  }
}

void IGraphics::SetControlFromPlug(int controlIdx, double normalizedValue) {
  if (IControl* control = GetControl(controlIdx)) control->SetValueFromPlug(normalizedValue);
}

void IGraphics::SetAllControlsDirty() {
  for (IControl* control : mControls) control->SetDirty(false);
}

void IGraphics::HideControl(int paramIdx, bool hide) {
  for (IControl* control : mControls) {
    if (control->ParamIdx() == paramIdx) control->Hide(hide);
  }
}

void IGraphics::GrayOutControl(int paramIdx, bool gray) {
  for (IControl* control : mControls) {
    if (control->ParamIdx() == paramIdx) control->GrayOut(gray);
  }
}

void IGraphics::ClampControl(int paramIdx, double lo, double hi, bool normalized) {
  if (!normalized) {
    const IParam* param = mPlug ? mPlug->GetParam(paramIdx) : nullptr;
    if (!param) return;
    lo = param->GetNormalized(lo);
    hi = param->GetNormalized(hi);
  }
  for (IControl* control : mControls) {
    if (control->ParamIdx() == paramIdx) control->SetClamp(lo, hi);
  }
}

void IGraphics::OnGUIIdle() {
  for (IControl* control : mControls) control->Animate();
}
