#include "editor/shell_resources.h"

#include "editor/object_commands.h"
#include "resources/module_resources.h"

namespace {

// Appends the item; `submenu` makes it open that menu.
void AppendItem(HMENU menu, const ObjectMenuItem& item, WORD language, HMENU submenu = nullptr) {
  MENUITEMINFOA info{};
  info.cbSize = sizeof info;
  info.fMask = MIIM_TYPE | MIIM_ID | (submenu ? MIIM_SUBMENU : 0);
  info.fType = MFT_STRING;
  info.wID = item.command;
  info.hSubMenu = submenu;
  info.dwTypeData = const_cast<LPSTR>(item.text.For(language));
  InsertMenuItemA(menu, static_cast<UINT>(GetMenuItemCount(menu)), TRUE, &info);
}

}  // namespace

ShellResources::ShellResources(WORD language) {
  BuildPopupMenu(language);
  RegisterModuleResources();
  for (int i = 0; i < kCursorCount; ++i) {
    cursors_[i] = platform::OwnedCursor(
        LoadCursorA(AfxGetInstanceHandle(), MAKEINTRESOURCEA(kCursorTable[i].resourceId)));
  }
  imageLibrary_ = platform::OwnedModule(LoadLibraryA("MSIMG32.DLL"));
  if (imageLibrary_) {
    transparentBlt_ =
        reinterpret_cast<TransparentBltEntry>(GetProcAddress(imageLibrary_.get(), "TransparentBlt"));
  }
}

void ShellResources::BuildPopupMenu(WORD language) {
  popupMenu_ = platform::OwnedMenu(CreatePopupMenu());
  if (!popupMenu_) return;
  zOrderMenu_ = platform::OwnedMenu(CreatePopupMenu());
  if (zOrderMenu_) {
    for (const ObjectMenuItem& item : kZOrderMenuItems) AppendItem(zOrderMenu_.get(), item, language);
  }
  for (const ObjectMenuItem& item : kObjectMenuItems) {
    AppendItem(popupMenu_.get(), item, language, item.command == kObjectZOrder ? zOrderMenu_.get() : nullptr);
  }
  shortcutMenuEnabled = true;
}

void ShellResources::Release() {
  zOrderMenu_.reset();
  popupMenu_.reset();
  for (platform::OwnedCursor& cursor : cursors_) cursor.reset();
  transparentBlt_ = nullptr;
  imageLibrary_.reset();
}

HCURSOR ShellResources::Cursor(int resourceId) const {
  for (int i = 0; i < kCursorCount; ++i) {
    if (kCursorTable[i].resourceId == resourceId) return cursors_[i].get();
  }
  return nullptr;
}
