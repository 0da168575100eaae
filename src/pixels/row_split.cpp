#include "pixels/row_split.h"

#if !defined(__EMSCRIPTEN__) || defined(__EMSCRIPTEN_PTHREADS__)
#include <thread>
#define IE_PIXELS_THREADS 1

namespace {

// Below this many pixels starting a thread costs more than it saves.
constexpr long kThreadedPixels = 1L << 18;

}  // namespace
#endif

void SplitRows(const PixelRect& rect, const std::function<void(int first, int end)>& rows) {
  const int height = rect.height();
  if (rect.empty()) return;
#ifdef IE_PIXELS_THREADS
  if (static_cast<long>(rect.width()) * height >= kThreadedPixels && height >= 2) {
    const int middle = height / 2;
    std::thread lower([&] { rows(0, middle); });
    rows(middle, height);
    lower.join();
    return;
  }
#endif
  rows(0, height);
}
