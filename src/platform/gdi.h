// GDI over a software raster. Semantics follow Windows GDI for the values the engine
// uses: memory DCs with one selected bitmap, pen, brush and font; colour bitmaps in
// the display's true-colour format (32 bits a pixel inside) and monochrome bitmaps;
// DIB transfer; the raster operations with the monochrome/colour conversion rules.
//
// Handles are validated: a stale, foreign or null handle makes a call fail the way
// GDI fails (0, null or CLR_INVALID), never touches memory it does not own.
#pragma once

#include <vector>

#include "platform/types.h"

// ---- constants ----
inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr DWORD SRCPAINT = 0x00EE0086;
inline constexpr DWORD SRCAND = 0x008800C6;
inline constexpr DWORD SRCINVERT = 0x00660046;
inline constexpr DWORD SRCERASE = 0x00440328;
inline constexpr DWORD NOTSRCCOPY = 0x00330008;
inline constexpr DWORD NOTSRCERASE = 0x001100A6;
inline constexpr DWORD MERGEPAINT = 0x00BB0226;
inline constexpr DWORD PATCOPY = 0x00F00021;
inline constexpr DWORD PATINVERT = 0x005A0049;
inline constexpr DWORD DSTINVERT = 0x00550009;
inline constexpr DWORD BLACKNESS = 0x00000042;
inline constexpr DWORD WHITENESS = 0x00FF0062;

inline constexpr int BLACKONWHITE = 1;
inline constexpr int WHITEONBLACK = 2;
inline constexpr int COLORONCOLOR = 3;
inline constexpr int HALFTONE = 4;

inline constexpr int WHITE_BRUSH = 0;
inline constexpr int LTGRAY_BRUSH = 1;
inline constexpr int GRAY_BRUSH = 2;
inline constexpr int DKGRAY_BRUSH = 3;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int HOLLOW_BRUSH = NULL_BRUSH;
inline constexpr int WHITE_PEN = 6;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int SYSTEM_FONT = 13;
inline constexpr int DEFAULT_GUI_FONT = 17;

inline constexpr int MM_TEXT = 1;
inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;

// Binary raster operations of SetROP2: how a pen or brush pixel P meets the pixel D.
inline constexpr int R2_BLACK = 1;         // 0
inline constexpr int R2_NOTMERGEPEN = 2;   // ~(P | D)
inline constexpr int R2_MASKNOTPEN = 3;    // ~P & D
inline constexpr int R2_NOTCOPYPEN = 4;    // ~P
inline constexpr int R2_MASKPENNOT = 5;    // P & ~D
inline constexpr int R2_NOT = 6;           // ~D
inline constexpr int R2_XORPEN = 7;        // P ^ D
inline constexpr int R2_NOTMASKPEN = 8;    // ~(P & D)
inline constexpr int R2_MASKPEN = 9;       // P & D
inline constexpr int R2_NOTXORPEN = 10;    // ~(P ^ D)
inline constexpr int R2_NOP = 11;          // D
inline constexpr int R2_MERGENOTPEN = 12;  // ~P | D
inline constexpr int R2_COPYPEN = 13;      // P
inline constexpr int R2_MERGEPENNOT = 14;  // P | ~D
inline constexpr int R2_MERGEPEN = 15;     // P | D
inline constexpr int R2_WHITE = 16;        // 1

inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;

inline constexpr UINT IMAGE_BITMAP = 0;
inline constexpr UINT LR_CREATEDIBSECTION = 0x2000;

inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

inline constexpr int OBJ_PEN = 1;
inline constexpr int OBJ_BRUSH = 2;
inline constexpr int OBJ_DC = 3;
inline constexpr int OBJ_FONT = 6;
inline constexpr int OBJ_BITMAP = 7;
inline constexpr int OBJ_MEMDC = 10;

// ---- device contexts and objects ----
// A memory DC starts with the stock 1 x 1 monochrome bitmap, the black pen, the white
// brush and the system font selected, white background and black text colour.
HDC CreateCompatibleDC(HDC hdc);
BOOL DeleteDC(HDC hdc);
// Colour when the DC is a window/screen DC or holds a colour bitmap; monochrome when
// it is a memory DC holding a monochrome bitmap (as GDI does).
HBITMAP CreateCompatibleBitmap(HDC hdc, int width, int height);
// Planes 1 and 1 bit a pixel give a monochrome bitmap; 32 bits a colour one. Rows of
// `bits` (may be null: zero-filled) are WORD-aligned, top-down, as GDI defines them.
HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits);
// A DIB section: colour, 32 bits a pixel. When `bits` is non-null it receives the
// pixel storage, which is only available for a 32-bit top-down (negative height)
// header; other headers give *bits = nullptr.
HBITMAP CreateDIBSection(HDC hdc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD offset);
HGDIOBJ SelectObject(HDC hdc, HGDIOBJ object);
HGDIOBJ GetCurrentObject(HDC hdc, UINT type);
BOOL DeleteObject(HGDIOBJ object);
HGDIOBJ GetStockObject(int index);
int GetObjectA(HANDLE object, int size, void* out);
DWORD GetObjectType(HGDIOBJ object);

int GetDIBits(HDC hdc, HBITMAP bitmap, UINT start, UINT lines, void* bits, BITMAPINFO* info, UINT usage);
int SetDIBits(HDC hdc, HBITMAP bitmap, UINT start, UINT lines, const void* bits, const BITMAPINFO* info,
              UINT usage);

BOOL BitBlt(HDC dest, int x, int y, int width, int height, HDC src, int srcX, int srcY, DWORD rop);
// Equal sizes copy exactly. Otherwise the destination DC's stretch mode decides:
// HALFTONE averages the covered area when shrinking and interpolates linearly when
// enlarging (each axis on its own); COLORONCOLOR takes the pixel under each destination
// centre; BLACKONWHITE / WHITEONBLACK do the same but AND / OR every source pixel merged
// into one when shrinking. A negative extent runs the rectangle the other way from its
// (x, y) corner; opposite signs of source and destination mirror.
BOOL StretchBlt(HDC dest, int x, int y, int width, int height, HDC src, int srcX, int srcY, int srcWidth,
                int srcHeight, DWORD rop);
int SetStretchBltMode(HDC hdc, int mode);
int GetStretchBltMode(HDC hdc);
// Copies the source pixels whose colour is not `transparent`; unequal sizes are
// stretched by nearest pixel first. Negative extents fail.
BOOL TransparentBlt(HDC dest, int x, int y, int width, int height, HDC src, int srcX, int srcY, int srcWidth,
                    int srcHeight, UINT transparent);
// IMAGE_BITMAP only: an independent copy (a DIB section with LR_CREATEDIBSECTION when the
// source is colour), cx/cy 0 meaning the source size, other sizes by nearest pixel.
HANDLE CopyImage(HANDLE image, UINT type, int cx, int cy, UINT flags);

int FillRect(HDC hdc, const RECT* rect, HBRUSH brush);
HBRUSH CreateSolidBrush(COLORREF color);
HBRUSH CreateBrushIndirect(const LOGBRUSH* brush);
HFONT CreateFontIndirectA(const LOGFONTA* font);

COLORREF SetBkColor(HDC hdc, COLORREF color);
COLORREF GetBkColor(HDC hdc);
COLORREF SetTextColor(HDC hdc, COLORREF color);
COLORREF GetTextColor(HDC hdc);
int SetBkMode(HDC hdc, int mode);
int GetBkMode(HDC hdc);
int SetROP2(HDC hdc, int mode);
int GetROP2(HDC hdc);
COLORREF GetPixel(HDC hdc, int x, int y);
// Combines the colour with the pixel by the DC's ROP2, as a one-pixel pen would; answers
// the colour as the raster holds it (the nearest of black and white on a monochrome one).
COLORREF SetPixel(HDC hdc, int x, int y, COLORREF color);
int GetMapMode(HDC hdc);
int SetMapMode(HDC hdc, int mode);
int GetDeviceCaps(HDC hdc, int index);

// Drawing primitives (pens, lines, shapes, flood fill) are declared in platform/gdi_draw.h.

namespace platform {

// Bytes in one row of a DIB of that width and depth: rows are padded to 4 bytes.
constexpr std::int64_t DibRowStride(std::int64_t width, int bitsPerPixel) {
  return (width * bitsPerPixel + 31) / 32 * 4;
}

// The description of a packed 24-bit bottom-up DIB of that size (BI_RGB, no colour
// table): what GetDIBits and SetDIBits exchange with pixel buffers and bitmap files.
constexpr BITMAPINFO Dib24Info(int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

// One colour channel of a BI_BITFIELDS pixel, widened to 8 bits the way GDI widens it:
// a narrower channel repeats its top bits (5-bit 16 becomes 132, 31 becomes 255), a
// wider one keeps its top 8 bits. SetDIBits and the bitmap file reader both use it.
class DibChannel {
 public:
  explicit constexpr DibChannel(DWORD mask) : mask_(mask) {
    if (!mask_) return;
    while (!((mask_ >> shift_) & 1)) ++shift_;
    while (bits_ < 32 - shift_ && ((mask_ >> (shift_ + bits_)) & 1)) ++bits_;
  }
  constexpr BYTE Read(DWORD pixel) const {
    if (!bits_) return 0;
    const DWORD value = (pixel & mask_) >> shift_;
    if (bits_ >= 8) return static_cast<BYTE>(value >> (bits_ - 8));
    DWORD out = value << (8 - bits_);
    for (int filled = bits_; filled < 8; filled += bits_) out |= out >> bits_;
    return static_cast<BYTE>(out & 0xFF);
  }

 private:
  DWORD mask_ = 0;
  int shift_ = 0;
  int bits_ = 0;
};

// Live objects per handle kind, created minus deleted; stock objects are not counted.
struct GdiCounts {
  int dcs = 0;
  int bitmaps = 0;
  int pens = 0;
  int brushes = 0;
  int fonts = 0;
  int total() const { return dcs + bitmaps + pens + brushes + fonts; }
};
GdiCounts LiveGdiObjects();

// Makes the Nth creation from now (1 = the next one) of that kind fail as if the
// system were out of resources; 0 cancels. Bitmaps cover every call that makes a
// bitmap (CreateCompatibleBitmap, CreateBitmap, CreateDIBSection, CopyImage).
enum class GdiKind { Bitmap, DC };
void FailNthCreation(GdiKind kind, int n);

// A DC on the display itself: colour, no bitmap selected; what GetDC(NULL) returns.
HDC CreateScreenDC();

// The raster behind a window DC: the host frame in which windows are composed.
// Returns a DC drawing into `bitmap` with its origin at (originX, originY) and every
// pixel write clipped to `clip` (in bitmap coordinates). Deleted with DeleteDC.
HDC CreateWindowDC(HBITMAP frame, int originX, int originY, const RECT& clip);

// A DC for the display itself, with no raster of its own: bitmaps made compatible with
// it are colour, it reports 96 dpi, 32 bits a pixel and 1 plane, and drawing on it or
// blitting from it fails. Counted as a DC; deleted with DeleteDC.
HDC CreateScreenDC();

// Direct read access to a colour bitmap's pixels (0x00RRGGBB each, top-down rows of
// `width` pixels) for hosts that present frames; null for anything else. The bitmap
// keeps its rows in that one block from then on (it no longer shares them), so the
// pointer stays valid until the bitmap is deleted.
const std::uint32_t* BitmapPixels(HBITMAP bitmap, int* width, int* height);

// Direct row access for a pixel pass that reads one colour bitmap and writes another
// of the same size (or the same one, in place), with no DIB transfer between: for
// each row of `area` (bitmap coordinates, kept inside the bitmap), top first, where
// its pixels begin in the source and in the target, 0x00RRGGBB each. The target's
// rows are made its own at once, so several threads may write them. Unless the two are
// one bitmap, whole target rows may hold anything until written: the pass must write
// every pixel of the area, with the top byte 0. The pointers stay valid until either
// bitmap is next changed or deleted. False (nothing touched) for anything but two
// colour bitmaps of one size.
struct BitmapRows {
  std::vector<const std::uint32_t*> source;
  std::vector<std::uint32_t*> target;
  int width = 0;  // pixels of each row in the area
};
bool MapBitmapRows(HBITMAP source, HBITMAP target, const RECT& area, BitmapRows* rows);
// Whether MapBitmapRows maps rows at all (the default). Off, it refuses every bitmap,
// as a platform without direct row access would, so that tests can hold the callers'
// way through 24-bit buffers to the same pixels.
void OfferBitmapRows(bool offered);

}  // namespace platform
