// From key events to symbols, characters and the editor's key codes.
#pragma once

#include <xcb/xcb.h>

#include <vector>

class X11Connection;

// Symbols that editing and menus ask for; the numbers are the protocol's.
enum X11KeySym : xcb_keysym_t {
  kX11BackSpace = 0xFF08,
  kX11Tab = 0xFF09,
  kX11Return = 0xFF0D,
  kX11Escape = 0xFF1B,
  kX11Home = 0xFF50,
  kX11Left = 0xFF51,
  kX11Up = 0xFF52,
  kX11Right = 0xFF53,
  kX11Down = 0xFF54,
  kX11PageUp = 0xFF55,
  kX11PageDown = 0xFF56,
  kX11End = 0xFF57,
  kX11Delete = 0xFFFF
};

struct X11Key {
  xcb_keysym_t symbol = 0;  // of a keypad key that moves: that of the main key
  char32_t character = 0;   // 0 for none
  bool keypad = false;      // a character key of the keypad
  bool shift = false, control = false, alt = false, super = false;

  // The code that controls get, -1 for a key that they never see.
  int Code() const;
};

// The server's keyboard mapping; to be loaded again when the server says that it changed.
class X11Keymap {
 public:
  void Load(X11Connection& connection);
  X11Key Find(xcb_keycode_t code, uint16_t state) const;

 private:
  void FindNumLock(const xcb_get_modifier_mapping_reply_t& modifiers);
  xcb_keysym_t At(xcb_keycode_t code, int column) const;

  int mFirst = 0;    // lowest key code
  int mPerCode = 0;  // symbols of each
  std::vector<xcb_keysym_t> mSymbols;
  uint16_t mNumLock = 0;  // its modifier bit, 0 for none
};
