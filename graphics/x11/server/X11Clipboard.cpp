// Owning, serving and reading the clipboard selection.
#include "graphics/x11/server/X11Clipboard.h"

#include <utility>

#include "graphics/x11/server/X11Connection.h"

namespace {

constexpr uint32_t kLongestPaste = 1 << 14;  // in words of four bytes; fields take a few characters

template <class T>
const T& As(const xcb_generic_event_t& event) {
  return reinterpret_cast<const T&>(event);
}

}  // namespace

X11Clipboard::X11Clipboard(X11Connection& connection, xcb_window_t window)
    : mConnection(connection), mWindow(window) {}

void X11Clipboard::Copy(std::string text, xcb_timestamp_t time) {
  mText = std::move(text);
  const xcb_atom_t clipboard = mConnection.Atom(X11Atom::kClipboard);
  xcb_set_selection_owner(mConnection.Get(), mWindow, clipboard, time);
  // Refused to a client that comes late.
  const auto owner = mConnection.Await<xcb_get_selection_owner_reply_t>(
      xcb_get_selection_owner(mConnection.Get(), clipboard));
  mIsOurs = owner && owner->owner == mWindow;
}

std::optional<std::string> X11Clipboard::Paste(xcb_timestamp_t time) {
  if (mIsOurs) return mText;
  mAwaitsPaste = true;
  xcb_convert_selection(mConnection.Get(), mWindow, mConnection.Atom(X11Atom::kClipboard),
                        mConnection.Atom(X11Atom::kUtf8String), mConnection.Atom(X11Atom::kPasted),
                        time);
  return std::nullopt;
}

std::optional<std::string> X11Clipboard::Handle(const xcb_generic_event_t& event) {
  switch (X11TypeOf(event)) {
    case XCB_SELECTION_CLEAR: mIsOurs = false; break;
    case XCB_SELECTION_REQUEST: Serve(As<xcb_selection_request_event_t>(event)); break;
    case XCB_SELECTION_NOTIFY: return Receive(As<xcb_selection_notify_event_t>(event));
    default: break;
  }
  return std::nullopt;
}

void X11Clipboard::Serve(const xcb_selection_request_event_t& request) {
  // Clients of the oldest kind name no property and mean the target.
  const xcb_atom_t property = request.property ? request.property : request.target;
  xcb_selection_notify_event_t answer{};
  answer.response_type = XCB_SELECTION_NOTIFY;
  answer.time = request.time;
  answer.requestor = request.requestor;
  answer.selection = request.selection;
  answer.target = request.target;
  answer.property = Give(request, property);
  xcb_send_event(mConnection.Get(), 0, request.requestor, 0,
                 reinterpret_cast<const char*>(&answer));
}

// The property if it holds the text, else none.
xcb_atom_t X11Clipboard::Give(const xcb_selection_request_event_t& request, xcb_atom_t property) {
  xcb_connection_t* c = mConnection.Get();
  const xcb_atom_t utf8 = mConnection.Atom(X11Atom::kUtf8String);
  const xcb_atom_t plain = mConnection.Atom(X11Atom::kTextPlainUtf8);
  const xcb_atom_t targets = mConnection.Atom(X11Atom::kTargets);
  if (!mIsOurs) return XCB_NONE;
  if (request.target == targets) {
    const xcb_atom_t all[] = {targets, utf8, plain, XCB_ATOM_STRING};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, property, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(std::size(all)), all);
    return property;
  }
  if (request.target != utf8 && request.target != plain && request.target != XCB_ATOM_STRING) {
    return XCB_NONE;
  }
  xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, property, request.target, 8,
                      static_cast<uint32_t>(mText.size()), mText.data());
  return property;
}

std::optional<std::string> X11Clipboard::Receive(const xcb_selection_notify_event_t& notice) {
  // Other clients may send anything at any time.
  const bool isAwaited = std::exchange(mAwaitsPaste, false);
  if (!isAwaited || notice.property != mConnection.Atom(X11Atom::kPasted)) return std::nullopt;
  const auto reply = mConnection.Await<xcb_get_property_reply_t>(xcb_get_property(
      mConnection.Get(), 1, mWindow, notice.property, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestPaste));
  // A text that comes in pieces, under another type, is longer than any field takes.
  const bool isText = reply && reply->type == mConnection.Atom(X11Atom::kUtf8String);
  if (!isText || reply->format != 8) return std::nullopt;
  const auto* text = static_cast<const char*>(xcb_get_property_value(reply.get()));
  return std::string(text, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}
