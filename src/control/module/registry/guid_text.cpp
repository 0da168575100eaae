#include "control/module/registry/guid_text.h"

#include <cstdint>
#include <cstdio>

namespace {

// The number that `digits` hexadecimal digits at text[at] spell, or nullopt.
std::optional<std::uint32_t> Hex(std::string_view text, std::size_t at, std::size_t digits) {
  std::uint32_t value = 0;
  for (std::size_t i = at; i < at + digits; ++i) {
    const char c = text[i];
    int digit;
    if (c >= '0' && c <= '9') {
      digit = c - '0';
    } else if (c >= 'A' && c <= 'F') {
      digit = c - 'A' + 10;
    } else if (c >= 'a' && c <= 'f') {
      digit = c - 'a' + 10;
    } else {
      return std::nullopt;
    }
    value = value * 16 + static_cast<std::uint32_t>(digit);
  }
  return value;
}

}  // namespace

std::string GuidText(const ocx::GUID& guid) {
  char text[39];
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
  return text;
}

std::optional<ocx::GUID> GuidFromText(std::string_view text) {
  // {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}
  if (text.size() != 38 || text.front() != '{' || text.back() != '}' || text[9] != '-' || text[14] != '-' ||
      text[19] != '-' || text[24] != '-') {
    return std::nullopt;
  }
  const auto data1 = Hex(text, 1, 8);
  const auto data2 = Hex(text, 10, 4);
  const auto data3 = Hex(text, 15, 4);
  if (!data1 || !data2 || !data3) return std::nullopt;
  ocx::GUID guid{*data1, static_cast<std::uint16_t>(*data2), static_cast<std::uint16_t>(*data3), {}};
  constexpr std::size_t kByteAt[8] = {20, 22, 25, 27, 29, 31, 33, 35};
  for (int i = 0; i < 8; ++i) {
    const auto byte = Hex(text, kByteAt[i], 2);
    if (!byte) return std::nullopt;
    guid.Data4[i] = static_cast<std::uint8_t>(*byte);
  }
  return guid;
}
