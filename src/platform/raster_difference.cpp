#include "platform/raster_difference.h"

#include <cstdint>

namespace platform::raster {

namespace {

std::unique_ptr<std::uint32_t[]> BandBuffer(int width) {
  return std::unique_ptr<std::uint32_t[]>(new std::uint32_t[static_cast<std::size_t>(width) * kBandRows]);
}

}  // namespace

Difference Difference::Between(const Raster& a, const Raster& b) {
  Difference difference;
  // Bands read whole only where either side is not packed; most comparisons need none.
  std::unique_ptr<std::uint32_t[]> left, right;
  const auto step = static_cast<std::size_t>(a.width);
  for (int band = 0; band < a.BandCount(); ++band) {
    if (a.SameBand(b, band, band)) continue;
    std::shared_ptr<const PackedRows> rows;
    if (a.BandPacked(band) && b.BandPacked(band)) {
      rows = PackedRows::Xor(*a.BandPacked(band), *b.BandPacked(band));
    } else {
      if (!left) {
        left = BandBuffer(a.width);
        right = BandBuffer(a.width);
      }
      a.ReadBand(band, left.get());
      b.ReadBand(band, right.get());
      rows = std::make_shared<const PackedRows>(left.get(), right.get(), step, a.width, a.BandHeight(band));
    }
    if (!rows->AllZero()) difference.bands_.push_back(Band{band, std::move(rows)});
  }
  return difference;
}

void Difference::ApplyTo(Raster& raster) const {
  for (const Band& band : bands_) {
    // A compact raster's band known packed takes the difference as runs.
    if (raster.compact() && raster.BandPacked(band.index)) {
      raster.SetBandPacked(band.index, PackedRows::Xor(*raster.BandPacked(band.index), *band.rows));
      continue;
    }
    std::uint32_t* rows = raster.MutableRow(band.index << kBandShift);
    band.rows->XorInto(rows, static_cast<std::size_t>(raster.width));
  }
}

void Difference::Combine(const Difference& other) {
  if (other.empty()) return;
  if (empty()) {
    *this = other;
    return;
  }
  std::vector<Band> merged;
  std::size_t i = 0, j = 0;
  while (i < bands_.size() || j < other.bands_.size()) {
    if (j == other.bands_.size() || (i < bands_.size() && bands_[i].index < other.bands_[j].index)) {
      merged.push_back(bands_[i++]);
    } else if (i == bands_.size() || other.bands_[j].index < bands_[i].index) {
      merged.push_back(other.bands_[j++]);
    } else {
      auto rows = PackedRows::Xor(*bands_[i].rows, *other.bands_[j].rows);
      if (!rows->AllZero()) merged.push_back(Band{bands_[i].index, std::move(rows)});
      ++i;
      ++j;
    }
  }
  bands_ = std::move(merged);
}

std::size_t Difference::StoredBytes() const {
  std::size_t total = 0;
  for (const Band& band : bands_) total += band.rows->bytes();
  return total;
}

}  // namespace platform::raster
