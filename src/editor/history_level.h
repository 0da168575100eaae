// One undo step: everything needed to put the editable state back as it was.
#pragma once

#include "editor/inserted_object.h"
#include "pixels/adjustment_settings.h"
#include "pixels/frame_piece.h"
#include "platform/types.h"

// The plain part of a level: values and the handles the level owns. Kept apart from
// the object copies so that a level can be moved or reset with one assignment. The
// initial values are the ones a discarded slot is reset to; slots that were never
// used are never read, so they may start out the same way.
struct HistoryLevelValues {
  HBITMAP snapshot = nullptr;
  int imageLeft = 0;
  int imageTop = 0;
  int displayedWidth = 0;
  int displayedHeight = 0;
  int viewWidth = 0;
  int viewHeight = 0;
  int hScrollPos = 0;
  int vScrollPos = 0;
  bool framePresent = false;
  FramePiece frame[kFramePieceCount];
  int objectCount = 0;
  int draggedObject = -1;
  int dragX = -1;
  int dragY = -1;
  int selectedObject = -1;
  int zOrder[kMaxInsertedObjects + 1] = {-1, -1, -1, -1, -1, -1};
  AdjustmentSettings settings;
};

struct HistoryLevel : HistoryLevelValues {
  CInsertedObject objects[kMaxInsertedObjects];
};

inline constexpr int kHistoryLevels = 10;
