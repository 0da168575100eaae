// Shared pieces of the engine tests: a fixture installing the recording host, and an
// editor window created inside a host window the way the control creates it, which
// tests bring into a state the way a host does: pictures through SetImage, mouse
// input through the platform, and the interface operations.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editor/image_edit_wnd.h"
#include "imageio/bmp_builder.h"
#include "platform/platform.h"
#include "support/bitmap_colors.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

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

// A call on an editor with its source text, for tables of calls whose failures must
// say which call it was.
struct EditorCall {
  const char* what;
  std::function<void(CImageEditWnd&)> run;
};
#define EDITOR_CALL(expr) (EditorCall{#expr, [](CImageEditWnd& e) { e.expr; }})

// A 24-bit bitmap file of the given COLORREFs, top row first.
inline std::vector<std::uint8_t> BitmapFile(int width, int height, const std::vector<COLORREF>& colors) {
  return imageio_test::BuildTrueColourBmp(width, height, [&](int x, int y) {
    const COLORREF c = colors[static_cast<std::size_t>(y * width + x)];
    return static_cast<std::uint32_t>(GetRValue(c) << 16 | GetGValue(c) << 8 | GetBValue(c));
  });
}

// An editor whose window exists and has had its first sizing, as after the control
// has been activated.
struct LiveEditor {
  HWND hostWindow = nullptr;
  std::unique_ptr<CImageEditWnd> editor = std::make_unique<CImageEditWnd>();
  TempFiles files{"live_editor_"};

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

  // Loads a picture of those colours (top row first) as a host does, from a bitmap
  // file; it is shown at 100 %, centred in the window.
  void Show(int width, int height, const std::vector<COLORREF>& colors) {
    editor->SetImage(files.Write("picture.bmp", BitmapFile(width, height, colors)).c_str());
  }
  void Show(int width, int height, COLORREF color) {
    Show(width, height, std::vector<COLORREF>(static_cast<std::size_t>(width * height), color));
  }

  // Mouse input at a window point, as the platform delivers it.
  void Mouse(UINT message, int x, int y) { platform::MouseInput(hostWindow, message, x, y); }
  void Drag(int x0, int y0, int x1, int y1) {
    Mouse(WM_LBUTTONDOWN, x0, y0);
    Mouse(WM_MOUSEMOVE, x1, y1);
    Mouse(WM_LBUTTONUP, x1, y1);
  }
  void Click(int x, int y) { Drag(x, y, x, y); }

  // What the window shows at a window point, composed now (no scrolling).
  COLORREF Shown(int x, int y) {
    editor->ComposeView();
    return GetPixel(editor->m_surfaces.composition.dc(), x, y);
  }
};

// A picture in an editor window, for tests that must hold for each way a picture can
// lie in the surfaces: filling them, centred in larger ones, or scaled down.
struct PictureLayout {
  const char* what;
  int width, height, clientWidth, clientHeight;
  int imageWidth;  // SetImageWidth's argument; 0 leaves it at 100 %
};

// The pixels of a rectangle of the bitmap selected into a DC, top row first.
inline std::vector<COLORREF> SurfaceColors(HDC dc, const RECT& r) {
  std::vector<COLORREF> colors;
  for (int y = r.top; y < r.bottom; ++y) {
    for (int x = r.left; x < r.right; ++x) colors.push_back(GetPixel(dc, x, y));
  }
  return colors;
}
inline std::vector<COLORREF> SurfaceColors(HDC dc, int width, int height) {
  return SurfaceColors(dc, RECT{0, 0, width, height});
}
// The image rectangle of the image surface: the picture as the last rebuild left it.
inline std::vector<COLORREF> ImageRectColors(CImageEditWnd& editor) {
  return SurfaceColors(editor.m_surfaces.imageSurface.dc(), editor.m_view.imageRect());
}
