// The enumerators of connection points and of connections: a snapshot of the items
// taken when the enumerator is made, each item holding a reference, and a position in
// it. Clones share the snapshot (it is never changed) but move on their own. An
// enumerator holds the object it enumerates for, so that the items' owner outlives it.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "control/module/boundary_guard.h"
#include "control/module/module_abi.h"
#include "control/module/module_object.h"

// What an item is made of: the interface it comes from, and how an item takes and
// gives back its reference.
inline void AddItemReference(ocx::IConnectionPoint* point) { point->AddRef(); }
inline void ReleaseItemReference(ocx::IConnectionPoint* point) { point->Release(); }
inline void AddItemReference(const ocx::CONNECTDATA& connection) { connection.pUnk->AddRef(); }
inline void ReleaseItemReference(const ocx::CONNECTDATA& connection) { connection.pUnk->Release(); }

template <typename Interface, typename Item, const ocx::IID& kInterfaceId>
class SnapshotEnumerator final : public ModuleObject<Interface, kInterfaceId> {
 public:
  // Takes a reference on every item and on `owner`; constructed with one reference.
  static SnapshotEnumerator* Make(ocx::IUnknown& owner, std::vector<Item> items) {
    return new SnapshotEnumerator(std::make_shared<const Snapshot>(owner, std::move(items)), 0);
  }
  ocx::HRESULT Next(ocx::ULONG count, Item* items, ocx::ULONG* fetched) override {
    if (items == nullptr || (fetched == nullptr && count != 1)) return ocx::E_POINTER;
    const std::vector<Item>& all = snapshot_->items;
    const std::size_t given = std::min<std::size_t>(count, all.size() - position_);
    for (std::size_t i = 0; i < given; ++i) {
      items[i] = all[position_ + i];
      AddItemReference(items[i]);
    }
    position_ += given;
    if (fetched != nullptr) *fetched = static_cast<ocx::ULONG>(given);
    return given == count ? ocx::S_OK : ocx::S_FALSE;
  }
  // S_FALSE when fewer than `count` items were left to skip.
  ocx::HRESULT Skip(ocx::ULONG count) override {
    const std::size_t left = snapshot_->items.size() - position_;
    position_ += std::min<std::size_t>(count, left);
    return count <= left ? ocx::S_OK : ocx::S_FALSE;
  }
  ocx::HRESULT Reset() override {
    position_ = 0;
    return ocx::S_OK;
  }
  ocx::HRESULT Clone(Interface** copy) override {
    if (copy == nullptr) return ocx::E_POINTER;
    *copy = nullptr;
    return CatchingEngineFailures([&] {
      *copy = new SnapshotEnumerator(snapshot_, position_);
      return ocx::S_OK;
    });
  }

 private:
  struct Snapshot {
    Snapshot(ocx::IUnknown& holder, std::vector<Item> taken) : owner(holder), items(std::move(taken)) {
      owner.AddRef();
      for (const Item& item : items) AddItemReference(item);
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
    ~Snapshot() {
      for (const Item& item : items) ReleaseItemReference(item);
      owner.Release();
    }
    ocx::IUnknown& owner;
    const std::vector<Item> items;
  };

  SnapshotEnumerator(std::shared_ptr<const Snapshot> snapshot, std::size_t position)
      : snapshot_(std::move(snapshot)), position_(position) {}

  std::shared_ptr<const Snapshot> snapshot_;
  std::size_t position_;
};

using ConnectionPointEnumerator =
    SnapshotEnumerator<ocx::IEnumConnectionPoints, ocx::IConnectionPoint*, ocx::IID_IEnumConnectionPoints>;
using ConnectionEnumerator =
    SnapshotEnumerator<ocx::IEnumConnections, ocx::CONNECTDATA, ocx::IID_IEnumConnections>;
