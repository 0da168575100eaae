#include "tools/color_string.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

std::string ColorString(COLORREF color) {
  char text[8];
  std::snprintf(text, sizeof text, "%02X%02X%02X", GetRValue(color), GetGValue(color), GetBValue(color));
  return text;
}

COLORREF ReadColorString(const char* text) {
  const std::string prefixed = std::string("0x") + (text != nullptr ? text : "");
  constexpr long kLongMax32 = 0x7FFFFFFF;
  const long number = std::min(std::strtol(prefixed.c_str(), nullptr, 16), kLongMax32);
  const auto byte = [number](int shift) { return static_cast<BYTE>((number >> shift) & 0xFF); };
  return RGB(byte(16), byte(8), byte(0));
}
