#include "tools/font_string.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/text.h"
#include "tools/color_string.h"

namespace {

constexpr std::size_t kFieldCount = 8;
constexpr std::size_t kFieldBytes = 32;

std::array<std::string, kFieldCount> SplitFields(std::string_view text) {
  std::array<std::string, kFieldCount> fields;
  std::size_t at = 0;
  for (std::string& field : fields) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    field = std::string(text.substr(at, std::min(comma - at, kFieldBytes)));
    at = comma < text.size() ? comma + 1 : comma;
  }
  return fields;
}

// atoi as the control's platform defines it: leading blanks and a sign, digits up to
// the first other character, and the int's limits on overflow.
int ReadInt(const std::string& field) {
  const long value = std::strtol(field.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

// A face name cut to what a font description holds, never inside a UTF-8 character:
// a face name with half a character matches no face.
std::string FaceName(const std::string& field) {
  std::size_t length = std::min<std::size_t>(field.size(), LF_FACESIZE - 1);
  if (length < field.size()) {
    while (length > 0 && (static_cast<unsigned char>(field[length]) & 0xC0) == 0x80) --length;
  }
  return field.substr(0, length);
}

}  // namespace

FontString ReadFontString(const char* text) {
  const auto fields = SplitFields(text != nullptr ? std::string_view(text) : std::string_view());
  FontString font;
  font.face = FaceName(fields[0]);
  font.italic = platform::EqualsIgnoringCase(fields[1], "Italic");
  font.bold = platform::EqualsIgnoringCase(fields[2], "Bold");
  font.points = ReadInt(fields[3]);
  font.strikeOut = platform::EqualsIgnoringCase(fields[4], "StrikeOut");
  font.underline = platform::EqualsIgnoringCase(fields[5], "Underline");
  font.color = ReadColorString(fields[6].c_str());
  if (!fields[7].empty()) font.charSetSelector = ReadInt(fields[7]);
  return font;
}

BYTE CharSetForSelector(int selector) {
  if (selector == 18) return HANGEUL_CHARSET;
  if (selector == 4) return GB2312_CHARSET;
  return ANSI_CHARSET;
}

std::string FormatFontString(const LOGFONTA& font, int points, COLORREF color) {
  const std::string face(font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE));
  char tail[64];
  std::snprintf(tail, sizeof tail, ",%s,%s,%d,%s,%s,%02X%02X%02X", font.lfItalic ? "Italic" : "",
                font.lfWeight == FW_BOLD ? "Bold" : "", points, font.lfStrikeOut ? "StrikeOut" : "",
                font.lfUnderline ? "Underline" : "", GetRValue(color), GetGValue(color), GetBValue(color));
  return face + tail;
}
