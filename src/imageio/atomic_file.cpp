#include "imageio/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>

#include "imageio/file_descriptor.h"

namespace imageio {
namespace {

// Tries of a fresh name when the one drawn exists already.
constexpr int kNameAttempts = 32;

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// Creates a new, uniquely named file in the folder ("" is the current one). The
// suffix is random so that nobody can prepare the name; should it exist anyway the
// exclusive create fails and another is drawn.
int CreateUniqueFile(const std::string& folder, std::string* name) {
  static std::mt19937_64 generator{std::random_device{}()};
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    char suffix[17];
    std::snprintf(suffix, sizeof suffix, "%016llx", static_cast<unsigned long long>(generator()));
    *name = folder + ".imageedit-" + suffix + ".part";
    const int fd = ::open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

bool WriteAll(int fd, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

// A regular file at `path` is replaced only when we may write it, as it would have
// been overwritten: a file made read-only stays. Its permissions pass to the new
// file where the file system keeps them; a new name keeps what the create gave it
// (0666 less the umask).
bool AdoptTarget(const std::string& path, int fd) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return true;
  if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return false;
  ::fchmod(fd, status.st_mode & 0777);
  return true;
}

// Makes the rename itself last: the folder's entry is flushed too. A failure here
// cannot be undone (the file is already in place) and only weakens durability.
void FlushFolder(const std::string& folder) {
  const FileDescriptor dir(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (dir.valid()) ::fsync(dir.get());
}

}  // namespace

bool WriteFileAtomically(const std::string& path, std::initializer_list<std::span<const std::byte>> parts) {
  const std::string folder = FolderOf(path);
  std::string partial;
  FileDescriptor file(CreateUniqueFile(folder, &partial));
  if (!file.valid()) return false;
  bool written = AdoptTarget(path, file.get());
  for (std::span<const std::byte> part : parts) written = written && WriteAll(file.get(), part);
  written = written && ::fsync(file.get()) == 0;
  written = file.Close() && written;
  if (!written || ::rename(partial.c_str(), path.c_str()) != 0) {
    ::unlink(partial.c_str());
    return false;
  }
  FlushFolder(folder);
  return true;
}

}  // namespace imageio
