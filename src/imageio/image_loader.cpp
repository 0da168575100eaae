#include "imageio/image_loader.h"

#include <string>

#include "imageio/bitmap_file_reader.h"
#include "imageio/image_source.h"
#include "imageio/jpeg_repair.h"
#include "imageio/messages.h"
#include "imageio/picture_source.h"
#include "platform/cwnd.h"
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "platform/user.h"

namespace imageio {
namespace {

// Where the bytes come from: the file the caller's string names, for a path or a
// file-scheme URL (used unchanged, so the latter fails to open); a download into
// memory for anything else, the empty string too, which the download refuses. False
// (last error set) when they cannot be had.
bool ReadSource(const std::string& source, PictureBytes* bytes) {
  UrlService service{};
  const bool isUrl = ParseUrl(source, &service);
  if ((!isUrl || service == UrlService::File) && !source.empty()) {
    Sleep(1);
    return ReadPictureFile(source, bytes);
  }
  return FetchUrl(source, bytes);
}

void ReportReadFailure(const std::string& source, const LoadContext& context) {
  if (!context.verbose) return;
  const std::string text = ReadFailureMessage(context.userLanguage, source, GetLastError());
  AfxMessageBox(text.c_str(), MB_OK | MB_ICONHAND);
}

// A new bitmap compatible with `dc` holding packed 24-bit rows (`height` negative
// for top-down ones); null when either step fails.
HBITMAP BitmapOfRows(HDC dc, int width, int height, const std::uint8_t* rows) {
  const int lines = height < 0 ? -height : height;
  HBITMAP bitmap = CreateCompatibleBitmap(dc, width, lines);
  const BITMAPINFO info = platform::Dib24Info(width, height);
  if (bitmap && SetDIBits(dc, bitmap, 0, static_cast<UINT>(lines), rows, &info, DIB_RGB_COLORS) == 0) {
    DeleteObject(bitmap);
    bitmap = nullptr;
  }
  return bitmap;
}

// A bitmap file becomes a device bitmap compatible with the window's DC, its rows
// transferred with SetDIBits once the file has been checked: straight from the file
// when they are 24-bit rows already, unpacked into such rows first otherwise.
HBITMAP DecodeBitmapFile(const std::uint8_t* data, std::size_t count, HWND window) {
  HDC dc = GetDC(window);
  if (!dc) return nullptr;
  HBITMAP bitmap = nullptr;
  if (const std::optional<PackedRows> packed = PackedDib24Rows(data, count)) {
    bitmap = BitmapOfRows(dc, packed->width, packed->height, packed->rows);
  } else if (const std::optional<Dib24> dib = ReadBitmapFile(data, count)) {
    bitmap = BitmapOfRows(dc, dib->width, dib->height, dib->rows.data());
  }
  ReleaseDC(window, dc);
  return bitmap;
}

}  // namespace

HBITMAP LoadImage(LPCSTR source, const LoadContext& context) {
  const std::string text = source ? source : "";
  PictureBytes bytes;
  if (!ReadSource(text, &bytes)) {
    ReportReadFailure(text, context);
    return nullptr;
  }
  bytes.count = RepairJpegEndMarker(bytes.data.data(), bytes.count);
  if (IsBitmapFile(bytes.data.data(), bytes.count)) {
    return DecodeBitmapFile(bytes.data.data(), bytes.count, context.window);
  }
  return DecodePicture(text, bytes.data.data(), bytes.count);
}

}  // namespace imageio
