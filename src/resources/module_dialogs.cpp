// The module's own resources besides the cursors: its strings, its two dialogs, its
// icon and the toolbox bitmap a host's control palette shows. The pictures are drawn
// here in the cursors' sixteen colours (cursor_file.h), one character a pixel, top row
// first; the bitmap, having no transparency, on silver.
#include <array>
#include <string_view>

#include "platform/platform.h"
#include "resources/cursor_file.h"
#include "resources/module_resources.h"

namespace resources {
namespace {

// clang-format off
constexpr std::string_view kIcon32[] = {
    "................................",
    "................................",
    "############################....",
    "#CCCCCCCCCCCCCCCCCCCCCCCCCC#....",
    "#CCCCCCCCCCCCCCCCCCCCCCCCCC#....",
    "#CCCCCCCCCCCCCCCCYCCCCCCCCC#....",
    "#CCCCCCCCCCCCCCYYYYYCCCCCCC#....",
    "#CCCCCCCCCCCCCCYYYYYCCCCCCC#....",
    "#CCCCCCCCCCCCCYYYYYYYCCCCCC#....",
    "#CCCCCCCCCCCCCCYYYYYCCCCCCC#....",
    "#CCCCCCCCCCCCCCYYYYYCCCCCCC#....",
    "#CCCCCCCCCCCCCCCCYCCCgGgggg#....",
    "#CCCCCCCCCCCCCCCCCCgggggGgg#....",
    "#gCCCCCCCCCCCCCCCggGggggggG#....",
    "#gggCCCCCCCCCCCggggggGggggg#....",
    "#gGgggCCCCCCCgggGggggggGggg#....",
    "#gggGgggCCCGggggggGggggggGg#.sss",
    "#gggggGggggggGggggggGgggggg#sss.",
    "#GggggggGggggggGggggggGggggrRR..",
    "#ggGggggggGggggggGggggggGgrRR...",
    "#ggggGggggggGggggggGgggggrRR....",
    "#ggggggGggggggGggggggGggrRR#....",
    "#gGggggggGggggggGggggggrRRg#....",
    "#gggGggggggGggggggGgggrRRGg#....",
    "#gggggGggggggGggggggGrRRggg#....",
    "#GggggggGggggggGggggrRRgggg#....",
    "#ggGggggggGggggggGgrRRggGgg#....",
    "##################rRR#######....",
    ".................rRR............",
    "................yyy.............",
    "...............yyy..............",
    "..............#yy...............",
};

constexpr std::string_view kIcon16[] = {
    "................",
    "##############..",
    "#CCCCCCCYCCCC#..",
    "#CCCCCCYYYCCC#..",
    "#CCCCCYYYYYCC#..",
    "#CCCCCCYYYCCC#..",
    "#CCCCCCCggggG#..",
    "#ggCCCgGggggg#..",
    "#gGggggggGggg#ss",
    "#gggGggggggGgss.",
    "#gggggGgggggrR..",
    "#GggggggGggrR#..",
    "#ggGggggggrRg#..",
    "#########rR###..",
    "........yy......",
    ".......#y.......",
};

constexpr std::string_view kToolbox[] = {
    "ssssssssssssssss",
    "##############ss",
    "#CCCCCCCYCCCC#ss",
    "#CCCCCCYYYCCC#ss",
    "#CCCCCYYYYYCC#ss",
    "#CCCCCCYYYCCC#ss",
    "#CCCCCCCggggG#ss",
    "#ggCCCgGggggg#ss",
    "#gGggggggGgggsss",
    "#gggGggggggGrRss",
    "#gggggGggggrR#ss",
    "#GggggggGgrRg#ss",
    "#########rR###ss",
    "ssssssssyyssssss",
    "sssssss#ysssssss",
};
// clang-format on

// Every row as wide as the picture, in palette characters only.
template <std::size_t N>
constexpr bool Drawn(const std::string_view (&rows)[N], std::size_t width) {
  for (std::string_view row : rows) {
    if (row.size() != width) return false;
    for (char c : row) {
      if (!IsPaletteCharacter(c)) return false;
    }
  }
  return true;
}
static_assert(Drawn(kIcon32, 32) && std::size(kIcon32) == 32, "the large icon is 32 x 32");
static_assert(Drawn(kIcon16, 16) && std::size(kIcon16) == 16, "the small icon is 16 x 16");
static_assert(Drawn(kToolbox, kToolboxBitmapWidth) && std::size(kToolbox) == kToolboxBitmapHeight,
              "the toolbox bitmap is 16 x 15");

template <std::size_t N>
platform::CursorArtwork Artwork(const std::string_view (&rows)[N]) {
  platform::CursorArtwork artwork{static_cast<int>(rows[0].size()), static_cast<int>(N), POINT{0, 0}, {}};
  for (std::string_view row : rows) {
    for (char c : row) artwork.pixels.push_back(PaletteColor(c));
  }
  return artwork;
}

// The dialogs' font.
constexpr char kDialogFace[] = "MS Sans Serif";
constexpr int kDialogPoints = 8;

DialogTemplate AboutDialog() {
  DialogTemplate dialog{"About Image Edit Control",
                        WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SETFONT,
                        kDialogFace,
                        kDialogPoints,
                        34,
                        22,
                        260,
                        55,
                        {}};
  dialog.items = {
      {-1, "static", "", kModuleIconId, WS_CHILD | WS_VISIBLE | SS_ICON, 10, 10, 20, 20},
      {-1, "static", "Image Edit Control Version 1.1", 0, WS_CHILD | WS_VISIBLE | WS_GROUP | SS_LEFT, 40, 10,
       170, 8},
      {IDOK, "button", "OK", 0, WS_CHILD | WS_VISIBLE | WS_GROUP | WS_TABSTOP | BS_DEFPUSHBUTTON, 221, 7, 32,
       14},
  };
  return dialog;
}

// No caption of its own: a page is captioned by its string.
DialogTemplate PropertyPageDialog() {
  DialogTemplate dialog{"", WS_CHILD | DS_SETFONT, kDialogFace, kDialogPoints, 0, 0, 250, 62, {}};
  dialog.items = {
      {-1, "static", "Sorry, this ActiveX control has not a property page.", 0,
       WS_CHILD | WS_VISIBLE | WS_GROUP | SS_LEFT, 38, 26, 174, 9},
  };
  return dialog;
}

}  // namespace

void RegisterStringsDialogsAndPictures() {
  platform::RegisterStringResource(kControlTypeNameString, "Image Edit Control");
  platform::RegisterStringResource(kPropertyPageTypeNameString, "Image Edit Control Property Page");
  platform::RegisterStringResource(kPropertyPageCaptionString, "General");
  platform::RegisterStringResource(kModuleTitleString, "Image Edit Control");
  platform::RegisterDialogResource(kAboutDialogId, AboutDialog());
  platform::RegisterDialogResource(kPropertyPageDialogId, PropertyPageDialog());
  platform::RegisterIconResource(kModuleIconId, {Artwork(kIcon32), Artwork(kIcon16)});
  platform::RegisterBitmapResource(kToolboxBitmapId, Artwork(kToolbox));
}

int ShowPropertyPage() {
  return platform::ShowDialogResource(kPropertyPageDialogId,
                                      platform::LoadStringResource(kPropertyPageCaptionString));
}

}  // namespace resources
