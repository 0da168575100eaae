// An owner for one platform handle: released by `Release` when its owner goes or takes
// another, so that a handle is given back exactly once, on every path. Move-only; a
// moved-from owner holds nothing.
#pragma once

#include <utility>

namespace platform {

template <typename Handle, auto Release>
class OwnedHandle {
 public:
  OwnedHandle() = default;
  explicit OwnedHandle(Handle handle) : handle_(handle) {}
  ~OwnedHandle() { reset(); }
  OwnedHandle(OwnedHandle&& other) noexcept : handle_(other.release()) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }

  Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }
  // Gives the handle up without releasing it.
  Handle release() { return std::exchange(handle_, nullptr); }
  void reset(Handle handle = nullptr) {
    if (handle_) Release(handle_);
    handle_ = handle;
  }

 private:
  Handle handle_ = nullptr;
};

}  // namespace platform
