// The open editor: its window, its events, its frames. Lives on the editor's thread.
#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "graphics/windows/MouseRouter.h"
#include "graphics/x11/ClickCounter.h"
#include "graphics/x11/X11Ending.h"
#include "graphics/x11/server/X11Clipboard.h"
#include "graphics/x11/server/X11Connection.h"
#include "graphics/x11/server/X11Keys.h"
#include "graphics/x11/server/X11Window.h"
#include "graphics/x11/widgets/X11Menu.h"
#include "graphics/x11/widgets/X11TextField.h"

class IGraphicsX11;

// Made, used and destroyed by one thread. Run works through events and draws frames; menus and
// dialogs run the same loop inside a control's mouse operation until they have their answer.
// The plug-in lock is held nowhere in here but inside the plug-in's own operations.
class X11Editor {
 public:
  X11Editor(IGraphicsX11& graphics, const X11Ending& ending);
  ~X11Editor();
  X11Editor(const X11Editor&) = delete;
  X11Editor& operator=(const X11Editor&) = delete;

  // False without a server, without that parent, or with a visual that has no plain colours.
  bool Open(xcb_window_t parent);
  xcb_window_t Window() const { return mWindow->Id(); }
  int Socket() const { return mConnection.Fd(); }
  void Run();  // until the ending

  // What the editor's operations ask for.
  bool ShowCanvas(const IRECT& rect);  // false when there is no window any more
  void Resize(int width, int height);
  IPopupMenu* RunMenu(IPopupMenu& menu, X11Point corner);  // in window coordinates
  X11Point MiddleFor(const IPopupMenu& menu) const;        // where it lies in the middle
  void OpenTextEntry(IControl* control, const IText& style, const IRECT& rect, const char* str,
                     IParam* param);
  void EndTextEntry();  // without its text
  // Goes on with the editor, but for its input, until the descriptor is readable. False when the
  // editor ends first.
  bool WaitFor(int fd);
  xcb_window_t TopLevel() { return X11TopLevelOf(mConnection, mParent); }
  std::optional<X11Point> HideCursor();  // where it is
  void ShowCursor(const X11Point& point);

 private:
  using Clock = std::chrono::steady_clock;

  bool MakeLook(xcb_window_t parent);
  void MakeSurface(int width, int height);
  void SetEmbedding();
  bool IsLost() const { return !mWindow->Exists() || !mConnection.IsOpen(); }
  bool Turn(int watchedFd = -1);
  int UntilFrame_ms() const;
  void Frame(Clock::time_point now);

  void HandleEvents();
  void Handle(const xcb_generic_event_t& event);
  void OnPress(const xcb_button_press_event_t& event);
  bool IsInField(int x, int y) const;
  void OnWheel(int distance, const xcb_button_press_event_t& event);
  void OnRelease(const xcb_button_release_event_t& event);
  void OnMotion(const xcb_motion_notify_event_t& event);
  void OnEnter(const xcb_enter_notify_event_t& event);
  void OnLeave(const xcb_leave_notify_event_t& event);
  void OnKey(const xcb_key_press_event_t& event);
  void OnKeyInField(const X11Key& key, const xcb_key_press_event_t& event);
  void PassOn(const xcb_key_press_event_t& event);
  void OnFocusOut(const xcb_focus_out_event_t& event);
  void OnExpose(const xcb_expose_event_t& event);
  void OnDestroyed(const xcb_destroy_notify_event_t& event);

  void CommitTextEntry();
  void TakeFocus();
  void GiveFocusBack();
  xcb_window_t FocusHeir();

  IGraphicsX11& mGraphics;
  const X11Ending& mEnding;
  X11Connection mConnection;
  xcb_window_t mParent = XCB_NONE;
  std::optional<X11Look> mLook;
  std::optional<X11Window> mWindow;
  std::optional<X11Surface> mSurface;
  std::optional<X11Clipboard> mClipboard;
  X11Keymap mKeymap;
  Clock::time_point mNextFrame;

  ClickCounter mClicks;
  MouseRouter mMouse;
  xcb_timestamp_t mTime = XCB_CURRENT_TIME;  // of the last input
  X11Point mScreenPoint;                     // of the mouse at the last press
  bool mFieldHasPress = false;               // the button went down in the text field

  std::optional<X11TextField> mField;
  bool mCommitting = false;
  std::optional<X11Menu> mMenu;
  bool mInDialog = false;  // input waits
  bool mLossIsKnown = false;

  bool mHasFocus = false;
  xcb_window_t mFocusBefore = XCB_NONE;  // the window that had it
  uint16_t mFocusRequest = 0;            // sequence number of the last time it was taken
};
