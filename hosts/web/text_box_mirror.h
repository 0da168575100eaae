// The text box the engine opens for typing over the picture, mirrored by the page.
//
// A browser types text best into its own text field: it shows an input method's
// composition where it is being composed, pastes, selects and moves the caret as the
// person expects. So while the engine's text box is open with the keyboard focus, the
// page shows a <textarea> exactly over the box's edit control, in the box's font, and
// what the person types there replaces the edit control's text; when the box closes,
// the engine stamps that text as if it had been typed into it. The box is found from
// the engine's focus rather than by asking the editor: it is the focused window whose
// grandparent is the editor window (the box's edit control), while it is shown.
#pragma once

#include <emscripten/val.h>

#include <string>

#include "platform/platform.h"

namespace web {

class TextBoxMirror {
 public:
  explicit TextBoxMirror(emscripten::val page) : page_(std::move(page)) {}

  // After each input the engine has handled: tells the page `textBoxChanged` when the
  // box opened, closed, moved or changed its font, with where it is and how its text
  // looks ({left, top, width, height, text, face, fontHeight, lineHeight, bold,
  // italic, underline, strikeOut, fontFiles}, in host-window pixels), or null once it
  // is closed. `fontFiles` are the engine's font files that draw the face and the
  // Hangul and Han characters it lacks ({path, bold, italic} each, the style the file
  // has itself), so that the page can type in the very glyphs the engine stamps.
  void Update(HWND editor);

  // Replaces the open box's text with what the person typed in the page (UTF-8, line
  // breaks as the page has them). False when no box is open.
  bool SetText(const std::string& text);

 private:
  struct Look {
    HWND edit = nullptr;
    RECT rect{};
    LOGFONTA font{};
    int lineHeight = 0;
    int fontHeight = 0;
    bool operator==(const Look& other) const;
  };
  static Look Find(HWND editor);
  emscripten::val Describe(const Look& look) const;

  emscripten::val page_;
  Look shown_;  // what the page shows; no edit window while it shows nothing
};

}  // namespace web
