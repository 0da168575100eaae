// Inserting objects: icons (a picture) and balloon texts (text drawn into a picture or
// into a plain box). Both take the lowest free slot and go in front of the others.
#include <utility>

#include "editor/image_edit_wnd.h"
#include "imageio/image_loader.h"

void CImageEditWnd::PlaceInsertedObject(int slot, ObjectKind kind, platform::OwnedBitmap picture, int startX,
                                        int startY) {
  BITMAP size{};
  GetObjectA(picture.get(), sizeof size, &size);
  CInsertedObject& object = m_objects.Object(slot);
  if (startX < 0 || startY < 0) {
    // Centred in the composition buffer; each half truncated toward zero.
    const Surface& composition = m_surfaces.composition;
    object.x = composition.width() / 2 - size.bmWidth / 2;
    object.y = composition.height() / 2 - size.bmHeight / 2;
  } else {
    object.x = startX;
    object.y = startY;
  }
  object.width = object.sourceWidth = size.bmWidth;
  object.height = object.sourceHeight = size.bmHeight;
  object.sourcePicture = platform::OwnedBitmap(
      static_cast<HBITMAP>(CopyImage(picture.get(), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
  object.picture = std::move(picture);
  object.resizable = true;
  object.RebuildSelectedPicture();
  m_objects.AddInFront(slot, kind);
  RedrawWindow();
  CommitHistoryLevel(nullptr, 0, 0);
}

void CImageEditWnd::InsertIcon(int nStartX, int nStartY, LPCSTR lpszFilePath) {
  CloseTextEntry();
  const int slot = m_objects.FirstFreeSlot();
  if (!m_surfaces.composition.dc() || slot == kMaxInsertedObjects) return;
  platform::OwnedBitmap picture(imageio::LoadImage(lpszFilePath, m_messages.LoadContext(m_hWnd)));
  BITMAP size{};
  if (!picture || !GetObjectA(picture.get(), sizeof size, &size)) return;
  m_objects.Object(slot).keyColor = m_objects.storedTransparentColor;
  PlaceInsertedObject(slot, ObjectKind::Icon, std::move(picture), nStartX, nStartY);
}
