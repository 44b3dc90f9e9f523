// The rows of a menu: their places, and which can be chosen.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "graphics/IGraphicsTypes.h"
#include "graphics/windows/MenuEntry.h"

struct MenuRow : MenuEntry {
  int top = 0, height = 0;  // pixels from the top of the menu

  bool CanBeLit() const { return !separator && enabled; }
};

// Rows have the indices of the menu's items. Sizes are in pixels and include the border.
class MenuLayout {
 public:
  static constexpr int kRowHeight = 20;
  static constexpr int kPadding = 4;    // above and below the rows, with the border
  static constexpr int kTextLeft = 22;  // after the column of the check marks
  static constexpr int kIndentation = 12;

  // `widthOf` measures a text.
  MenuLayout(const IPopupMenu& menu, const std::function<int(const std::string&)>& widthOf);

  int Width() const { return mWidth; }
  int Height() const { return mHeight; }
  const std::vector<MenuRow>& Rows() const { return mRows; }
  const MenuRow& Row(int row) const { return mRows[static_cast<std::size_t>(row)]; }
  int RowAt(int y) const;  // -1 for none
  // The next row in a direction that can be lit, around the ends; from -1 the first or last. -1
  // when there is none.
  int Next(int row, int direction) const;

 private:
  std::vector<MenuRow> mRows;
  int mWidth, mHeight;
};

// Moved as little as it takes to lie inside `area`, cut to its size where it is larger.
IRECT MovedInto(const IRECT& rect, const IRECT& area);
