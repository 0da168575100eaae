// Text entry: the hidden box in which the person types over the picture, and the font
// and background that typed text is drawn with. The font is always the one its
// description makes, so both change only together.
#pragma once

#include "platform/gdi_handles.h"
#include "platform/platform.h"
#include "tools/text_edit_wnd.h"

class TextEntry {
 public:
  // The default font of the user's language, 9 points high; a white background.
  explicit TextEntry(WORD language);

  // Makes the box, hidden, as a child of the editor window.
  void Create(CWnd* editor);
  bool IsShown() const { return box_.IsShown(); }
  // Opens the box at `rect` (editor window coordinates) for typing in the text font,
  // with the keyboard focus.
  void Open(const RECT& rect);
  // Hides the box and empties it: what was typed is gone.
  void Discard();
  // The font, then the background brush.
  void Release();

  // What was typed into the open box (UTF-16); empty when it is closed.
  std::u16string Text() const { return box_.GetText(); }
  // Where the box's edit control is, in screen coordinates; empty without one.
  RECT EditScreenRect() const;

  HWND box() const { return box_.m_hWnd; }
  HWND editWindow() const { return box_.EditWindow(); }
  const LOGFONTA& fontDescription() const { return fontDescription_; }
  HFONT font() const { return font_.get(); }
  HBRUSH backgroundBrush() const { return backgroundBrush_.get(); }

 private:
  CTextEditWnd box_;
  LOGFONTA fontDescription_{};
  platform::OwnedFont font_;
  COLORREF backgroundColor_ = 0xFFFFFF;
  platform::OwnedBrush backgroundBrush_;
};
