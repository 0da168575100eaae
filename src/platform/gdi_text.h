// Fonts and text on the software raster. A font is found by its face name (through
// the system's font catalogue, with the aliases the project keeps) and drawn without
// smoothing: every glyph pixel is either the text colour or untouched, so a picture
// keyed on its background colour keeps no fringe.
//
// Multibyte text (the A calls) is decoded by the character set of the DC's font:
// 129 as code page 949, 134 as 936, 136 as 950, 128 as 932, anything else as UTF-8,
// the platform's ANSI code page.
#pragma once

#include "platform/kernel.h"
#include "platform/types.h"

// DrawText formats.
inline constexpr UINT DT_TOP = 0x0000;
inline constexpr UINT DT_LEFT = 0x0000;
inline constexpr UINT DT_CENTER = 0x0001;
inline constexpr UINT DT_RIGHT = 0x0002;
inline constexpr UINT DT_VCENTER = 0x0004;
inline constexpr UINT DT_BOTTOM = 0x0008;
inline constexpr UINT DT_WORDBREAK = 0x0010;
inline constexpr UINT DT_SINGLELINE = 0x0020;
inline constexpr UINT DT_EXPANDTABS = 0x0040;
inline constexpr UINT DT_NOCLIP = 0x0100;
inline constexpr UINT DT_CALCRECT = 0x0400;
inline constexpr UINT DT_NOPREFIX = 0x0800;
inline constexpr UINT DT_EDITCONTROL = 0x2000;

// Character sets of LOGFONTA::lfCharSet.
inline constexpr BYTE ANSI_CHARSET = 0;
inline constexpr BYTE DEFAULT_CHARSET = 1;
inline constexpr BYTE SHIFTJIS_CHARSET = 128;
inline constexpr BYTE HANGEUL_CHARSET = 129;
inline constexpr BYTE GB2312_CHARSET = 134;
inline constexpr BYTE CHINESEBIG5_CHARSET = 136;

inline constexpr LONG FW_NORMAL = 400;
inline constexpr LONG FW_BOLD = 700;

struct TEXTMETRICA {
  LONG tmHeight;
  LONG tmAscent;
  LONG tmDescent;
  LONG tmInternalLeading;
  LONG tmExternalLeading;
  LONG tmAveCharWidth;
  LONG tmMaxCharWidth;
  LONG tmWeight;
  LONG tmOverhang;
  LONG tmDigitizedAspectX;
  LONG tmDigitizedAspectY;
  BYTE tmFirstChar;
  BYTE tmLastChar;
  BYTE tmDefaultChar;
  BYTE tmBreakChar;
  BYTE tmItalic;
  BYTE tmUnderlined;
  BYTE tmStruckOut;
  BYTE tmPitchAndFamily;
  BYTE tmCharSet;
};

BOOL GetTextMetricsA(HDC hdc, TEXTMETRICA* metrics);
BOOL GetTextExtentPoint32A(HDC hdc, LPCSTR text, int length, SIZE* size);
BOOL GetTextExtentPoint32W(HDC hdc, const WCHAR* text, int length, SIZE* size);
// One line from (x, y), the top of its cell; OPAQUE background mode fills the cell
// with the background colour first.
BOOL TextOutA(HDC hdc, int x, int y, LPCSTR text, int length);
BOOL TextOutW(HDC hdc, int x, int y, const WCHAR* text, int length);
// A length of -1 means up to the terminating zero. Returns the height of the text
// drawn (or measured, with DT_CALCRECT, which then only sets the rectangle), 0 on
// failure.
int DrawTextA(HDC hdc, LPCSTR text, int length, RECT* rect, UINT format);
int DrawTextW(HDC hdc, const WCHAR* text, int length, RECT* rect, UINT format);
