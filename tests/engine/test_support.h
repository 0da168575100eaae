// Shared pieces of the engine tests: a fixture installing the recording host, and an
// editor window created inside a host window the way the control creates it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editor/image_edit_wnd.h"
#include "platform/platform.h"
#include "support/bitmap_colors.h"
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

// Every pixel of the bitmap selected into a DC.
inline std::vector<COLORREF> SurfaceColors(HDC dc, int width, int height) {
  std::vector<COLORREF> colors;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) colors.push_back(GetPixel(dc, x, y));
  }
  return colors;
}
