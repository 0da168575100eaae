// Text entry as the editor runs it: the text settings hosts change, and closing the
// box, which stamps what was typed into the drawing layer.
#include <cstring>
#include <optional>
#include <span>

#include "editor/image_edit_wnd.h"
#include "editor/render_text_block.h"
#include "tools/color_dialog.h"
#include "tools/color_string.h"
#include "tools/font_string.h"

namespace {

// The colour dialog's custom colours for text backgrounds: one table for every
// SetTextBackgroundColor of the process, apart from SetColor's.
std::span<COLORREF, 16> TextBackgroundCustomColors() {
  static COLORREF table[16] = {};
  return table;
}

// The screen's vertical resolution through the editor window's DC; none when the DC
// cannot be had.
std::optional<int> PixelsPerInch(HWND window) {
  HDC dc = ::GetDC(window);
  if (!dc) return std::nullopt;
  const int pixels = GetDeviceCaps(dc, LOGPIXELSY);
  ::ReleaseDC(window, dc);
  return pixels;
}

// Typed text in the code page of the keyboard it was typed on, which is what the
// text font's character set expects; other keyboards use the platform's own.
std::string TextInKeyboardCodePage(const std::u16string& typed) {
  UINT codePage = GetACP();
  switch (LOWORD(GetKeyboardLayout(0))) {
    case 1042:
      codePage = 949;
      break;
    case 1028:
      codePage = 950;
      break;
    case 1041:
      codePage = 932;
      break;
    case 2052:
      codePage = 936;
      break;
  }
  const int size = WideCharToMultiByte(codePage, 0, typed.c_str(), -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return std::string();
  std::string text(static_cast<std::size_t>(size), '\0');
  if (WideCharToMultiByte(codePage, 0, typed.c_str(), -1, text.data(), size, nullptr, nullptr) != size) {
    return std::string();
  }
  text.pop_back();  // the terminator
  return text;
}

}  // namespace

std::string CImageEditWnd::SetTextFont(LPCSTR lpszFont) {
  LOGFONTA& font = m_textEntry.fontDescription();
  int points = 0;
  if (lpszFont != nullptr && *lpszFont != '\0' && lstrcmpiA(lpszFont, "DIALOG") != 0) {
    const FontString read = ReadFontString(lpszFont);
    if (const auto perInch = PixelsPerInch(m_hWnd)) {
      font.lfHeight = -MulDiv(read.points, *perInch, 72);
      points = read.points;
    }
    font.lfWeight = read.bold ? FW_BOLD : FW_NORMAL;
    font.lfItalic = read.italic ? 1 : 0;
    font.lfUnderline = read.underline ? 1 : 0;
    font.lfStrikeOut = read.strikeOut ? 1 : 0;
    // The selectors are the primary language ids of Korean and Chinese, so a string
    // without one gets its user's character set.
    font.lfCharSet = CharSetForSelector(read.charSetSelector.value_or(m_messages.language));
    font.lfOutPrecision = 3;
    font.lfClipPrecision = 2;
    font.lfQuality = 1;
    font.lfPitchAndFamily = 0;
    std::memset(font.lfFaceName, 0, sizeof font.lfFaceName);
    std::memcpy(font.lfFaceName, read.face.data(), read.face.size());
    m_textEntry.textColor = read.color;
  } else {
    CHOOSEFONTA dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = m_hWnd;
    dialog.lpLogFont = &font;
    dialog.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_EFFECTS;
    dialog.rgbColors = m_textEntry.textColor;
    if (!ChooseFontA(&dialog)) return std::string();
    m_textEntry.textColor = dialog.rgbColors;
    if (const auto perInch = PixelsPerInch(m_hWnd)) points = -MulDiv(font.lfHeight, 72, *perInch);
  }
  if (!m_textEntry.RemakeFont()) return std::string();
  return FormatFontString(font, points, m_textEntry.textColor);
}

std::string CImageEditWnd::SetTextBackgroundColor(LPCSTR lpszColor) {
  std::string result;
  COLORREF color = m_textEntry.backgroundColor();
  const bool given = lpszColor != nullptr && *lpszColor != '\0';
  if (given && lstrcmpiA(lpszColor, "TRANSPARENT") == 0) {
    m_textEntry.backgroundTransparent = true;
    m_objects.storedTransparency = 100;
  } else if (given && lstrcmpiA(lpszColor, "DIALOG") != 0) {
    color = ReadColorString(lpszColor);
    m_textEntry.backgroundTransparent = false;
  } else {
    const std::optional<COLORREF> chosen = ChooseColorFrom(m_hWnd, color, TextBackgroundCustomColors());
    if (!chosen) return std::string();
    color = *chosen;
    m_textEntry.backgroundTransparent = false;
    result = ColorString(color);
  }
  m_textEntry.SetBackgroundColor(color);
  return result;
}

void CImageEditWnd::CloseTextEntry() {
  if (!m_textEntry.IsShown() || !m_surfaces.drawingLayer.dc()) return;
  CommitText(m_surfaces.drawingLayer.dc());
  m_textEntry.Discard();
}

void CImageEditWnd::CommitText(HDC drawingLayer) {
  if (!drawingLayer) return;
  const std::u16string typed = m_textEntry.TypedText();
  if (typed.empty()) return;
  const std::string text = TextInKeyboardCodePage(typed);
  if (text.empty()) return;

  const RECT screen = m_textEntry.TypedTextRect();
  const TextBlockLimits limits{m_view.displayedWidth(), m_messages.language};
  platform::OwnedBitmap block(RenderTextBlock(
      drawingLayer, nullptr, text.c_str(), m_textEntry.font(), m_textEntry.textColor,
      m_textEntry.backgroundBrush(), 0, 0, screen.right - screen.left, screen.bottom - screen.top, limits));
  if (block) {
    POINT at{screen.left, screen.top};
    ::ScreenToClient(m_hWnd, &at);
    at = m_view.ToSurface(at);
    TransparentBlit(drawingLayer, block.get(), at.x, at.y, screen.right - screen.left,
                    screen.bottom - screen.top, m_textEntry.StampKey());
  }
  RedrawWindow();
}
