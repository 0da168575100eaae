#include "editor/balloon_text.h"

#include <cstring>

namespace {

// The marker is two bytes; after it come eight characters that carry nothing.
constexpr std::size_t kHexHeadLength = 10;

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::string DecodeBalloonText(const char* text) {
  if (text == nullptr) return std::string();
  if (text[0] != '\x01' || text[1] != '\x01') return std::string(text);
  const std::size_t length = std::strlen(text);
  std::string decoded;
  if (length < kHexHeadLength) return decoded;
  const std::size_t pairs = (length - kHexHeadLength) / 2;
  decoded.reserve(pairs);
  for (std::size_t i = 0; i < pairs; ++i) {
    const char* pair = text + kHexHeadLength + 2 * i;
    const int high = HexDigit(pair[0]);
    const int low = HexDigit(pair[1]);
    if (high < 0 || low < 0 || (high == 0 && low == 0)) break;
    decoded.push_back(static_cast<char>(high * 16 + low));
  }
  return decoded;
}
