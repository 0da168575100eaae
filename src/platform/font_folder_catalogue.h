// A catalogue over one folder of font files: what a web page carries, where there is
// no fontconfig. It answers the way the fontconfig catalogue does for the faces the
// folder holds: the alias table's families first, then the face asked for, the
// nearest style within a family (a wrong slant counts worse than a wrong weight, as
// in fontconfig), and the table's default family for a face it lacks.
#pragma once

#include <string>
#include <vector>

#include "platform/font_catalogue.h"

namespace platform::fonts {

class FolderFontCatalogue final : public FontCatalogue {
 public:
  // Reads every face of every font file directly in `folder`, in file-name order.
  explicit FolderFontCatalogue(const std::string& folder);

  std::optional<FontFile> Find(const FontRequest& request) override;
  std::optional<FontFile> FindCovering(const FontRequest& request, char32_t c) override;

 private:
  struct Face {
    std::string family;
    FontFile file;
  };
  // The face of `family` (any family when empty) nearest the request's style among
  // those `accept` takes; null when none.
  template <typename Accept>
  const Face* Nearest(const FontRequest& request, const std::string* family, Accept accept) const;

  std::vector<Face> faces_;
};

}  // namespace platform::fonts
