// A pop-up menu on the screen, with its sub-menus.
#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <vector>

#include "graphics/x11/server/X11Keys.h"
#include "graphics/x11/server/X11Screen.h"
#include "graphics/x11/server/X11Window.h"
#include "graphics/x11/widgets/MenuLayout.h"

class IPopupMenu;
class X11Connection;

// Holds pointer and keyboard, where the server grants them, from its making to its end. A window
// has to be viewable for that, and another client may hold them: it asks again for a while.
class X11Grab {
 public:
  X11Grab(X11Connection& connection, xcb_window_t window);
  ~X11Grab();
  X11Grab(const X11Grab&) = delete;
  X11Grab& operator=(const X11Grab&) = delete;

  void Retry(std::chrono::steady_clock::time_point now);

 private:
  X11Connection& mConnection;
  xcb_window_t mWindow;
  bool mHasPointer = false, mHasKeyboard = false;
  std::chrono::steady_clock::time_point mGiveUpTime;
};

// Shows a menu and follows mouse and keys until something is chosen or the menu is dismissed. All
// places are those of the screen.
class X11Menu {
 public:
  // Where its windows may lie: inside the editor, or anywhere on a monitor.
  struct Stage {
    IRECT area;
    X11Window::EKind kind;
    xcb_window_t parent;
    X11Point origin;     // of the parent
    xcb_window_t owner;  // the host's window
  };

  // The press that opened it: its release does not choose unless it comes late or from elsewhere.
  struct Opening {
    xcb_timestamp_t time = 0;
    X11Point point;
  };

  // `corner` is where the upper left corner should be.
  X11Menu(X11Connection& connection, const X11Look& look, const Stage& stage, xcb_window_t editor,
          IPopupMenu& menu, const X11Point& corner, const Opening& opening);
  // The largest width and height that the menu or one of its sub-menus takes, as a rectangle at 0.
  static IRECT LargestSize(const IPopupMenu& menu);

  bool IsOpen() const { return mOpen; }
  IPopupMenu* Chosen() const { return mChosen; }  // the menu that holds the choice, null for none
  void Dismiss() { mOpen = false; }

  // Input; all else that happens to the editor's windows is not for the menu.
  void Press(const xcb_button_press_event_t& event);
  void Release(const xcb_button_release_event_t& event);
  void Motion(const xcb_motion_notify_event_t& event);
  void Wheel(int direction) { Step(-direction); }
  void Key(const X11Key& key);
  bool Expose(xcb_window_t window, const IRECT& rect);  // false: none of its windows
  void Tick(std::chrono::steady_clock::time_point now) { mGrab.Retry(now); }

 private:
  struct Panel {
    Panel(X11Menu& owner, IPopupMenu& menu, const IRECT& place, MenuLayout&& layout);

    IPopupMenu& menu;
    MenuLayout layout;
    IRECT place;
    X11Pane pane;
    int lit = -1;    // row
    int scroll = 0;  // pixels above the upper edge
  };

  void OpenPanel(IPopupMenu& menu, const IRECT& place, MenuLayout&& layout);
  void OpenSubmenu();
  int PanelAt(int x, int y) const;  // -1 for none
  int RowAt(int panel, int y) const;
  void Light(int panel, int row);
  void Step(int direction);
  void StepIn();
  void Enter();
  bool LeadsOn(const Panel& panel) const;  // to a sub-menu
  void Choose();
  void ScrollToLit(Panel& panel) const;
  void Draw(Panel& panel);
  void DrawRow(Panel& panel, int index);
  Panel& Last() { return *mPanels.back(); }

  X11Connection& mConnection;
  const X11Look& mLook;
  Stage mStage;
  X11Grab mGrab;
  std::vector<std::unique_ptr<Panel>> mPanels;  // each opened from the one before
  bool mOpen = true;
  IPopupMenu* mChosen = nullptr;
  Opening mOpening;
  bool mHasMoved = false;  // or another press was seen
};
