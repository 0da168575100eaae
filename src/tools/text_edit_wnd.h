// The hidden child window in which the user types text over the picture.
#pragma once

#include <string>

#include "platform/platform.h"

class CTextEditWnd : public CWnd {
 public:
  BOOL PreCreateWindow(CREATESTRUCTA& cs) override;

  bool IsShown() const { return m_hWnd != nullptr && IsWindowVisible(); }
  // Opens the box at `rect` (editor window coordinates) for typing in `font`, with
  // the keyboard focus.
  void Open(const RECT& rect, HFONT font);
  // Hides the box and empties it.
  void HideAndClear();
  // An open box shows its text in `font` at once; a hidden one gets the font when it
  // opens.
  void ChangeFont(HFONT font);
  // What was typed, when the box is shown; empty otherwise.
  std::u16string GetText() const;
  // Where the typed text lies, in screen coordinates.
  RECT TextRect() const;

 private:
  // The window that takes the typed text. The inner edit control arrives with text
  // entry; until then the box itself stands in for it.
  HWND EditWindow() const { return m_hWnd; }
};
