#include "editor/inserted_objects.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "editor/clamped_int.h"

void InsertedObjects::CopyFrom(const InsertedObjects& other) {
  if (&other == this) return;
  for (int slot = 0; slot < kMaxInsertedObjects; ++slot) objects_[slot].CopyFrom(other.objects_[slot]);
  count_ = other.count_;
  dragged_ = other.dragged_;
  dragPoint_ = other.dragPoint_;
  selected_ = other.selected_;
  std::copy(std::begin(other.zOrder_), std::end(other.zOrder_), zOrder_);
}

std::span<const int> InsertedObjects::FrontToBack() const {
  return std::span<const int>(zOrder_, static_cast<std::size_t>(count_));
}

int InsertedObjects::FirstFreeSlot() const {
  for (int slot = 0; slot < kMaxInsertedObjects; ++slot) {
    if (objects_[slot].kind() == ObjectKind::Free) return slot;
  }
  return kMaxInsertedObjects;
}

void InsertedObjects::AddInFront(int slot, ObjectKind kind) {
  objects_[slot].kind_ = kind;
  std::copy_backward(zOrder_, zOrder_ + count_, zOrder_ + count_ + 1);
  zOrder_[0] = slot;
  ++count_;
}

int InsertedObjects::HitTest(POINT window) const {
  for (const int slot : FrontToBack()) {
    if (objects_[slot].BodyContains(window)) return slot;
  }
  return -1;
}

void InsertedObjects::Select(int slot) {
  if (selected_ >= 0) objects_[selected_].selected_ = false;
  selected_ = slot;
  if (slot >= 0) objects_[slot].selected_ = true;
}

bool InsertedObjects::DeleteSelected() {
  if (count_ <= 0 || selected_ < 0) return false;
  CInsertedObject& object = objects_[selected_];
  object.kind_ = ObjectKind::Free;
  object.Reset();
  const int position = SelectedPosition();
  std::copy(zOrder_ + position + 1, zOrder_ + count_, zOrder_ + position);
  --count_;
  if (dragged_ == selected_) EndDrag();
  selected_ = -1;
  return true;
}

int InsertedObjects::SelectedPosition() const {
  const std::span<const int> order = FrontToBack();
  return static_cast<int>(std::find(order.begin(), order.end(), selected_) - order.begin());
}

void InsertedObjects::MoveSelected(ZOrderMove move) {
  if (selected_ < 0) return;
  const int position = SelectedPosition();
  const int last = count_ - 1;
  int* const entry = zOrder_ + position;
  switch (move) {
    case ZOrderMove::Topmost:
      std::rotate(zOrder_, entry, entry + 1);
      break;
    case ZOrderMove::Above:
      if (position > 0) std::swap(entry[-1], entry[0]);
      break;
    case ZOrderMove::Below:
      if (position < last) std::swap(entry[0], entry[1]);
      break;
    case ZOrderMove::Bottommost:
      std::rotate(entry, entry + 1, zOrder_ + count_);
      break;
  }
}

void InsertedObjects::StartDrag(int slot, POINT at) {
  dragged_ = slot;
  SetDragPoint(at);
}

void InsertedObjects::ShiftAll(int dx, int dy) {
  for (const int slot : FrontToBack()) {
    objects_[slot].x = ClampedInt(std::int64_t{objects_[slot].x} + dx);
    objects_[slot].y = ClampedInt(std::int64_t{objects_[slot].y} + dy);
  }
}
