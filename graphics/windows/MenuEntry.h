// The lines of a menu as every platform shows them.
#pragma once

#include <string>

class IPopupMenu;

// Sub-menus beyond are not shown: a menu may hold itself.
constexpr int kDeepestMenu = 8;

struct MenuEntry {
  std::string text;               // with its number, where the menu has them
  IPopupMenu* submenu = nullptr;  // null for none
  bool separator = false, enabled = true, checked = false;
  bool indented = false;
};

// The item at an index of the menu.
MenuEntry MenuEntryOf(const IPopupMenu& menu, int index);
