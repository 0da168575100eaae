#include "imageio/image_loader.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "imageio/bitmap_file_reader.h"
#include "imageio/image_source.h"
#include "imageio/jpeg_repair.h"
#include "imageio/messages.h"
#include "imageio/picture_decoder.h"
#include "imageio/url_download.h"
#include "platform/cwnd.h"
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "platform/user.h"

namespace imageio {
namespace {

// Room after the data for an appended JPEG end marker.
constexpr std::size_t kSpareBytes = 2;

DWORD LastErrorFromErrno(int error) {
  switch (error) {
    case ENOENT:
      return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ENAMETOOLONG:
      return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EISDIR:
      return ERROR_ACCESS_DENIED;
    case ENOMEM:
      return ERROR_NOT_ENOUGH_MEMORY;
    default:
      return ERROR_READ_FAULT;
  }
}

// The file's data with two spare bytes; `count` is what was read.
struct FileBlock {
  std::unique_ptr<std::uint8_t[]> data;
  std::size_t count = 0;
};

using FileHandle = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

// Opens and reads the whole file; false (with the last error set) when it cannot be
// opened or its contents do not read.
bool ReadWholeFile(const std::string& name, FileBlock* block) {
  FileHandle file(std::fopen(name.c_str(), "rb"), std::fclose);
  if (!file) {
    SetLastError(LastErrorFromErrno(errno));
    return false;
  }
  struct stat status {};
  if (::fstat(::fileno(file.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
    SetLastError(S_ISDIR(status.st_mode) ? ERROR_ACCESS_DENIED : ERROR_READ_FAULT);
    return false;
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  block->data.reset(new (std::nothrow) std::uint8_t[size + kSpareBytes]);
  if (!block->data) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }
  block->count = std::fread(block->data.get(), 1, size, file.get());
  if (std::ferror(file.get())) {
    SetLastError(ERROR_READ_FAULT);
    return false;
  }
  block->count = RepairJpegEndMarker(block->data.get(), block->count);
  return true;
}

// Where the bytes come from: the caller's string itself for a path or a file-scheme
// URL, else a downloaded copy. An empty string is handed to the download, which
// refuses it. False (last error set) when the download fails.
bool ChooseLocalFile(const std::string& source, std::string* localName) {
  UrlService service{};
  const bool isUrl = ParseUrl(source, &service);
  if (!isUrl || service == UrlService::File) {
    *localName = source;
    if (!localName->empty()) return true;
  }
  return DownloadToCacheFile(source, localName) >= 0;
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

HBITMAP DecodeImageData(const std::uint8_t* data, std::size_t count, HWND window) {
  if (IsBitmapFile(data, count)) return DecodeBitmapFile(data, count, window);
  return DecodePicture(data, count);
}

HBITMAP LoadImage(LPCSTR source, const LoadContext& context) {
  const std::string text = source ? source : "";
  std::string localName;
  FileBlock block;
  if (!ChooseLocalFile(text, &localName)) {
    ReportReadFailure(text, context);
    return nullptr;
  }
  Sleep(1);
  if (!ReadWholeFile(localName, &block)) {
    ReportReadFailure(text, context);
    return nullptr;
  }
  return DecodeImageData(block.data.get(), block.count, context.window);
}

}  // namespace imageio
