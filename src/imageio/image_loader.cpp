#include "imageio/image_loader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include "imageio/bitmap_file_reader.h"
#include "imageio/file_descriptor.h"
#include "imageio/image_source.h"
#include "imageio/jpeg_repair.h"
#include "imageio/messages.h"
#include "imageio/picture_decoder.h"
#include "imageio/pixel_limits.h"
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

// The picture's bytes, with room after them for an appended JPEG end marker;
// `count` is how many of them are the picture's.
struct FileBlock {
  std::vector<std::uint8_t> data;
  std::size_t count = 0;
};

// Makes room for `count` bytes and the spare ones; false (last error set) when the
// memory cannot be had.
bool MakeRoom(FileBlock* block, std::size_t count) {
  try {
    block->data.resize(count + kSpareBytes);
  } catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }
  return true;
}

// Opens and reads the whole file; false (with the last error set) when it cannot be
// opened or its contents do not read. Only a regular file of at most the largest
// picture file's size is read: the open does not wait (a named pipe without a
// writer would block it for ever) and cannot make a terminal ours, and anything
// else (a pipe, a device, a directory) is refused before a byte is read.
bool ReadWholeFile(const std::string& name, FileBlock* block) {
  const FileDescriptor file(::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file.valid()) {
    SetLastError(LastErrorFromErrno(errno));
    return false;
  }
  struct stat status {};
  if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    SetLastError(S_ISDIR(status.st_mode) ? ERROR_ACCESS_DENIED : ERROR_READ_FAULT);
    return false;
  }
  if (status.st_size > kMaxPictureFileBytes) {
    SetLastError(ERROR_FILE_TOO_LARGE);
    return false;
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  if (!MakeRoom(block, size)) return false;
  // A file that shrinks while it is read gives what it still holds.
  block->count = 0;
  while (block->count < size) {
    const ssize_t got = ::read(file.get(), block->data.data() + block->count, size - block->count);
    if (got == 0) break;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      SetLastError(ERROR_READ_FAULT);
      return false;
    }
    block->count += static_cast<std::size_t>(got);
  }
  return true;
}

// Where the bytes come from: the caller's string names a local file for a path or a
// file-scheme URL; anything else (an empty string too, which the download refuses)
// is downloaded into memory. False (last error set) when they cannot be had.
bool ReadSource(const std::string& source, FileBlock* block) {
  UrlService service{};
  const bool isUrl = ParseUrl(source, &service);
  if ((!isUrl || service == UrlService::File) && !source.empty()) {
    Sleep(1);
    return ReadWholeFile(source, block);
  }
  if (DownloadToMemory(source, &block->data) < 0) return false;
  block->count = block->data.size();
  return MakeRoom(block, block->count);
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
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = dib->width;
    info.bmiHeader.biHeight = dib->height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
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
  FileBlock block;
  if (!ReadSource(text, &block)) {
    ReportReadFailure(text, context);
    return nullptr;
  }
  block.count = RepairJpegEndMarker(block.data.data(), block.count);
  return DecodeImageData(block.data.data(), block.count, context.window);
}

}  // namespace imageio
