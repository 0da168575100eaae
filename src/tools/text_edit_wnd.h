// The box in which the person types text over the picture: a framed child of the
// editor holding a multi-line edit control that fills it. Hidden and empty until the
// text tool opens it.
#pragma once

#include <string>

#include "platform/platform.h"

class CTextEditWnd : public CWnd {
 public:
  ~CTextEditWnd() override;

  BOOL PreCreateWindow(CREATESTRUCTA& cs) override;
  int OnCreate(LPCREATESTRUCTA cs) override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnPaint() override;
  void OnNcPaint() override;

  // What was typed, while the box is shown; empty when it is not or nothing was.
  std::u16string GetText() const;
  // Shows or hides the box; it counts as shown only when showing was asked and its
  // edit control exists.
  void Show(bool show);
  // Empties the edit control.
  void ClearText();
  // An open box shows its text in `font` at once; a hidden one gets the font when it
  // opens.
  void ChangeFont(HFONT font);
  // Where the typed text lies: the edit control, in screen coordinates.
  RECT TextRect() const;

  bool IsShown() const { return m_shown; }
  HWND EditWindow() const { return m_edit.m_hWnd; }

 private:
  bool m_shown = false;
  CEdit m_edit;
};
