// Arithmetic on coordinates that come from the host: worked out wide and kept within
// int, so that positions and sizes near its limits never wrap around.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>

inline int ClampedInt(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX));
}
