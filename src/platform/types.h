// Platform types: the subset of the Windows type vocabulary the engine is written
// against. Names and layouts follow the Windows headers so that engine code reads
// the same on every host and could be compiled against the real headers one day.
#pragma once

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = unsigned int;
using INT = int;
using BOOL = int;
using COLORREF = DWORD;
using LANGID = WORD;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using HRESULT = std::int32_t;
using UINT_PTR = std::uintptr_t;
using LPCSTR = const char*;
using LPSTR = char*;
using LPVOID = void*;
using HANDLE = void*;
using HGDIOBJ = void*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

// Distinct handle types, as the Windows headers declare them in strict mode: each
// handle kind converts to void* (HGDIOBJ, HANDLE) but not to another kind.
#define IE_DECLARE_HANDLE(name) \
  struct name##__ {             \
    int unused;                 \
  };                            \
  using name = name##__*
IE_DECLARE_HANDLE(HDC);
IE_DECLARE_HANDLE(HBITMAP);
IE_DECLARE_HANDLE(HPEN);
IE_DECLARE_HANDLE(HBRUSH);
IE_DECLARE_HANDLE(HFONT);
IE_DECLARE_HANDLE(HRGN);
IE_DECLARE_HANDLE(HWND);
IE_DECLARE_HANDLE(HMENU);
IE_DECLARE_HANDLE(HCURSOR);
IE_DECLARE_HANDLE(HINSTANCE);
#undef IE_DECLARE_HANDLE
using HMODULE = HINSTANCE;
using FARPROC = void (*)();

struct POINT {
  LONG x;
  LONG y;
};
struct SIZE {
  LONG cx;
  LONG cy;
};
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};

inline constexpr COLORREF RGB(int r, int g, int b) {
  return static_cast<COLORREF>((r & 0xFF) | ((g & 0xFF) << 8) | ((b & 0xFF) << 16));
}
inline constexpr BYTE GetRValue(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
inline constexpr BYTE GetGValue(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
inline constexpr BYTE GetBValue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }
inline constexpr WORD LOWORD(std::uintptr_t v) { return static_cast<WORD>(v & 0xFFFF); }
inline constexpr WORD HIWORD(std::uintptr_t v) { return static_cast<WORD>((v >> 16) & 0xFFFF); }
inline constexpr LPARAM MAKELPARAM(int lo, int hi) {
  return static_cast<LPARAM>(static_cast<DWORD>((lo & 0xFFFF) | ((hi & 0xFFFF) << 16)));
}
// Signed coordinates packed in an LPARAM, as GET_X_LPARAM/GET_Y_LPARAM read them.
inline constexpr int GET_X_LPARAM(LPARAM lp) {
  return static_cast<short>(LOWORD(static_cast<std::uintptr_t>(lp)));
}
inline constexpr int GET_Y_LPARAM(LPARAM lp) {
  return static_cast<short>(HIWORD(static_cast<std::uintptr_t>(lp)));
}

// number * numerator / denominator with a 64-bit intermediate, rounded half away from
// zero; -1 when the denominator is 0.
int MulDiv(int number, int numerator, int denominator);

// ---- bitmap and DIB structures (packed layouts match the file formats) ----
#pragma pack(push, 2)
struct BITMAPFILEHEADER {
  WORD bfType;
  DWORD bfSize;
  WORD bfReserved1;
  WORD bfReserved2;
  DWORD bfOffBits;
};
#pragma pack(pop)
static_assert(sizeof(BITMAPFILEHEADER) == 14);

struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  LONG biHeight;
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  DWORD biClrUsed;
  DWORD biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

struct RGBQUAD {
  BYTE rgbBlue;
  BYTE rgbGreen;
  BYTE rgbRed;
  BYTE rgbReserved;
};

struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};

// The 32-bit layout of BITMAP: 24 bytes.
struct BITMAP {
  LONG bmType;
  LONG bmWidth;
  LONG bmHeight;
  LONG bmWidthBytes;
  WORD bmPlanes;
  WORD bmBitsPixel;
  std::uint32_t bmBits;  // a 32-bit pointer field in the original layout; 0 here
};
static_assert(sizeof(BITMAP) == 24);

// The 32-bit layout of DIBSECTION: 84 bytes.
struct DIBSECTION {
  BITMAP dsBm;
  BITMAPINFOHEADER dsBmih;
  DWORD dsBitfields[3];
  std::uint32_t dshSection;
  DWORD dsOffset;
};
static_assert(sizeof(DIBSECTION) == 84);

inline constexpr DWORD BI_RGB = 0;
inline constexpr DWORD BI_RLE8 = 1;
inline constexpr DWORD BI_RLE4 = 2;
inline constexpr DWORD BI_BITFIELDS = 3;
inline constexpr UINT DIB_RGB_COLORS = 0;

// ---- fonts and brushes ----
inline constexpr int LF_FACESIZE = 32;
struct LOGFONTA {
  LONG lfHeight;
  LONG lfWidth;
  LONG lfEscapement;
  LONG lfOrientation;
  LONG lfWeight;
  BYTE lfItalic;
  BYTE lfUnderline;
  BYTE lfStrikeOut;
  BYTE lfCharSet;
  BYTE lfOutPrecision;
  BYTE lfClipPrecision;
  BYTE lfQuality;
  BYTE lfPitchAndFamily;
  char lfFaceName[LF_FACESIZE];
};

struct LOGBRUSH {
  UINT lbStyle;
  COLORREF lbColor;
  std::uintptr_t lbHatch;
};
inline constexpr UINT BS_SOLID = 0;
inline constexpr UINT BS_NULL = 1;
inline constexpr UINT BS_HOLLOW = BS_NULL;

// ---- COM-style results ----
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006u);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003u);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = static_cast<HRESULT>(0x8002000Eu);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005u);
inline constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
inline constexpr bool FAILED(HRESULT hr) { return hr < 0; }
