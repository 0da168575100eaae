// The editor's keyboard shortcuts: Ctrl+Z undoes and Ctrl+Y redoes, once per press;
// Delete removes the selected inserted object.
#include "editor/image_edit_wnd.h"

namespace {

// Bit 30 of a key message's lParam (bit 14 of the flags word): the key was already
// down, so this is an automatic repeat.
constexpr UINT kPreviousKeyState = 0x4000;

}  // namespace

void CImageEditWnd::OnKeyDown(UINT virtualKey, UINT repeatCount, UINT flags) {
  if ((flags & kPreviousKeyState) == 0) {
    const bool ctrl = GetKeyState(VK_CONTROL) < 0;
    if (ctrl && virtualKey == 'Z') {
      Undo();
    } else if (ctrl && virtualKey == 'Y') {
      Redo();
    } else if (virtualKey == VK_DELETE) {
      // Unlike the shortcut menu's "Delete", the key records no history level.
      DeleteSelectedObject();
    }
  }
  CWnd::OnKeyDown(virtualKey, repeatCount, flags);
}
