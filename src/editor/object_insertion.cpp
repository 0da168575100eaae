// Inserting objects: icons (a picture) and balloon texts (text drawn into a picture or
// into a plain box). Both take the lowest free slot and go in front of the others.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include "editor/balloon_text.h"
#include "editor/clamped_int.h"
#include "editor/image_edit_wnd.h"
#include "editor/render_text_block.h"
#include "imageio/image_loader.h"

namespace {

// The distance between two coordinates, which may be further apart than an int holds.
int Distance(int from, int to) { return ClampedInt(std::abs(std::int64_t{to} - from)); }

}  // namespace

void CImageEditWnd::PlaceInsertedObject(int slot, ObjectKind kind, platform::OwnedBitmap picture,
                                        const BITMAP& size, int startX, int startY) {
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
  object.sourcePicture = platform::CopyOfBitmap(picture.get());
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
  PlaceInsertedObject(slot, ObjectKind::Icon, std::move(picture), size, nStartX, nStartY);
}

// Without a balloon picture the text gets a box of its own in the text background:
// keyed on the background colour when the background is transparent, otherwise on a
// colour it can hardly be, so that the box shows whole.
void CImageEditWnd::InsertBalloonText(int nStartX, int nStartY, LPCSTR lpszFilePath, int nTextStartX,
                                      int nTextStartY, int nTextEndX, int nTextEndY, LPCSTR lpszText) {
  CloseTextEntry();
  const int slot = m_objects.FirstFreeSlot();
  HDC composition = m_surfaces.composition.dc();
  if (!composition || slot == kMaxInsertedObjects) return;
  platform::OwnedBitmap balloon(imageio::LoadImage(lpszFilePath, m_messages.LoadContext(m_hWnd)));
  const bool withBalloon = static_cast<bool>(balloon);
  const std::string text = DecodeBalloonText(lpszText);
  const TextBlockLimits limits{m_view.displayedWidth(), m_messages.language};
  HBITMAP rendered =
      RenderTextBlock(composition, balloon.get(), text.c_str(), m_textEntry.font(), m_textEntry.textColor,
                      m_textEntry.backgroundBrush(), nTextStartX, nTextStartY,
                      Distance(nTextStartX, nTextEndX), Distance(nTextStartY, nTextEndY), limits);
  // The text is drawn into the balloon picture itself when there is one.
  platform::OwnedBitmap picture(rendered == balloon.get() ? balloon.release() : rendered);
  BITMAP size{};
  if (!picture || !GetObjectA(picture.get(), sizeof size, &size)) return;

  CInsertedObject& object = m_objects.Object(slot);
  object.textColor = m_textEntry.textColor;
  object.backgroundBrush = CopyOfBrush(m_textEntry.backgroundBrush());
  object.transparency = m_objects.storedTransparency;
  object.keyColor = withBalloon ? m_objects.storedTransparentColor : m_textEntry.StampKey();
  PlaceInsertedObject(slot, ObjectKind::Balloon, std::move(picture), size, nStartX, nStartY);
}

// Only objects inserted from now on take these; the ones already there keep theirs.
void CImageEditWnd::SetTransparency(int nTransparentColor, int nTransparency) {
  if (!m_surfaces.drawingLayer.dc() || nTransparency < 0 || nTransparency > 100) return;
  m_objects.storedTransparentColor = static_cast<COLORREF>(nTransparentColor);
  m_objects.storedTransparency = nTransparency;
}
