// The editor in a window of an X server.
#pragma once

#include <atomic>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include "graphics/IGraphicsOffscreen.h"
#include "graphics/windows/LinkFailure.h"
#include "graphics/x11/X11Editor.h"

// While a window is open, a thread of its own runs the editor. It has a connection of its own, and
// all of IGraphics for that window happens there; the calls that need a window answer as if the
// user had declined when another thread makes them. Opening, closing and asking for the window is
// the host's, on any thread: both give the plug-in lock up while they wait for the editor's thread,
// which may be waiting for that lock, and after closing nothing of the window is left. Without a
// server nothing opens and all else works.
class IGraphicsX11 : public IGraphicsOffscreen {
 public:
  IGraphicsX11(IPlugBase* plug, int width, int height, int fps);
  ~IGraphicsX11() override;

  // The host's side. `parent` is the id of a window; the result is that of the editor's.
  void* OpenWindow(void* parent) override;
  void* OpenWindowFromHandle(void* windowRef) override { return OpenWindow(windowRef); }
  void CloseWindow() override;
  void CloseWindowFromHandle() override { CloseWindow(); }
  bool WindowIsOpen() override { return mWindow.load(std::memory_order_acquire) != XCB_NONE; }
  void* GetWindow() override;
  const char* GetGUIAPI() override { return "X11 gui"; }

  bool DrawScreen(IRECT* rect) override;
  void Resize(int w, int h) override;
  void EndUserInput() override;
  // 1 OK, 2 Cancel, 6 Yes, 7 No; 0 when it could not be shown.
  int ShowMessageBox(const char* text, const char* caption, int type) override;
  IPopupMenu* CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) override;
  void CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                       IParam* param) override;
  // Any thread. The lock is given up meanwhile.
  void PromptForFile(HeapString* file, int action, HeapString* dir,
                     const char* extensions) override;
  // Any thread. `errMsg` is shown when this and what is tried next for the same press have failed.
  bool OpenURL(const char* url, const char* errMsg = nullptr) override;
  void HideMouseCursor() override;
  void ShowMouseCursor() override;

  // For the window's own use, on its thread.
  const LICE_IBitmap* GetCanvas() const;
  void ShowFailure() { mFailure.Show(*this); }  // of the last OpenURL

 private:
  void RunEditor(xcb_window_t parent, std::promise<xcb_window_t> opened, std::promise<void> ended);
  bool StartThread(xcb_window_t parent);
  void EndThread();
  X11Editor* EditorHere() const;  // null on every other thread

  std::mutex mThreadMutex;  // guards the next four; never waited for with the plug-in lock
  std::thread mThread;
  X11Ending mEnding;
  std::future<void> mEnded;  // ready when the thread has nothing left to do
  FileDescriptor mSocket;    // that of the thread's connection once more
  std::atomic<std::thread::id> mEditorThread{};
  std::atomic<xcb_window_t> mWindow{XCB_NONE};  // the open window
  X11Editor* mEditor = nullptr;                 // the thread's own
  LinkFailure mFailure;                         // the thread's
};
