// GDI drawing primitives: pens, lines, rectangles, ellipses, Béziers and flood fill,
// aliased and pixel for pixel as GDI draws them (checked against an independent GDI,
// see tests/data/gdi/draw/). Rules worth knowing:
// - A cosmetic pen (and a geometric one of width 0 or 1) draws one-pixel lines whose last
//   pixel is left out; a figure's dash pattern (PS_DOT: three pixels on, three off, the
//   gaps left untouched) runs on through its sides and starts again with each call.
// - A wider geometric pen fills the line's outline: square, round or flat end caps, and
//   round joins. Each call's pixels are painted once however its parts overlap, so
//   R2_NOTXORPEN drawn twice leaves no trace.
// - Rectangle(l, t, r, b) outlines l .. r-1 by t .. b-1 and fills inside it with the
//   brush; Ellipse does the same along the inscribed ellipse; a box two pixels thin or
//   less draws as a rectangle, an empty one draws nothing. Corners may come in any order.
// - Coordinates (after the DC's origin) beyond +-2^27, GDI's device space, make a call
//   fail, as do pens wider and ellipses larger than 2^18 pixels; a call costs in
//   proportion to the pixels it can touch inside the DC's clip.
#pragma once

#include <cstdint>

#include "platform/gdi.h"

inline constexpr DWORD PS_SOLID = 0;
inline constexpr DWORD PS_DASH = 1;
inline constexpr DWORD PS_DOT = 2;
inline constexpr DWORD PS_NULL = 5;
inline constexpr DWORD PS_STYLE_MASK = 0x0000000F;
inline constexpr DWORD PS_ENDCAP_ROUND = 0x00000000;
inline constexpr DWORD PS_ENDCAP_SQUARE = 0x00000100;
inline constexpr DWORD PS_ENDCAP_FLAT = 0x00000200;
inline constexpr DWORD PS_ENDCAP_MASK = 0x00000F00;
inline constexpr DWORD PS_JOIN_ROUND = 0x00000000;
inline constexpr DWORD PS_JOIN_MASK = 0x0000F000;
inline constexpr DWORD PS_COSMETIC = 0x00000000;
inline constexpr DWORD PS_GEOMETRIC = 0x00010000;
inline constexpr DWORD PS_TYPE_MASK = 0x000F0000;

inline constexpr UINT FLOODFILLBORDER = 0;
inline constexpr UINT FLOODFILLSURFACE = 1;

// What GetObjectA reports for a pen made by ExtCreatePen: its style bits, its width
// made absolute and its brush.
struct EXTLOGPEN {
  DWORD elpPenStyle;
  DWORD elpWidth;
  UINT elpBrushStyle;
  COLORREF elpColor;
  std::uintptr_t elpHatch;
  DWORD elpNumEntries;
  DWORD elpStyleEntry[1];
};

// Solid, dotted (cosmetic only) and null pens with a solid LOGBRUSH; round joins only.
// A cosmetic pen must be 1 wide; a geometric width is taken as its absolute value and
// may be at most raster::kMaxFigureExtent (2^18). Other widths, styles, joins and
// brushes, and user styles, give null.
HPEN ExtCreatePen(DWORD style, DWORD width, const LOGBRUSH* brush, DWORD styleCount, const DWORD* styles);
// PS_SOLID, PS_DOT and PS_NULL: 0 or 1 wide is cosmetic, wider is geometric with round
// caps and joins (and solid).
HPEN CreatePen(int style, int width, COLORREF color);

BOOL MoveToEx(HDC hdc, int x, int y, POINT* previous);
BOOL GetCurrentPositionEx(HDC hdc, POINT* position);
BOOL LineTo(HDC hdc, int x, int y);
BOOL Rectangle(HDC hdc, int left, int top, int right, int bottom);
BOOL Ellipse(HDC hdc, int left, int top, int right, int bottom);
// `count` = 1 + 3n points: a start point and n (control, control, end) triples. Does not
// use or move the current position.
BOOL PolyBezier(HDC hdc, const POINT* points, DWORD count);
// FLOODFILLSURFACE: paints the 4-connected area of pixels of `color` around (x, y) with
// the brush (and the ROP2); fails when the pixel there has another colour. The border
// mode is not supported and fails.
BOOL ExtFloodFill(HDC hdc, int x, int y, COLORREF color, UINT type);
