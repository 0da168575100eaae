#include "editor/snapshot_chain.h"

#include <algorithm>
#include <utility>

namespace {

// A packed copy that shares the bitmap's rows until either is drawn on.
platform::OwnedBitmap KeptCopy(HBITMAP bitmap) {
  platform::OwnedBitmap copy(static_cast<HBITMAP>(CopyImage(bitmap, IMAGE_BITMAP, 0, 0, 0)));
  if (copy && !platform::CompactBitmap(copy.get())) copy.reset();
  return copy;
}

bool SameShape(HBITMAP a, HBITMAP b) {
  BITMAP first{}, second{};
  return GetObjectA(a, sizeof first, &first) && GetObjectA(b, sizeof second, &second) &&
         first.bmWidth == second.bmWidth && first.bmHeight == second.bmHeight &&
         first.bmBitsPixel == second.bmBitsPixel;
}

}  // namespace

bool SnapshotChain::Has(int level) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& entry) { return entry.level == level; });
}

void SnapshotChain::Append(int level, platform::OwnedBitmap snapshot, HDC source, int width, int height,
                           platform::MemoryDC& snapshotDC) {
  // Compact before the copy, so that the copy packs the source's rows and remembers
  // them with the source: its unchanged rows then cost nothing at the next commit.
  platform::CompactBitmap(snapshot.get());
  snapshotDC.Show(snapshot.get());
  BitBlt(snapshotDC.get(), 0, 0, width, height, source, 0, 0, SRCCOPY);
  platform::CompactBitmap(snapshot.get());

  Entry entry{level, {}};
  bool linked = false;
  if (anchorBitmap_ && Settle()) {
    while (anchor_ + 1 < entries_.size() && Step(+1, snapshotDC)) {
    }
    if (anchor_ + 1 == entries_.size()) {
      if (SameShape(anchorBitmap_.get(), snapshot.get())) {
        linked = entry.link.difference.Measure(anchorBitmap_.get(), snapshot.get());
      } else {
        entry.link.self = KeptCopy(snapshot.get());
        entry.link.previous = std::move(anchorBitmap_);
        linked = static_cast<bool>(entry.link.self);
      }
    }
  }
  if (!linked) {
    entries_.clear();
    entry.link = Link{};
  }
  entries_.push_back(std::move(entry));
  anchor_ = entries_.size() - 1;
  anchorBitmap_ = std::move(snapshot);
  // A lone snapshot has no link to keep in step.
  settled_ = anchor_ > 0 ? KeptCopy(anchorBitmap_.get()) : platform::OwnedBitmap();
}

bool SnapshotChain::Settle() {
  platform::CompactBitmap(anchorBitmap_.get());
  const bool below = anchor_ > 0;
  const bool above = anchor_ + 1 < entries_.size();
  if (!below && !above) return true;
  if (!settled_) return false;
  platform::BitmapDifference drawn;
  if (!drawn.Measure(settled_.get(), anchorBitmap_.get())) return false;
  if (drawn.empty()) return true;
  Link* const beside[] = {below ? &entries_[anchor_].link : nullptr,
                          above ? &entries_[anchor_ + 1].link : nullptr};
  for (Link* link : beside) {
    if (!link) continue;
    if (link->self) {
      // The side that is the anchor's, whole again.
      platform::OwnedBitmap& side = link == beside[0] ? link->self : link->previous;
      side = KeptCopy(anchorBitmap_.get());
      if (!side) return false;
    } else if (!link->difference.Combine(drawn)) {
      return false;
    }
  }
  settled_ = KeptCopy(anchorBitmap_.get());
  return static_cast<bool>(settled_);
}

bool SnapshotChain::Step(int direction, platform::MemoryDC& snapshotDC) {
  if (!Settle()) return false;
  const std::size_t target = direction > 0 ? anchor_ + 1 : anchor_ - 1;
  Link& link = entries_[direction > 0 ? target : anchor_].link;
  if (link.self) {
    platform::OwnedBitmap next = KeptCopy(direction > 0 ? link.self.get() : link.previous.get());
    if (!next) return false;
    snapshotDC.Hide(anchorBitmap_.get());
    anchorBitmap_ = std::move(next);
  } else if (!link.difference.ApplyTo(anchorBitmap_.get())) {
    return false;
  }
  anchor_ = target;
  settled_ = KeptCopy(anchorBitmap_.get());
  return true;
}

void SnapshotChain::KeepOnlyAnchor() {
  Entry kept{entries_[anchor_].level, {}};
  entries_.clear();
  entries_.push_back(std::move(kept));
  anchor_ = 0;
}

HBITMAP SnapshotChain::Bring(int level, platform::MemoryDC& snapshotDC) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.level == level; });
  if (found == entries_.end()) return nullptr;
  const auto target = static_cast<std::size_t>(found - entries_.begin());
  while (anchor_ != target) {
    if (!Step(target > anchor_ ? +1 : -1, snapshotDC)) {
      KeepOnlyAnchor();
      return nullptr;
    }
  }
  return anchorBitmap_.get();
}

void SnapshotChain::DiscardFrom(int level, platform::MemoryDC& snapshotDC) {
  const auto kept = static_cast<std::size_t>(std::count_if(
      entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.level < level; }));
  if (kept == entries_.size()) return;
  if (anchor_ >= kept) {
    // The anchor's level goes, so the snapshot DC shows no snapshot from now on; the
    // anchor moves down to the last snapshot kept.
    snapshotDC.Hide(anchorBitmap_.get());
    while (kept > 0 && anchor_ >= kept) {
      if (!Step(-1, snapshotDC)) break;
    }
    if (kept == 0 || anchor_ >= kept) {
      Clear(snapshotDC);
      return;
    }
  }
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(kept), entries_.end());
}

void SnapshotChain::DropFirst(platform::MemoryDC& snapshotDC) {
  if (!entries_.empty() && entries_.front().level == 0) {
    if (anchor_ == 0) {
      snapshotDC.Hide(anchorBitmap_.get());
      if (entries_.size() == 1 || !Step(+1, snapshotDC)) {
        Clear(snapshotDC);
        return;
      }
    }
    entries_.erase(entries_.begin());
    entries_.front().link = Link{};
    --anchor_;
  }
  for (Entry& entry : entries_) --entry.level;
}

void SnapshotChain::Clear(platform::MemoryDC& snapshotDC) {
  snapshotDC.Hide(anchorBitmap_.get());
  entries_.clear();
  anchor_ = 0;
  anchorBitmap_.reset();
  settled_.reset();
}
