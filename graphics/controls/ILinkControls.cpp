// Presses that open web pages and file dialogs.
#include "graphics/controls/ILinkControls.h"

#include "graphics/IGraphics.h"
#include "iplug/IPlugBase.h"
#include "iplug/Numbers.h"

IURLControl::IURLControl(IPlugBase* plug, IRECT rect, const char* url, const char* backupURL,
                         const char* errMsg)
    : IControl(plug, rect, -1, IChannelBlend::kBlendClobber) {
  CopyText(mURL, url);
  CopyText(mBackupURL, backupURL);
  CopyText(mErrMsg, errMsg);
}

void IURLControl::OnMouseDown(int, int, IMouseMod*) {
  if (!TryToOpen(mURL)) TryToOpen(mBackupURL);
}

bool IURLControl::TryToOpen(const char* url) {
  IGraphics* graphics = mPlug ? mPlug->GetGraphics() : nullptr;
  return graphics && *url && graphics->OpenURL(url, mErrMsg);
}

bool IURLControl::Draw(IGraphics*) { return true; }

IFileSelectorControlNoBitmap::IFileSelectorControlNoBitmap(IPlugBase* plug, IRECT rect,
                                                           int paramIdx, int fileAction,
                                                           const char* dir, const char* extensions)
    : IControl(plug, rect, paramIdx), mDir(dir), mExtensions(extensions), mFileAction(fileAction) {}

void IFileSelectorControlNoBitmap::OnMouseDown(int, int, IMouseMod*) {
  IGraphics* graphics = mPlug ? mPlug->GetGraphics() : nullptr;
  if (!graphics) return;
  mState = kSelecting;
  SetDirty(false);
  graphics->PromptForFile(&mFile, mFileAction, &mDir, mExtensions.Get());
  // A change of the value, whatever it is, tells the plug-in to look at the file.
  const double value = GetValue() + 1.0;
  SetValue(value > 1.0 ? 0.0 : value);
  mState = kDone;
  SetDirty(true);
}

bool IFileSelectorControlNoBitmap::IsDirty() {
  if (GetDirtyFlag()) return true;
  if (mState != kDone) return false;
  mState = kIdle;
  return true;
}

bool IFileSelectorControlNoBitmap::Draw(IGraphics*) { return true; }

IFileSelectorControl::IFileSelectorControl(IPlugBase* plug, IRECT rect, int paramIdx,
                                           const IBitmap& bitmap, int fileAction, const char* dir,
                                           const char* extensions)
    : IFileSelectorControlNoBitmap(plug, rect, paramIdx, fileAction, dir, extensions),
      mBitmap(bitmap) {}

bool IFileSelectorControl::Draw(IGraphics* graphics) {
  return mState != kSelecting || graphics->DrawBitmap(&mBitmap, &mRECT, 0, 0, &mBlend);
}
