// A server without a screen, and a user at it who moves the mouse, types and looks.
#pragma once

#include <signal.h>
#include <sys/types.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "graphics/IGraphicsTypes.h"
#include "graphics/x11/server/X11Connection.h"
#include "graphics/x11/server/X11Screen.h"

// Waits for a condition, far longer than it should take; returns whether it came true.
bool Eventually(const std::function<bool()>& condition);

// A program of the tests' own, ended with the object.
class TestProgram {
 public:
  explicit TestProgram(const std::string& command);
  ~TestProgram() { Kill(); }
  TestProgram(const TestProgram&) = delete;
  TestProgram& operator=(const TestProgram&) = delete;

  const std::string& FirstLine() const { return mFirstLine; }  // of its output
  void Kill();
  void Signal(int number) { kill(mPid, number); }

 private:
  std::FILE* mOutput;
  pid_t mPid = 0;
  std::string mFirstLine;
};

// Starts Xvfb on a free display, which DISPLAY names while it runs.
class XServer {
 public:
  static constexpr int kWidth = 800, kHeight = 600;
  static constexpr const char* kUsual = "-screen 0 800x600x24";

  explicit XServer(const std::string& options);
  ~XServer();
  void Kill() { mProgram.Kill(); }
  void Signal(int number) { mProgram.Signal(number); }

 private:
  TestProgram mProgram;
};

constexpr xcb_keysym_t kShiftKey = 0xFFE1, kControlKey = 0xFFE3, kAltKey = 0xFFE9,
                       kSuperKey = 0xFFEB, kKeypadEnter = 0xFF8D;

// The host's own connection.
class XUser {
 public:
  XUser();

  xcb_connection_t* Get() { return mConnection.Get(); }
  const xcb_screen_t& Screen() const { return mConnection.Screen(); }
  template <class Reply, class Cookie>
  X11Reply<Reply> Ask(Cookie cookie) {
    return mConnection.Await<Reply>(cookie);
  }
  void Sync() { Focus(); }  // waits until the server has done all that was asked

  // A mapped window below the root that keeps its place; of the root's depth and visual or others.
  xcb_window_t MakeWindow(const IRECT& place, uint32_t events = 0, int depth = 0,
                          xcb_visualid_t visual = XCB_NONE);
  void Destroy(xcb_window_t window);
  std::vector<xcb_window_t> ChildrenOf(xcb_window_t window);
  IRECT Place(xcb_window_t window);  // in its parent; empty when it has gone
  xcb_window_t Focus();
  void SetFocus(xcb_window_t window);
  bool GrabKeys();
  bool CanGrab();  // nobody holds mouse or keyboard

  // The real input of a user. Places are those of the screen.
  X11Point Pointer();
  void MoveTo(int x, int y) { Fake(XCB_MOTION_NOTIFY, 0, x, y); }
  void Press(int button) { Fake(XCB_BUTTON_PRESS, button); }
  void Release(int button) { Fake(XCB_BUTTON_RELEASE, button); }
  void Click(int button = 1, int times = 1);  // quickly enough for double clicks
  void Wheel(int distance) { Click(distance > 0 ? 4 : 5, std::abs(distance)); }
  xcb_keycode_t CodeOf(xcb_keysym_t symbol, bool* shifted = nullptr);
  void HoldKey(xcb_keysym_t symbol) { Fake(XCB_KEY_PRESS, CodeOf(symbol)); }
  void ReleaseKey(xcb_keysym_t symbol) { Fake(XCB_KEY_RELEASE, CodeOf(symbol)); }
  void Type(xcb_keysym_t symbol);
  void Type(const std::string& text);
  void TypeWith(xcb_keysym_t modifier, xcb_keysym_t symbol);

  // Pixels of a part of a window as the server counts them, without bits that are of no depth.
  std::vector<uint32_t> Picture(xcb_window_t window, const IRECT& rect);
  uint32_t ScreenPixel(int x, int y);  // all bits set for one that is not on the screen

  // The next event of a type; null when none comes.
  X11Event NextEvent(int type);
  void Send(xcb_window_t window, uint32_t mask, const void* event);
  xcb_atom_t Atom(const char* name);
  void SetText(xcb_window_t window, xcb_atom_t name, const std::string& text, xcb_atom_t type);
  std::string Text(xcb_window_t window, xcb_atom_t name);  // "" for none

 private:
  void Input(uint8_t type, int detail, int x = 0, int y = 0);
  void Fake(uint8_t type, int detail, int x = 0, int y = 0);

  X11Connection mConnection;
};

// What this process holds of the system.
int ThreadCount();
int DescriptorCount();
int ChildCount();
