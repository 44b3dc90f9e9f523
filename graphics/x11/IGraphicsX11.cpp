// The thread of the open editor, and the operations that it lends to the controls.
#include "graphics/x11/IGraphicsX11.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <chrono>
#include <system_error>

#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/windows/LockPause.h"
#include "iplug/StartThread.h"

namespace {

constexpr int kMenuDistance = 4;              // pixels between a control and its menu
constexpr std::chrono::seconds kPatience{2};  // with a server that takes nothing any more

void* AsPointer(xcb_window_t window) {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(window));
}

}  // namespace

IGraphicsX11::IGraphicsX11(IPlugBase* plug, int width, int height, int fps)
    : IGraphicsOffscreen(plug, width, height, fps) {}

IGraphicsX11::~IGraphicsX11() { IGraphicsX11::CloseWindow(); }

void* IGraphicsX11::OpenWindow(void* parent) {
  const auto id = static_cast<xcb_window_t>(reinterpret_cast<uintptr_t>(parent));
  if (!id || EditorHere()) return nullptr;
  const LockPause pause(GetPlug());
  const std::lock_guard guard(mThreadMutex);
  EndThread();
  return StartThread(id) ? GetWindow() : nullptr;
}

void IGraphicsX11::CloseWindow() {
  if (EditorHere()) {
    // From inside a call of the editor itself, which ends when that returns.
    mEnding.Announce();
    return;
  }
  const LockPause pause(GetPlug());
  const std::lock_guard guard(mThreadMutex);
  EndThread();
}

void* IGraphicsX11::GetWindow() { return AsPointer(mWindow.load(std::memory_order_acquire)); }

bool IGraphicsX11::StartThread(xcb_window_t parent) {
  if (!mEnding.Reset()) return false;
  std::promise<xcb_window_t> opened;
  auto window = opened.get_future();
  std::promise<void> ended;
  mEnded = ended.get_future();
  try {
    mThread = ::StartThread("tolmara-editor", [this, parent, opened = std::move(opened),
                                               ended = std::move(ended)]() mutable {
      RunEditor(parent, std::move(opened), std::move(ended));
    });
  } catch (const std::system_error&) {
    return false;
  }
  if (window.get() != XCB_NONE) return true;
  EndThread();
  return false;
}

void IGraphicsX11::EndThread() {
  if (!mThread.joinable()) return;
  mEnding.Announce();
  // In the middle of a write to such a server the thread sees no announcement.
  if (mEnded.wait_for(kPatience) == std::future_status::timeout) {
    shutdown(mSocket.Get(), SHUT_RDWR);
  }
  mThread.join();
  mSocket.Close();
}

void IGraphicsX11::RunEditor(xcb_window_t parent, std::promise<xcb_window_t> opened,
                             std::promise<void> ended) {
  mEditorThread.store(std::this_thread::get_id(), std::memory_order_relaxed);
  {
    X11Editor editor(*this, mEnding);
    mEditor = &editor;
    const bool isOpen = editor.Open(parent);
    if (isOpen) {
      mSocket = FileDescriptor(fcntl(editor.Socket(), F_DUPFD_CLOEXEC, 0));
      mWindow.store(editor.Window(), std::memory_order_release);
    }
    opened.set_value(isOpen ? editor.Window() : XCB_NONE);
    if (isOpen) editor.Run();
    mWindow.store(XCB_NONE, std::memory_order_release);
  }
  mEditor = nullptr;
  mEditorThread.store(std::thread::id(), std::memory_order_relaxed);
  ended.set_value();
}

// Each thread but the editor's finds another id there, whenever it looks.
X11Editor* IGraphicsX11::EditorHere() const {
  const bool isHere = mEditorThread.load(std::memory_order_relaxed) == std::this_thread::get_id();
  return isHere ? mEditor : nullptr;
}

const LICE_IBitmap* IGraphicsX11::GetCanvas() const { return GetDrawBitmap(); }

bool IGraphicsX11::DrawScreen(IRECT* rect) {
  X11Editor* editor = EditorHere();
  return editor && editor->ShowCanvas(*rect);
}

void IGraphicsX11::Resize(int w, int h) {
  if (w == Width() && h == Height()) return;
  EndUserInput();
  IGraphicsOffscreen::Resize(w, h);
  if (X11Editor* editor = EditorHere()) editor->Resize(w, h);
}

void IGraphicsX11::EndUserInput() {
  if (X11Editor* editor = EditorHere()) editor->EndTextEntry();
}

IPopupMenu* IGraphicsX11::CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) {
  ReleaseMouseCapture();
  X11Editor* editor = EditorHere();
  if (!editor || !menu || !rect) return nullptr;
  const LockPause pause(GetPlug());
  return editor->RunMenu(*menu, {rect->L, rect->B + kMenuDistance});
}

void IGraphicsX11::CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                                   IParam* param) {
  X11Editor* editor = EditorHere();
  if (editor && text && rect) editor->OpenTextEntry(control, *text, *rect, str, param);
}

void IGraphicsX11::HideMouseCursor() {
  X11Editor* editor = EditorHere();
  if (!editor || mCursorHidden) return;
  if (const auto point = editor->HideCursor()) {
    mCursorHidden = true;
    mHiddenMousePointX = point->x;
    mHiddenMousePointY = point->y;
  }
}

void IGraphicsX11::ShowMouseCursor() {
  if (!mCursorHidden) return;
  mCursorHidden = false;
  if (X11Editor* editor = EditorHere()) {
    editor->ShowCursor({mHiddenMousePointX, mHiddenMousePointY});
  }
}
