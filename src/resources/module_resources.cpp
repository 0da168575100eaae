#include "resources/module_resources.h"

#include <iterator>
#include <string_view>
#include <utility>

#include "platform/platform.h"
#include "resources/cursor_file.h"
#include "resources/cursor_table.h"

namespace {

struct EmbeddedCursor {
  std::string_view file;
  std::string_view text;
};

// Every picture file must parse; the build stops naming the file that does not.
#define IE_CURSOR_FILE(name, text)                                 \
  static_assert(resources::ParseCursorFile(text).error == nullptr, \
                "src/resources/cursors/" name " is malformed");
#include "cursor_files.inc"
#undef IE_CURSOR_FILE

constexpr EmbeddedCursor kCursorFiles[] = {
#define IE_CURSOR_FILE(name, text) EmbeddedCursor{name, text},
#include "cursor_files.inc"
#undef IE_CURSOR_FILE
};

// The pictures are exactly the cursor table's, with its hot spots.
constexpr bool PicturesMatchTheCursorTable() {
  if (std::size(kCursorFiles) != std::size(kCursorTable)) return false;
  for (const CursorResource& cursor : kCursorTable) {
    int found = 0;
    for (const EmbeddedCursor& embedded : kCursorFiles) {
      resources::CursorHeader header;
      if (!resources::ParseCursorHeader(embedded.text, &header)) return false;
      if (header.id != cursor.resourceId) continue;
      if (header.hotX != cursor.hotX || header.hotY != cursor.hotY) return false;
      ++found;
    }
    if (found != 1) return false;
  }
  return true;
}
static_assert(PicturesMatchTheCursorTable(),
              "src/resources/cursors: one file per cursor of kCursorTable, with the table's hot spot");

}  // namespace

void RegisterModuleResources() {
  static const bool registered = [] {
    for (const EmbeddedCursor& embedded : kCursorFiles) {
      const resources::CursorFile file = resources::ParseCursorFile(embedded.text);
      platform::CursorArtwork artwork{
          resources::kCursorSize, resources::kCursorSize, POINT{file.header.hotX, file.header.hotY}, {}};
      for (const auto& row : file.cells) {
        for (char cell : row) artwork.pixels.push_back(resources::PaletteColor(cell));
      }
      platform::RegisterCursorResource(file.header.id, std::move(artwork));
    }
    resources::RegisterStringsDialogsAndPictures();
    return true;
  }();
  (void)registered;
}
