// A host's window for an editor, and a user who fidgets in it.
#pragma once

#include <xcb/xcb.h>

#include "tests/support/Random.h"

// A connection and a mapped window of its own on the server that DISPLAY names. One thread.
class HostWindow {
 public:
  HostWindow(int width, int height);  // throws std::runtime_error without a server
  ~HostWindow() { xcb_disconnect(mConnection); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;

  // What effEditOpen takes.
  void* Handle() const { return reinterpret_cast<void*>(uintptr_t{mId}); }
  // Moves the mouse to a place in the window and perhaps presses, drags, turns the wheel or types.
  void Fidget(Random& random);

 private:
  void Input(int type, int detail, int x = 0, int y = 0);
  void Sync();

  xcb_connection_t* mConnection;
  xcb_window_t mRoot = XCB_NONE, mId = XCB_NONE;
  int mWidth, mHeight;
};
