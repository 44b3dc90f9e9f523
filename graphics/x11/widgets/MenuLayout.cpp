// Layout of a menu.
#include "graphics/x11/widgets/MenuLayout.h"

#include <cstdio>

#include "graphics/IPopupMenu.h"

namespace {

constexpr int kSeparatorHeight = 9;
constexpr int kArrowWidth = 20;  // column of the arrows to sub-menus, right of the text
constexpr int kLeastWidth = 60;

std::string Title(const IPopupMenuItem& item, int prefix, int number) {
  constexpr const char* kFormats[] = {"", "%1d: ", "%02d: ", "%03d: "};
  char text[16] = "";
  if (prefix > 0) std::snprintf(text, sizeof text, kFormats[prefix], number);
  return std::string(text) + item.GetText();
}

MenuRow RowOf(const IPopupMenuItem& item, int prefix, int number) {
  MenuRow row;
  row.height = MenuLayout::kRowHeight;
  row.submenu = item.GetSubmenu();
  const int flags = row.submenu ? IPopupMenuItem::kNoFlags : item.GetFlags();
  if (flags & IPopupMenuItem::kSeparator) {
    row.separator = true;
    row.height = kSeparatorHeight;
    return row;
  }
  row.text = Title(item, prefix, number);
  // kept: a title is set in by one step and can be chosen like any item.
  row.indented = (flags & IPopupMenuItem::kTitle) != 0;
  row.checked = (flags & IPopupMenuItem::kChecked) != 0;
  row.enabled = (flags & IPopupMenuItem::kDisabled) == 0;
  return row;
}

}  // namespace

MenuLayout::MenuLayout(const IPopupMenu& menu,
                       const std::function<int(const std::string&)>& widthOf)
    : mWidth(kLeastWidth), mHeight(kPadding) {
  for (int i = 0; i < menu.GetNItems(); ++i) {
    MenuRow row = RowOf(*menu.GetItem(i), menu.GetPrefix(), i + 1);
    row.top = mHeight;
    mHeight += row.height;
    const int left = kTextLeft + (row.indented ? kIndentation : 0);
    mWidth = std::max(mWidth, left + widthOf(row.text) + kArrowWidth);
    mRows.push_back(std::move(row));
  }
  mHeight += kPadding;
}

int MenuLayout::RowAt(int y) const {
  for (std::size_t i = 0; i < mRows.size(); ++i) {
    if (y >= mRows[i].top && y < mRows[i].top + mRows[i].height) return static_cast<int>(i);
  }
  return -1;
}

int MenuLayout::Next(int row, int direction) const {
  const int n = static_cast<int>(mRows.size());
  int next = row < 0 && direction < 0 ? n : row;
  for (int tries = 0; tries < n; ++tries) {
    next = (next + direction + n) % n;
    if (Row(next).CanBeLit()) return next;
  }
  return -1;
}

IRECT MovedInto(const IRECT& rect, const IRECT& area) {
  const int w = std::min(rect.W(), area.W());
  const int h = std::min(rect.H(), area.H());
  const int left = std::clamp(rect.L, area.L, area.R - w);
  const int top = std::clamp(rect.T, area.T, area.B - h);
  return {left, top, left + w, top + h};
}
