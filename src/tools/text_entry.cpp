#include "tools/text_entry.h"

#include <cstring>

#include "editor/image_edit_wnd.h"
#include "resources/localized_text.h"

namespace {

// Hidden until text is entered.
constexpr DWORD kBoxStyle = WS_CHILD | WS_THICKFRAME | kClassStyleBits;
constexpr UINT kBoxChildId = 1;

struct DefaultFont {
  BYTE charSet;
  const char* faceName;
};

DefaultFont DefaultFontFor(WORD language) {
  if (language == kLanguageKorean) return {129, "굴림체"};
  if (language == kLanguageChinese) return {134, "宋体"};
  return {0, "Arial"};
}

}  // namespace

TextEntry::TextEntry(WORD language) {
  if (HDC screen = ::GetDC(nullptr)) {
    fontDescription_.lfHeight = -MulDiv(9, GetDeviceCaps(screen, LOGPIXELSY), 72);
    ::ReleaseDC(nullptr, screen);
  }
  const DefaultFont font = DefaultFontFor(language);
  fontDescription_.lfWeight = FW_NORMAL;
  fontDescription_.lfCharSet = font.charSet;
  fontDescription_.lfOutPrecision = 3;
  fontDescription_.lfClipPrecision = 2;
  fontDescription_.lfQuality = 1;
  std::strncpy(fontDescription_.lfFaceName, font.faceName, LF_FACESIZE - 1);
  font_ = platform::OwnedFont(CreateFontIndirectA(&fontDescription_));
  SetBackgroundColor(backgroundColor_);
}

bool TextEntry::RemakeFont() {
  font_.reset();
  font_ = platform::OwnedFont(CreateFontIndirectA(&fontDescription_));
  if (!font_) return false;
  box_.ChangeFont(font_.get());
  return true;
}

void TextEntry::SetBackgroundColor(COLORREF color) {
  backgroundColor_ = color;
  backgroundBrush_.reset();
  backgroundBrush_ = platform::OwnedBrush(CreateSolidBrush(color));
}

void TextEntry::Create(CWnd* editor) {
  const RECT none{0, 0, 0, 0};
  box_.Create(nullptr, "Text Edit", kBoxStyle, none, editor, kBoxChildId);
}

void TextEntry::Open(const RECT& rect) {
  box_.Show(true);
  MoveWindow(box_.m_hWnd, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
  SendMessageA(box_.EditWindow(), WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), TRUE);
  SetFocus(box_.EditWindow());
}

void TextEntry::MoveTo(const RECT& rect) {
  MoveWindow(box_.m_hWnd, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
}

void TextEntry::Discard() {
  box_.Show(false);
  box_.ClearText();
}

void TextEntry::Release() {
  font_.reset();
  backgroundBrush_.reset();
}
