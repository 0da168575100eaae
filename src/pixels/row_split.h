// Runs a row-wise pass over a rectangle's rows on two threads, each taking one half.
// Rows are independent in every pass that uses it, so the result is the same bytes as
// one thread would give; small rectangles, and builds without threads (WebAssembly
// without its thread support), stay on the calling thread.
#pragma once

#include "pixels/pixel_rect.h"

// Calls rows(first, end) for buffer rows of the rectangle (counted from its first
// row), covering every row exactly once.
void SplitRows(const PixelRect& rect, const std::function<void(int first, int end)>& rows);
