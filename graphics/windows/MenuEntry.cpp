// What flags and numbering make of a menu's items.
#include "graphics/windows/MenuEntry.h"

#include <cstdio>

#include "graphics/IPopupMenu.h"

namespace {

std::string Title(const IPopupMenuItem& item, int prefix, int number) {
  constexpr const char* kFormats[] = {"", "%1d: ", "%02d: ", "%03d: "};
  char text[16] = "";
  if (prefix > 0) std::snprintf(text, sizeof text, kFormats[prefix], number);
  return std::string(text) + item.GetText();
}

}  // namespace

MenuEntry MenuEntryOf(const IPopupMenu& menu, int index) {
  const IPopupMenuItem& item = *menu.GetItem(index);
  MenuEntry entry;
  entry.submenu = item.GetSubmenu();
  const int flags = entry.submenu ? IPopupMenuItem::kNoFlags : item.GetFlags();
  entry.separator = (flags & IPopupMenuItem::kSeparator) != 0;
  if (entry.separator) return entry;
  entry.text = Title(item, menu.GetPrefix(), index + 1);
  // kept: a title is indented and can be chosen like any item. Menus that use titles to show a
  // level would lose those choices.
  entry.indented = (flags & IPopupMenuItem::kTitle) != 0;
  entry.checked = (flags & IPopupMenuItem::kChecked) != 0;
  entry.enabled = (flags & IPopupMenuItem::kDisabled) == 0;
  return entry;
}
