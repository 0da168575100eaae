#include "editor/history.h"

#include <utility>

void EditHistory::Release(HistoryLevel& level, platform::MemoryDC& snapshotDC) {
  // A bitmap selected into a DC cannot be deleted.
  snapshotDC.Hide(level.snapshot.get());
  level = HistoryLevel{};
}

void EditHistory::DiscardRedoLevels(platform::MemoryDC& snapshotDC) {
  for (int i = index_ + 1; i < count_; ++i) Release(levels_[i], snapshotDC);
  count_ = index_ + 1;
}

void EditHistory::DropOldest(platform::MemoryDC& snapshotDC) {
  Release(levels_[0], snapshotDC);
  for (int i = 1; i < count_; ++i) levels_[i - 1] = std::move(levels_[i]);
  levels_[count_ - 1] = HistoryLevel{};
  --count_;
  index_ = count_ - 1;
}

void EditHistory::Clear(platform::MemoryDC& snapshotDC) {
  for (int i = 0; i < count_; ++i) Release(levels_[i], snapshotDC);
  count_ = 0;
  index_ = -1;
}

HistoryLevel& EditHistory::Append() {
  index_ = count_++;
  return levels_[index_];
}

const HistoryLevel& EditHistory::StepBack() { return levels_[--index_]; }

const HistoryLevel& EditHistory::StepForward() { return levels_[++index_]; }
