// Reading script lines: tokens, integer literals, string escapes, key and scroll-code
// names and colour answers. Everything here is pure text work so that it can be tested
// without a control; every malformed input is reported as a ParseError whose message
// says what is wrong in words a script author understands.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

namespace script {

// A statement that cannot be read. The runner adds the file name and line number.
class ParseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Token {
  enum class Kind { Word, String };
  Kind kind = Kind::Word;
  // A word as written, or a string's text with its escapes resolved.
  std::string text;

  bool isWord() const { return kind == Kind::Word; }
  friend bool operator==(const Token&, const Token&) = default;
};

// Splits one line into words and quoted strings. Blanks (spaces, tabs, a trailing
// carriage return) separate tokens; '#' outside a string ends the line. Strings take
// the escapes \\, \", \n and \xHH (two hex digits, not \x00, since the text is handed
// on as a zero-terminated string). A quote must stand at the start of a token and the
// closing quote at its end. A raw NUL byte anywhere in the line is refused too.
std::vector<Token> TokenizeLine(std::string_view line);

// True when the word is meant as a number: it starts with a digit or with '-'.
bool LooksLikeNumber(std::string_view word);

// A 32-bit integer literal: decimal, or hexadecimal with 0x/0X, each optionally
// preceded by '-'. Decimal values must lie in the signed 32-bit range. Hexadecimal
// values up to 0xFFFFFFFF are 32-bit patterns (0xFFFFFFFF is -1), the way colours and
// flags are written; a negated hexadecimal value must fit the signed range.
std::int32_t ParseInteger(std::string_view word);

// The text of a string as code points; rejects malformed UTF-8 (overlong forms,
// surrogates, values above U+10FFFF, truncated sequences).
std::vector<char32_t> DecodeUtf8(std::string_view text);

// A string as the script writes it, in quotes with the same escapes TokenizeLine
// reads: \\, \", \n, and \xHH for the other control characters. Bytes from 0x80 up
// pass unchanged, so UTF-8 text stays readable.
std::string QuoteString(std::string_view text);

// A virtual-key name (Tab, Escape, Delete, Left, PageUp, ...; case-insensitive) or a
// single letter A-Z; nullopt when the word names no key.
std::optional<int> VirtualKeyByName(std::string_view name);

// A scroll-bar code name (SB_LINEUP, SB_LINELEFT, ..., SB_ENDSCROLL; case-insensitive).
std::optional<UINT> ScrollCodeByName(std::string_view name);

// A colour answer written RRGGBB (six hex digits) as a COLORREF (0x00BBGGRR).
COLORREF ParseRgbHex(std::string_view word);
// The same colour written back as RRGGBB, upper case.
std::string FormatRgbHex(COLORREF color);

// What a font dialog answer sets: the face, size, weight and effects the dialog's user
// picks, and the text colour.
struct FontChoice {
  std::string face;
  int points = 0;
  bool italic = false;
  bool bold = false;
  bool strikeOut = false;
  bool underline = false;
  COLORREF color = 0;
};

// A font answer in the seven-field form the control's SetTextFont returns:
// "FACE,[Italic],[Bold],POINTS,[StrikeOut],[Underline],RRGGBB". The face must be
// 1 to 31 bytes, the size 1 to 999 points, and each flag field empty or its word
// (any case).
FontChoice ParseFontAnswer(std::string_view text);

}  // namespace script
