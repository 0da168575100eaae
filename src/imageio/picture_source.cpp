#include "imageio/picture_source.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <new>

#include "platform/gdi.h"
#include "platform/kernel.h"

namespace imageio {
namespace {

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

using FileHandle = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

}  // namespace

bool ReadLocalFile(const std::string& name, PictureBytes* bytes) {
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
  bytes->data.reset(new (std::nothrow) std::uint8_t[size + kSpareBytes]);
  if (!bytes->data) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }
  bytes->count = std::fread(bytes->data.get(), 1, size, file.get());
  if (std::ferror(file.get())) {
    SetLastError(ERROR_READ_FAULT);
    return false;
  }
  return true;
}

HBITMAP NewPictureSection(int width, int height, std::uint32_t** pixels) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (section && !bits) {
    DeleteObject(section);
    section = nullptr;
  }
  *pixels = static_cast<std::uint32_t*>(bits);
  return section;
}

}  // namespace imageio
