// The page's side of everything that needs a person. The page (the custom element)
// is handed over as a JavaScript object whose methods show what the engine asks for:
// frames, cursors, message boxes, dialogs and the shortcut menu as page elements.
//
// Nothing here may wait for a person, since a page cannot block while the engine
// waits: a message box is shown and answered OK at once. A colour or font dialog
// opened with no answer queued tells the page what it starts from and is answered
// Cancel, which changes nothing; the page then shows its own dialog and, once the
// person has answered, makes the same call again with the answer queued here (as the
// script host queues `answer color` and `answer font`). A popup menu is shown and
// answered "dismissed" at once; the item the person picks later reaches the menu's
// owner through TakeMenuChoice as the command the menu would have sent.
#pragma once

#include <emscripten/val.h>

#include <array>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace web {

// A picture of the module's (a cursor's or an icon's) as the page takes it: {width,
// height, hotX, hotY, rgba}.
emscripten::val ArtworkToScript(const platform::CursorArtwork& artwork);

class WebHost : public platform::Host {
 public:
  explicit WebHost(emscripten::val page) : page_(std::move(page)) {}

  struct ColorAnswer {
    std::optional<COLORREF> color;  // none: cancelled
    std::array<COLORREF, 16> customColors{};
  };
  // A font the person chose: what the page's dialog offers.
  struct FontAnswer {
    std::string face;  // UTF-8, at most LF_FACESIZE - 1 bytes are kept
    int points = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    COLORREF color = 0;
  };
  void QueueColorAnswer(const ColorAnswer& answer) { colorAnswers_.push_back(answer); }
  void QueueFontAnswer(const FontAnswer& answer) { fontAnswers_.push_back(answer); }
  // Answers left over by a call whose dialog did not open are not kept for a later one.
  void ForgetAnswers();

  // The command of the item the person picked (0: the menu was dismissed) if the menu
  // shown last offered it enabled, else 0. Either way that menu is closed.
  UINT TakeMenuChoice(UINT id);

  // Copies the host window's frame, if it changed since the last time, for the page to
  // draw: RGBA bytes, top-down rows of the frame's width, with the rectangle
  // [left, right) x [top, bottom) holding all that differs from the frame presented
  // before (the whole frame after a change of size); a frame the same as that one is
  // not presented.
  void PresentPendingFrame();

  void PresentFrame(HWND hostWindow) override { pendingFrame_ = hostWindow; }
  void ShowCursor(int resourceId) override;
  UINT ShowPopupMenu(HMENU menu, int x, int y) override;
  int ShowMessageBox(const std::string& text, const std::string& caption, UINT type) override;
  bool ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) override;
  bool ChooseFont(LOGFONTA& font, COLORREF& color) override;
  int ShowDialog(const platform::DialogLayout& dialog) override;
  void PictureRead(const std::string& source, DWORD error, const std::string& message) override;

 private:
  emscripten::val page_;
  HWND pendingFrame_ = nullptr;
  std::vector<std::uint32_t> rgba_;  // the frame presented last
  int rgbaWidth_ = 0;
  std::deque<ColorAnswer> colorAnswers_;
  std::deque<FontAnswer> fontAnswers_;
  std::vector<UINT> menuChoices_;  // the enabled commands of the menu on the page
};

}  // namespace web
