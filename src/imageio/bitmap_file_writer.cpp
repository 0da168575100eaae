#include "imageio/bitmap_file_writer.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <span>

#include "imageio/atomic_file.h"
#include "imageio/messages.h"
#include "platform/cwnd.h"
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "platform/user.h"

namespace imageio {
namespace {

constexpr std::uint32_t kFileHeaderSize = 14;
constexpr std::uint32_t kInfoHeaderSize = 40;

int RoundDepth(int bits) {
  if (bits <= 1) return 1;
  if (bits <= 4) return 4;
  if (bits <= 8) return 8;
  return 24;
}

void ShowOutOfMemory(const WriteContext& context) {
  if (!context.verbose) return;
  AfxMessageBox(SaveOutOfMemoryMessage(context.userLanguage).c_str(), MB_OK | MB_ICONHAND);
}

void ShowSaveFailure(const std::string& path, const WriteContext& context) {
  if (!context.verbose) return;
  AfxMessageBox(SaveFailureMessage(context.userLanguage, path).c_str(), MB_OK);
}

// The info header of a file with that layout; GetDIBits fills its colour table.
BITMAPINFOHEADER InfoHeader(int width, int height, const BitmapFileLayout& layout) {
  BITMAPINFOHEADER header = platform::Dib24Info(width, height).bmiHeader;
  header.biBitCount = static_cast<WORD>(layout.depth);
  header.biSizeImage = static_cast<DWORD>(layout.imageSize);
  header.biClrUsed = static_cast<DWORD>(layout.colorCount);
  return header;
}

BITMAPFILEHEADER FileHeader(const BitmapFileLayout& layout) {
  BITMAPFILEHEADER header{};
  header.bfType = 0x4D42;
  header.bfSize = static_cast<DWORD>(layout.fileSize);
  header.bfOffBits = layout.pixelOffset;
  return header;
}

}  // namespace

BitmapFileLayout ComputeBitmapFileLayout(int width, int height, int planes, int bitsPerPixel) {
  BitmapFileLayout layout;
  const int bits = bitsPerPixel >= 16 ? 24 : bitsPerPixel;
  layout.depth = RoundDepth(planes * bits);
  layout.colorCount = layout.depth < 24 ? 1 << layout.depth : 0;
  layout.rowSize = static_cast<std::uint32_t>(platform::DibRowStride(width, layout.depth));
  layout.imageSize = static_cast<std::uint64_t>(layout.rowSize) * static_cast<std::uint64_t>(height);
  layout.pixelOffset = kFileHeaderSize + kInfoHeaderSize + 4 * static_cast<std::uint32_t>(layout.colorCount);
  layout.fileSize = layout.pixelOffset + layout.imageSize;
  return layout;
}

std::string ResolveSavePath(const std::string& path) {
  if (path.find_first_of("/\\") != std::string::npos) return path;
  return platform::TempFolder() + path;
}

bool WriteDib24File(const std::string& path, int width, int height, const std::uint8_t* rows) {
  const BitmapFileLayout layout = ComputeBitmapFileLayout(width, height, 1, 24);
  const BITMAPINFOHEADER header = InfoHeader(width, height, layout);
  const BITMAPFILEHEADER fileHeader = FileHeader(layout);
  return WriteFileAtomically(path, {std::as_bytes(std::span(&fileHeader, 1)), std::as_bytes(std::span(&header, 1)),
                                    std::as_bytes(std::span(rows, layout.imageSize))});
}

void WriteBitmapFile(LPCSTR path, HBITMAP bitmap, const WriteContext& context) {
  BITMAP description{};
  if (!path || !*path || !bitmap || !GetObjectA(bitmap, sizeof description, &description)) return;
  const BitmapFileLayout layout = ComputeBitmapFileLayout(description.bmWidth, description.bmHeight,
                                                          description.bmPlanes, description.bmBitsPixel);

  // The header with room for the colour table, and the pixel rows. A size that
  // does not fit the file format's 32-bit fields counts as memory that cannot be had.
  const std::size_t infoSize = kInfoHeaderSize + 4 * static_cast<std::size_t>(layout.colorCount);
  std::unique_ptr<std::uint8_t[]> info(new (std::nothrow) std::uint8_t[infoSize]());
  std::unique_ptr<std::uint8_t[]> rows;
  if (layout.fileSize <= std::numeric_limits<DWORD>::max()) {
    rows.reset(new (std::nothrow) std::uint8_t[layout.imageSize]);
  }
  if (!info || !rows) {
    ShowOutOfMemory(context);
    return;
  }
  auto* header = reinterpret_cast<BITMAPINFOHEADER*>(info.get());
  *header = InfoHeader(description.bmWidth, description.bmHeight, layout);

  HDC dc = GetDC(context.window);
  if (!dc) return;
  if (GetDIBits(dc, bitmap, 0, static_cast<UINT>(description.bmHeight), rows.get(),
                reinterpret_cast<BITMAPINFO*>(info.get()), DIB_RGB_COLORS) == 0) {
    ReleaseDC(context.window, dc);
    return;
  }
  header->biClrUsed = static_cast<DWORD>(layout.colorCount);

  const std::string target = ResolveSavePath(path);
  const BITMAPFILEHEADER fileHeader = FileHeader(layout);
  if (!WriteFileAtomically(
          target, {std::as_bytes(std::span(&fileHeader, 1)), std::as_bytes(std::span(info.get(), infoSize)),
                   std::as_bytes(std::span(rows.get(), layout.imageSize))})) {
    ShowSaveFailure(target, context);
  }
  ReleaseDC(context.window, dc);
}

}  // namespace imageio
