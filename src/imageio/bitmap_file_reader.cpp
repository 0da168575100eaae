#include "imageio/bitmap_file_reader.h"

#include <algorithm>
#include <array>

#include "imageio/pixel_limits.h"
#include "platform/dib_run_length.h"
#include "platform/gdi.h"

namespace imageio {
namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::uint32_t kCoreHeaderSize = 12;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::uint32_t kRgb = 0;
constexpr std::uint32_t kRunLength8 = 1;
constexpr std::uint32_t kRunLength4 = 2;
constexpr std::uint32_t kBitfields = 3;

std::uint32_t Read16(const std::uint8_t* p) { return p[0] | (p[1] << 8); }
std::uint32_t Read32(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
         (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

struct Bgr {
  std::uint8_t blue = 0, green = 0, red = 0;
};

// Everything the pixel conversion needs, checked against the data.
struct FileLayout {
  int width = 0;
  int height = 0;
  bool topDown = false;
  int bitCount = 0;
  bool runLength = false;
  std::array<std::uint32_t, 3> masks{};  // red, green, blue
  std::vector<Bgr> palette;
  std::size_t pixelOffset = 0;
  std::size_t sourceStride = 0;  // uncompressed rows
  std::size_t codesSize = 0;     // run-length codes: the declared size, cut at the data's end
};

bool InfoHeaderSizeKnown(std::uint32_t size) {
  return size == kInfoHeaderSize || size == 52 || size == 56 || size == 108 || size == 124;
}

bool DepthAndCompressionSupported(int bitCount, std::uint32_t compression) {
  switch (bitCount) {
    case 4:
      return compression == kRgb || compression == kRunLength4;
    case 8:
      return compression == kRgb || compression == kRunLength8;
    case 1:
    case 24:
      return compression == kRgb;
    case 16:
    case 32:
      return compression == kRgb || compression == kBitfields;
    default:
      return false;
  }
}

std::array<std::uint32_t, 3> DefaultMasks(int bitCount) {
  if (bitCount == 16) return {0x7C00, 0x03E0, 0x001F};
  return {0x00FF0000, 0x0000FF00, 0x000000FF};
}

std::optional<FileLayout> ParseLayout(const std::uint8_t* data, std::size_t count) {
  if (!IsBitmapFile(data, count) || count < kFileHeaderSize + 4) return std::nullopt;
  const std::uint32_t pixelOffset = Read32(data + 10);
  const std::uint8_t* info = data + kFileHeaderSize;
  const std::uint32_t infoSize = Read32(info);
  const bool core = infoSize == kCoreHeaderSize;
  if (!core && !InfoHeaderSizeKnown(infoSize)) return std::nullopt;
  if (count - kFileHeaderSize < infoSize) return std::nullopt;

  FileLayout layout;
  std::int64_t width, height;
  std::uint32_t compression = kRgb, colorsUsed = 0, sizeImage = 0;
  if (core) {
    width = Read16(info + 4);
    height = Read16(info + 6);
    layout.bitCount = static_cast<int>(Read16(info + 10));
  } else {
    width = static_cast<std::int32_t>(Read32(info + 4));
    height = static_cast<std::int32_t>(Read32(info + 8));
    layout.bitCount = static_cast<int>(Read16(info + 14));
    compression = Read32(info + 16);
    sizeImage = Read32(info + 20);
    colorsUsed = Read32(info + 32);
  }
  if (!DepthAndCompressionSupported(layout.bitCount, compression)) return std::nullopt;
  layout.topDown = height < 0;
  layout.runLength = compression == kRunLength8 || compression == kRunLength4;
  // As SetDIBits refuses them: compressed rows only bottom-up, of a size given.
  if (layout.runLength && (layout.topDown || sizeImage == 0)) return std::nullopt;
  height = height < 0 ? -height : height;
  if (!PictureSizeAcceptable(width, height)) return std::nullopt;
  layout.width = static_cast<int>(width);
  layout.height = static_cast<int>(height);

  // BI_BITFIELDS masks sit right after the 40-byte header, inside the longer
  // headers and ahead of the colour table after the 40-byte one.
  std::size_t tableOffset = kFileHeaderSize + infoSize;
  layout.masks = DefaultMasks(layout.bitCount);
  if (compression == kBitfields) {
    const std::size_t masksOffset = kFileHeaderSize + kInfoHeaderSize;
    if (count < masksOffset + 12) return std::nullopt;
    layout.masks = {Read32(data + masksOffset), Read32(data + masksOffset + 4),
                    Read32(data + masksOffset + 8)};
    if (infoSize == kInfoHeaderSize) tableOffset += 12;
  }

  if (layout.bitCount <= 8) {
    const std::uint32_t full = 1u << layout.bitCount;
    const std::uint32_t entries = (colorsUsed == 0 || colorsUsed > full) ? full : colorsUsed;
    const std::size_t entrySize = core ? 3 : 4;
    if (tableOffset > count || (count - tableOffset) / entrySize < entries) return std::nullopt;
    for (std::uint32_t i = 0; i < entries; ++i) {
      const std::uint8_t* e = data + tableOffset + i * entrySize;
      layout.palette.push_back({e[0], e[1], e[2]});
    }
  }

  if (pixelOffset > count) return std::nullopt;
  layout.pixelOffset = pixelOffset;
  if (layout.runLength) {
    layout.codesSize = std::min<std::size_t>(sizeImage, count - pixelOffset);
    return layout;
  }
  const std::int64_t stride = platform::DibRowStride(width, layout.bitCount);
  if (static_cast<std::int64_t>(count - pixelOffset) / stride < height) return std::nullopt;
  layout.sourceStride = static_cast<std::size_t>(stride);
  return layout;
}

void Put(Bgr pixel, std::uint8_t* target) {
  target[0] = pixel.blue;
  target[1] = pixel.green;
  target[2] = pixel.red;
}

// A palette index past the table is black.
Bgr PaletteColour(const FileLayout& layout, std::uint32_t index) {
  return index < layout.palette.size() ? layout.palette[index] : Bgr{};
}

void ConvertRow(const FileLayout& layout, const std::uint8_t* source, std::uint8_t* target) {
  const platform::DibChannel red(layout.masks[0]), green(layout.masks[1]), blue(layout.masks[2]);
  for (int x = 0; x < layout.width; ++x, target += 3) {
    Bgr pixel;
    if (layout.bitCount <= 8) {
      const int perByte = 8 / layout.bitCount;
      const int shift = 8 - layout.bitCount * (x % perByte + 1);
      pixel = PaletteColour(layout, (source[x / perByte] >> shift) & ((1u << layout.bitCount) - 1));
    } else if (layout.bitCount == 24) {
      pixel = {source[x * 3], source[x * 3 + 1], source[x * 3 + 2]};
    } else {
      const std::uint32_t value = layout.bitCount == 16 ? Read16(source + x * 2) : Read32(source + x * 4);
      pixel = {blue.Read(value), green.Read(value), red.Read(value)};
    }
    Put(pixel, target);
  }
}

// Pixels the codes skip stay black, as they do in the new bitmap that SetDIBits
// would fill with them.
void PlayCodes(const FileLayout& layout, const std::uint8_t* codes, Dib24& dib) {
  platform::PlayRunLengthCodes(codes, layout.codesSize, layout.bitCount, dib.width, dib.height,
                               [&](const platform::RunLengthSpan& span) {
                                 std::uint8_t* target = dib.rows.data() +
                                                        static_cast<std::size_t>(span.line) * dib.stride +
                                                        static_cast<std::size_t>(span.x) * 3;
                                 for (int k = 0; k < span.count; ++k, target += 3) {
                                   Put(PaletteColour(layout, span.indexes[k]), target);
                                 }
                               });
}

}  // namespace

bool IsBitmapFile(const std::uint8_t* data, std::size_t count) {
  return count >= 2 && data[0] == 'B' && data[1] == 'M';
}

std::optional<Dib24> ReadBitmapFile(const std::uint8_t* data, std::size_t count) {
  const std::optional<FileLayout> layout = ParseLayout(data, count);
  if (!layout) return std::nullopt;
  Dib24 dib;
  dib.width = layout->width;
  dib.height = layout->height;
  dib.stride = static_cast<int>(platform::DibRowStride(dib.width, 24));
  dib.rows.assign(static_cast<std::size_t>(dib.stride) * dib.height, 0);
  if (layout->runLength) {
    PlayCodes(*layout, data + layout->pixelOffset, dib);
    return dib;
  }
  for (int row = 0; row < dib.height; ++row) {
    const int sourceRow = layout->topDown ? dib.height - 1 - row : row;
    ConvertRow(*layout, data + layout->pixelOffset + sourceRow * layout->sourceStride,
               dib.rows.data() + static_cast<std::size_t>(row) * dib.stride);
  }
  return dib;
}

std::optional<PackedRows> PackedDib24Rows(const std::uint8_t* data, std::size_t count) {
  const std::optional<FileLayout> layout = ParseLayout(data, count);
  if (!layout || layout->bitCount != 24) return std::nullopt;
  return PackedRows{layout->width, layout->topDown ? -layout->height : layout->height,
                    data + layout->pixelOffset};
}

}  // namespace imageio
