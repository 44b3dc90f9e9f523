// Pop-up menus as data; the window layer shows them. Tolmara uses plain lists of items, without
// prefixes, titles and sub-menus.
#pragma once

#include <memory>

#include "iplug/Containers.h"

class IPopupMenu;

// One line of a menu. A sub-menu belongs to its creator.
class IPopupMenuItem {
 public:
  enum EFlags { kNoFlags = 0, kDisabled = 1, kTitle = 2, kChecked = 4, kSeparator = 8 };

  explicit IPopupMenuItem(const char* text, int flags = kNoFlags, IPopupMenu* submenu = nullptr);

  const char* GetText() const { return mText.Get(); }
  IPopupMenu* GetSubmenu() const { return mSubmenu; }
  int GetFlags() const { return mFlags; }
  bool GetIsChecked() const { return (mFlags & kChecked) != 0; }
  void SetChecked(bool state) { mFlags = state ? mFlags | kChecked : mFlags & ~kChecked; }

 private:
  HeapString mText;
  IPopupMenu* mSubmenu;  // not owned, null for none
  int mFlags;            // EFlags
};

// A list of items, owned by the menu. Indices count from 0 and include separators; operations on
// an index out of range do nothing and answer null or false. An insertion index of -1 appends.
class IPopupMenu {
 public:
  IPopupMenu() = default;
  IPopupMenu(const IPopupMenu&) = delete;
  IPopupMenu& operator=(const IPopupMenu&) = delete;

  void AddItem(const char* text, int index = -1, int flags = IPopupMenuItem::kNoFlags);
  void AddItem(const char* text, int index, IPopupMenu* submenu);
  void AddItem(const char* text, IPopupMenu* submenu);
  void AddSeparator(int index = -1);

  // 0 for none; 1, 2, 3: a number of so many digits before each item. More is ignored.
  void SetPrefix(int count);
  void CheckItem(int index, bool state);
  void CheckItemAlone(int index);  // and no other
  void SetChosenItemIdx(int index) { mChosenItemIdx = index; }

  int GetPrefix() const { return mPrefix; }
  int GetChosenItemIdx() const { return mChosenItemIdx; }
  int GetNItems() const { return mMenuItems.GetSize(); }
  IPopupMenuItem* GetItem(int index) const { return mMenuItems.Get(index); }
  bool IsItemChecked(int index) const;
  const char* GetItemText(int index) const;  // "" out of range

 private:
  void Insert(std::unique_ptr<IPopupMenuItem> item, int index);

  int mPrefix = 0;
  int mChosenItemIdx = -1;  // until chosen
  OwnedPointerList<IPopupMenuItem> mMenuItems;
};
