// Where the loader's bytes come from: the caller's string is either a local path or
// a URL. A URL has the form scheme://rest with a scheme the loader knows; anything
// else (a drive-letter path, a relative name, an unknown scheme) is a path.
#pragma once

#include <cstdint>
#include <string_view>

namespace imageio {

// Service types of parsable URLs. The file scheme keeps the value the loader tests
// (0x1001); it is used as a file name unchanged.
enum class UrlService : std::uint32_t {
  Ftp = 1,
  Gopher = 2,
  Http = 3,
  Https = 0x1000 + 5,
  File = 0x1001,
};

// True for a parsable URL, with its service type. A URL needs a known scheme, "://"
// and, except for the file scheme, a non-empty server name.
bool ParseUrl(std::string_view text, UrlService* service);

}  // namespace imageio
