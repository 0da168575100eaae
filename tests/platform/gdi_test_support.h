// Small helpers for the GDI tests: a memory DC with its own bitmap, and row access.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "platform/gdi.h"

namespace gdi_test {

// A memory DC holding a fresh bitmap (32-bit colour or 1-bit monochrome); restores and
// deletes everything on destruction.
class MemSurface {
 public:
  MemSurface(int width, int height, bool mono = false)
      : width_(width),
        height_(height),
        dc_(CreateCompatibleDC(nullptr)),
        bitmap_(CreateBitmap(width, height, 1, mono ? 1 : 32, nullptr)),
        old_(SelectObject(dc_, bitmap_)) {}
  ~MemSurface() {
    SelectObject(dc_, old_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  MemSurface(const MemSurface&) = delete;
  MemSurface& operator=(const MemSurface&) = delete;

  HDC dc() const { return dc_; }
  HBITMAP bitmap() const { return bitmap_; }

  void SetRow(int y, const std::vector<COLORREF>& colors) const {
    for (int x = 0; x < static_cast<int>(colors.size()); ++x) SetPixel(dc_, x, y, colors[x]);
  }
  std::vector<COLORREF> Row(int y, int width) const {
    std::vector<COLORREF> row;
    for (int x = 0; x < width; ++x) row.push_back(GetPixel(dc_, x, y));
    return row;
  }
  // Every pixel, top row first.
  std::vector<COLORREF> Pixels() const {
    std::vector<COLORREF> pixels;
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) pixels.push_back(GetPixel(dc_, x, y));
    }
    return pixels;
  }
  void Fill(COLORREF color) const {
    HBRUSH brush = CreateSolidBrush(color);
    const RECT all{0, 0, width_, height_};
    FillRect(dc_, &all, brush);
    DeleteObject(brush);
  }

 private:
  int width_;
  int height_;
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ old_;
};

inline constexpr COLORREF kWhite = RGB(255, 255, 255);
inline constexpr COLORREF kBlack = RGB(0, 0, 0);

}  // namespace gdi_test
