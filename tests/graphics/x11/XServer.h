// A server without a screen, and a user at it who moves the mouse, types and looks.
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "graphics/IGraphicsTypes.h"
#include "graphics/x11/X11Connection.h"
#include "graphics/x11/X11Screen.h"

// Waits for a condition, up to some seconds; returns whether it came true.
bool Eventually(const std::function<bool()>& condition);

// A program of the tests' own, ended with the object.
class TestProgram {
 public:
  // What it writes first to descriptor 3 or its output is the result of FirstLine.
  explicit TestProgram(std::vector<std::string> arguments);
  ~TestProgram();
  TestProgram(const TestProgram&) = delete;
  TestProgram& operator=(const TestProgram&) = delete;

  const std::string& FirstLine() const { return mFirstLine; }
  void Kill();

 private:
  pid_t mPid = 0;
  std::string mFirstLine;
};

// Starts Xvfb on a free display, which DISPLAY names while it runs.
class XServer {
 public:
  static constexpr int kWidth = 800, kHeight = 600;

  explicit XServer(int depth = 24, std::vector<std::string> options = {});
  ~XServer();
  void Kill() { mProgram->Kill(); }

 private:
  std::unique_ptr<TestProgram> mProgram;
};

// The host's own connection.
class XUser {
 public:
  XUser();
  ~XUser();
  XUser(const XUser&) = delete;
  XUser& operator=(const XUser&) = delete;

  xcb_connection_t* Get() const { return mConnection; }
  const xcb_screen_t& Screen() const { return *mScreen; }
  // Waits until the server has done all that was asked.
  void Sync() const;

  // A mapped window below the root that keeps its place.
  xcb_window_t MakeWindow(const IRECT& place, uint32_t events = 0) const;
  void Destroy(xcb_window_t window) const;
  std::vector<xcb_window_t> ChildrenOf(xcb_window_t window) const;
  xcb_window_t Focus() const;
  void SetFocus(xcb_window_t window) const;
  bool CanGrab() const;  // nobody holds mouse or keyboard

  // The real input of a user. Places are those of the screen.
  X11Point Pointer() const;
  void MoveTo(int x, int y) const;
  void Press(int button) const;
  void Release(int button) const;
  void Click(int button = 1) const;
  void Wheel(int distance) const;
  void HoldKey(xcb_keysym_t symbol) const;
  void ReleaseKey(xcb_keysym_t symbol) const;
  void Type(xcb_keysym_t symbol) const;
  void Type(const std::string& text) const;
  void TypeWith(xcb_keysym_t modifier, xcb_keysym_t symbol) const;

  // Pixels 0xRRGGBB of a part of a window; a pixel that is not on the screen is -1.
  std::vector<uint32_t> Picture(xcb_window_t window, const IRECT& rect) const;
  uint32_t ScreenPixel(int x, int y) const;
  X11Event NextEvent() const;  // waits for it; null when none comes

  xcb_atom_t Atom(const char* name) const;
  std::string Property(xcb_window_t window, xcb_atom_t name) const;  // text, "" for none
  // Answers the next request for a selection of ours. False when none comes.
  bool ServeSelection(const std::string& text) const;

 private:
  void Fake(uint8_t type, int detail, int x = 0, int y = 0) const;
  xcb_keycode_t CodeOf(xcb_keysym_t symbol, bool* shifted) const;

  xcb_connection_t* mConnection;
  const xcb_screen_t* mScreen;
};

constexpr xcb_keysym_t kShiftKey = 0xFFE1, kControlKey = 0xFFE3, kSuperKey = 0xFFEB;

// What this process holds of the system.
int ThreadCount();
int DescriptorCount();
int ChildCount();
