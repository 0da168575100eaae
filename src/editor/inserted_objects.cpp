#include "editor/inserted_objects.h"

#include <algorithm>
#include <iterator>

void InsertedObjects::CopyFrom(const InsertedObjects& other) {
  // The live objects 0..count-1 are copied deeply here once they carry content.
  count = other.count;
  dragged = other.dragged;
  dragX = other.dragX;
  dragY = other.dragY;
  selected = other.selected;
  std::copy(std::begin(other.zOrder), std::end(other.zOrder), zOrder);
}

std::span<const int> InsertedObjects::FrontToBack() const {
  return std::span<const int>(zOrder, static_cast<std::size_t>(std::clamp(count, 0, kMaxInsertedObjects)));
}
