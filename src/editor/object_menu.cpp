// The inserted objects' shortcut menu: the right button selects the object under the
// pointer and shows the menu; its commands mirror the selected object, give it back
// its size at insertion, delete it or move it in the stacking order.
#include <initializer_list>

#include "editor/image_edit_wnd.h"
#include "editor/object_commands.h"

void CImageEditWnd::OnRButtonDown(UINT flags, POINT point) {
  CloseTextEntry();
  if (!m_surfaces.composition.dc() || !m_shell.shortcutMenuEnabled || !m_shell.popupMenu()) {
    CWnd::OnRButtonDown(flags, point);
    return;
  }
  SelectInsertedObject(*this, m_objects.HitTest(point));
  RECT client{0, 0, 0, 0};
  GetClientRect(&client);
  if (!PtInRect(&client, point) || m_objects.selected() < 0) return;
  POINT screen = point;
  ClientToScreen(m_hWnd, &screen);
  TrackPopupMenu(m_shell.popupMenu(), TPM_RIGHTBUTTON, screen.x, screen.y, 0, m_hWnd, nullptr);
}

// Every item acts on the selected object, so every item is enabled only while there
// is one. The submenu is brought up to date with the menu that opens it: a host may
// show both at once.
void CImageEditWnd::OnInitMenuPopup(HMENU popup, UINT index, BOOL systemMenu) {
  CWnd::OnInitMenuPopup(popup, index, systemMenu);
  if (popup == nullptr || (popup != m_shell.popupMenu() && popup != m_shell.zOrderMenu())) return;
  const UINT state = m_objects.selected() >= 0 ? MF_ENABLED : MF_GRAYED;
  for (HMENU menu : {m_shell.popupMenu(), m_shell.zOrderMenu()}) {
    for (int item = 0; item < GetMenuItemCount(menu); ++item)
      EnableMenuItem(menu, static_cast<UINT>(item), MF_BYPOSITION | state);
  }
}

BOOL CImageEditWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
  const UINT command = LOWORD(wParam);
  if (command < kFirstObjectCommand || command > kLastObjectCommand) return CWnd::OnCommand(wParam, lParam);
  RunObjectCommand(command);
  return TRUE;
}

// A command that arrives while no object is selected is one whose item is disabled: it
// does nothing.
void CImageEditWnd::RunObjectCommand(UINT command) {
  const int slot = m_objects.selected();
  if (slot < 0) return;
  CInsertedObject& object = m_objects.Object(slot);
  switch (command) {
    case kObjectReverse:
      object.Mirror(m_surfaces.composition.dc());
      object.RebuildSelectedPicture();
      break;
    case kObjectOriginal:
      object.RestoreOriginalSize();
      break;
    case kObjectDelete:
      DeleteSelectedObject();
      CommitHistoryLevel(nullptr, 0, 0);
      return;
    case kObjectTopmost:
      m_objects.MoveSelected(ZOrderMove::Topmost);
      break;
    case kObjectAbove:
      m_objects.MoveSelected(ZOrderMove::Above);
      break;
    case kObjectBelow:
      m_objects.MoveSelected(ZOrderMove::Below);
      break;
    case kObjectBottommost:
      m_objects.MoveSelected(ZOrderMove::Bottommost);
      break;
    default:  // "Z Order" only opens its submenu
      return;
  }
  RedrawWindow();
}

void CImageEditWnd::DeleteSelectedObject() {
  if (m_objects.DeleteSelected()) RedrawWindow();
}
