// What the editor holds for the shell around the picture: the popup menu with its
// "Z Order" submenu and the shortcut-menu flag, the twenty cursors, and the image
// library with its transparent-copy entry. All are acquired when the editor is made.
#pragma once

#include "platform/platform.h"
#include "platform/user_handles.h"
#include "resources/cursor_table.h"

using TransparentBltEntry = BOOL (*)(HDC, int, int, int, int, HDC, int, int, int, int, UINT);

class ShellResources {
 public:
  // The menu texts are in `language`, the user's primary language.
  explicit ShellResources(WORD language);
  ShellResources(const ShellResources&) = delete;
  ShellResources& operator=(const ShellResources&) = delete;

  // The menus first, the submenu before the menu that holds it, then the cursors,
  // then the library (which takes its entry with it).
  void Release();

  // The cursor with that resource id as loaded, null when it is not there.
  HCURSOR Cursor(int resourceId) const;
  // The platform's transparent copy, or null when the library or the entry is missing.
  TransparentBltEntry transparentBlt() const { return transparentBlt_; }
  // The inserted objects' shortcut menu and its "Z Order" submenu; null when they
  // could not be made.
  HMENU popupMenu() const { return popupMenu_.get(); }
  HMENU zOrderMenu() const { return zOrderMenu_.get(); }

  // Whether a right click shows the popup menu: on once the menu exists.
  bool shortcutMenuEnabled = false;

 private:
  // Without the menu the flag stays off; without the submenu "Z Order" opens nothing.
  void BuildPopupMenu(WORD language);

  platform::OwnedMenu popupMenu_;
  platform::OwnedMenu zOrderMenu_;
  platform::OwnedCursor cursors_[kCursorCount];
  platform::OwnedModule imageLibrary_;
  TransparentBltEntry transparentBlt_ = nullptr;
};
