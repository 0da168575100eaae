// The graphics-memory budget: every bitmap, every pixel buffer and every kept
// difference between bitmaps is charged against one limit for the whole process, so
// that a request past it fails the way the platform's call fails (a null bitmap, a
// null buffer) and the caller's out-of-memory path runs, instead of the process
// growing until the system kills it.
//
// A bitmap is charged its whole size when it is made, as GDI commits a bitmap's
// memory then. Our bitmaps share and pack their rows, so they often hold much less;
// charging the whole is what lets a later write into shared rows never fail.
// Everything else (pixel buffers, packed rows) is charged what it holds. The host's
// window (the screen the windows are drawn on) and the stock objects are the system's
// and are not charged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace platform {

// Half the physical memory, at most 4 GiB; in the page, what the engine's memory may
// grow to.
std::size_t DefaultGraphicsMemoryBudget();
std::size_t GraphicsMemoryBudget();
// 0 restores the default. A budget below what is in use refuses every new request
// until enough is given back; nothing alive is taken away.
void SetGraphicsMemoryBudget(std::size_t bytes);
// What is charged now.
std::size_t GraphicsMemoryInUse();

// Whether a request of `bytes` would fit now (memory kept only for speed is given
// back first when it would not).
bool GraphicsMemoryWouldFit(std::uint64_t bytes);

// Called when a request does not fit, before it is refused, to give back memory that
// is only kept for speed (one function; a later call replaces it).
void SetGraphicsMemoryReclaimer(void (*reclaim)());

// A charge against the budget, given back when this goes.
class GraphicsCharge {
 public:
  GraphicsCharge() = default;
  GraphicsCharge(GraphicsCharge&& other) noexcept : bytes_(other.bytes_) { other.bytes_ = 0; }
  GraphicsCharge& operator=(GraphicsCharge&& other) noexcept;
  GraphicsCharge(const GraphicsCharge&) = delete;
  GraphicsCharge& operator=(const GraphicsCharge&) = delete;
  ~GraphicsCharge() { Release(); }

  // Charges `bytes` more; false, nothing charged, when they do not fit.
  bool Add(std::size_t bytes);
  // As Add, but throws std::bad_alloc when they do not fit.
  void AddOrThrow(std::size_t bytes);
  void Release();

 private:
  std::size_t bytes_ = 0;
};

// Memory for pixels, charged against the budget while it lives.
class GraphicsBytes {
 public:
  GraphicsBytes() = default;
  // `count` bytes (at least one), not initialised; empty when they do not fit the
  // budget or cannot be had.
  static GraphicsBytes Allocate(std::size_t count);

  explicit operator bool() const { return bytes_ != nullptr; }
  unsigned char* get() const { return bytes_.get(); }

 private:
  std::unique_ptr<unsigned char[]> bytes_;
  GraphicsCharge charge_;
};

}  // namespace platform
