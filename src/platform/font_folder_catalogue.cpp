#include "platform/font_folder_catalogue.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/font_face.h"

namespace platform::fonts {

FolderFontCatalogue::FolderFontCatalogue(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.is_regular_file(error)) paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  for (const std::string& path : paths) {
    for (int index = 0, count = FacesInFile(path); index < count; ++index) {
      std::string family;
      if (auto file = DescribeFace(path, index, &family)) faces_.push_back({family, *file});
    }
  }
}

template <typename Accept>
const FolderFontCatalogue::Face* FolderFontCatalogue::Nearest(const FontRequest& request,
                                                              const std::string* family,
                                                              Accept accept) const {
  const Face* best = nullptr;
  int bestDistance = 0;
  for (const Face& face : faces_) {
    if ((family && !SameFamily(face.family, *family)) || !accept(face)) continue;
    const int distance = (face.file.italic != request.italic) * 2 + (face.file.bold != request.bold);
    if (!best || distance < bestDistance) {
      best = &face;
      bestDistance = distance;
    }
  }
  return best;
}

std::optional<FontFile> FolderFontCatalogue::Find(const FontRequest& request) {
  const auto any = [](const Face&) { return true; };
  std::vector<std::string> families = RequestedFamilies(request, FontAliases::Builtin());
  families.push_back(FontAliases::Builtin().DefaultFamily());
  for (const std::string& family : families) {
    if (const Face* face = Nearest(request, &family, any)) return face->file;
  }
  if (const Face* face = Nearest(request, nullptr, any)) return face->file;
  return std::nullopt;
}

std::optional<FontFile> FolderFontCatalogue::FindCovering(const FontRequest& request, char32_t c) {
  const auto covers = [c](const Face& face) { return FaceHasCharacter(face.file, c); };
  const FontAliases& aliases = FontAliases::Builtin();
  std::vector<std::string> families = aliases.Fallbacks(request.language);
  for (std::string& family : RequestedFamilies(request, aliases)) families.push_back(std::move(family));
  for (const std::string& family : families) {
    if (const Face* face = Nearest(request, &family, covers)) return face->file;
  }
  if (const Face* face = Nearest(request, nullptr, covers)) return face->file;
  return std::nullopt;
}

}  // namespace platform::fonts
