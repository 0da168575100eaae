// One control in a host window, called by name as a scripting host calls it; every
// call is followed by the paint a message loop would run.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "platform/platform.h"

class HostedControl {
 public:
  HostedControl(int width, int height) {
    window_ = platform::CreateHostWindow(width, height);
    control_ = std::make_unique<CImageEditCtrl>();
    if (!window_ || !control_->CreateControl(window_, width, height)) {
      std::fprintf(stderr, "bench: cannot create the control\n");
      std::exit(1);
    }
  }
  ~HostedControl() {
    control_->DestroyWindow();
    control_.reset();
    DestroyWindow(window_);
  }
  HostedControl(const HostedControl&) = delete;
  HostedControl& operator=(const HostedControl&) = delete;

  HWND host() const { return window_; }
  HWND editor() const { return GetDlgItem(control_->m_hWnd, kEditorWindowId); }

  void Call(const char* method, std::vector<Variant> args) {
    const InvokeResult result = Invoke(*control_, method, args);
    if (FAILED(result.hr)) {
      std::fprintf(stderr, "bench: %s: %s\n", method, result.error.c_str());
      std::exit(1);
    }
    platform::FlushPaint(window_);
  }
  void Call(const char* method) { Call(method, std::vector<Variant>{}); }
  void Call(const char* method, int value) { Call(method, {Variant::Int(value)}); }
  void Call(const char* method, const std::string& text) { Call(method, {Variant::String(text)}); }
  void Drag(int x0, int y0, int x1, int y1) {
    platform::MouseInput(window_, WM_LBUTTONDOWN, x0, y0);
    platform::MouseInput(window_, WM_MOUSEMOVE, x1, y1);
    platform::MouseInput(window_, WM_LBUTTONUP, x1, y1);
    platform::FlushPaint(window_);
  }
  void Type(const std::string& ascii) {
    for (char c : ascii) platform::CharInput(window_, static_cast<unsigned char>(c));
    platform::FlushPaint(window_);
  }
  void Scroll(UINT code) {
    SendMessageA(editor(), WM_VSCROLL, code, 0);
    platform::FlushPaint(window_);
  }

 private:
  HWND window_ = nullptr;
  std::unique_ptr<CImageEditCtrl> control_;
};
