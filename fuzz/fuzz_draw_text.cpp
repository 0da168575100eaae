// DrawTextA with any text, format and rectangle, in any font the engine can ask for
// (heights up to the extremes, every character set, faces that exist and that do
// not), measured and drawn on colour and monochrome surfaces; GetTextExtentPoint32A
// and TextOutA on the same bytes. Nothing may read or write out of bounds, the
// measured rectangle must agree with the height reported, and no GDI object may
// outlive an input.
//
// Input: 14 bytes of settings, then the text.
//   0-1 format (every bit, known or not)   2-9 rectangle: four 16-bit coordinates
//   10 height   11 character set   12 face   13 style and surface bits
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/gdi.h"
#include "platform/gdi_text.h"

namespace {

constexpr LONG kHeights[] = {-12, -16, 0, 16, 1, -1, -200, -(1 << 20), INT_MIN, INT_MAX};
constexpr BYTE kCharsets[] = {ANSI_CHARSET,    DEFAULT_CHARSET, SHIFTJIS_CHARSET,
                              HANGEUL_CHARSET, GB2312_CHARSET,  CHINESEBIG5_CHARSET};
constexpr const char* kFaces[] = {"Arial", "굴림체", "宋体", "", "No Such Face", "System", "MS Shell Dlg"};

template <std::size_t N, typename T>
const T& Pick(const T (&table)[N], std::uint8_t byte) {
  return table[byte % N];
}

LONG Coordinate(const std::uint8_t* bytes, bool extreme) {
  const auto value = static_cast<std::int16_t>(bytes[0] | (bytes[1] << 8));
  // Some rectangles reach the ends of the coordinate range.
  return extreme ? static_cast<LONG>(value) * 65536 : value;
}

void Abort(const char* what) {
  std::fprintf(stderr, "fuzz_draw_text: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 14) return 0;
  const UINT format = data[0] | (data[1] << 8);
  const std::uint8_t bits = data[13];
  const bool extreme = bits & 0x40;
  RECT rect{Coordinate(data + 2, extreme), Coordinate(data + 4, extreme), Coordinate(data + 6, extreme),
            Coordinate(data + 8, extreme)};
  LOGFONTA font{};
  font.lfHeight = Pick(kHeights, data[10]);
  font.lfCharSet = Pick(kCharsets, data[11]);
  std::strncpy(font.lfFaceName, Pick(kFaces, data[12]), LF_FACESIZE - 1);
  font.lfWeight = bits & 0x01 ? FW_BOLD : FW_NORMAL;
  font.lfItalic = bits & 0x02;
  font.lfUnderline = bits & 0x04;
  font.lfStrikeOut = bits & 0x08;
  const char* text = reinterpret_cast<const char*>(data + 14);
  const int length = static_cast<int>(size - 14);

  const auto before = platform::LiveGdiObjects();
  {
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateBitmap(64, 32, 1, bits & 0x10 ? 1 : 32, nullptr);
    HFONT handle = CreateFontIndirectA(&font);
    HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
    HGDIOBJ oldFont = SelectObject(dc, handle);
    SetBkMode(dc, bits & 0x20 ? OPAQUE : TRANSPARENT);
    SetTextColor(dc, RGB(200, 30, 10));

    // The length as given, or -1 for the text up to a zero byte when there is one.
    const bool terminated = (bits & 0x80) && std::memchr(text, 0, static_cast<std::size_t>(length));
    const int given = terminated ? -1 : length;
    RECT measured = rect;
    const int height = DrawTextA(dc, text, given, &measured, format | DT_CALCRECT);
    TEXTMETRICA tm{};
    GetTextMetricsA(dc, &tm);
    const bool saturated = measured.bottom == INT_MAX || measured.bottom == INT_MIN || height == INT_MAX;
    // Text ends at its first zero byte; an empty one measures a line in no rectangle.
    const bool empty = length == 0 || text[0] == 0;
    if (height > 0 && !saturated && !empty && measured.bottom - measured.top != height)
      Abort("the measured rectangle disagrees with the height");
    if (height > 0 && tm.tmHeight > 0 && height % tm.tmHeight != 0 && !saturated)
      Abort("the height is not a whole number of lines");
    DrawTextA(dc, text, given, &rect, format & ~DT_CALCRECT);
    SIZE extent{};
    GetTextExtentPoint32A(dc, text, length, &extent);
    TextOutA(dc, rect.left, rect.top, text, length);

    SelectObject(dc, oldFont);
    SelectObject(dc, oldBitmap);
    DeleteObject(handle);
    DeleteObject(bitmap);
    DeleteDC(dc);
  }
  if (platform::LiveGdiObjects().total() != before.total()) Abort("a GDI object outlived the input");
  return 0;
}
