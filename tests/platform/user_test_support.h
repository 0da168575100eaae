// Shared pieces of the window-layer tests: a window that logs its messages, and a
// fixture owning one host window and a recording host.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/recording_host.h"

namespace user_test {

using Log = std::vector<std::string>;

// Host frame colours, 0x00RRGGBB.
inline constexpr std::uint32_t kWhite = 0xFFFFFF, kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF;

inline std::string Text(const RECT& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom);
}

inline RECT ClientRectOf(HWND window) {
  RECT client{};
  EXPECT_TRUE(GetClientRect(window, &client));
  return client;
}

// Records each message it receives as "name" or "name:args".
class LoggingWnd : public CWnd {
 public:
  explicit LoggingWnd(std::string name, Log* log) : name_(std::move(name)), log_(log) {}
  ~LoggingWnd() override {
    if (m_hWnd != nullptr) DestroyWindow();
  }

  int OnCreate(LPCREATESTRUCTA cs) override {
    Record("create");
    return failCreate ? -1 : CWnd::OnCreate(cs);
  }
  void OnDestroy() override { Record("destroy"); }
  void OnSize(UINT, int cx, int cy) override {
    Record("size:" + std::to_string(cx) + "," + std::to_string(cy));
  }
  void OnSetFocus(HWND) override { Record("setfocus"); }
  void OnKillFocus(HWND) override { Record("killfocus"); }

  void Record(const std::string& entry) { log_->push_back(name_ + " " + entry); }

  bool failCreate = false;

 private:
  std::string name_;
  Log* log_;
};

// Paints its whole client area (and far beyond) in one colour, as a careless painter
// would; the window DC must keep the paint inside.
class SolidWnd : public CWnd {
 public:
  void OnPaint() override {
    ++paints;
    PAINTSTRUCT ps{};
    HDC dc = BeginPaint(m_hWnd, &ps);
    HBRUSH brush = CreateSolidBrush(color);
    RECT everything{-500, -500, 500, 500};
    FillRect(dc, &everything, brush);
    DeleteObject(brush);
    EndPaint(m_hWnd, &ps);
  }
  COLORREF color = RGB(0, 0, 255);
  int paints = 0;
};

class HostFixture : public ::testing::Test {
 protected:
  static constexpr int kWidth = 100;
  static constexpr int kHeight = 80;

  void SetUp() override {
    hostWindow_ = platform::CreateHostWindow(kWidth, kHeight);
    ASSERT_NE(hostWindow_, nullptr);
  }
  // Destroying the host takes every window in it: fixtures need not destroy theirs.
  void TearDown() override {
    DestroyWindow(hostWindow_);
    ReleaseCapture();
    ClipCursor(nullptr);
    for (int key : {VK_LBUTTON, VK_RBUTTON, VK_SHIFT, VK_CONTROL}) platform::SetKeyDown(key, false);
  }

  // The host frame's pixel at (x, y), 0x00RRGGBB.
  std::uint32_t FramePixel(int x, int y) {
    int width = 0;
    int height = 0;
    const std::uint32_t* pixels = platform::BitmapPixels(platform::HostFrame(hostWindow_), &width, &height);
    EXPECT_NE(pixels, nullptr);
    if (pixels == nullptr || x < 0 || y < 0 || x >= width || y >= height) return 0xDEADBEEF;
    return pixels[y * width + x];
  }
  // Each of `points` {x, y, colour} must show its colour in the host frame.
  void ExpectFramePixels(std::initializer_list<std::array<std::uint32_t, 3>> points) {
    for (const auto& [x, y, color] : points) {
      EXPECT_EQ(FramePixel(static_cast<int>(x), static_cast<int>(y)), color) << "at " << x << "," << y;
    }
  }

  InstalledRecordingHost host_;
  HWND hostWindow_ = nullptr;
};

}  // namespace user_test
