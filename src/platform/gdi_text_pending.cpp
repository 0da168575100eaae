// Text drawing before the font rasteriser is in: every call fails as GDI fails
// without a usable font. Removed when the rasteriser lands.
#include "platform/gdi_text.h"

BOOL GetTextMetricsA(HDC, TEXTMETRICA*) { return FALSE; }
BOOL GetTextExtentPoint32A(HDC, LPCSTR, int, SIZE*) { return FALSE; }
BOOL GetTextExtentPoint32W(HDC, const WCHAR*, int, SIZE*) { return FALSE; }
BOOL TextOutA(HDC, int, int, LPCSTR, int) { return FALSE; }
BOOL TextOutW(HDC, int, int, const WCHAR*, int) { return FALSE; }
int DrawTextA(HDC, LPCSTR, int, RECT*, UINT) { return 0; }
int DrawTextW(HDC, const WCHAR*, int, RECT*, UINT) { return 0; }
