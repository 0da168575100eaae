// Committing history levels and moving through them. Adjustments are kept as
// settings, not pixels, so restoring a level re-runs the adjusted rebuild of the image
// surface from the original picture.
#include <utility>

#include "editor/image_edit_wnd.h"

void CImageEditWnd::RecordLevel(HistoryLevel& level) const {
  level.placement = m_view;
  level.frame.CopyFrom(m_frame);
  level.objects.CopyFrom(m_objects);
  level.settings = m_settings;
}

// The drawing layer, the composition buffer and the scroll state come back only
// from a level with a readable snapshot. Scrolling happens before the placement is
// restored, so the positions are clamped against the displayed size still in force.
void CImageEditWnd::RestoreLevel(const HistoryLevel& level) {
  BITMAP header{};
  const HBITMAP snapshot = m_history.CurrentSnapshot(m_surfaces.snapshotDC);
  if (snapshot && GetObjectA(snapshot, sizeof header, &header)) {
    const int width = header.bmWidth;
    const int height = header.bmHeight;
    CreateCompositionBuffer(width, height);
    m_surfaces.snapshotDC.Show(snapshot);
    CreateDrawingLayer(width, height);
    BitBlt(m_surfaces.drawingLayer.dc(), 0, 0, width, height, m_surfaces.snapshotDC.get(), 0, 0, SRCCOPY);
    UpdateScrollBars(width, height);
    OnHScroll(SB_THUMBPOSITION, static_cast<UINT>(level.placement.hScrollPos()), nullptr);
    OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(level.placement.vScrollPos()), nullptr);
  }
  // The level keeps its own frame pieces; the live frame gets copies.
  m_view.RestoreLayout(level.placement);
  m_frame.CopyFrom(level.frame);
  m_objects.CopyFrom(level.objects);
  m_settings = level.settings;
  BeginWaitCursor();
  RunAdjustedRebuild();
  RedrawWindow();
  EndWaitCursor();
}

void CImageEditWnd::CommitHistoryLevel(HDC source, int width, int height) {
  if (!m_surfaces.snapshotDC) return;
  platform::MemoryDC& snapshotDC = m_surfaces.snapshotDC;
  m_history.DiscardRedoLevels(snapshotDC);

  platform::OwnedBitmap snapshot(source ? CreateCompatibleBitmap(source, width, height) : nullptr);
  // Room is made by giving up the oldest levels, one at a time: once when the history
  // is full, and again for each failed attempt at the snapshot (memory may be short).
  if (m_history.IsFull() || (source && !snapshot)) {
    for (int round = 0; round < kHistoryLevels && m_history.count() > 0; ++round) {
      m_history.DropOldest(snapshotDC);
      if (!source) break;
      if (!snapshot) snapshot = platform::OwnedBitmap(CreateCompatibleBitmap(source, width, height));
      if (snapshot) break;
    }
  }
  if (source && !snapshot) return;

  // Every caller passes the drawing layer as the source, so the level has a snapshot
  // whenever one was made.
  RecordLevel(m_history.Append(std::move(snapshot), source, width, height, snapshotDC));
}

// The history moving under a tool abandons what it cannot finish any more: a half
// built curve starts over, a held selection goes back to plain rectangle selection.
void CImageEditWnd::Undo() {
  if (!m_surfaces.composition.dc()) return;
  if (Interaction* tool = ActiveTool()) tool->Abandon();
  // Text being typed is thrown away, not put on the picture.
  if (m_textEntry.IsShown()) m_textEntry.Discard();
  if (!m_surfaces.snapshotDC || !m_history.CanUndo()) return;
  RestoreLevel(m_history.StepBack());
}

void CImageEditWnd::Redo() {
  if (!m_surfaces.composition.dc() || !m_surfaces.snapshotDC || !m_history.CanRedo()) return;
  RestoreLevel(m_history.StepForward());
}

// Strokes and history go; bImage 0 also shows the plain scaled original again, the
// stored adjustments waiting for the next adjusted rebuild.
void CImageEditWnd::Clear(long bImage) {
  const Surface& layer = m_surfaces.drawingLayer;
  if (!layer.dc()) return;
  // A drag under way would go on drawing on what is cleared, against a snapshot that
  // is gone.
  EndDrag();
  if (Interaction* tool = ActiveTool()) tool->Abandon();
  m_history.Clear(m_surfaces.snapshotDC);
  CreateDrawingLayer(layer.width(), layer.height());
  if (bImage == 0 && m_surfaces.original) RebuildImageSurface();
  RedrawWindow();
}
