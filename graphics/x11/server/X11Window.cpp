// Making of windows and panes.
#include "graphics/x11/server/X11Window.h"

#include "graphics/x11/server/X11Connection.h"

namespace {

// The mouse over a child is the editor's, with places in the editor, also when the child has just
// gone.
uint32_t PaneEvents(X11Window::EKind kind) {
  constexpr uint32_t kMouse =
      XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;
  return XCB_EVENT_MASK_EXPOSURE | (kind == X11Window::kOverAll ? kMouse : 0);
}

// A compositor then draws it as a menu of the host's window.
void NameAsMenu(X11Connection& connection, xcb_window_t window, xcb_window_t owner) {
  const xcb_atom_t type = connection.Atom(X11Atom::kNetWmWindowTypePopupMenu);
  xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window,
                      connection.Atom(X11Atom::kNetWmWindowType), XCB_ATOM_ATOM, 32, 1, &type);
  if (!owner) return;
  xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_TRANSIENT_FOR,
                      XCB_ATOM_WINDOW, 32, 1, &owner);
}

}  // namespace

X11Window::X11Window(X11Connection& connection, const X11Look& look, xcb_window_t parent,
                     const IRECT& place, EKind kind, uint32_t eventMask)
    : mConnection(connection), mId(xcb_generate_id(connection.Get())) {
  constexpr uint32_t kMask = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                             XCB_CW_OVERRIDE_REDIRECT | XCB_CW_SAVE_UNDER | XCB_CW_EVENT_MASK |
                             XCB_CW_COLORMAP;
  // A border pixel and a colormap of its own let the depth differ from the parent's.
  const uint32_t overAll = kind == kOverAll ? 1 : 0;
  const uint32_t values[] = {
      XCB_BACK_PIXMAP_NONE, 0, XCB_GRAVITY_NORTH_WEST, overAll, overAll, eventMask, look.colormap};
  xcb_create_window(connection.Get(), static_cast<uint8_t>(look.format.Depth()), mId, parent,
                    X11Int<int16_t>(place.L), X11Int<int16_t>(place.T),
                    X11Int<uint16_t>(std::max(place.W(), 1)),
                    X11Int<uint16_t>(std::max(place.H(), 1)), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    look.visual, kMask, values);
}

X11Window::~X11Window() {
  if (mExists) xcb_destroy_window(mConnection.Get(), mId);
}

void X11Window::Map() { xcb_map_window(mConnection.Get(), mId); }

void X11Window::Resize(int width, int height) {
  const uint32_t values[] = {static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
  xcb_configure_window(mConnection.Get(), mId, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                       values);
}

X11Pane::X11Pane(X11Connection& connection, const X11Look& look, xcb_window_t parent,
                 const IRECT& place, X11Window::EKind kind, xcb_window_t owner)
    : mPlace(place),
      mWindow(connection, look, parent, place, kind, PaneEvents(kind)),
      mSurface(connection, mWindow.Id(), look.format, place.W(), place.H(), false),
      mBitmap(place.W(), place.H()) {
  if (kind == X11Window::kOverAll) NameAsMenu(connection, mWindow.Id(), owner);
  mWindow.Map();
}

void X11Pane::Show() {
  const IRECT all(0, 0, mPlace.W(), mPlace.H());
  mSurface.Copy(mBitmap, all);
  mSurface.Show(all);
}
