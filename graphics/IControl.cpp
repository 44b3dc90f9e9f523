// The default behaviour of a control and the flow of its value.
#include "graphics/IControl.h"

#include "graphics/IGraphics.h"
#include "graphics/controls/ITextControls.h"
#include "iplug/IParam.h"
#include "iplug/IPlugBase.h"

IControl::IControl(IPlugBase* plug, IRECT rect, int paramIdx, IChannelBlend blend)
    : mPlug(plug), mRECT(rect), mTargetRECT(rect), mParamIdx(paramIdx), mBlend(blend) {}

IControl::~IControl() = default;

void IControl::OnMouseDown(int, int, IMouseMod* mod) {
  if (mod->R) PromptUserInput();
}

void IControl::OnMouseUp(int, int, IMouseMod*) {}

void IControl::OnMouseDrag(int, int, int, int, IMouseMod*) {}

void IControl::OnMouseDblClick(int, int, IMouseMod*) {
  const double defaultValue = GetDefaultValue();
  if (!(defaultValue >= 0.0)) return;
  SetValue(defaultValue);
  SetDirty(true);
}

void IControl::OnMouseWheel(int, int, IMouseMod* mod, int d) {
  SetValue(GetValue() + d * (mod->S || mod->C ? 0.001 : 0.01));
  SetDirty(true);
}

bool IControl::OnKeyDown(int, int, int) { return false; }

void IControl::OnMouseOver(int, int, IMouseMod*) {}

void IControl::OnMouseOut() {}

void IControl::SetValueFromPlug(double value) {
  if (GetDefaultValue() < 0.0) {
    SetValue(value);
    Store(mDefaultValue, value);
  }
  if (GetValue() == value) return;
  SetValue(value);
  // Before mDirty, so that SetClean, which looks at mDirty first, misses none of a change.
  MarkRedraw();
  SetDirty(false);
}

void IControl::TextFromTextEntry(const char*) {}

void IControl::Hide(bool hide) {
  mHide = hide;
  MarkRedraw();
  SetDirty(false);
}

void IControl::GrayOut(bool gray) {
  mGrayed = gray;
  mBlend.mWeight = gray ? 0.25f : 1.0f;
  SetDirty(false);
}

bool IControl::IsHit(int x, int y) { return mTargetRECT.Contains(x, y); }

void IControl::SetDirty(bool pushParamToPlug) {
  const double value = GetValue();
  if (value < GetClampLo()) {
    SetValue(GetClampLo());
  } else if (value > GetClampHi()) {
    SetValue(GetClampHi());
  }
  MarkDirty();
  if (!pushParamToPlug || !mPlug || mParamIdx < 0) return;

  mPlug->SetParameterFromGUI(mParamIdx, GetValue());
  if (mValDisplayControl) {
    char text[IParam::kTextSize];
    GetParamDisplay(text);
    mValDisplayControl->SetTextFromPlug(text);
  }
  const IParam* param = mPlug->GetParam(mParamIdx);
  if (mNameDisplayControl && param) mNameDisplayControl->SetTextFromPlug(param->GetNameForHost());
}

void IControl::SetClean() {
  // One exchange: a thread that sets mRedraw and then mDirty is seen here, or the control stays
  // dirty.
  std::atomic_ref<bool>(mDirty).exchange(false, std::memory_order_acq_rel);
  if (!Load(mRedraw)) return;
  Store(mRedraw, false);
  MarkDirty();
}

bool IControl::IsDirty() { return GetDirtyFlag(); }

// A thread that sees false also sees the control as the frame has left it.
void IControl::SetInFrame(bool inFrame) {
  std::atomic_ref<bool>(mInFrame).store(inFrame, std::memory_order_release);
}

bool IControl::IsInFrame() const {
  return std::atomic_ref<bool>(const_cast<bool&>(mInFrame)).load(std::memory_order_acquire);
}

void IControl::Animate() {}

void IControl::SetAuxParamValueFromPlug(int auxIdx, double value) {
  AuxParam* aux = GetAuxParam(auxIdx);
  if (!aux || Load(aux->mValue) == value) return;
  Store(aux->mValue, value);
  MarkRedraw();
  SetDirty(false);
}

void IControl::SetValueFromUserInput(double value) {
  if (GetValue() == value) return;
  SetValue(value);
  SetDirty(true);
  MarkRedraw();
}

void IControl::PromptUserInput() {
  const IParam* param = mPlug ? mPlug->GetParam(mParamIdx) : nullptr;
  if (!param) return;
  IRECT rect = mRECT;
  if (param->GetNDisplayTexts() == 0) {
    const float cx = mRECT.MW();
    const float cy = mRECT.MH();
    rect = {static_cast<int>(cx - 15.0f), static_cast<int>(cy - 8.0f), static_cast<int>(cx + 15.0f),
            static_cast<int>(cy + 8.0f)};
  }
  PromptUserInput(&rect);
}

void IControl::PromptUserInput(IRECT* textRect) {
  if (mDisablePrompt || mParamIdx < 0 || !mPlug) return;
  IGraphics* graphics = mPlug->GetGraphics();
  if (!graphics) return;
  graphics->PromptUserInput(this, mPlug->GetParam(mParamIdx), textRect);
  MarkRedraw();
}

void IControl::AddAuxParam(int paramIdx) { mAuxParams.push_back({0.0, paramIdx}); }

AuxParam* IControl::GetAuxParam(int idx) {
  const bool inRange = idx >= 0 && idx < static_cast<int>(mAuxParams.size());
  return inRange ? &mAuxParams[static_cast<std::size_t>(idx)] : nullptr;
}

int IControl::AuxParamIdx(int paramIdx) const {
  for (std::size_t i = 0; i < mAuxParams.size(); ++i) {
    if (mAuxParams[i].mParamIdx == paramIdx) return static_cast<int>(i);
  }
  return -1;
}

void IControl::SetAllAuxParamsFromGUI() {
  for (const AuxParam& aux : mAuxParams)
    mPlug->SetParameterFromGUI(aux.mParamIdx, Load(aux.mValue));
}

void IControl::MarkDirty() { std::atomic_ref<bool>(mDirty).store(true, std::memory_order_release); }

void IControl::GetParamDisplay(char* text) const {
  text[0] = 0;
  const IParam* param = mPlug ? mPlug->GetParam(mParamIdx) : nullptr;
  if (param) param->GetDisplayForHost(param->Value(), false, text, true);
}
