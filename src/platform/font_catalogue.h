// Where the font files are. Natively fontconfig knows (font_catalogue_native.cpp); in
// a web page the catalogue is the folder of font files the page carries
// (font_catalogue_web.cpp, over FolderFontCatalogue). The build chooses one, as it
// chooses the picture source. Both put the alias table's families first, so the faces
// the project ships are found alike everywhere.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/font_aliases.h"

namespace platform::fonts {

// A face asked for: by the face name of a LOGFONTA (UTF-8; empty for the default
// family) and the style of the font.
struct FontRequest {
  std::string face;
  bool bold = false;
  bool italic = false;
  FontLanguage language = FontLanguage::None;
};

// A face in a font file (`index` within a collection) and the style it has itself:
// a bold or italic request it does not meet is synthesised from it.
struct FontFile {
  std::string path;
  int index = 0;
  bool bold = false;
  bool italic = false;
  bool operator==(const FontFile&) const = default;
};

class FontCatalogue {
 public:
  virtual ~FontCatalogue() = default;
  // The face that draws the request: the alias table's families for the face, then
  // the face itself, then the catalogue's best match. Nothing only when there is no
  // font at all.
  virtual std::optional<FontFile> Find(const FontRequest& request) = 0;
  // A face that has a glyph for `c`, for text of that request: the language's
  // fallback families first, then the request's own. Nothing when no face has it.
  virtual std::optional<FontFile> FindCovering(const FontRequest& request, char32_t c) = 0;
};

// The catalogue of the fonts this build draws with.
FontCatalogue& InstalledFonts();

// The families a request asks for, best first: the face's substitutes, the face
// itself, or the default family when the face is empty.
std::vector<std::string> RequestedFamilies(const FontRequest& request, const FontAliases& aliases);

}  // namespace platform::fonts
