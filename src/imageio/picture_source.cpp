#include "imageio/picture_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "imageio/file_descriptor.h"
#include "imageio/pixel_limits.h"
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

}  // namespace

bool PictureBytes::Allocate(std::size_t bytes) {
  try {
    data.resize(bytes + kSpareBytes);
  } catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }
  return true;
}

bool ReadLocalFile(const std::string& name, PictureBytes* bytes) {
  // O_NOCTTY: opening a terminal must not make it the program's.
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
  if (!bytes->Allocate(size)) return false;
  // A file that shrinks while it is read gives what it still holds.
  bytes->count = 0;
  while (bytes->count < size) {
    const ssize_t got = ::read(file.get(), bytes->data.data() + bytes->count, size - bytes->count);
    if (got == 0) break;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      SetLastError(ERROR_READ_FAULT);
      return false;
    }
    bytes->count += static_cast<std::size_t>(got);
  }
  return true;
}

HBITMAP NewPictureSection(int width, int height, std::uint32_t** pixels) {
  BITMAPINFO info = platform::Dib24Info(width, -height);
  info.bmiHeader.biBitCount = 32;
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
