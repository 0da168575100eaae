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

// Where the bytes come from: the caller's string itself for a path or a file-scheme
// URL, else a fetched copy. An empty string is handed to the fetch, which refuses it.
// False (last error set) when the fetch fails.
bool ChooseLocalFile(const std::string& source, std::string* localName) {
  UrlService service{};
  const bool isUrl = ParseUrl(source, &service);
  if (!isUrl || service == UrlService::File) {
    *localName = source;
    if (!localName->empty()) return true;
  }
  return FetchUrl(source, localName);
}

void ReportReadFailure(const std::string& source, const LoadContext& context) {
  if (!context.verbose) return;
  const std::string text = ReadFailureMessage(context.userLanguage, source, GetLastError());
  AfxMessageBox(text.c_str(), MB_OK | MB_ICONHAND);
}

// A bitmap file becomes a device bitmap compatible with the window's DC, its rows
// transferred with SetDIBits once the file has been checked and unpacked.
HBITMAP DecodeBitmapFile(const std::uint8_t* data, std::size_t count, HWND window) {
  HDC dc = GetDC(window);
  if (!dc) return nullptr;
  HBITMAP bitmap = nullptr;
  if (const std::optional<Dib24> dib = ReadBitmapFile(data, count)) {
    bitmap = CreateCompatibleBitmap(dc, dib->width, dib->height);
    const BITMAPINFO info = platform::Dib24Info(dib->width, dib->height);
    if (bitmap && SetDIBits(dc, bitmap, 0, static_cast<UINT>(dib->height), dib->rows.data(), &info,
                            DIB_RGB_COLORS) == 0) {
      DeleteObject(bitmap);
      bitmap = nullptr;
    }
  }
  ReleaseDC(window, dc);
  return bitmap;
}

}  // namespace

HBITMAP LoadImage(LPCSTR source, const LoadContext& context) {
  const std::string text = source ? source : "";
  std::string localName;
  PictureBytes bytes;
  if (!ChooseLocalFile(text, &localName)) {
    ReportReadFailure(text, context);
    return nullptr;
  }
  Sleep(1);
  if (!ReadPictureFile(localName, &bytes)) {
    ReportReadFailure(text, context);
    return nullptr;
  }
  bytes.count = RepairJpegEndMarker(bytes.data.get(), bytes.count);
  if (IsBitmapFile(bytes.data.get(), bytes.count)) {
    return DecodeBitmapFile(bytes.data.get(), bytes.count, context.window);
  }
  return DecodePicture(localName, bytes.data.get(), bytes.count);
}

}  // namespace imageio
