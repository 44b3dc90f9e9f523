// The rules of the core protocol by which a key's symbol is chosen.
#include "graphics/x11/server/X11Keys.h"

#include "graphics/windows/EditorKeys.h"
#include "graphics/x11/server/X11Connection.h"

namespace {

constexpr xcb_keysym_t kNumLockSymbol = 0xFF7F;
constexpr uint16_t kShift = XCB_MOD_MASK_SHIFT;
constexpr uint16_t kCapsLock = XCB_MOD_MASK_LOCK;
constexpr int kGroupShift = 13;  // bits 13 and 14 of the state hold the layout in use

bool IsKeypad(xcb_keysym_t s) { return s >= 0xFF80 && s <= 0xFFBD; }

// Keypad keys that move or edit, as the main keys of that kind.
xcb_keysym_t MainKeyOf(xcb_keysym_t s) {
  constexpr xcb_keysym_t kMain[] = {kX11Home, kX11Left,   kX11Up,       kX11Right,
                                    kX11Down, kX11PageUp, kX11PageDown, kX11End};
  if (s >= 0xFF95 && s <= 0xFF9C) return kMain[s - 0xFF95];
  if (s == 0xFF8D) return kX11Return;
  if (s == 0xFF9F) return kX11Delete;
  return s;
}

char32_t CharacterOf(xcb_keysym_t s) {
  if ((s >= 0x20 && s <= 0x7E) || (s >= 0xA0 && s <= 0xFF)) return s;
  if (s >= 0x01000100 && s <= 0x0110FFFF) return s - 0x01000000;
  if (s >= 0xFFAA && s <= 0xFFB9) return s - 0xFF80;  // * + , - . / and the digits of the keypad
  return s == 0xFF80 ? U' ' : s == 0xFFBD ? U'=' : 0;
}

xcb_keysym_t Upper(xcb_keysym_t s) {
  const bool hasCase = (s >= 'a' && s <= 'z') || (s >= 0xE0 && s <= 0xFE && s != 0xF7);
  return hasCase ? s - 0x20 : s;
}

}  // namespace

int X11Key::Code() const {
  switch (symbol) {
    case kX11Up: return IGraphics::kKeyUp;
    case kX11Down: return IGraphics::kKeyDown;
    case kX11Left: return IGraphics::kKeyLeft;
    case kX11Right: return IGraphics::kKeyRight;
    default: break;
  }
  if (control || alt || super) return -1;
  return EditorKeyOf(character);
}

void X11Keymap::Load(X11Connection& connection) {
  xcb_connection_t* c = connection.Get();
  const xcb_keycode_t lo = connection.Setup()->min_keycode;
  const xcb_keycode_t hi = connection.Setup()->max_keycode;
  const auto mapping = connection.Await<xcb_get_keyboard_mapping_reply_t>(
      xcb_get_keyboard_mapping(c, lo, static_cast<uint8_t>(hi - lo + 1)));
  if (!mapping) return;
  mFirst = lo;
  mPerCode = mapping->keysyms_per_keycode;
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  mSymbols.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
  const auto modifiers =
      connection.Await<xcb_get_modifier_mapping_reply_t>(xcb_get_modifier_mapping(c));
  if (modifiers) FindNumLock(*modifiers);
}

void X11Keymap::FindNumLock(const xcb_get_modifier_mapping_reply_t& modifiers) {
  mNumLock = 0;
  const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(&modifiers);
  const int perModifier = modifiers.keycodes_per_modifier;
  for (int i = 0; i < 8 * perModifier; ++i) {
    if (codes[i] && At(codes[i], 0) == kNumLockSymbol) {
      mNumLock = static_cast<uint16_t>(1 << i / perModifier);
    }
  }
}

xcb_keysym_t X11Keymap::At(xcb_keycode_t code, int column) const {
  const int i = (code - mFirst) * mPerCode + column;
  const bool inRange = code >= mFirst && column < mPerCode && i < static_cast<int>(mSymbols.size());
  return inRange ? mSymbols[static_cast<std::size_t>(i)] : 0;
}

X11Key X11Keymap::Find(xcb_keycode_t code, uint16_t state) const {
  const int group = state >> kGroupShift & 1;
  const int base = group && At(code, 2) ? 2 : 0;
  const xcb_keysym_t plain = At(code, base);
  const xcb_keysym_t shifted = At(code, base + 1) ? At(code, base + 1) : Upper(plain);
  const bool shift = (state & kShift) != 0;

  X11Key key;
  key.keypad = IsKeypad(shifted);
  xcb_keysym_t symbol;
  if (key.keypad) {
    symbol = ((state & mNumLock) != 0) != shift ? shifted : plain;
  } else {
    symbol = shift ? shifted : plain;
    if (state & kCapsLock) symbol = Upper(symbol);
  }
  key.character = CharacterOf(symbol);
  key.symbol = MainKeyOf(symbol);
  key.shift = shift;
  key.control = (state & XCB_MOD_MASK_CONTROL) != 0;
  key.alt = (state & XCB_MOD_MASK_1) != 0;
  key.super = (state & XCB_MOD_MASK_4) != 0;
  return key;
}
