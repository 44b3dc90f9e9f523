// Copy and paste through the server's clipboard.
#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <string>

class X11Connection;

// What was copied here can be pasted elsewhere while the editor is open. Texts are UTF-8.
class X11Clipboard {
 public:
  X11Clipboard(X11Connection& connection, xcb_window_t window);

  void Copy(std::string text, xcb_timestamp_t time);
  // The text if it is our own; otherwise it comes later, through Handle.
  std::optional<std::string> Paste(xcb_timestamp_t time);
  void ForgetPaste() { mAwaitsPaste = false; }  // a text that comes yet is not wanted any more
  // Takes the clipboard's events; a text that was asked for comes back.
  std::optional<std::string> Handle(const xcb_generic_event_t& event);

 private:
  void Serve(const xcb_selection_request_event_t& request);
  xcb_atom_t Give(const xcb_selection_request_event_t& request, xcb_atom_t property);
  std::optional<std::string> Receive(const xcb_selection_notify_event_t& notice);

  X11Connection& mConnection;
  xcb_window_t mWindow;
  std::string mText;
  bool mIsOurs = false;
  bool mAwaitsPaste = false;
};
