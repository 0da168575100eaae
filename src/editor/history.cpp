// The edit history: up to ten levels, each a full record of the editable state.
// Adjustments are kept as settings, not pixels, so restoring a level re-runs the
// adjusted rebuild of the image surface from the original picture.
#include <algorithm>
#include <iterator>

#include "editor/image_edit_wnd.h"

namespace {

HistoryLevelValues& ValuesOf(HistoryLevel& level) { return level; }

// An independent copy of a frame piece; a piece without a bitmap stays empty.
FramePiece CopyFramePiece(const FramePiece& piece) {
  if (!piece.bitmap) return FramePiece{};
  FramePiece copy = piece;
  copy.bitmap = static_cast<HBITMAP>(
      CopyImage(piece.bitmap, IMAGE_BITMAP, piece.width, piece.height, LR_CREATEDIBSECTION));
  return copy;
}

void ReleaseFramePieces(FramePiece (&pieces)[kFramePieceCount]) {
  for (FramePiece& piece : pieces) {
    if (piece.bitmap) DeleteObject(piece.bitmap);
    piece = FramePiece{};
  }
}

// A bitmap selected into a DC cannot be deleted, so the snapshot DC gets its
// original bitmap back when it holds the snapshot about to go.
void DeselectSnapshot(const CImageEditWnd& editor, HBITMAP snapshot) {
  if (editor.m_snapshotPreviousBitmap && GetCurrentObject(editor.m_snapshotDC, OBJ_BITMAP) == snapshot) {
    SelectObject(editor.m_snapshotDC, editor.m_snapshotPreviousBitmap);
  }
}

// Deletes what the level owns and puts the slot back to its reset values.
void ReleaseLevel(const CImageEditWnd& editor, HistoryLevel& level) {
  if (level.snapshot) {
    DeselectSnapshot(editor, level.snapshot);
    DeleteObject(level.snapshot);
  }
  ReleaseFramePieces(level.frame);
  // The object copies are reset here once inserted objects carry content.
  ValuesOf(level) = HistoryLevelValues{};
}

void DiscardRedoLevels(CImageEditWnd& editor) {
  for (int i = editor.m_historyIndex + 1; i < editor.m_historyCount; ++i) {
    ReleaseLevel(editor, editor.m_history[i]);
  }
  editor.m_historyCount = editor.m_historyIndex + 1;
}

// Gives up level 0 and moves the others down one place; their handles change slots
// and stay owned. The current index follows the count, so that a commit that ends
// up recording nothing still leaves the last remaining level on screen.
void DropOldestLevel(CImageEditWnd& editor) {
  HistoryLevel* history = editor.m_history;
  ReleaseLevel(editor, history[0]);
  for (int i = 1; i < editor.m_historyCount; ++i) {
    ValuesOf(history[i - 1]) = history[i];
    // The object copies move down here too once inserted objects carry content.
  }
  ValuesOf(history[editor.m_historyCount - 1]) = HistoryLevelValues{};
  --editor.m_historyCount;
  editor.m_historyIndex = editor.m_historyCount - 1;
}

// Everything of the live state except the drawing layer, which goes into the
// level's snapshot.
void RecordState(const CImageEditWnd& editor, HistoryLevel& level) {
  level.imageLeft = editor.m_imageRect.left;
  level.imageTop = editor.m_imageRect.top;
  level.displayedWidth = editor.m_displayedWidth;
  level.displayedHeight = editor.m_displayedHeight;
  level.viewWidth = editor.m_viewWidth;
  level.viewHeight = editor.m_viewHeight;
  level.hScrollPos = editor.m_hScrollPos;
  level.vScrollPos = editor.m_vScrollPos;
  level.framePresent = editor.m_framePresent;
  for (int i = 0; i < kFramePieceCount; ++i) level.frame[i] = CopyFramePiece(editor.m_frame[i]);
  // Deep copies of the live objects 0..count-1 go into the level's object slots here
  // once inserted objects carry content.
  level.objectCount = editor.m_objectCount;
  level.draggedObject = editor.m_draggedObject;
  level.dragX = editor.m_dragLastX;
  level.dragY = editor.m_dragLastY;
  level.selectedObject = editor.m_selectedObject;
  std::copy(std::begin(editor.m_zOrder), std::end(editor.m_zOrder), level.zOrder);
  level.settings = editor.m_settings;
}

}  // namespace

void CImageEditWnd::CommitHistoryLevel(HDC source, int width, int height) {
  if (!m_snapshotDC) return;
  DiscardRedoLevels(*this);

  HBITMAP snapshot = source ? CreateCompatibleBitmap(source, width, height) : nullptr;
  // Room is made by giving up the oldest levels, one at a time: once when the history
  // is full, and again for each failed attempt at the snapshot (memory may be short).
  if (m_historyCount == kHistoryLevels || (source && !snapshot)) {
    for (int round = 0; round < kHistoryLevels && m_historyCount > 0; ++round) {
      DropOldestLevel(*this);
      if (!source) break;
      if (!snapshot) snapshot = CreateCompatibleBitmap(source, width, height);
      if (snapshot) break;
    }
  }
  if (source && !snapshot) return;

  HistoryLevel& level = m_history[m_historyCount];
  m_historyIndex = m_historyCount++;
  // Every caller passes the drawing layer as the source, so the level owns the
  // snapshot whenever one was made.
  if (snapshot) {
    level.snapshot = snapshot;
    HGDIOBJ previous = SelectObject(m_snapshotDC, snapshot);
    if (!m_snapshotPreviousBitmap) m_snapshotPreviousBitmap = static_cast<HBITMAP>(previous);
    BitBlt(m_snapshotDC, 0, 0, width, height, source, 0, 0, SRCCOPY);
  }
  RecordState(*this, level);
}
