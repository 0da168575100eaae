#include "editor/history.h"

#include <utility>

void EditHistory::Release(HistoryLevel& level, platform::MemoryDC& snapshotDC) {
  // A bitmap selected into a DC cannot be deleted.
  snapshotDC.Hide(level.snapshot.get());
  level = HistoryLevel{};
}

void EditHistory::DiscardRedoLevels(platform::MemoryDC& snapshotDC) {
  for (int i = index + 1; i < count; ++i) Release(levels[i], snapshotDC);
  count = index + 1;
}

void EditHistory::DropOldest(platform::MemoryDC& snapshotDC) {
  Release(levels[0], snapshotDC);
  for (int i = 1; i < count; ++i) levels[i - 1] = std::move(levels[i]);
  levels[count - 1] = HistoryLevel{};
  --count;
  index = count - 1;
}

void EditHistory::Clear(platform::MemoryDC& snapshotDC) {
  for (int i = 0; i < count; ++i) Release(levels[i], snapshotDC);
  count = 0;
  index = -1;
}

HistoryLevel& EditHistory::Append() {
  index = count++;
  return levels[index];
}

HistoryLevel& EditHistory::StepBack() { return levels[--index]; }

HistoryLevel& EditHistory::StepForward() { return levels[++index]; }
