// DIB transfer (GetDIBits, SetDIBits) and DIB sections.
#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/dib_run_length.h"
#include "platform/gdi_objects.h"

using namespace platform::gdi;
namespace raster = platform::raster;

namespace {

std::size_t StrideOf(std::int64_t width, int bitCount) {
  return static_cast<std::size_t>(platform::DibRowStride(width, bitCount));
}

// Scan lines [start, start + lines) of a DIB of `dibHeight` rows, mapped onto bitmap
// rows: bottom-up DIBs (positive height) number their lines from the bottom row.
struct LineSpan {
  std::int64_t first;  // first scan line transferred
  std::int64_t count;
  bool bottomUp;
  std::int64_t dibRows;
  std::int64_t BitmapRow(std::int64_t line) const { return bottomUp ? dibRows - 1 - line : line; }
};

LineSpan SpanOf(LONG biHeight, UINT start, UINT lines) {
  LineSpan span{start, 0, biHeight > 0, biHeight > 0 ? biHeight : -static_cast<std::int64_t>(biHeight)};
  const std::int64_t end = std::min<std::int64_t>(span.dibRows, static_cast<std::int64_t>(start) + lines);
  span.count = std::max<std::int64_t>(0, end - span.first);
  return span;
}

// The colour table of a DIB of 1, 4 or 8 bits a pixel as 0x00RRGGBB pixels, one for
// every index the depth can hold: indexes past the table read black.
std::vector<std::uint32_t> PaletteOf(const BITMAPINFO& info) {
  const BITMAPINFOHEADER& h = info.bmiHeader;
  const auto* table = reinterpret_cast<const BYTE*>(&info) + h.biSize;
  const DWORD maxColors = 1u << h.biBitCount;
  const DWORD used = h.biClrUsed && h.biClrUsed < maxColors ? h.biClrUsed : maxColors;
  std::vector<std::uint32_t> palette(maxColors, raster::kBlack);
  for (DWORD i = 0; i < used; ++i) {
    RGBQUAD q;
    std::memcpy(&q, table + 4 * i, sizeof q);
    palette[i] = (std::uint32_t{q.rgbRed} << 16) | (std::uint32_t{q.rgbGreen} << 8) | q.rgbBlue;
  }
  return palette;
}

// Decodes rows of one DIB format into 0x00RRGGBB pixels.
class RowDecoder {
 public:
  static std::optional<RowDecoder> For(const BITMAPINFO& info) {
    const BITMAPINFOHEADER& h = info.bmiHeader;
    RowDecoder decoder;
    decoder.bitCount_ = h.biBitCount;
    const auto* extra = reinterpret_cast<const BYTE*>(&info) + h.biSize;
    if (h.biCompression == BI_RGB) {
      if (h.biBitCount == 1 || h.biBitCount == 4 || h.biBitCount == 8) {
        decoder.palette_ = PaletteOf(info);
        return decoder;
      }
      if (h.biBitCount == 16) return decoder.WithMasks(0x7C00, 0x03E0, 0x001F);
      if (h.biBitCount == 24 || h.biBitCount == 32) return decoder;
      return std::nullopt;
    }
    if (h.biCompression == BI_BITFIELDS && (h.biBitCount == 16 || h.biBitCount == 32)) {
      // Masks follow a 40-byte header, or sit inside the larger versions of it.
      const BYTE* masks = h.biSize >= 52 ? reinterpret_cast<const BYTE*>(&info) + 40 : extra;
      DWORD m[3];
      std::memcpy(m, masks, sizeof m);
      return decoder.WithMasks(m[0], m[1], m[2]);
    }
    return std::nullopt;
  }

  void Decode(const BYTE* in, std::uint32_t* out, int count) const {
    switch (bitCount_) {
      case 1:
      case 4:
      case 8: {
        const int perByte = 8 / bitCount_;
        const unsigned mask = (1u << bitCount_) - 1;
        for (int x = 0; x < count; ++x) {
          const int shift = 8 - bitCount_ * (x % perByte + 1);
          out[x] = palette_[(in[x / perByte] >> shift) & mask];
        }
        break;
      }
      case 16:
        for (int x = 0; x < count; ++x) out[x] = Masked(static_cast<DWORD>(in[2 * x] | (in[2 * x + 1] << 8)));
        break;
      case 24:
        raster::UnpackRow24(in, out, count);
        break;
      default:
        for (int x = 0; x < count; ++x) {
          DWORD v;
          std::memcpy(&v, in + 4 * x, 4);
          out[x] = masks_ ? Masked(v) : v & raster::kColorMask;
        }
    }
  }

 private:
  RowDecoder WithMasks(DWORD red, DWORD green, DWORD blue) {
    red_ = platform::DibChannel(red);
    green_ = platform::DibChannel(green);
    blue_ = platform::DibChannel(blue);
    masks_ = true;
    return *this;
  }
  std::uint32_t Masked(DWORD v) const {
    return (std::uint32_t{red_.Read(v)} << 16) | (std::uint32_t{green_.Read(v)} << 8) | blue_.Read(v);
  }

  int bitCount_ = 0;
  bool masks_ = false;
  platform::DibChannel red_{0}, green_{0}, blue_{0};
  std::vector<std::uint32_t> palette_;
};

bool ValidDibSize(const BITMAPINFOHEADER& h) {
  return h.biWidth > 0 && h.biHeight != 0 && h.biHeight != INT32_MIN &&
         static_cast<std::int64_t>(h.biWidth) * (h.biHeight < 0 ? -std::int64_t{h.biHeight} : h.biHeight) <=
             raster::kMaxPixels;
}

// GDI takes a compressed DIB whole, whatever lines were asked for (none still sets
// nothing), and answers its height; it refuses top-down ones, a depth that is not
// the compression's and an image size of 0.
int SetRunLengthBits(raster::Raster& to, UINT lines, const BYTE* bits, const BITMAPINFO& info) {
  const BITMAPINFOHEADER& h = info.bmiHeader;
  const int depth = h.biCompression == BI_RLE8 ? 8 : 4;
  if (h.biBitCount != depth || h.biHeight < 0 || h.biSizeImage == 0 || lines == 0) return 0;
  const std::vector<std::uint32_t> palette = PaletteOf(info);
  platform::PlayRunLengthCodes(bits, h.biSizeImage, depth, h.biWidth, h.biHeight,
                               [&](const platform::RunLengthSpan& span) {
                                 const int row = h.biHeight - 1 - span.line;
                                 if (row >= to.height || span.x >= to.width) return;
                                 std::uint32_t* pixels = to.MutableRow(row) + span.x;
                                 const int count = std::min(span.count, to.width - span.x);
                                 for (int k = 0; k < count; ++k) {
                                   const std::uint32_t p = palette[span.indexes[k]];
                                   pixels[k] = to.mono ? raster::NearestMono(p) : p;
                                 }
                               });
  return h.biHeight;
}

void FillHeader(BITMAPINFOHEADER& h, const raster::Raster& bitmap) {
  if (h.biBitCount == 0) {
    h.biWidth = bitmap.width;
    h.biHeight = bitmap.height;
    h.biPlanes = 1;
    h.biBitCount = bitmap.mono ? 1 : 32;
    h.biCompression = BI_RGB;
  }
  const std::int64_t rows = h.biHeight < 0 ? -std::int64_t{h.biHeight} : h.biHeight;
  h.biSizeImage = static_cast<DWORD>(StrideOf(h.biWidth, h.biBitCount) * static_cast<std::size_t>(rows));
}

}  // namespace

// Writes 24- or 32-bit BI_RGB rows, each padded with zeros after the bitmap's last
// column, so that a file written from them never carries whatever the caller's memory
// held before; with `bits` null only completes the header (a zero
// bit count asks for the bitmap's own format) and returns the bitmap's height.
int GetDIBits(HDC hdc, HBITMAP bitmap, UINT start, UINT lines, void* bits, BITMAPINFO* info, UINT usage) {
  const auto* object = Lookup<BitmapObject>(bitmap);
  if (!Lookup<DcObject>(hdc) || !object || !info || usage != DIB_RGB_COLORS) return 0;
  BITMAPINFOHEADER& h = info->bmiHeader;
  const raster::Raster& from = object->raster;
  if (!bits) {
    if (h.biBitCount != 0 && !ValidDibSize(h)) return 0;
    FillHeader(h, from);
    return from.height;
  }
  if (!ValidDibSize(h) || h.biCompression != BI_RGB || (h.biBitCount != 24 && h.biBitCount != 32)) return 0;
  const LineSpan span = SpanOf(h.biHeight, start, lines);
  const std::size_t stride = StrideOf(h.biWidth, h.biBitCount);
  const int columns = std::min<int>(h.biWidth, from.width);
  const std::size_t used = static_cast<std::size_t>(columns) * (h.biBitCount / 8);
  auto* out = static_cast<BYTE*>(bits);
  int copied = 0;
  for (std::int64_t k = 0; k < span.count; ++k) {
    const std::int64_t row = span.BitmapRow(span.first + k);
    if (row < 0 || row >= from.height) continue;
    BYTE* line = out + stride * static_cast<std::size_t>(k);
    const std::uint32_t* pixels = from.Row(static_cast<int>(row));
    if (h.biBitCount == 32) {
      for (int x = 0; x < columns; ++x) {
        const std::uint32_t p = pixels[x] & raster::kColorMask;
        std::memcpy(line + 4 * x, &p, 4);
      }
    } else {
      raster::PackRow24(pixels, line, columns);
    }
    std::memset(line + used, 0, stride - used);
    ++copied;
  }
  return copied;
}

// Reads 1, 4, 8, 16, 24 and 32-bit DIBs (BI_RGB, and BI_BITFIELDS for 16 and 32 bits),
// and run-length compressed ones (BI_RLE8 at 8 bits, BI_RLE4 at 4). The header, its
// colour table or masks and `lines` rows of `bits` must be readable; for a compressed
// DIB, biSizeImage bytes of `bits`.
int SetDIBits(HDC hdc, HBITMAP bitmap, UINT start, UINT lines, const void* bits, const BITMAPINFO* info,
              UINT usage) {
  (void)hdc;  // as in GDI, the DC only names the device the DIB is matched to
  auto* object = Lookup<BitmapObject>(bitmap);
  if (!object || !bits || !info || usage != DIB_RGB_COLORS || !ValidDibSize(info->bmiHeader)) return 0;
  const BITMAPINFOHEADER& h = info->bmiHeader;
  if (h.biCompression == BI_RLE8 || h.biCompression == BI_RLE4) {
    return SetRunLengthBits(object->raster, lines, static_cast<const BYTE*>(bits), *info);
  }
  const auto decoder = RowDecoder::For(*info);
  if (!decoder) return 0;
  raster::Raster& to = object->raster;
  const LineSpan span = SpanOf(h.biHeight, start, lines);
  const std::size_t stride = StrideOf(h.biWidth, h.biBitCount);
  const int columns = std::min<int>(h.biWidth, to.width);
  const auto* in = static_cast<const BYTE*>(bits);
  if (columns == to.width && span.count > 0) {
    // Every pixel of these rows is decoded anew: shared bands need fresh storage, not a
    // copy of what is about to be overwritten.
    const std::int64_t a = span.BitmapRow(span.first);
    const std::int64_t b = span.BitmapRow(span.first + span.count - 1);
    to.OwnRowsToReplace(static_cast<int>(std::clamp<std::int64_t>(std::min(a, b), 0, to.height)),
                        static_cast<int>(std::clamp<std::int64_t>(std::max(a, b) + 1, 0, to.height)));
  }
  int copied = 0;
  for (std::int64_t k = 0; k < span.count; ++k) {
    const std::int64_t row = span.BitmapRow(span.first + k);
    if (row < 0 || row >= to.height) continue;
    std::uint32_t* pixels = to.MutableRow(static_cast<int>(row));
    decoder->Decode(in + stride * static_cast<std::size_t>(k), pixels, columns);
    if (to.mono) {
      for (int x = 0; x < columns; ++x) pixels[x] = raster::NearestMono(pixels[x]);
    }
    ++copied;
  }
  return copied;
}

HBITMAP CreateDIBSection(HDC hdc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD offset) {
  (void)hdc;
  (void)offset;
  if (bits) *bits = nullptr;
  // File-mapping sections are not supported: the pixels always live in the raster.
  if (!info || section || usage != DIB_RGB_COLORS || !ValidDibSize(info->bmiHeader)) return nullptr;
  const BITMAPINFOHEADER& h = info->bmiHeader;
  const int height = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  HBITMAP handle = NewBitmap(h.biWidth, height, false, true, h.biHeight);
  if (handle && bits && h.biBitCount == 32 && h.biHeight < 0 && h.biCompression == BI_RGB) {
    *bits = Lookup<BitmapObject>(handle)->raster.Pin();
  }
  return handle;
}
