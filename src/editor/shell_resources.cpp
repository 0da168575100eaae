#include "editor/shell_resources.h"

ShellResources::ShellResources() {
  BuildPopupMenu();
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

void ShellResources::BuildPopupMenu() {
  popupMenu_ = platform::OwnedMenu(CreatePopupMenu());
  if (!popupMenu_) return;
  zOrderMenu_ = platform::OwnedMenu(CreatePopupMenu());
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
