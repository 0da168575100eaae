// One line of an imageedit script through every reader of script text: tokens and
// their escapes, integer literals, UTF-8 text, colour and font answers. Malformed
// input must end in a ParseError, never in a bad read or another exception.
#include <string_view>

#include "script_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  const auto attempt = [](auto read) {
    try {
      read();
    } catch (const script::ParseError&) {
    }
  };
  attempt([&] {
    for (const script::Token& token : script::TokenizeLine(line)) {
      if (token.isWord() && script::LooksLikeNumber(token.text)) script::ParseInteger(token.text);
      if (!token.isWord()) script::DecodeUtf8(token.text);
      script::QuoteString(token.text);
    }
  });
  attempt([&] { script::ParseInteger(line); });
  attempt([&] { script::DecodeUtf8(line); });
  attempt([&] { script::ParseRgbHex(line); });
  attempt([&] { script::ParseFontAnswer(line); });
  return 0;
}
