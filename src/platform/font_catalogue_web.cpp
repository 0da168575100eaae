// In a web page the fonts are the files the page carries: hosts/web packs them into
// the engine's file system at kPageFontFolder (src/platform/fonts/page_fonts.cmake).
#include "platform/font_folder_catalogue.h"

namespace platform::fonts {

namespace {
constexpr char kPageFontFolder[] = "/fonts";
}  // namespace

FontCatalogue& InstalledFonts() {
  static FolderFontCatalogue catalogue(kPageFontFolder);
  return catalogue;
}

}  // namespace platform::fonts
