// Stock controls that reach out of the editor: web pages and files. Tolmara uses the links, not the
// file selectors.
#pragma once

#include "graphics/IControl.h"
#include "iplug/Containers.h"

// An area of the background that opens a web page.
class IURLControl : public IControl {
 public:
  // `backupURL` is tried when `url` cannot be opened; either may be "". Texts are cut at 255 bytes.
  IURLControl(IPlugBase* plug, IRECT rect, const char* url, const char* backupURL = "",
              const char* errMsg = "");
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;

  const char* GetURL() const { return mURL; }
  const char* GetBackupURL() const { return mBackupURL; }
  const char* GetErrMsg() const { return mErrMsg; }

 private:
  bool TryToOpen(const char* url);

  char mURL[256];
  char mBackupURL[256];
  char mErrMsg[256];  // for the user when nothing could be opened
};

// Asks for a file at a press and tells the plug-in by a change of its parameter.
class IFileSelectorControlNoBitmap : public IControl {
 public:
  // `fileAction` is one of IGraphics::EFileAction; `extensions` are separated by blanks.
  IFileSelectorControlNoBitmap(IPlugBase* plug, IRECT rect, int paramIdx, int fileAction,
                               const char* dir = "", const char* extensions = "");
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;
  bool IsDirty() override;  // once more after a selection

  void GetLastSelectedFileForPlug(HeapString* file) const { file->Set(mFile.Get()); }
  void SetLastSelectedFileFromPlug(const char* file) { mFile.Set(file); }

 protected:
  enum EState { kIdle = 0, kSelecting = 1, kDone = 2 };

  HeapString mDir;   // where the next dialog starts
  HeapString mFile;  // last choice
  HeapString mExtensions;
  int mFileAction;
  int mState = kIdle;  // EState
};

// The same, with a picture shown while the dialog is open.
class IFileSelectorControl : public IFileSelectorControlNoBitmap {
 public:
  IFileSelectorControl(IPlugBase* plug, IRECT rect, int paramIdx, const IBitmap& bitmap,
                       int fileAction, const char* dir = "", const char* extensions = "");
  bool Draw(IGraphics* graphics) override;

 private:
  IBitmap mBitmap;
};
