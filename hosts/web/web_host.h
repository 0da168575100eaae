// The page's side of everything that needs a person. The page (the custom element)
// is handed over as a JavaScript object whose methods show what the engine asks for:
// frames, cursors, message boxes and dialogs as page elements. Nothing here may wait
// for a person: a message box is shown and answered OK at once, and the answer of a
// colour dialog (with the custom colours as the person left them in the page's
// dialog) is asked for by the page before the call that opens it and queued here, as
// the script host queues `answer color`.
#pragma once

#include <emscripten/val.h>

#include <array>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "platform/platform.h"

namespace web {

class WebHost : public platform::Host {
 public:
  explicit WebHost(emscripten::val page) : page_(std::move(page)) {}

  struct ColorAnswer {
    std::optional<COLORREF> color;  // none: cancelled
    std::array<COLORREF, 16> customColors{};
  };
  void QueueColorAnswer(const ColorAnswer& answer) { colorAnswers_.push_back(answer); }
  // Answers left over by a call whose dialog did not open are not kept for a later one.
  void ForgetAnswers() { colorAnswers_.clear(); }

  // Copies the host window's frame, if it changed since the last time, for the page to
  // draw: RGBA bytes, top-down rows of the frame's width.
  void PresentPendingFrame();

  void PresentFrame(HWND hostWindow) override { pendingFrame_ = hostWindow; }
  void ShowCursor(int resourceId) override;
  int ShowMessageBox(const std::string& text, const std::string& caption, UINT type) override;
  bool ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) override;
  void ShowDialog(int dialogId, const std::string& title) override;

 private:
  emscripten::val page_;
  HWND pendingFrame_ = nullptr;
  std::vector<std::uint32_t> rgba_;
  std::deque<ColorAnswer> colorAnswers_;
};

}  // namespace web
