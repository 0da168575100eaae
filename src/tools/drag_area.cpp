#include "tools/drag_area.h"

#include <algorithm>

RECT SpannedRect(POINT a, POINT b) {
  return RECT{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

RECT PaintedArea(POINT a, POINT b, long long margin) {
  return ClampedRect(std::min(a.x, b.x) - margin, std::min(a.y, b.y) - margin,
                     std::max(a.x, b.x) + margin + 1, std::max(a.y, b.y) + margin + 1);
}

RECT ClampedRect(long long left, long long top, long long right, long long bottom) {
  static constexpr long long kDeviceSpace = 1LL << 27;
  const auto clamp = [](long long v) {
    return static_cast<LONG>(std::clamp(v, -kDeviceSpace, kDeviceSpace));
  };
  return RECT{clamp(left), clamp(top), clamp(right), clamp(bottom)};
}

RECT BoundingRect(const RECT& a, const RECT& b) {
  return RECT{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
              std::max(a.bottom, b.bottom)};
}
