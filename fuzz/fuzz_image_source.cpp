// The path-or-URL decision on the caller's string.
#include <string_view>

#include "imageio/image_source.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  imageio::UrlService service{};
  imageio::ParseUrl(std::string_view(reinterpret_cast<const char*>(data), size), &service);
  return 0;
}
