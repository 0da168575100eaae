#include "platform/raster_difference.h"

#include <algorithm>
#include <cstdint>

namespace platform::raster {

namespace {

std::uint32_t* BandBuffer(std::unique_ptr<std::uint32_t[]>& buffer, int width) {
  if (!buffer) buffer.reset(new std::uint32_t[static_cast<std::size_t>(width) * kBandRows]);
  return buffer.get();
}

}  // namespace

void Difference::Band::XorInto(std::uint32_t* out, std::size_t step) const {
  if (runs) {
    runs->XorInto(out, step);
  } else {
    masked->XorInto(out, step);
  }
}

Difference::Band Difference::Smaller(int index, const std::uint32_t* rows, int width, int count,
                                     std::shared_ptr<const PackedRows> runs) {
  const auto step = static_cast<std::size_t>(width);
  // Rows that change too often along them for runs are masked without trying runs.
  if (!runs && MaskedRows::BeatsRuns(rows, step, width, count))
    return Band{index, nullptr, std::make_shared<const MaskedRows>(rows, step, width, count)};
  if (!runs) runs = std::make_shared<const PackedRows>(rows, step, width, count);
  // Runs that cost less than a mask would are kept without trying one.
  if (runs->bytes() <= MaskedRows::MaskBytes(width, count)) return Band{index, std::move(runs), nullptr};
  auto masked = std::make_shared<const MaskedRows>(rows, step, width, count);
  if (masked->bytes() < runs->bytes()) return Band{index, nullptr, std::move(masked)};
  return Band{index, std::move(runs), nullptr};
}

Difference::Band Difference::Smaller(int index, std::shared_ptr<const PackedRows> runs, Scratch& scratch) {
  const int width = runs->width();
  const int count = runs->rows();
  if (runs->bytes() <= MaskedRows::MaskBytes(width, count)) return Band{index, std::move(runs), nullptr};
  std::uint32_t* rows = BandBuffer(scratch, width);
  runs->Unpack(rows, static_cast<std::size_t>(width));
  return Smaller(index, rows, width, count, std::move(runs));
}

Difference::Band Difference::Combined(const Band& first, const Band& second, Scratch& scratch) {
  if (first.runs && second.runs)
    return Smaller(first.index, PackedRows::Xor(*first.runs, *second.runs), scratch);
  const int width = first.width();
  const int count = first.rows();
  std::uint32_t* rows = BandBuffer(scratch, width);
  const auto step = static_cast<std::size_t>(width);
  std::fill_n(rows, step * static_cast<std::size_t>(count), 0u);
  first.XorInto(rows, step);
  second.XorInto(rows, step);
  return Smaller(first.index, rows, width, count);
}

Difference Difference::Between(const Raster& a, const Raster& b) {
  Difference difference;
  // Bands read whole only where either side is not packed; most comparisons need none.
  Scratch scratch;
  for (int band = 0; band < a.BandCount(); ++band) {
    if (a.SameBand(b, band, band)) continue;
    Band changed;
    if (a.BandPacked(band) && b.BandPacked(band)) {
      changed = Smaller(band, PackedRows::Xor(*a.BandPacked(band), *b.BandPacked(band)), scratch);
    } else {
      std::uint32_t* rows = BandBuffer(scratch, a.width);
      a.ReadBand(band, rows);
      b.XorBandInto(band, rows);
      changed = Smaller(band, rows, a.width, a.BandHeight(band));
    }
    if (!changed.AllZero()) difference.bands_.push_back(std::move(changed));
  }
  return difference;
}

void Difference::ApplyTo(Raster& raster) const {
  Scratch scratch;
  for (const Band& band : bands_) {
    if (raster.compact() && !raster.pinned()) {
      // A band known packed takes runs as runs, and one known masked a mask, or runs
      // masked piece by piece. Others change in a scratch band and go back packed where
      // that pays: a kept band is not given rows of its own only to be packed again.
      if (band.runs && raster.BandPacked(band.index)) {
        raster.SetBandPacked(band.index, PackedRows::Xor(*raster.BandPacked(band.index), *band.runs));
        continue;
      }
      if (raster.BandMasked(band.index)) {
        raster.SetBandMasked(band.index, band.masked
                                             ? MaskedRows::Xor(*raster.BandMasked(band.index), *band.masked)
                                             : MaskedRows::Xor(*raster.BandMasked(band.index), *band.runs));
        continue;
      }
      std::uint32_t* rows = BandBuffer(scratch, raster.width);
      raster.ReadBand(band.index, rows);
      band.XorInto(rows, static_cast<std::size_t>(raster.width));
      raster.ReplaceBand(band.index, rows);
      continue;
    }
    std::uint32_t* rows = raster.MutableRow(band.index << kBandShift);
    band.XorInto(rows, static_cast<std::size_t>(raster.width));
  }
}

void Difference::Combine(const Difference& other) {
  if (other.empty()) return;
  if (empty()) {
    *this = other;
    return;
  }
  std::vector<Band> merged;
  Scratch scratch;
  std::size_t i = 0, j = 0;
  while (i < bands_.size() || j < other.bands_.size()) {
    if (j == other.bands_.size() || (i < bands_.size() && bands_[i].index < other.bands_[j].index)) {
      merged.push_back(bands_[i++]);
    } else if (i == bands_.size() || other.bands_[j].index < bands_[i].index) {
      merged.push_back(other.bands_[j++]);
    } else {
      Band both = Combined(bands_[i], other.bands_[j], scratch);
      if (!both.AllZero()) merged.push_back(std::move(both));
      ++i;
      ++j;
    }
  }
  bands_ = std::move(merged);
}

std::size_t Difference::StoredBytes() const {
  std::size_t total = 0;
  for (const Band& band : bands_) total += band.bytes();
  return total;
}

}  // namespace platform::raster
