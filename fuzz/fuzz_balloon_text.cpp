// A balloon's text as a host hands it over, plain or hex-encoded: decoding reads
// nothing past the text's end and makes no byte the text did not spell out.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "editor/balloon_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The interface hands texts over as C strings: the input up to its first zero.
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string decoded = DecodeBalloonText(text.c_str());
  const std::size_t length = std::char_traits<char>::length(text.c_str());
  if (decoded.find('\0') != std::string::npos) std::abort();
  const bool hex = length >= 2 && text[0] == '\x01' && text[1] == '\x01';
  if (hex ? decoded.size() > (length < 10 ? 0 : (length - 10) / 2) : decoded != text.c_str()) std::abort();
  return 0;
}
