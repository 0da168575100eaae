// Shared pieces of the engine tests: a fixture installing the recording host, and an
// editor window created inside a host window the way the control creates it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editor/image_edit_wnd.h"
#include "platform/platform.h"
#include "support/recording_host.h"

// Installs a recording host for the test's lifetime and restores the platform's
// process-wide settings afterwards.
class HostedTest : public ::testing::Test {
 protected:
  void TearDown() override {
    platform::SetUserDefaultLangID(0x0409);
    platform::SetModuleAvailable("MSIMG32.DLL", true);
  }
  InstalledRecordingHost host_;
};

// An editor whose window exists and has had its first sizing, as after the control
// has been activated.
struct LiveEditor {
  HWND hostWindow = nullptr;
  std::unique_ptr<CImageEditWnd> editor = std::make_unique<CImageEditWnd>();

  LiveEditor(int width, int height) {
    hostWindow = platform::CreateHostWindow(width, height);
    const RECT rect{0, 0, width, height};
    editor->CreateInParent(nullptr, "Image Edit", WS_CHILD | kClassStyleBits, rect, hostWindow, 1);
    editor->m_windowCreated = IsWindow(editor->m_hWnd) == TRUE;
    editor->ShowWindow(SW_SHOWNORMAL);
  }
  ~LiveEditor() {
    editor.reset();
    DestroyWindow(hostWindow);
  }
  CImageEditWnd* operator->() { return editor.get(); }
};

// A colour bitmap filled from a list of COLORREFs, row by row, top row first.
inline HBITMAP MakeBitmap(HDC compatible, int width, int height, const std::vector<COLORREF>& pixels) {
  HBITMAP bitmap = CreateCompatibleBitmap(compatible, width, height);
  HDC dc = CreateCompatibleDC(compatible);
  HGDIOBJ previous = SelectObject(dc, bitmap);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) SetPixel(dc, x, y, pixels[static_cast<size_t>(y * width + x)]);
  }
  SelectObject(dc, previous);
  DeleteDC(dc);
  return bitmap;
}

// Every pixel of a colour bitmap, row by row, top row first.
inline std::vector<COLORREF> BitmapColors(HBITMAP bitmap) {
  int width = 0, height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(bitmap, &width, &height);
  std::vector<COLORREF> colors;
  for (int i = 0; pixels != nullptr && i < width * height; ++i) {
    colors.push_back(RGB(pixels[i] >> 16 & 0xFF, pixels[i] >> 8 & 0xFF, pixels[i] & 0xFF));
  }
  return colors;
}

// Every pixel of the bitmap selected into a DC.
inline std::vector<COLORREF> SurfaceColors(HDC dc, int width, int height) {
  std::vector<COLORREF> colors;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) colors.push_back(GetPixel(dc, x, y));
  }
  return colors;
}
