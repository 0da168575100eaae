#include "platform/graphics_memory.h"

#include <algorithm>
#include <atomic>
#include <new>

#ifdef __EMSCRIPTEN__
#include <emscripten/heap.h>
#else
#include <unistd.h>
#endif

namespace platform {

namespace {

std::size_t g_budget = 0;  // 0: the default, worked out on first use
// Atomic because a pixel pass may take its buffers on its helper thread.
std::atomic<std::size_t> g_inUse{0};
void (*g_reclaim)() = nullptr;

// Whether `bytes` more fit beside `used`.
bool FitsBeside(std::size_t used, std::uint64_t bytes) {
  const std::size_t budget = GraphicsMemoryBudget();
  return used <= budget && bytes <= budget - used;
}

// Charges `bytes` if they fit.
bool TryCharge(std::size_t bytes) {
  std::size_t used = g_inUse.load();
  do {
    if (!FitsBeside(used, bytes)) return false;
  } while (!g_inUse.compare_exchange_weak(used, used + bytes));
  return true;
}

// An attempt, and when it fails a second one after the reclaimer gave back what is
// kept only for speed.
template <typename Attempt>
bool OrAfterReclaiming(Attempt attempt) {
  if (attempt()) return true;
  if (!g_reclaim) return false;
  g_reclaim();
  return attempt();
}

}  // namespace

std::size_t DefaultGraphicsMemoryBudget() {
#ifdef __EMSCRIPTEN__
  return emscripten_get_heap_max();
#else
  constexpr std::size_t kMost = std::size_t{4} << 30;
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long pageSize = ::sysconf(_SC_PAGE_SIZE);
  if (pages <= 0 || pageSize <= 0) return kMost;
  return std::min(kMost, static_cast<std::size_t>(pages) / 2 * static_cast<std::size_t>(pageSize));
#endif
}

std::size_t GraphicsMemoryBudget() {
  if (g_budget == 0) g_budget = DefaultGraphicsMemoryBudget();
  return g_budget;
}

void SetGraphicsMemoryBudget(std::size_t bytes) { g_budget = bytes; }

std::size_t GraphicsMemoryInUse() { return g_inUse; }

bool GraphicsMemoryWouldFit(std::uint64_t bytes) {
  return OrAfterReclaiming([bytes] { return FitsBeside(g_inUse.load(), bytes); });
}

void SetGraphicsMemoryReclaimer(void (*reclaim)()) { g_reclaim = reclaim; }

GraphicsCharge& GraphicsCharge::operator=(GraphicsCharge&& other) noexcept {
  if (this != &other) {
    Release();
    bytes_ = other.bytes_;
    other.bytes_ = 0;
  }
  return *this;
}

bool GraphicsCharge::Add(std::size_t bytes) {
  if (!OrAfterReclaiming([bytes] { return TryCharge(bytes); })) return false;
  bytes_ += bytes;
  return true;
}

void GraphicsCharge::AddOrThrow(std::size_t bytes) {
  if (!Add(bytes)) throw std::bad_alloc();
}

void GraphicsCharge::Release() {
  g_inUse -= bytes_;
  bytes_ = 0;
}

GraphicsBytes GraphicsBytes::Allocate(std::size_t count) {
  if (count == 0) count = 1;
  GraphicsBytes memory;
  if (!memory.charge_.Add(count)) return memory;
  memory.bytes_.reset(new (std::nothrow) unsigned char[count]);
  if (!memory.bytes_) memory.charge_.Release();
  return memory;
}

}  // namespace platform
