// An open file descriptor that closes itself.
#pragma once

#include <unistd.h>

namespace imageio {

class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  // Closes now, reporting whether the close succeeded (a write may fail only here).
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

}  // namespace imageio
