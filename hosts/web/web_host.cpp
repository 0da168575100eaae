#include "web_host.h"

#include <emscripten/val.h>

#include <algorithm>

namespace web {

using emscripten::val;

void WebHost::PresentPendingFrame() {
  HWND hostWindow = pendingFrame_;
  pendingFrame_ = nullptr;
  int width = 0;
  int height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(platform::HostFrame(hostWindow), &width, &height);
  if (pixels == nullptr) return;
  // 0x00RRGGBB words become the canvas's R, G, B, A bytes (an opaque pixel, read as a
  // little-endian word, is 0xFFBBGGRR).
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  rgba_.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t p = pixels[i];
    rgba_[i] = 0xFF000000u | ((p & 0xFFu) << 16) | (p & 0xFF00u) | ((p >> 16) & 0xFFu);
  }
  page_.call<void>("presentFrame", reinterpret_cast<std::uintptr_t>(rgba_.data()), width, height);
}

void WebHost::ShowCursor(int resourceId) { page_.call<void>("showCursor", resourceId); }

int WebHost::ShowMessageBox(const std::string& text, const std::string& caption, UINT type) {
  page_.call<void>("showMessageBox", text, caption, type);
  return IDOK;
}

bool WebHost::ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) {
  if (colorAnswers_.empty()) return false;
  const ColorAnswer answer = colorAnswers_.front();
  colorAnswers_.pop_front();
  // Custom colours a person added stay added, even when the dialog is cancelled.
  std::copy(answer.customColors.begin(), answer.customColors.end(), customColors.begin());
  if (!answer.color) return false;
  color = *answer.color;
  return true;
}

void WebHost::ShowDialog(int dialogId, const std::string& title) {
  page_.call<void>("showDialog", dialogId, title);
}

}  // namespace web
