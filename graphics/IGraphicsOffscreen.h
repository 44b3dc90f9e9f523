// An editor without a window: draws into memory and takes its input from calls. Tolmara uses it for
// screenshots and as the base of the X11 editor.
#pragma once

#include <string>

#include "graphics/IGraphics.h"

// Supplies every platform service that needs no window system: text, bitmaps and paths. What
// needs one answers as if the user had declined. A window layer derives from this class.
class IGraphicsOffscreen : public IGraphics {
 public:
  using IGraphics::IGraphics;

  bool DrawScreen(IRECT* rect) override;
  bool DrawIText(IText* text, const char* str, IRECT* rect) override;
  void EndUserInput() override {}
  void Resize(int w, int h) override;
  bool WindowIsOpen() override { return false; }
  const char* GetGUIAPI() override { return "Offscreen gui"; }
  int ShowMessageBox(const char* text, const char* caption, int type) override;
  IPopupMenu* CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) override;
  void CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                       IParam* param) override;
  void HostPath(HeapString* path) override;
  void PluginPath(HeapString* path) override;
  void DesktopPath(HeapString* path) override;
  void PromptForFile(HeapString* file, int action, HeapString* dir,
                     const char* extensions) override;
  bool OpenURL(const char* url, const char* errMsg = nullptr) override;
  void* OpenWindow(void* parent) override;
  void* OpenWindowFromHandle(void* windowRef) override;
  void CloseWindowFromHandle() override {}
  void CloseWindow() override {}
  void* GetWindow() override { return nullptr; }
  void HideMouseCursor() override {}
  void ShowMouseCursor() override {}

  void SetBundleID(const char* bundleID) { mBundleID.Set(bundleID); }

  // Where bitmaps are looked for from now on, in every editor of the process. "" goes back to
  // "resources/img" beside the binary that holds this code. Set before any editor is made.
  static void SetResourceFolder(std::string folder);
  static std::string GetResourceFolder();

 protected:
  LICE_IBitmap* OSLoadBitmap(int id, const char* name) override;

 private:
  HeapString mBundleID;
};
