// The drawing-layer snapshots of the history's levels, each costing what its edit
// changed. One snapshot is kept whole (the anchor: the one committed or restored last),
// and between each level with a snapshot and the previous such level the chain keeps
// what tells the two apart: the packed difference of their pixels when both have one
// size, both bitmaps (packed) when the layer was resized between them. Undo and redo
// move the anchor one snapshot at a time by applying a difference, so a restored level
// has exactly the pixels it was committed with.
//
// The anchor is also the bitmap the snapshot DC shows, and the tools draw into it (the
// finished stroke at a release, white under a captured rectangle). The chain keeps a
// second, settled copy of the anchor as the neighbouring differences know it, and
// folds any such change into them before it moves.
#pragma once

#include <vector>

#include "platform/gdi_handles.h"
#include "platform/kept_bitmaps.h"

class SnapshotChain {
 public:
  bool Has(int level) const;
  // Makes `snapshot` (a new bitmap of width x height) the snapshot of `level`, above
  // every level held: `source`'s pixels are copied into it through the snapshot DC,
  // which goes on showing it. Should memory run out for the difference to the previous
  // snapshot, the earlier snapshots are given up (their levels then restore no drawing
  // layer) rather than the new one.
  void Append(int level, platform::OwnedBitmap snapshot, HDC source, int width, int height,
              platform::MemoryDC& snapshotDC);
  // The snapshot of `level` (which has one), brought to the anchor; null when memory
  // ran out on the way (the snapshots beyond are given up then).
  HBITMAP Bring(int level, platform::MemoryDC& snapshotDC);
  // Gives up the snapshots of `level` and above.
  void DiscardFrom(int level, platform::MemoryDC& snapshotDC);
  // Gives up level 0's snapshot and numbers the others one lower.
  void DropFirst(platform::MemoryDC& snapshotDC);
  void Clear(platform::MemoryDC& snapshotDC);

 private:
  // Between a snapshot and the previous one.
  struct Link {
    platform::BitmapDifference difference;  // when both have one size
    platform::OwnedBitmap previous, self;   // otherwise, both whole
  };
  struct Entry {
    int level;
    Link link;  // to the entry before; empty for the first
  };

  // Folds what was drawn into the anchor since it settled into the links beside it.
  bool Settle();
  // Moves the anchor one entry up (+1) or down (-1).
  bool Step(int direction, platform::MemoryDC& snapshotDC);
  // Keeps only the anchor's entry: the way out when memory runs short.
  void KeepOnlyAnchor();

  std::vector<Entry> entries_;  // by level, ascending
  std::size_t anchor_ = 0;      // the entry whose pixels anchorBitmap_ holds
  platform::OwnedBitmap anchorBitmap_;
  platform::OwnedBitmap settled_;  // the anchor as the links beside it know it
};
