#include "imageio/image_loader.h"

#include <string>

#include "imageio/bitmap_file_reader.h"
#include "imageio/image_source.h"
#include "imageio/jpeg_repair.h"
#include "imageio/messages.h"
#include "imageio/picture_source.h"
#include "platform/cwnd.h"
#include "platform/gdi.h"
#include "platform/host.h"
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

// The person sees a failure to read only while verbose; the host hears every
// outcome, with the text the person would see. A picture read but not decoded shows
// the person nothing; the host hears it as invalid data.
void ReportReadFailure(const std::string& source, const LoadContext& context) {
  const DWORD error = GetLastError();
  const std::string text = ReadFailureMessage(context.userLanguage, source, error);
  platform::CurrentHost().PictureRead(source, error != 0 ? error : ERROR_INVALID_DATA, text);
  if (context.verbose) AfxMessageBox(text.c_str(), MB_OK | MB_ICONHAND);
}

void ReportDecoded(const std::string& source, HBITMAP bitmap, const LoadContext& context) {
  if (bitmap != nullptr) {
    platform::CurrentHost().PictureRead(source, 0, "");
  } else {
    platform::CurrentHost().PictureRead(source, ERROR_INVALID_DATA,
                                        ReadFailureMessage(context.userLanguage, source, ERROR_INVALID_DATA));
  }
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
  HBITMAP bitmap = IsBitmapFile(bytes.data.data(), bytes.count)
                       ? DecodeBitmapFile(bytes.data.data(), bytes.count, context.window)
                       : DecodePicture(text, bytes.data.data(), bytes.count);
  ReportDecoded(text, bitmap, context);
  return bitmap;
}

}  // namespace imageio
