#include "platform/font_catalogue.h"

namespace platform::fonts {

std::vector<std::string> RequestedFamilies(const FontRequest& request, const FontAliases& aliases) {
  if (request.face.empty()) return {aliases.DefaultFamily()};
  std::vector<std::string> families = aliases.Substitutes(request.face);
  families.push_back(request.face);
  return families;
}

}  // namespace platform::fonts
