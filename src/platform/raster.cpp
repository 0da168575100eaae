#include "platform/raster.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace platform::raster {

// A band's rows: rows of its own, or (pinned rasters) a slice of the raster's one
// block, or a single row of one colour. A band only packed (or masked) has none.
struct Raster::Block {
  std::shared_ptr<std::uint32_t[]> memory;
  std::uint32_t* rows = nullptr;
};

namespace {

std::atomic<std::size_t> g_liveBytes{0};

std::shared_ptr<std::uint32_t[]> NewRows(std::size_t pixels) {
  const std::size_t bytes = pixels * sizeof(std::uint32_t);
  // Not value-initialised: every caller writes all of it at once.
  std::uint32_t* memory = new std::uint32_t[pixels];
  g_liveBytes += bytes;
  // Should the shared pointer's own allocation fail, it calls the deleter itself.
  return std::shared_ptr<std::uint32_t[]>(memory, [bytes](std::uint32_t* p) {
    g_liveBytes -= bytes;
    delete[] p;
  });
}

}  // namespace

std::size_t LivePixelBytes() { return g_liveBytes.load(std::memory_order_relaxed); }

std::uint64_t WriteCount::NewSerial() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

void CountPixelStorage(std::ptrdiff_t bytes) { g_liveBytes += static_cast<std::size_t>(bytes); }

Raster::Band Raster::UniformBand(const std::shared_ptr<Block>& block) {
  return Band{block, block->rows, 0, nullptr, false};
}

std::shared_ptr<Raster::Block> Raster::UniformBlock(std::uint32_t pixel) const {
  auto block = std::make_shared<Block>();
  block->memory = NewRows(static_cast<std::size_t>(width));
  block->rows = block->memory.get();
  std::fill(block->rows, block->rows + width, pixel);
  return block;
}

bool Raster::Allocate(int newWidth, int newHeight, bool newMono, bool charged) {
  // Moving the fresh raster in below gives this one a new version.
  if (newWidth <= 0 || newHeight <= 0 || static_cast<std::int64_t>(newWidth) * newHeight > kMaxPixels)
    return false;
  try {
    Raster fresh;
    if (charged && !fresh.charge_.Add(static_cast<std::size_t>(newWidth) *
                                      static_cast<std::size_t>(newHeight) * sizeof(std::uint32_t)))
      return false;
    fresh.width = newWidth;
    fresh.height = newHeight;
    fresh.mono = newMono;
    const std::shared_ptr<Block> black = fresh.UniformBlock(kBlack);
    fresh.bands_.assign(static_cast<std::size_t>((newHeight + kBandRows - 1) >> kBandShift),
                        UniformBand(black));
    *this = std::move(fresh);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

Raster::Band Raster::FreshBand(int rows) const {
  auto block = std::make_shared<Block>();
  block->memory = NewRows(static_cast<std::size_t>(rows) * static_cast<std::size_t>(width));
  block->rows = block->memory.get();
  return Band{block, block->rows, static_cast<std::size_t>(width), nullptr, false};
}

Raster::Band Raster::PackedOnly(std::shared_ptr<const PackedRows> packed) const {
  return Band{nullptr, nullptr, static_cast<std::size_t>(width), std::move(packed), false};
}

Raster::Band Raster::MaskedOnly(std::shared_ptr<const MaskedRows> masked) const {
  Band band{nullptr, nullptr, static_cast<std::size_t>(width), nullptr, false};
  band.masked = std::move(masked);
  return band;
}

void Raster::SetBandMasked(int band, std::shared_ptr<const MaskedRows> masked) {
  writes_.Note();
  bands_[static_cast<std::size_t>(band)] = MaskedOnly(std::move(masked));
}

void Raster::SetBandPacked(int band, std::shared_ptr<const PackedRows> packed) {
  writes_.Note();
  bands_[static_cast<std::size_t>(band)] = PackedOnly(std::move(packed));
}

void Raster::ReplaceBand(int band, const std::uint32_t* rows) {
  writes_.Note();
  const int count = BandHeight(band);
  const std::size_t bytes = static_cast<std::size_t>(count) * width * sizeof(std::uint32_t);
  if (pinned_) {
    std::memcpy(MutableRow(band << kBandShift), rows, bytes);
    return;
  }
  bool packingFailed = false;
  if (compact_) {
    try {
      Band packed = PackedOnly(nullptr);
      if (PackWherePays(rows, static_cast<std::size_t>(width), count, packed)) {
        bands_[static_cast<std::size_t>(band)] = std::move(packed);
        return;
      }
      packingFailed = true;
    } catch (const std::bad_alloc&) {
      // Kept as rows of their own, to be packed when memory allows.
    }
  }
  Band fresh = FreshBand(count);
  std::memcpy(fresh.rows, rows, bytes);
  fresh.packingFailed = packingFailed;
  bands_[static_cast<std::size_t>(band)] = std::move(fresh);
}

void Raster::MakeWritable(int band) {
  Band& target = bands_[static_cast<std::size_t>(band)];
  if (target.step != 0 && target.rows && target.block.use_count() == 1) {
    target.packed.reset();
    target.masked.reset();
    target.packingFailed = false;
    return;
  }
  Materialise(band);
}

void Raster::Materialise(int band) {
  Band fresh = FreshBand(BandHeight(band));
  ReadBand(band, fresh.rows);
  bands_[static_cast<std::size_t>(band)] = std::move(fresh);
}

const std::uint32_t* Raster::Unpacked(int band) const {
  Band& target = bands_[static_cast<std::size_t>(band)];
  Band fresh = FreshBand(BandHeight(band));
  ReadBand(band, fresh.rows);
  // Unpacked and not yet written, the rows still have that packed form.
  fresh.packed = std::move(target.packed);
  fresh.masked = std::move(target.masked);
  target = std::move(fresh);
  return target.rows;
}

Raster::Band Raster::Kept(Band& from, int rows) const {
  if (from.step == 0 || !from.rows || from.packingFailed || pinned_) return from;
  if (!from.packed && !from.masked) {
    // Remembered on the band it was packed from (of this raster or of a copy's source),
    // so the next copy or compaction of the same pixels finds it done. Rows that
    // cannot be packed now stay as they are: this raster's charge already covers them.
    try {
      if (!PackWherePays(from.rows, from.step, rows, from)) {
        from.packingFailed = true;
        return from;
      }
    } catch (const std::bad_alloc&) {
      return from;
    }
  }
  return from.packed ? PackedOnly(from.packed) : MaskedOnly(from.masked);
}

bool Raster::PackWherePays(const std::uint32_t* rows, std::size_t step, int count, Band& band) const {
  // Packing pays when it saves at least half of the rows.
  const std::size_t half = static_cast<std::size_t>(count) * width * sizeof(std::uint32_t) / 2;
  if (!MaskedRows::BeatsRuns(rows, step, width, count)) {
    auto packed = std::make_shared<const PackedRows>(rows, step, width, count);
    if (packed->bytes() > half) return false;
    band.packed = std::move(packed);
    return true;
  }
  auto masked =
      std::make_shared<const MaskedRows>(rows, step, width, count, MaskedRows::MostPixels(rows, width));
  if (masked->bytes() > half) return false;
  band.masked = std::move(masked);
  return true;
}

void Raster::Compact() {
  compact_ = true;
  if (pinned_) return;
  for (std::size_t b = 0; b < bands_.size(); ++b)
    bands_[b] = Kept(bands_[b], BandHeight(static_cast<int>(b)));
}

bool Raster::SameBand(const Raster& other, int band, int otherBand) const {
  const Band& a = bands_[static_cast<std::size_t>(band)];
  const Band& b = other.bands_[static_cast<std::size_t>(otherBand)];
  if (a.block && a.block == b.block) return true;
  if (a.packed && a.packed == b.packed) return true;
  if (a.masked && a.masked == b.masked) return true;
  return a.step == 0 && b.step == 0 && a.rows[0] == b.rows[0];
}

void Raster::ReadBand(int band, std::uint32_t* out) const {
  const Band& from = bands_[static_cast<std::size_t>(band)];
  const int rows = BandHeight(band);
  const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(std::uint32_t);
  if (!from.rows) {
    if (from.packed) {
      from.packed->Unpack(out, static_cast<std::size_t>(width));
    } else {
      from.masked->Unpack(out, static_cast<std::size_t>(width));
    }
    return;
  }
  for (int r = 0; r < rows; ++r)
    std::memcpy(out + static_cast<std::size_t>(r) * width, from.rows + r * from.step, rowBytes);
}

void Raster::XorBandInto(int band, std::uint32_t* out) const {
  const Band& from = bands_[static_cast<std::size_t>(band)];
  const auto step = static_cast<std::size_t>(width);
  if (!from.rows) {
    if (from.packed) {
      from.packed->XorInto(out, step);
    } else {
      from.masked->XorInto(out, step);
    }
    return;
  }
  for (int r = 0; r < BandHeight(band); ++r) {
    const std::uint32_t* row = from.rows + r * from.step;
    std::uint32_t* to = out + static_cast<std::size_t>(r) * step;
    for (std::size_t x = 0; x < step; ++x) to[x] ^= row[x];
  }
}

void Raster::OwnRowsToReplace(int y0, int y1) {
  writes_.Note();
  if (y0 >= y1 || pinned()) return;
  for (int band = y0 >> kBandShift; band <= (y1 - 1) >> kBandShift; ++band) {
    Band& target = bands_[static_cast<std::size_t>(band)];
    if (Writable(target)) continue;
    const int top = band << kBandShift;
    if (top >= y0 && top + BandHeight(band) <= y1) {
      target = FreshBand(BandHeight(band));
    } else {
      MakeWritable(band);
    }
  }
}

void Raster::RewriteRows(int y0, int y1,
                         const std::function<void(int, const std::uint32_t*, std::uint32_t*)>& rewrite) {
  writes_.Note();
  for (int y = y0; y < y1;) {
    const int band = y >> kBandShift;
    const int top = band << kBandShift;
    const int end = std::min(top + BandHeight(band), y1);
    Band& target = bands_[static_cast<std::size_t>(band)];
    const bool shared = target.rows && (target.step == 0 || target.block.use_count() > 1);
    if (shared && !pinned() && top >= y0 && top + BandHeight(band) <= y1) {
      const Band before = target;  // keeps the old pixels alive while they are read
      Band fresh = FreshBand(BandHeight(band));
      for (int r = 0; r < BandHeight(band); ++r) {
        rewrite(top + r, before.rows + static_cast<std::size_t>(r) * before.step,
                fresh.rows + static_cast<std::size_t>(r) * static_cast<std::size_t>(width));
      }
      target = std::move(fresh);
    } else {
      for (int row = y; row < end; ++row) {
        std::uint32_t* pixels = MutableRow(row);
        rewrite(row, pixels, pixels);
      }
    }
    y = end;
  }
}

void Raster::Fill(int x0, int y0, int x1, int y1, std::uint32_t pixel) {
  writes_.Note();
  if (x0 >= x1 || y0 >= y1) return;
  const bool wholeRows = x0 == 0 && x1 == width && !pinned();
  std::shared_ptr<Block> uniform;
  int y = y0;
  while (y < y1) {
    const int band = y >> kBandShift;
    const int bandTop = band << kBandShift;
    const int bandEnd = bandTop + BandHeight(band);
    std::uint32_t current = 0;
    if (wholeRows && y == bandTop && y1 >= bandEnd) {
      if (!RowIsUniform(y, &current) || current != pixel) {
        if (!uniform) uniform = UniformBlock(pixel);
        bands_[static_cast<std::size_t>(band)] = UniformBand(uniform);
      }
      y = bandEnd;
      continue;
    }
    const int end = bandEnd < y1 ? bandEnd : y1;
    if (!(RowIsUniform(y, &current) && current == pixel)) {
      for (; y < end; ++y) {
        std::uint32_t* row = MutableRow(y);
        std::fill(row + x0, row + x1, pixel);
      }
    }
    y = end;
  }
}

void Raster::Discard(int y0, int y1) {
  // The version changes only with the fill below: rows kept as they are keep it.
  if (pinned()) return;
  const int first = ((std::max(y0, 0) + kBandRows - 1) >> kBandShift) << kBandShift;
  const int last = y1 >= height ? height : (y1 >> kBandShift) << kBandShift;
  // A band of one colour holds no rows of its own.
  if (first < last) Fill(0, first, width, last, kBlack);
}

void Raster::CopyRows(const Raster& src, int srcX, int srcY, int destX, int destY, int columns, int count) {
  // The version changes with each band or row written below, so that a copy of what
  // is already here (a rebuild with nothing to change) leaves it as it was.
  if (columns <= 0 || count <= 0) return;
  // Bands line up when both rasters have one width, the rows one band offset and the
  // columns one place. Whole bands that line up are shared rather than copied: when
  // every column is copied, and also when the columns left out already hold the
  // source's pixels (a window repainting the part of a picture that changed).
  const bool alignable = srcX == destX && width == src.width && !pinned() && !src.pinned() &&
                         ((srcY - destY) & (kBandRows - 1)) == 0;
  const bool everyColumn = alignable && columns == width;
  const std::size_t bytes = static_cast<std::size_t>(columns) * sizeof(std::uint32_t);
  int k = 0;
  while (k < count) {
    const int y = destY + k;
    const int band = y >> kBandShift;
    const int bandTop = band << kBandShift;
    const int bandRows = BandHeight(band);
    Band& target = bands_[static_cast<std::size_t>(band)];
    const int fromBand = (srcY + k) >> kBandShift;
    if (alignable && y == bandTop && count - k >= bandRows && src.BandHeight(fromBand) == bandRows) {
      const bool same = SameBand(src, band, fromBand);
      if (same || everyColumn || ColumnsMatchBeside(src, srcY + k, y, bandRows, destX, destX + columns)) {
        if (!same) {
          Band& from = src.bands_[static_cast<std::size_t>(fromBand)];
          target = compact_ ? Kept(from, bandRows) : from;
          writes_.Note();
        }
        k += bandRows;
        continue;
      }
    }
    const int end = std::min(count, bandTop + bandRows - destY);
    // Rows that hold these pixels already are left as they are: a band stays shared,
    // and the raster's version stays (a rebuild writing what a surface shows, which
    // then needs composing no more than before). Rows that differ mostly do so early.
    const auto holds = [&](int row) {
      const std::uint32_t* in = src.Row(srcY + row) + srcX;
      const std::uint32_t* here = Row(destY + row) + destX;
      return in == here || std::memcmp(in, here, bytes) == 0;
    };
    const bool wholeBand = y == bandTop && end - k == bandRows;
    for (; k < end; ++k) {
      if (holds(k)) continue;
      // A whole band that must change and is not this raster's own gets storage
      // written in one pass, its columns from the source and the others from its old
      // pixels, rather than copied whole first and written over after (a picture
      // refilled into a surface wider than it, whose bands the composition shares).
      if (wholeBand && !Writable(target)) {
        const std::size_t left = static_cast<std::size_t>(destX);
        const std::size_t right = left + static_cast<std::size_t>(columns);
        const std::size_t rest = static_cast<std::size_t>(width) - right;
        RewriteRows(bandTop, bandTop + bandRows,
                    [&](int row, const std::uint32_t* before, std::uint32_t* out) {
                      if (out != before) {
                        std::memcpy(out, before, left * sizeof(std::uint32_t));
                        std::memcpy(out + right, before + right, rest * sizeof(std::uint32_t));
                      }
                      std::memmove(out + left, src.Row(srcY + row - destY) + srcX, bytes);
                    });
        k = end;
        break;
      }
      std::uint32_t* out = MutableRow(destY + k) + destX;
      // MutableRow may have replaced a band `in` pointed into; read it again.
      std::memmove(out, src.Row(srcY + k) + srcX, bytes);
    }
  }
}

bool Raster::ColumnsMatchBeside(const Raster& src, int srcY, int destY, int rows, int x0, int x1) const {
  const std::size_t before = static_cast<std::size_t>(x0) * sizeof(std::uint32_t);
  const std::size_t after = static_cast<std::size_t>(width - x1) * sizeof(std::uint32_t);
  for (int r = 0; r < rows; ++r) {
    const std::uint32_t* mine = Row(destY + r);
    const std::uint32_t* theirs = src.Row(srcY + r);
    if (std::memcmp(mine, theirs, before) != 0 || std::memcmp(mine + x1, theirs + x1, after) != 0)
      return false;
  }
  return true;
}

void Raster::ShareFrom(const Raster& src) {
  writes_.Note();
  width = src.width;
  height = src.height;
  mono = src.mono;
  pinned_ = nullptr;
  if (!src.pinned()) {
    bands_ = src.bands_;
    if (compact_) Compact();
    return;
  }
  bands_.assign(src.bands_.size(), UniformBand(UniformBlock(kBlack)));
  CopyRows(src, 0, 0, 0, 0, width, height);
}

std::uint32_t* Raster::Pin() {
  if (pinned_) return pinned_;
  const std::size_t rowPixels = static_cast<std::size_t>(width);
  std::shared_ptr<std::uint32_t[]> memory = NewRows(rowPixels * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y)
    std::memcpy(memory.get() + rowPixels * y, Row(y), rowPixels * sizeof(std::uint32_t));
  for (std::size_t b = 0; b < bands_.size(); ++b) {
    auto block = std::make_shared<Block>();
    block->memory = memory;
    block->rows = memory.get() + rowPixels * (b << kBandShift);
    bands_[b] = Band{block, block->rows, rowPixels, nullptr, false};
  }
  pinned_ = memory.get();
  return pinned_;
}

std::size_t Raster::StoredBytes() const {
  std::vector<const void*> counted;
  const auto first = [&](const void* storage) {
    if (!storage || std::find(counted.begin(), counted.end(), storage) != counted.end()) return false;
    counted.push_back(storage);
    return true;
  };
  std::size_t total = 0;
  for (std::size_t b = 0; b < bands_.size(); ++b) {
    const Band& band = bands_[b];
    if (first(band.block.get())) {
      total += (band.step == 0 ? 1 : static_cast<std::size_t>(BandHeight(static_cast<int>(b)))) *
               static_cast<std::size_t>(width) * sizeof(std::uint32_t);
    }
    if (first(band.packed.get())) total += band.packed->bytes();
    if (first(band.masked.get())) total += band.masked->bytes();
  }
  return total;
}

namespace {

std::uint32_t LoadWord(const std::uint8_t* p) {
  std::uint32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
void StoreWord(std::uint8_t* p, std::uint32_t v) { std::memcpy(p, &v, 4); }

}  // namespace

// Little-endian word layout: four pixels B G R x make three words of packed bytes.
void PackRow24(const std::uint32_t* in, std::uint8_t* out, int count) {
  int x = 0;
  for (; x + 4 <= count; x += 4, in += 4, out += 12) {
    const std::uint32_t p0 = in[0] & kColorMask, p1 = in[1] & kColorMask;
    const std::uint32_t p2 = in[2] & kColorMask, p3 = in[3] & kColorMask;
    StoreWord(out, p0 | (p1 << 24));
    StoreWord(out + 4, (p1 >> 8) | (p2 << 16));
    StoreWord(out + 8, (p2 >> 16) | (p3 << 8));
  }
  for (; x < count; ++x, ++in, out += 3) {
    out[0] = static_cast<std::uint8_t>(*in);
    out[1] = static_cast<std::uint8_t>(*in >> 8);
    out[2] = static_cast<std::uint8_t>(*in >> 16);
  }
}

void UnpackRow24(const std::uint8_t* in, std::uint32_t* out, int count) {
  int x = 0;
  for (; x + 4 <= count; x += 4, in += 12, out += 4) {
    const std::uint32_t w0 = LoadWord(in), w1 = LoadWord(in + 4), w2 = LoadWord(in + 8);
    out[0] = w0 & kColorMask;
    out[1] = ((w0 >> 24) | (w1 << 8)) & kColorMask;
    out[2] = ((w1 >> 16) | (w2 << 16)) & kColorMask;
    out[3] = w2 >> 8;
  }
  for (; x < count; ++x, in += 3, ++out) {
    *out = static_cast<std::uint32_t>(in[0]) | (static_cast<std::uint32_t>(in[1]) << 8) |
           (static_cast<std::uint32_t>(in[2]) << 16);
  }
}

void ConvertRow(const Conversion& conversion, const std::uint32_t* in, std::uint32_t* out, int count) {
  // Most blits convert nothing: a plain copy then, rather than a test at every pixel.
  if (conversion.kind == Conversion::Kind::None) {
    std::copy_n(in, count, out);
    return;
  }
  for (int i = 0; i < count; ++i) out[i] = ConvertPixel(conversion, in[i]);
}

namespace {

std::uint32_t Ternary(std::uint8_t index, std::uint32_t p, std::uint32_t s, std::uint32_t d) {
  std::uint32_t result = 0;
  for (int term = 0; term < 8; ++term) {
    if ((index >> term) & 1) result |= ((term & 4) ? p : ~p) & ((term & 2) ? s : ~s) & ((term & 1) ? d : ~d);
  }
  return result & kColorMask;
}

template <typename Op>
void ForEach(std::uint32_t* dst, int count, Op op) {
  for (int i = 0; i < count; ++i) dst[i] = op(i) & kColorMask;
}

}  // namespace

bool RopKeepsDestination(std::uint8_t index, std::uint32_t pattern) {
  return !RopUsesSource(index) && Ternary(index, pattern, 0, kBlack) == kBlack &&
         Ternary(index, pattern, 0, kWhite) == kWhite;
}

void ApplyRop(std::uint8_t index, const std::uint32_t* src, std::uint32_t pattern, std::uint32_t* dst,
              int count) {
  // The operations the editor uses get plain loops; the rest go through the minterms.
  switch (index) {
    case 0x00:
      ForEach(dst, count, [](int) { return kBlack; });
      break;
    case 0xFF:
      ForEach(dst, count, [](int) { return kWhite; });
      break;
    case 0xCC:
      ForEach(dst, count, [&](int i) { return src[i]; });
      break;
    case 0x33:
      ForEach(dst, count, [&](int i) { return ~src[i]; });
      break;
    case 0x88:
      ForEach(dst, count, [&](int i) { return src[i] & dst[i]; });
      break;
    case 0xEE:
      ForEach(dst, count, [&](int i) { return src[i] | dst[i]; });
      break;
    case 0x66:
      ForEach(dst, count, [&](int i) { return src[i] ^ dst[i]; });
      break;
    case 0x55:
      ForEach(dst, count, [&](int i) { return ~dst[i]; });
      break;
    case 0xF0:
      ForEach(dst, count, [&](int) { return pattern; });
      break;
    case 0x5A:
      ForEach(dst, count, [&](int i) { return pattern ^ dst[i]; });
      break;
    case 0xA5:
      ForEach(dst, count, [&](int i) { return ~(pattern ^ dst[i]); });
      break;
    case 0xAA:
      break;
    default:
      for (int i = 0; i < count; ++i) dst[i] = Ternary(index, pattern, src ? src[i] : 0, dst[i]);
  }
}

}  // namespace platform::raster
