#include "view/composed_area.h"

#include <algorithm>

std::vector<RECT> ComposedArea::ToCompose(const RECT& area, const ComposedFrom& now) const {
  if (!kept_ || !now.known() || kept_->from != now) return {area};
  const RECT& kept = kept_->area;
  // `area` less `kept`: the rows above and below it whole, then the columns beside it
  // in the rows they share.
  std::vector<RECT> parts;
  const auto add = [&](LONG left, LONG top, LONG right, LONG bottom) {
    if (left < right && top < bottom) parts.push_back(RECT{left, top, right, bottom});
  };
  const LONG top = std::clamp(kept.top, area.top, area.bottom);
  const LONG bottom = std::clamp(kept.bottom, top, area.bottom);
  add(area.left, area.top, area.right, top);
  add(area.left, bottom, area.right, area.bottom);
  add(area.left, top, std::min(kept.left, area.right), bottom);
  add(std::max(kept.right, area.left), top, area.right, bottom);
  return parts;
}

void ComposedArea::Composed(const RECT& area, const ComposedFrom& from) {
  if (!from.known() || area.left >= area.right || area.top >= area.bottom) {
    kept_.reset();
    return;
  }
  kept_ = Kept{area, from};
}

void ComposedArea::GaveUpOutside(const RECT& within, const ComposedFrom& before, const ComposedFrom& now) {
  if (!kept_ || kept_->from != before) {
    kept_.reset();
    return;
  }
  const RECT& area = kept_->area;
  Composed(RECT{std::max(area.left, within.left), std::max(area.top, within.top),
                std::min(area.right, within.right), std::min(area.bottom, within.bottom)},
           now);
}
