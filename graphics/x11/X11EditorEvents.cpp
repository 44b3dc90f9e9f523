// Which event goes where, and the text field's life.
#include "graphics/windows/TypedText.h"
#include "graphics/x11/IGraphicsX11.h"
#include "graphics/x11/X11Editor.h"

namespace {

template <class T>
const T& As(const xcb_generic_event_t& event) {
  return reinterpret_cast<const T&>(event);
}

// Buttons 4 and 5 are the wheel, up and down.
int WheelDistance(xcb_button_t button) { return button == 4 ? 1 : button == 5 ? -1 : 0; }

// False for sideways wheels and extra buttons, which do nothing here.
bool IsOfUse(xcb_button_t button) { return button <= 5; }

bool IsOfGrab(uint8_t mode) {
  return mode == XCB_NOTIFY_MODE_GRAB || mode == XCB_NOTIFY_MODE_UNGRAB;
}

// The Super key stands for Command.
template <class T>
MouseInput InputOf(const T& event) {
  MouseInput input = MouseInput::At(event.event_x, event.event_y);
  const auto has = [&event](int mask) { return (event.state & mask) != 0; };
  input.left = has(XCB_BUTTON_MASK_1);
  input.right = has(XCB_BUTTON_MASK_3);
  input.shift = has(XCB_MOD_MASK_SHIFT);
  input.control = has(XCB_MOD_MASK_CONTROL);
  input.alt = has(XCB_MOD_MASK_1);
  input.command = has(XCB_MOD_MASK_4);
  return input;
}

EMouseButton ButtonOf(xcb_button_t button) {
  return button == 1 ? kLeftButton : button == 3 ? kRightButton : kNoButton;
}

bool IsSent(const xcb_key_press_event_t& event) { return (event.response_type & 0x80) != 0; }

}  // namespace

void X11Editor::HandleEvents() {
  while (!mEnding.IsNear()) {
    const X11Event event = mConnection.NextEvent();
    if (!event) return;
    Handle(*event);
  }
}

void X11Editor::Handle(const xcb_generic_event_t& event) {
  switch (X11TypeOf(event)) {
    case XCB_EXPOSE: return OnExpose(As<xcb_expose_event_t>(event));
    case XCB_BUTTON_PRESS: return OnPress(As<xcb_button_press_event_t>(event));
    case XCB_BUTTON_RELEASE: return OnRelease(As<xcb_button_release_event_t>(event));
    case XCB_MOTION_NOTIFY: return OnMotion(As<xcb_motion_notify_event_t>(event));
    case XCB_ENTER_NOTIFY: return OnEnter(As<xcb_enter_notify_event_t>(event));
    case XCB_LEAVE_NOTIFY: return OnLeave(As<xcb_leave_notify_event_t>(event));
    case XCB_KEY_PRESS: return OnKey(As<xcb_key_press_event_t>(event));
    case XCB_FOCUS_OUT: return OnFocusOut(As<xcb_focus_out_event_t>(event));
    case XCB_DESTROY_NOTIFY: return OnDestroyed(As<xcb_destroy_notify_event_t>(event));
    case XCB_MAPPING_NOTIFY: return mKeymap.Load(mConnection);
    default: break;
  }
  const auto pasted = mClipboard->Handle(event);
  if (pasted && mField) mField->Paste(*pasted);
}

void X11Editor::OnExpose(const xcb_expose_event_t& event) {
  const IRECT rect(event.x, event.y, event.x + event.width, event.y + event.height);
  if (event.window == mWindow->Id()) {
    mSurface->Show(rect);
  } else if (mField && mField->Pane().Is(event.window)) {
    mField->Pane().Expose(rect);
  } else if (mMenu) {
    mMenu->Expose(event.window, rect);
  }
}

void X11Editor::OnDestroyed(const xcb_destroy_notify_event_t& event) {
  if (event.window != mWindow->Id()) return;
  mWindow->Forget();
}

void X11Editor::OnPress(const xcb_button_press_event_t& event) {
  mTime = event.time;
  const int distance = WheelDistance(event.detail);
  if (!IsOfUse(event.detail)) return;
  if (mMenu) return distance ? mMenu->Wheel(distance) : mMenu->Press(event);
  // That of a menu may come when the menu has gone.
  if (mInDialog || event.event != mWindow->Id()) return;
  if (distance) return OnWheel(distance, event);
  mScreenPoint = {event.root_x, event.root_y};
  const int clicks = mClicks.Press(event.detail, event.root_x, event.root_y, event.time);
  mFieldHasPress = IsInField(event.event_x, event.event_y);
  if (mFieldHasPress) {
    TakeFocus();
    const bool extend = (event.state & XCB_MOD_MASK_SHIFT) != 0;
    return mField->Press(event.event_x - mField->Place().L, extend, clicks);
  }
  CommitTextEntry();
  mMouse.Press(ButtonOf(event.detail), clicks, InputOf(event));
  mGraphics.ShowFailure();
}

bool X11Editor::IsInField(int x, int y) const { return mField && mField->Place().Contains(x, y); }

void X11Editor::OnWheel(int distance, const xcb_button_press_event_t& event) {
  EndTextEntry();
  mMouse.Wheel(distance, InputOf(event));
}

void X11Editor::OnRelease(const xcb_button_release_event_t& event) {
  mTime = event.time;
  if (WheelDistance(event.detail) || !IsOfUse(event.detail)) return;
  if (mMenu) return mMenu->Release(event);
  if (mInDialog) return;
  if (mFieldHasPress) {
    mFieldHasPress = false;
  } else {
    mMouse.Release(ButtonOf(event.detail), InputOf(event));
  }
}

void X11Editor::OnMotion(const xcb_motion_notify_event_t& event) {
  mTime = event.time;
  if (mMenu) return mMenu->Motion(event);
  if (mInDialog || event.event != mWindow->Id()) return;
  if (mFieldHasPress) {
    if (event.state & XCB_BUTTON_MASK_1) mField->Drag(event.event_x - mField->Place().L);
  } else if (mMouse.IsPressed() || !IsInField(event.event_x, event.event_y)) {
    mMouse.Motion(InputOf(event), !mField);
  }
}

// The window may have come to the mouse.
void X11Editor::OnEnter(const xcb_enter_notify_event_t& event) {
  if (mMenu || mInDialog || event.mode == XCB_NOTIFY_MODE_GRAB) return;
  mMouse.Motion(InputOf(event), false);
}

// The begin of a grab does not move the mouse. At the end of one, also of a drag, it may have left.
void X11Editor::OnLeave(const xcb_leave_notify_event_t& event) {
  if (mMenu || mInDialog || event.mode == XCB_NOTIFY_MODE_GRAB) return;
  if (event.detail != XCB_NOTIFY_DETAIL_INFERIOR) mMouse.Leave();
}

void X11Editor::OnKey(const xcb_key_press_event_t& event) {
  mTime = event.time;
  const X11Key key = mKeymap.Find(event.detail, event.state);
  if (mMenu) return mMenu->Key(key);
  if (mInDialog) return;
  if (mField) return OnKeyInField(key, event);
  const int code = key.Code();
  if (code < 0 || !mGraphics.OnKeyDown(mMouse.X(), mMouse.Y(), code)) PassOn(event);
}

void X11Editor::OnKeyInField(const X11Key& key, const xcb_key_press_event_t& event) {
  switch (mField->Key(key, *mClipboard, event.time)) {
    case X11TextField::Use::kNone: return PassOn(event);
    case X11TextField::Use::kTaken: return;
    case X11TextField::Use::kCommit: return CommitTextEntry();
    case X11TextField::Use::kAbandon: return EndTextEntry();
  }
}

// Passes keys that no control takes to the host, except those that the host itself sent here:
// editor and host would pass them to each other for ever.
void X11Editor::PassOn(const xcb_key_press_event_t& event) {
  if (IsSent(event)) return;
  xcb_key_press_event_t copy = event;
  copy.event = mParent;
  copy.child = mWindow->Id();
  xcb_send_event(mConnection.Get(), 1, mParent, XCB_EVENT_MASK_KEY_PRESS,
                 reinterpret_cast<const char*>(&copy));
}

void X11Editor::OnFocusOut(const xcb_focus_out_event_t& event) {
  const bool isOlder = static_cast<int16_t>(event.sequence - mFocusRequest) < 0;
  const bool stays =
      event.detail == XCB_NOTIFY_DETAIL_INFERIOR || event.detail >= XCB_NOTIFY_DETAIL_POINTER;
  if (!mHasFocus || isOlder || stays || IsOfGrab(event.mode)) return;
  mHasFocus = false;
  CommitTextEntry();
}

void X11Editor::OpenTextEntry(IControl* control, const IText& style, const IRECT& rect,
                              const char* str, IParam* param) {
  if (!control || mField || mMenu || mInDialog || IsLost()) return;
  mField.emplace(mConnection, *mLook, mWindow->Id(), control, style, rect, str, param);
  TakeFocus();
}

void X11Editor::CommitTextEntry() {
  if (!mField || mCommitting) return;
  mCommitting = true;
  const std::string text = mField->Text();
  CommitTypedText(mGraphics, *mField->Control(), mField->Param(), text.c_str());
  mCommitting = false;
  EndTextEntry();
}

void X11Editor::EndTextEntry() {
  if (!mField) return;
  mField.reset();
  mFieldHasPress = false;
  mClipboard->ForgetPaste();
  GiveFocusBack();
}

// Only a window that can be seen can have it.
void X11Editor::TakeFocus() {
  xcb_connection_t* c = mConnection.Get();
  const auto attributesCookie = xcb_get_window_attributes(c, mWindow->Id());
  const auto focusCookie = xcb_get_input_focus(c);
  const auto attributes = mConnection.Await<xcb_get_window_attributes_reply_t>(attributesCookie);
  const auto focus = mConnection.Await<xcb_get_input_focus_reply_t>(focusCookie);
  if (!attributes || !focus || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return;
  // The host may have given it to the editor before.
  if (!mHasFocus || focus->focus != mWindow->Id()) mFocusBefore = focus->focus;
  mFocusRequest = static_cast<uint16_t>(
      xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, mWindow->Id(), mTime).sequence);
  mHasFocus = true;
}

void X11Editor::GiveFocusBack() {
  if (!mHasFocus || IsLost()) return;
  mHasFocus = false;
  // With the time of the input that led to it, so that the same input can open the next field.
  xcb_set_input_focus(mConnection.Get(), XCB_INPUT_FOCUS_PARENT, FocusHeir(), mTime);
}

// The window that had the focus before, or the parent when that window is gone. The two lowest
// numbers are no windows: no window had it, or the one under the mouse.
xcb_window_t X11Editor::FocusHeir() {
  if (mFocusBefore <= XCB_INPUT_FOCUS_POINTER_ROOT || mEnding.IsNear()) return mFocusBefore;
  const auto attributes = mConnection.Await<xcb_get_window_attributes_reply_t>(
      xcb_get_window_attributes(mConnection.Get(), mFocusBefore));
  const bool canTakeIt = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
  return canTakeIt ? mFocusBefore : mParent;
}
