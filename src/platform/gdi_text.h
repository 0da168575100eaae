// Fonts and text on the software raster. A font is found by its face name (through
// the system's font catalogue, with the aliases the project keeps) and drawn without
// smoothing: every glyph pixel is either the text colour or untouched, so a picture
// keyed on its background colour keeps no fringe.
//
// Multibyte text (the A calls) is decoded by the character set of the DC's font:
// 129 as code page 949, 134 as 936, 136 as 950, 128 as 932, anything else as UTF-8,
// the platform's ANSI code page; a malformed sequence shows as U+FFFD. A character the
// font's face lacks is drawn from a face that has it, the text's language's first.
//
// A text given with a length ends at that length or at its first zero, whichever
// comes first: a length past the end of a string reads nothing beyond it. Lengths
// below 0 fail (DrawText takes -1 for a zero-terminated text).
//
// Fonts are realised on first use: the face through the system's font catalogue (see
// src/platform/fonts/font_aliases.txt), the em from lfHeight (negative: the em;
// positive: the cell; 0: a 16-pixel cell), at most 1024 pixels; weight >= 600 is bold.
// lfWidth, lfEscapement and lfOrientation are ignored. The stock SYSTEM_FONT (a
// memory DC's first font) is a bold 16-pixel cell and DEFAULT_GUI_FONT an 11-pixel
// em, both of Liberation Sans. Text ignores the ROP2; SetTextAlign is not supported
// (text is placed by the top-left corner of its cell).
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

// TEXTMETRICA::tmPitchAndFamily bits (TMPF_FIXED_PITCH set means a variable pitch).
inline constexpr BYTE TMPF_FIXED_PITCH = 0x01;
inline constexpr BYTE TMPF_VECTOR = 0x02;
inline constexpr BYTE TMPF_TRUETYPE = 0x04;

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
// One line from (x, y), the top-left corner of its cell; OPAQUE background mode fills
// the cell with the background colour first. Line breaks are characters here.
BOOL TextOutA(HDC hdc, int x, int y, LPCSTR text, int length);
BOOL TextOutW(HDC hdc, int x, int y, const WCHAR* text, int length);
// Lays the text out in the rectangle by the DT_* format (the rules are in
// gdi_text_layout.h) and draws it, line by line, each line tmHeight high; clipped to
// the rectangle unless DT_NOCLIP. Returns the height of the lines drawn; with
// DT_CALCRECT it draws nothing, sets right to left + the widest line and bottom to top
// + the lines' height, and returns that height. An empty text measures one line in an
// empty rectangle and draws nothing (returning 0). 0 on failure.
int DrawTextA(HDC hdc, LPCSTR text, int length, RECT* rect, UINT format);
int DrawTextW(HDC hdc, const WCHAR* text, int length, RECT* rect, UINT format);
