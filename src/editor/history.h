// The edit history: up to ten levels, each a record of the editable state at one
// moment. Levels 0..count-1 are valid and the current index names the one on screen;
// the levels above it are the redo levels. The index stays within -1..count-1 (-1 only
// while the history is empty), and every level releases what it owns when it is
// discarded, dropped or cleared; so the levels, the count and the index change only
// through the operations below. The drawing-layer snapshots are kept by a chain that
// stores what each one changed (snapshot_chain.h).
#pragma once

#include "editor/inserted_objects.h"
#include "editor/picture_frame.h"
#include "editor/snapshot_chain.h"
#include "editor/view_placement.h"
#include "pixels/adjustment_settings.h"
#include "platform/gdi_handles.h"

inline constexpr int kHistoryLevels = 10;

// One undo step. A slot whose level is discarded is reset to these values. Its
// drawing-layer snapshot, if it has one, is kept by the history's chain.
struct HistoryLevel {
  // Of the placement only the image position and displayed size, the view size and
  // the scroll positions are given back.
  ViewPlacement placement;
  PictureFrame frame;
  InsertedObjects objects;
  AdjustmentSettings settings;
};

class EditHistory {
 public:
  bool CanUndo() const { return index_ > 0; }
  bool CanRedo() const { return index_ < count_ - 1; }
  bool IsFull() const { return count_ == kHistoryLevels; }
  int count() const { return count_; }
  int index() const { return index_; }
  // Level 0..count-1.
  const HistoryLevel& Level(int i) const { return levels_[i]; }
  bool HasSnapshot(int i) const { return snapshots_.Has(i); }

  // A snapshot shown in the snapshot DC is taken out of it before it is deleted.
  void DiscardRedoLevels(platform::MemoryDC& snapshotDC);
  // Gives up level 0 and moves the others down one place. The index follows the
  // count, so that it still names a level that exists (the last one).
  void DropOldest(platform::MemoryDC& snapshotDC);
  void Clear(platform::MemoryDC& snapshotDC);
  // A new level after the last; it becomes the current one. Needs room. With a
  // snapshot (a new bitmap of width x height), `source`'s pixels are copied into it
  // through the snapshot DC, which shows it from then on.
  HistoryLevel& Append(platform::OwnedBitmap snapshot, HDC source, int width, int height,
                       platform::MemoryDC& snapshotDC);
  // Moves the index one level down or up and returns that level; needs CanUndo or
  // CanRedo.
  const HistoryLevel& StepBack();
  const HistoryLevel& StepForward();
  // The current level's snapshot, or null for a level without one (or whose snapshot
  // memory could not bring back). Only for the level just stepped to or appended.
  HBITMAP CurrentSnapshot(platform::MemoryDC& snapshotDC);

 private:
  HistoryLevel levels_[kHistoryLevels];
  SnapshotChain snapshots_;
  int count_ = 0;
  int index_ = -1;
};
