// The editor as the base class uses it. The only source of this folder that knows its class.
#include "graphics/IGraphics.h"
#include "iplug/IPlugBase.h"

void IPlugBase::DeleteEditor() {
  delete mGraphics;
  mGraphics = nullptr;
}

void IPlugBase::AttachGraphics(IGraphics* graphics) {
  if (!graphics) return;
  const PlugLock::Guard lock(mLock);
  for (int i = 0; i < NParams(); ++i) {
    graphics->SetParameterFromPlug(i, GetParam(i)->GetNormalized(), true);
  }
  graphics->PrepDraw();
  mGraphics = graphics;
}

void IPlugBase::ShowParameter(int idx, double value, bool normalized) {
  if (mGraphics) mGraphics->SetParameterFromPlug(idx, value, normalized);
}

void IPlugBase::RedrawParamControls() {
  for (int i = 0; i < NParams(); ++i) ShowParameter(i, GetParam(i)->Value(), false);
}

void IPlugBase::GetEditorSize(int* width, int* height) const {
  *width = mGraphics ? mGraphics->Width() : 0;
  *height = mGraphics ? mGraphics->Height() : 0;
}

bool IPlugBase::OpenEditorWindow(void* parent) {
  return mGraphics && mGraphics->OpenWindow(parent) != nullptr;
}

void IPlugBase::CloseEditorWindow() {
  if (mGraphics) mGraphics->CloseWindow();
}

bool IPlugBase::PromptForPresetFile(const char* defaultFileName, int action, const char* extension,
                                    HeapString* path) {
  if (!mGraphics) return false;
  path->Set(defaultFileName);
  mGraphics->PromptForFile(path, action, &mPreviousPath, extension);
  return !path->IsEmpty();
}
