#include "editor/history.h"

#include <utility>

void EditHistory::DiscardRedoLevels(platform::MemoryDC& snapshotDC) {
  snapshots_.DiscardFrom(index_ + 1, snapshotDC);
  for (int i = index_ + 1; i < count_; ++i) levels_[i] = HistoryLevel{};
  count_ = index_ + 1;
}

void EditHistory::DropOldest(platform::MemoryDC& snapshotDC) {
  snapshots_.DropFirst(snapshotDC);
  for (int i = 1; i < count_; ++i) levels_[i - 1] = std::move(levels_[i]);
  levels_[count_ - 1] = HistoryLevel{};
  --count_;
  index_ = count_ - 1;
}

void EditHistory::Clear(platform::MemoryDC& snapshotDC) {
  snapshots_.Clear(snapshotDC);
  for (int i = 0; i < count_; ++i) levels_[i] = HistoryLevel{};
  count_ = 0;
  index_ = -1;
}

HistoryLevel& EditHistory::Append(platform::OwnedBitmap snapshot, HDC source, int width, int height,
                                  platform::MemoryDC& snapshotDC) {
  index_ = count_++;
  if (snapshot) snapshots_.Append(index_, std::move(snapshot), source, width, height, snapshotDC);
  return levels_[index_];
}

const HistoryLevel& EditHistory::StepBack() { return levels_[--index_]; }

const HistoryLevel& EditHistory::StepForward() { return levels_[++index_]; }

HBITMAP EditHistory::CurrentSnapshot(platform::MemoryDC& snapshotDC) {
  return snapshots_.Has(index_) ? snapshots_.Bring(index_, snapshotDC) : nullptr;
}
