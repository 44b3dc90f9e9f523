// Questions to the server about places.
#include "graphics/x11/server/X11Screen.h"

#include <xcb/randr.h>

#include "graphics/x11/server/X11Connection.h"

namespace {

bool IsManaged(X11Connection& connection, xcb_window_t window) {
  const auto state = connection.Await<xcb_get_property_reply_t>(
      xcb_get_property(connection.Get(), 0, window, connection.Atom(X11Atom::kWmState),
                       XCB_GET_PROPERTY_TYPE_ANY, 0, 0));
  return state && state->type != XCB_NONE;
}

bool KnowsMonitors(X11Connection& connection) {
  const auto* randr = xcb_get_extension_data(connection.Get(), &xcb_randr_id);
  if (!randr || !randr->present) return false;
  const auto version = connection.Await<xcb_randr_query_version_reply_t>(
      xcb_randr_query_version(connection.Get(), 1, 5));
  return version && (version->major_version > 1 || version->minor_version >= 5);
}

}  // namespace

std::optional<X11Point> X11OriginOf(X11Connection& connection, xcb_window_t window) {
  const auto place = connection.Await<xcb_translate_coordinates_reply_t>(
      xcb_translate_coordinates(connection.Get(), window, connection.Screen().root, 0, 0));
  if (!place) return std::nullopt;
  return X11Point{place->dst_x, place->dst_y};
}

IRECT X11MonitorAt(X11Connection& connection, const X11Point& point) {
  const xcb_screen_t& screen = connection.Screen();
  const IRECT all(0, 0, screen.width_in_pixels, screen.height_in_pixels);
  if (!KnowsMonitors(connection)) return all;
  const auto monitors = connection.Await<xcb_randr_get_monitors_reply_t>(
      xcb_randr_get_monitors(connection.Get(), screen.root, 1));
  if (!monitors) return all;
  for (auto m = xcb_randr_get_monitors_monitors_iterator(monitors.get()); m.rem;
       xcb_randr_monitor_info_next(&m)) {
    const IRECT rect(m.data->x, m.data->y, m.data->x + m.data->width, m.data->y + m.data->height);
    if (rect.Contains(point.x, point.y)) return rect;
  }
  return all;
}

xcb_window_t X11TopLevelOf(X11Connection& connection, xcb_window_t window) {
  for (;;) {
    if (IsManaged(connection, window)) return window;
    const auto tree =
        connection.Await<xcb_query_tree_reply_t>(xcb_query_tree(connection.Get(), window));
    // Without a window manager it is the one below the root.
    if (!tree || tree->parent == tree->root || !tree->parent) return window;
    window = tree->parent;
  }
}
