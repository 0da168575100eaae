#include "editor/inserted_objects.h"

#include <algorithm>
#include <iterator>

void InsertedObjects::CopyFrom(const InsertedObjects& other) {
  // Objects with content of their own will be copied deeply here, the live ones only.
  count_ = other.count_;
  dragged_ = other.dragged_;
  dragX_ = other.dragX_;
  dragY_ = other.dragY_;
  selected_ = other.selected_;
  std::copy(std::begin(other.zOrder_), std::end(other.zOrder_), zOrder_);
}

std::span<const int> InsertedObjects::FrontToBack() const {
  return std::span<const int>(zOrder_, static_cast<std::size_t>(std::clamp(count_, 0, kMaxInsertedObjects)));
}
