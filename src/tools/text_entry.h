// Text entry: the hidden box in which the person types over the picture, and the font,
// colour and background that typed text is drawn with. The font is always the one
// its description makes and the brush always the background colour's, so each pair
// changes only together.
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

  HWND box() const { return box_.m_hWnd; }
  HWND editWindow() const { return box_.EditWindow(); }
  // What was typed (empty when the box is hidden) and where it lies on the screen.
  std::u16string TypedText() const { return box_.GetText(); }
  RECT TypedTextRect() const { return box_.TextRect(); }

  // ---- the text settings ----
  // The description the font is made from; the font dialog edits it in place, and the
  // font follows only through RemakeFont.
  LOGFONTA& fontDescription() { return fontDescription_; }
  const LOGFONTA& fontDescription() const { return fontDescription_; }
  // Makes the font again from its description and gives it to the open box. False,
  // and no font until the next success (text is then drawn in the DC's own), when it
  // cannot be made.
  bool RemakeFont();
  HFONT font() const { return font_.get(); }
  COLORREF backgroundColor() const { return backgroundColor_; }
  // The background colour with a new solid brush of it.
  void SetBackgroundColor(COLORREF color);
  HBRUSH backgroundBrush() const { return backgroundBrush_.get(); }
  // The colour the key for stamping typed text is taken from: only the glyphs stay
  // when the background is transparent; otherwise the whole box does, because the
  // key is a colour the background can hardly be (its low nibbles only).
  COLORREF StampKey() const { return backgroundTransparent ? backgroundColor_ : backgroundColor_ & 0x0F0F0F; }

  COLORREF textColor = 0;
  // Typed text is stamped without its background.
  bool backgroundTransparent = false;

 private:
  CTextEditWnd box_;
  LOGFONTA fontDescription_{};
  platform::OwnedFont font_;
  COLORREF backgroundColor_ = 0xFFFFFF;
  platform::OwnedBrush backgroundBrush_;
};
