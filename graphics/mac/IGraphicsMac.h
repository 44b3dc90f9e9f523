// The editor in a Cocoa view.
#pragma once

#include "graphics/IGraphics.h"
#include "graphics/mac/ClassNames.h"
#include "graphics/mac/CocoaPlatform.h"
#include "graphics/windows/LinkFailure.h"

@class IGraphicsCocoa;

// Everything runs on the host's main thread. Without an open view the operations that need one
// answer as if the user had declined. While a menu or dialog waits for its answer the plug-in lock
// is given up, so that sound goes on.
class IGraphicsMac : public IGraphics {
 public:
  using IGraphics::IGraphics;
  ~IGraphicsMac() override;

  // Names the bundle that holds the code and the bitmaps.
  void SetBundleID(const char* bundleID) { mBundleID.Set(bundleID); }

  // `parentView` is an NSView; null or another object opens nothing. The result is the new view.
  void* OpenWindow(void* parentView) override;
  // Over the host's window, for hosts that have no view; the result is the new view.
  void* OpenWindowFromHandle(void* windowRef) override;
  void CloseWindowFromHandle() override;
  void CloseWindow() override;
  bool WindowIsOpen() override { return mGraphicsCocoa != nil; }
  void* GetWindow() override { return mGraphicsCocoa; }
  const char* GetGUIAPI() override { return "Cocoa gui"; }

  bool DrawScreen(IRECT* rect) override;
  bool DrawIText(IText* text, const char* str, IRECT* rect) override;
  void Resize(int w, int h) override;
  void EndUserInput() override;
  // 1 OK, 2 Cancel, 6 Yes, 7 No; 0 when it could not be shown.
  int ShowMessageBox(const char* text, const char* caption, int type) override;
  IPopupMenu* CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) override;
  void CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                       IParam* param) override;
  void HostPath(HeapString* path) override;
  void PluginPath(HeapString* path) override;
  void DesktopPath(HeapString* path) override;
  void PromptForFile(HeapString* file, int action, HeapString* dir,
                     const char* extensions) override;
  // `errMsg` is shown when this and what is tried next for the same press have failed.
  bool OpenURL(const char* url, const char* errMsg = nullptr) override;
  void HideMouseCursor() override;
  void ShowMouseCursor() override;

  // For the view's own use.
  void DrawView(const IRECT& rect);
  bool NextFrame(IRECT* area);  // false: nothing to show
  void ShowFailure() { mFailure.Show(*this); }

 protected:
  LICE_IBitmap* OSLoadBitmap(int id, const char* name) override;

 private:
  IGraphicsCocoa* mGraphicsCocoa = nil;  // retained, nil without a window
  HeapString mBundleID;
  NSWindow* mParentWindow = nil;  // around the host's; retained, nil without one
  NSWindow* mChildWindow = nil;   // over it; likewise
  IRECT mDrawn;                   // of the canvas, by the last DrawScreen
  IRECT mUnshown;                 // drawn, but outside of what the window had asked for
  LinkFailure mFailure;
};
