// Layout of a menu.
#include "graphics/x11/widgets/MenuLayout.h"

#include "graphics/IPopupMenu.h"

namespace {

constexpr int kSeparatorHeight = 9;
constexpr int kArrowWidth = 20;  // column of the arrows to sub-menus, right of the text
constexpr int kLeastWidth = 60;

}  // namespace

MenuLayout::MenuLayout(const IPopupMenu& menu,
                       const std::function<int(const std::string&)>& widthOf)
    : mWidth(kLeastWidth), mHeight(kPadding) {
  for (int i = 0; i < menu.GetNItems(); ++i) {
    MenuRow row{MenuEntryOf(menu, i)};
    row.top = mHeight;
    row.height = row.separator ? kSeparatorHeight : kRowHeight;
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
