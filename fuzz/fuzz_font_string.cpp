// Font strings as hosts send them: whatever is read must format into a string that
// reads back as the same font, and nothing may be read outside the text.
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/font_string.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const FontString read = ReadFontString(text.c_str());
  CharSetForSelector(read.charSetSelector.value_or(0));

  LOGFONTA font{};
  std::memcpy(font.lfFaceName, read.face.data(), read.face.size());
  font.lfItalic = read.italic;
  font.lfWeight = read.bold ? 700 : 400;
  font.lfStrikeOut = read.strikeOut;
  font.lfUnderline = read.underline;
  const FontString again = ReadFontString(FormatFontString(font, read.points, read.color).c_str());
  // A face with a comma or a NUL in it cannot travel in a font string.
  if (read.face.find_first_of(std::string(",\0", 2)) != std::string::npos) return 0;
  if (again.face != read.face || again.italic != read.italic || again.bold != read.bold ||
      again.points != read.points || again.strikeOut != read.strikeOut || again.underline != read.underline ||
      again.color != read.color) {
    std::abort();
  }
  return 0;
}
