// Whether a bitmap's pixels may have changed since a reader looked: for a reader that
// keeps something made from them (a composed picture) and makes it again only when
// they changed.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/types.h"

namespace platform {

// Two equal versions of one bitmap mean equal pixels.
struct PixelsVersion {
  std::uint64_t serial = 0;  // new for each bitmap's storage
  std::uint64_t writes = 0;  // writes since
  bool operator==(const PixelsVersion&) const = default;
};

// None for anything but a bitmap, and for a bitmap whose pixels are written through
// a pointer, unseen (a DIB section's bits): its pixels may always have changed.
std::optional<PixelsVersion> VersionOfBitmap(HBITMAP bitmap);

}  // namespace platform
