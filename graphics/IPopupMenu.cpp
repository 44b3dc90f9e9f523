// Building and reading of menus.
#include "graphics/IPopupMenu.h"

IPopupMenuItem::IPopupMenuItem(const char* text, int flags, IPopupMenu* submenu)
    : mText(text), mSubmenu(submenu), mFlags(flags) {}

void IPopupMenu::Insert(std::unique_ptr<IPopupMenuItem> item, int index) {
  mMenuItems.InsertOwned(index < 0 ? GetNItems() : index, std::move(item));
}

void IPopupMenu::AddItem(const char* text, int index, int flags) {
  Insert(std::make_unique<IPopupMenuItem>(text, flags), index);
}

void IPopupMenu::AddItem(const char* text, int index, IPopupMenu* submenu) {
  Insert(std::make_unique<IPopupMenuItem>(text, IPopupMenuItem::kNoFlags, submenu), index);
}

void IPopupMenu::AddItem(const char* text, IPopupMenu* submenu) { AddItem(text, -1, submenu); }

void IPopupMenu::AddSeparator(int index) { AddItem("", index, IPopupMenuItem::kSeparator); }

void IPopupMenu::SetPrefix(int count) {
  if (count >= 0 && count <= 3) mPrefix = count;
}

void IPopupMenu::CheckItem(int index, bool state) {
  if (IPopupMenuItem* item = GetItem(index)) item->SetChecked(state);
}

void IPopupMenu::CheckItemAlone(int index) {
  for (int i = 0; i < GetNItems(); ++i) CheckItem(i, i == index);
}

bool IPopupMenu::IsItemChecked(int index) const {
  const IPopupMenuItem* item = GetItem(index);
  return item && item->GetIsChecked();
}

const char* IPopupMenu::GetItemText(int index) const {
  const IPopupMenuItem* item = GetItem(index);
  return item ? item->GetText() : "";
}
