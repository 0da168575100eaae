#include "script_parser.h"

#include <array>
#include <cctype>
#include <utility>

#include "platform/text.h"
#include "platform/user.h"

namespace script {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

// Reads a quoted string starting at line[pos] == '"'; leaves pos after the closing
// quote.
std::string ReadString(std::string_view line, std::size_t& pos) {
  std::string text;
  ++pos;
  while (pos < line.size()) {
    const char c = line[pos++];
    if (c == '"') return text;
    if (c != '\\') {
      text += c;
      continue;
    }
    if (pos >= line.size()) break;
    const char escape = line[pos++];
    if (escape == '\\' || escape == '"') {
      text += escape;
    } else if (escape == 'n') {
      text += '\n';
    } else if (escape == 'x') {
      const int high = pos < line.size() ? HexDigitValue(line[pos]) : -1;
      const int low = pos + 1 < line.size() ? HexDigitValue(line[pos + 1]) : -1;
      if (high < 0 || low < 0) throw ParseError("bad escape: \\x needs two hexadecimal digits");
      const int value = high * 16 + low;
      if (value == 0) throw ParseError("bad escape: \\x00 is not allowed in a string");
      text += static_cast<char>(value);
      pos += 2;
    } else {
      throw ParseError(std::string("bad escape: \\") + escape);
    }
  }
  throw ParseError("unterminated string");
}

}  // namespace

std::vector<Token> TokenizeLine(std::string_view line) {
  // Strings reach the control zero-terminated: a NUL byte would silently cut one (and
  // any message quoting it), so a line holding one is refused, as \x00 is.
  if (const std::size_t nul = line.find('\0'); nul != std::string_view::npos) {
    throw ParseError("a NUL byte (\\x00) at column " + std::to_string(nul + 1) + "; scripts are text");
  }
  std::vector<Token> tokens;
  std::size_t pos = 0;
  while (pos < line.size()) {
    const char c = line[pos];
    if (IsBlank(c)) {
      ++pos;
    } else if (c == '#') {
      break;
    } else if (c == '"') {
      tokens.push_back({Token::Kind::String, ReadString(line, pos)});
      if (pos < line.size() && !IsBlank(line[pos]) && line[pos] != '#') {
        throw ParseError("a closing quote must be followed by a blank");
      }
    } else {
      const std::size_t start = pos;
      while (pos < line.size() && !IsBlank(line[pos]) && line[pos] != '#') {
        if (line[pos] == '"') throw ParseError("a quote inside a word; strings are separate tokens");
        ++pos;
      }
      tokens.push_back({Token::Kind::Word, std::string(line.substr(start, pos - start))});
    }
  }
  return tokens;
}

bool LooksLikeNumber(std::string_view word) {
  return !word.empty() && (word[0] == '-' || std::isdigit(static_cast<unsigned char>(word[0])));
}

std::int32_t ParseInteger(std::string_view word) {
  std::string_view digits = word;
  const bool negative = !digits.empty() && digits[0] == '-';
  if (negative) digits.remove_prefix(1);
  const bool hex = digits.size() > 1 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
  if (hex) digits.remove_prefix(2);
  if (digits.empty()) throw ParseError("bad number " + Quoted(word));

  const int base = hex ? 16 : 10;
  // The largest magnitude any literal may have; checked digit by digit so that no
  // length of input can overflow.
  const std::uint64_t limit = hex && !negative ? 0xFFFFFFFFull : (negative ? 0x80000000ull : 0x7FFFFFFFull);
  std::uint64_t value = 0;
  for (char c : digits) {
    const int digit = HexDigitValue(c);
    if (digit < 0 || digit >= base) throw ParseError("bad number " + Quoted(word));
    value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
    if (value > limit) throw ParseError("number out of 32-bit range " + Quoted(word));
  }
  const std::int64_t signedValue =
      negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(signedValue));
}

std::vector<char32_t> DecodeUtf8(std::string_view text) {
  std::vector<char32_t> codePoints;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const auto lead = static_cast<unsigned char>(text[pos]);
    int length = 0;
    char32_t value = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
      length = 1, value = lead;
    } else if ((lead & 0xE0) == 0xC0) {
      length = 2, value = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
      length = 3, value = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
      length = 4, value = lead & 0x07, minimum = 0x10000;
    } else {
      throw ParseError("invalid UTF-8 in string");
    }
    if (text.size() - pos < static_cast<std::size_t>(length)) throw ParseError("invalid UTF-8 in string");
    for (int i = 1; i < length; ++i) {
      const auto next = static_cast<unsigned char>(text[pos + static_cast<std::size_t>(i)]);
      if ((next & 0xC0) != 0x80) throw ParseError("invalid UTF-8 in string");
      value = (value << 6) | (next & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
      throw ParseError("invalid UTF-8 in string");
    }
    codePoints.push_back(value);
    pos += static_cast<std::size_t>(length);
  }
  return codePoints;
}

std::string QuoteString(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string quoted = "\"";
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\' || c == '"') {
      quoted += '\\';
      quoted += c;
    } else if (c == '\n') {
      quoted += "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      quoted += "\\x";
      quoted += kHex[byte >> 4];
      quoted += kHex[byte & 0xF];
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::optional<int> VirtualKeyByName(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, int>, 21> kKeys{{
      {"Back", VK_BACK},     {"Backspace", VK_BACK}, {"Tab", VK_TAB},         {"Return", VK_RETURN},
      {"Enter", VK_RETURN},  {"Shift", VK_SHIFT},    {"Control", VK_CONTROL}, {"Ctrl", VK_CONTROL},
      {"Escape", VK_ESCAPE}, {"Esc", VK_ESCAPE},     {"Space", 0x20},         {"PageUp", VK_PRIOR},
      {"Prior", VK_PRIOR},   {"PageDown", VK_NEXT},  {"Next", VK_NEXT},       {"End", VK_END},
      {"Home", VK_HOME},     {"Left", VK_LEFT},      {"Up", VK_UP},           {"Right", VK_RIGHT},
      {"Down", VK_DOWN},
  }};
  for (const auto& [keyName, key] : kKeys) {
    if (platform::EqualsIgnoringCase(name, keyName)) return key;
  }
  if (platform::EqualsIgnoringCase(name, "Delete") || platform::EqualsIgnoringCase(name, "Del"))
    return VK_DELETE;
  if (name.size() == 1 && std::isalpha(static_cast<unsigned char>(name[0]))) {
    return std::toupper(static_cast<unsigned char>(name[0]));
  }
  return std::nullopt;
}

std::optional<UINT> ScrollCodeByName(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, UINT>, 15> kCodes{{
      {"SB_LINEUP", SB_LINEUP},
      {"SB_LINELEFT", SB_LINEUP},
      {"SB_LINEDOWN", SB_LINEDOWN},
      {"SB_LINERIGHT", SB_LINEDOWN},
      {"SB_PAGEUP", SB_PAGEUP},
      {"SB_PAGELEFT", SB_PAGEUP},
      {"SB_PAGEDOWN", SB_PAGEDOWN},
      {"SB_PAGERIGHT", SB_PAGEDOWN},
      {"SB_THUMBPOSITION", SB_THUMBPOSITION},
      {"SB_THUMBTRACK", SB_THUMBTRACK},
      {"SB_TOP", SB_TOP},
      {"SB_LEFT", SB_TOP},
      {"SB_BOTTOM", SB_BOTTOM},
      {"SB_RIGHT", SB_BOTTOM},
      {"SB_ENDSCROLL", SB_ENDSCROLL},
  }};
  for (const auto& [codeName, code] : kCodes) {
    if (platform::EqualsIgnoringCase(name, codeName)) return code;
  }
  return std::nullopt;
}

COLORREF ParseRgbHex(std::string_view word) {
  if (word.size() != 6) throw ParseError("bad colour " + Quoted(word) + ": expected six hex digits RRGGBB");
  int channels[3] = {0, 0, 0};
  for (std::size_t i = 0; i < 6; ++i) {
    const int digit = HexDigitValue(word[i]);
    if (digit < 0) throw ParseError("bad colour " + Quoted(word) + ": expected six hex digits RRGGBB");
    channels[i / 2] = channels[i / 2] * 16 + digit;
  }
  return RGB(channels[0], channels[1], channels[2]);
}

std::string FormatRgbHex(COLORREF color) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string text;
  for (int channel : {GetRValue(color), GetGValue(color), GetBValue(color)}) {
    text += kHex[channel >> 4];
    text += kHex[channel & 0xF];
  }
  return text;
}

FontChoice ParseFontAnswer(std::string_view text) {
  std::vector<std::string_view> fields;
  for (std::size_t start = 0;;) {
    const std::size_t comma = text.find(',', start);
    fields.push_back(text.substr(start, comma == std::string_view::npos ? comma : comma - start));
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  if (fields.size() != 7)
    throw ParseError("bad font answer: expected FACE,Italic,Bold,SIZE,StrikeOut,Underline,RRGGBB");
  const auto flag = [](std::string_view field, std::string_view word) {
    if (field.empty()) return false;
    if (!platform::EqualsIgnoringCase(field, word)) {
      throw ParseError("bad font answer: " + Quoted(field) + " where '" + std::string(word) +
                       "' or nothing belongs");
    }
    return true;
  };
  FontChoice choice;
  if (fields[0].empty() || fields[0].size() >= static_cast<std::size_t>(LF_FACESIZE))
    throw ParseError("bad font answer: face name must be 1 to 31 bytes");
  choice.face = fields[0];
  choice.italic = flag(fields[1], "Italic");
  choice.bold = flag(fields[2], "Bold");
  if (LooksLikeNumber(fields[3])) choice.points = ParseInteger(fields[3]);
  if (choice.points < 1 || choice.points > 999)
    throw ParseError("bad font answer: size must be 1 to 999 points");
  choice.strikeOut = flag(fields[4], "StrikeOut");
  choice.underline = flag(fields[5], "Underline");
  choice.color = ParseRgbHex(fields[6]);
  return choice;
}

}  // namespace script
