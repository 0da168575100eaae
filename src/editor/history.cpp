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
// and stay owned. The current index follows the count, so that after a commit that
// ends up recording nothing it still names a level that exists (the last one).
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

void ReleaseAllLevels(CImageEditWnd& editor) {
  for (int i = 0; i < editor.m_historyCount; ++i) ReleaseLevel(editor, editor.m_history[i]);
  editor.m_historyCount = 0;
  editor.m_historyIndex = -1;
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

// The drawing layer, the composition buffer and the scroll state come back only
// from a level with a readable snapshot. Scrolling happens before the placement is
// restored, so the positions are clamped against the displayed size still in force.
void RestoreDrawingLayer(CImageEditWnd& editor, const HistoryLevel& level) {
  BITMAP header{};
  if (!level.snapshot || !GetObjectA(level.snapshot, sizeof header, &header)) return;
  const int width = header.bmWidth;
  const int height = header.bmHeight;
  editor.CreateCompositionBuffer(width, height);
  SelectObject(editor.m_snapshotDC, level.snapshot);
  editor.CreateDrawingLayer(width, height);
  BitBlt(editor.m_drawingLayer.dc, 0, 0, width, height, editor.m_snapshotDC, 0, 0, SRCCOPY);
  editor.UpdateScrollBars(width, height);
  editor.OnHScroll(SB_THUMBPOSITION, static_cast<UINT>(level.hScrollPos), nullptr);
  editor.OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(level.vScrollPos), nullptr);
}

// The level keeps its own pieces; the live frame gets copies.
void RestorePlacementAndFrame(CImageEditWnd& editor, const HistoryLevel& level) {
  editor.m_displayedWidth = level.displayedWidth;
  editor.m_displayedHeight = level.displayedHeight;
  editor.m_imageRect = RECT{level.imageLeft, level.imageTop, level.imageLeft + level.displayedWidth,
                            level.imageTop + level.displayedHeight};
  editor.m_viewWidth = level.viewWidth;
  editor.m_viewHeight = level.viewHeight;
  editor.m_framePresent = level.framePresent;
  ReleaseFramePieces(editor.m_frame);
  for (int i = 0; i < kFramePieceCount; ++i) editor.m_frame[i] = CopyFramePiece(level.frame[i]);
}

// Live slots at or above the restored count keep what they held; they are not in use.
void RestoreObjects(CImageEditWnd& editor, const HistoryLevel& level) {
  // The level's object copies 0..count-1 are copied back into the live slots here
  // once inserted objects carry content.
  editor.m_objectCount = level.objectCount;
  editor.m_draggedObject = level.draggedObject;
  editor.m_dragLastX = level.dragX;
  editor.m_dragLastY = level.dragY;
  editor.m_selectedObject = level.selectedObject;
  std::copy(std::begin(level.zOrder), std::end(level.zOrder), editor.m_zOrder);
}

void RestoreLevel(CImageEditWnd& editor, const HistoryLevel& level) {
  RestoreDrawingLayer(editor, level);
  RestorePlacementAndFrame(editor, level);
  RestoreObjects(editor, level);
  editor.m_settings = level.settings;
  editor.BeginWaitCursor();
  editor.RunAdjustedRebuild();
  editor.RedrawWindow();
  editor.EndWaitCursor();
}

// A half-built curve is abandoned, and a captured rectangle that is being held goes
// back to plain rectangle selection.
void ResetUnfinishedTool(CImageEditWnd& editor) {
  if (editor.m_toolMode == 10 && editor.m_shapeStyle == 2) editor.m_curveStage = 0;
  if (editor.m_toolMode == 14) editor.m_toolMode = 12;
}

// Text being typed is thrown away, not put on the picture.
void DiscardTextEntry(CImageEditWnd& editor) {
  CTextEditWnd& entry = editor.m_textEdit;
  if (!entry.m_hWnd || !entry.IsWindowVisible()) return;
  entry.ShowWindow(SW_HIDE);
  entry.SendMessage(EM_SETSEL, 0, -1);
  entry.SendMessage(EM_SCROLLCARET);
  entry.SendMessage(WM_CLEAR);
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

void CImageEditWnd::Undo() {
  if (!m_composition.dc) return;
  ResetUnfinishedTool(*this);
  DiscardTextEntry(*this);
  if (!m_snapshotDC || m_historyIndex <= 0) return;
  RestoreLevel(*this, m_history[--m_historyIndex]);
}

void CImageEditWnd::Redo() {
  if (!m_composition.dc || !m_snapshotDC || m_historyIndex >= m_historyCount - 1) return;
  RestoreLevel(*this, m_history[++m_historyIndex]);
}

// Strokes and history go; bImage 0 also shows the plain scaled original again, the
// stored adjustments waiting for the next adjusted rebuild.
void CImageEditWnd::Clear(long bImage) {
  if (!m_drawingLayer.dc) return;
  ResetUnfinishedTool(*this);
  ReleaseAllLevels(*this);
  CreateDrawingLayer(m_drawingLayer.width(), m_drawingLayer.height());
  if (bImage == 0 && m_originalImage) RebuildImageSurface();
  RedrawWindow();
}
