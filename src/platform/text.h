// Comparing names without regard to case, the way the system compares method names,
// URL schemes, key names and file signatures: ASCII letters only, whatever the locale,
// so that UTF-8 text is never folded byte by byte.
#pragma once

#include <string_view>

namespace platform {

constexpr char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  }
  return true;
}

}  // namespace platform
