// The cursor picture files of src/resources/cursors/ (format in the README there): a
// header line "cursor ID hotspot X Y", then 32 rows of 32 palette characters. The
// parser is constexpr so that the build refuses a malformed file (module_resources.cpp
// checks every embedded file at compile time); the same parser reports why at run time.
#pragma once

#include <cstdint>
#include <string_view>

namespace resources {

inline constexpr int kCursorSize = 32;

// The classic 16 colours, as 0xAARRGGBB; '.' is transparent.
struct PaletteEntry {
  char character;
  std::uint32_t color;
};
inline constexpr PaletteEntry kCursorPalette[] = {
    {'#', 0xFF000000},  // black
    {'r', 0xFF800000},  // dark red
    {'g', 0xFF008000},  // dark green
    {'y', 0xFF808000},  // olive
    {'b', 0xFF000080},  // navy
    {'m', 0xFF800080},  // purple
    {'c', 0xFF008080},  // teal
    {'s', 0xFFC0C0C0},  // silver
    {'d', 0xFF808080},  // grey
    {'R', 0xFFFF0000},  // red
    {'G', 0xFF00FF00},  // green
    {'Y', 0xFFFFFF00},  // yellow
    {'B', 0xFF0000FF},  // blue
    {'M', 0xFFFF00FF},  // magenta
    {'C', 0xFF00FFFF},  // cyan
    {'o', 0xFFFFFFFF},  // white
};

// A palette character's colour; 0 (transparent) for '.' and for any other character.
constexpr std::uint32_t PaletteColor(char c) {
  for (const PaletteEntry& entry : kCursorPalette) {
    if (entry.character == c) return entry.color;
  }
  return 0;
}
constexpr bool IsPaletteCharacter(char c) { return c == '.' || PaletteColor(c) != 0; }

struct CursorHeader {
  int id = 0;
  int hotX = 0;
  int hotY = 0;
};

struct CursorFile {
  CursorHeader header;
  char cells[kCursorSize][kCursorSize] = {};  // palette characters, top row first
  const char* error = nullptr;                // why the text is no cursor file; null when it is
};

namespace cursor_file_detail {

// Reads one decimal number of up to five digits at `pos`; -1 when there is none.
constexpr int ReadNumber(std::string_view line, std::size_t& pos) {
  int value = 0;
  std::size_t digits = 0;
  while (pos < line.size() && line[pos] >= '0' && line[pos] <= '9' && digits < 6) {
    value = value * 10 + (line[pos] - '0');
    ++pos;
    ++digits;
  }
  return digits == 0 || digits > 5 ? -1 : value;
}

constexpr bool ReadWord(std::string_view line, std::size_t& pos, std::string_view word) {
  if (line.substr(pos, word.size()) != word) return false;
  pos += word.size();
  return true;
}

}  // namespace cursor_file_detail

// The first line, "cursor ID hotspot X Y" with single spaces (and an optional "\r");
// false when it is not one or the hot spot lies outside the picture.
constexpr bool ParseCursorHeader(std::string_view text, CursorHeader* header) {
  using namespace cursor_file_detail;
  std::string_view line = text.substr(0, text.find('\n'));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  std::size_t pos = 0;
  if (!ReadWord(line, pos, "cursor ")) return false;
  header->id = ReadNumber(line, pos);
  if (!ReadWord(line, pos, " hotspot ")) return false;
  header->hotX = ReadNumber(line, pos);
  if (!ReadWord(line, pos, " ")) return false;
  header->hotY = ReadNumber(line, pos);
  return pos == line.size() && header->id > 0 && header->hotX >= 0 && header->hotX < kCursorSize &&
         header->hotY >= 0 && header->hotY < kCursorSize;
}

// Lines end with "\n" (a "\r" before it is allowed); the last newline is optional.
constexpr CursorFile ParseCursorFile(std::string_view text) {
  CursorFile file;
  auto fail = [&file](const char* why) {
    file.error = why;
    return file;
  };
  int line = 0;
  while (!text.empty() || line == 0) {
    ++line;
    const std::size_t end = text.find('\n');
    std::string_view row = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (!row.empty() && row.back() == '\r') row.remove_suffix(1);
    if (line == 1) {
      if (!ParseCursorHeader(row, &file.header)) {
        return fail("the first line is not \"cursor ID hotspot X Y\" with X and Y in 0..31");
      }
      continue;
    }
    if (line - 2 >= kCursorSize) return fail("more than 32 rows");
    if (row.size() != static_cast<std::size_t>(kCursorSize)) return fail("a row is not 32 characters long");
    for (int x = 0; x < kCursorSize; ++x) {
      if (!IsPaletteCharacter(row[static_cast<std::size_t>(x)]))
        return fail("a character is not in the palette");
      file.cells[line - 2][x] = row[static_cast<std::size_t>(x)];
    }
  }
  if (line - 1 < kCursorSize) return fail("fewer than 32 rows");
  return file;
}

}  // namespace resources
