#include "pixels/row_split.h"

#if !defined(__EMSCRIPTEN__) || defined(__EMSCRIPTEN_PTHREADS__)
#include <thread>
#define IE_PIXELS_THREADS 1

namespace {

// Below this many pixels starting a thread costs more than it saves.
constexpr long kThreadedPixels = 1L << 18;

}  // namespace
#endif

std::vector<RowPart> RowParts(int height, int width) {
  if (height <= 0 || width <= 0) return {};
#ifdef IE_PIXELS_THREADS
  if (static_cast<long>(width) * height >= kThreadedPixels && height >= 2) {
    return {{0, height / 2}, {height / 2, height}};
  }
#endif
  return {{0, height}};
}

void RunParts(const std::vector<RowPart>& parts, const std::function<void(std::size_t part)>& work) {
  if (parts.empty()) return;
#ifdef IE_PIXELS_THREADS
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) threads.emplace_back([&work, i] { work(i); });
  work(parts.size() - 1);
  for (std::thread& thread : threads) thread.join();
#else
  for (std::size_t i = 0; i < parts.size(); ++i) work(i);
#endif
}

void SplitRows(int height, int width, const std::function<void(int first, int end)>& rows) {
  const std::vector<RowPart> parts = RowParts(height, width);
  RunParts(parts, [&](std::size_t i) { rows(parts[i].first, parts[i].end); });
}
