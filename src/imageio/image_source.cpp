#include "imageio/image_source.h"

#include <array>
#include <utility>

#include "platform/text.h"

namespace imageio {
namespace {

constexpr std::array<std::pair<std::string_view, UrlService>, 5> kSchemes{{
    {"http", UrlService::Http},
    {"https", UrlService::Https},
    {"ftp", UrlService::Ftp},
    {"gopher", UrlService::Gopher},
    {"file", UrlService::File},
}};

}  // namespace

bool ParseUrl(std::string_view text, UrlService* service) {
  const std::size_t separator = text.find("://");
  if (separator == std::string_view::npos) return false;
  const std::string_view scheme = text.substr(0, separator);
  for (const auto& [name, type] : kSchemes) {
    if (!platform::EqualsIgnoringCase(scheme, name)) continue;
    const std::string_view rest = text.substr(separator + 3);
    const std::string_view server = rest.substr(0, rest.find_first_of("/?#"));
    if (type != UrlService::File && server.empty()) return false;
    *service = type;
    return true;
  }
  return false;
}

}  // namespace imageio
