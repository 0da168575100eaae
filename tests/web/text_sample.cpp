// Draws text with the platform layer only and prints digests of the pixels; built
// natively (tests/) and for Node (hosts/web/), the two must print the same lines
// (tests/web/fonts.test.mjs). `text_sample FOLDER`: FreeType's version, a few texts
// through font fallback and code pages, then every character of the faces in FOLDER
// (the page's font files) at two sizes.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/font_face.h"
#include "platform/gdi.h"
#include "platform/gdi_text.h"

namespace {

constexpr int kWidth = 128 * 24;
constexpr int kHeight = 32;

// Draws the text on white in the font and prints the label, how many pixels were
// inked and a 64-bit FNV-1a digest of all of them.
template <typename Text>
void PrintDrawn(HDC dc, HBITMAP bitmap, const std::string& label, const char* face, LONG em, bool bold,
                bool italic, BYTE charset, const Text& text) {
  LOGFONTA description{};
  description.lfHeight = -em;
  description.lfWeight = bold ? FW_BOLD : FW_NORMAL;
  description.lfItalic = italic;
  description.lfCharSet = charset;
  std::strncpy(description.lfFaceName, face, LF_FACESIZE - 1);
  HFONT font = CreateFontIndirectA(&description);
  HGDIOBJ old = SelectObject(dc, font);
  RECT all{0, 0, kWidth, kHeight};
  FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  if constexpr (std::is_same_v<Text, std::string>) {
    DrawTextA(dc, text.c_str(), -1, &all, DT_SINGLELINE | DT_NOPREFIX);
  } else {
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &all, DT_SINGLELINE | DT_NOPREFIX);
  }
  SelectObject(dc, old);
  DeleteObject(font);
  int width = 0, height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(bitmap, &width, &height);
  std::uint64_t hash = 0xCBF29CE484222325u;
  std::size_t inked = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(width) * height; ++i) {
    hash = (hash ^ pixels[i]) * 0x100000001B3u;
    inked += (pixels[i] & 0xFFFFFFu) != 0xFFFFFFu;
  }
  std::printf("%s: %zu inked %016llx\n", label.c_str(), inked, static_cast<unsigned long long>(hash));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  HDC dc = CreateCompatibleDC(nullptr);
  HBITMAP bitmap = CreateBitmap(kWidth, kHeight, 1, 32, nullptr);
  HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
  SetBkMode(dc, TRANSPARENT);
  std::printf("FreeType %s\n", platform::fonts::FreeTypeVersion().c_str());
  // Hangul in an Arial text comes from the Korean face; the Korean and Chinese default
  // faces take their text in their code pages.
  PrintDrawn(dc, bitmap, "Arial fallback", "Arial", 16, false, false, ANSI_CHARSET,
             std::string("Hello, 한글"));
  PrintDrawn(dc, bitmap, "Korean code page", "굴림체", 12, false, false, HANGEUL_CHARSET,
             std::string("\xB1\xBC\xB8\xB2\xC3\xBC \xC7\xD1\xB1\xDB ABC"));
  PrintDrawn(dc, bitmap, "Chinese code page", "宋体", 12, false, false, GB2312_CHARSET,
             std::string("\xCB\xCE\xCC\xE5 \xD6\xD0\xCE\xC4 ABC"));

  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
    paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end());
  for (const std::string& path : paths) {
    for (int index = 0; index < platform::fonts::FacesInFile(path); ++index) {
      std::string family;
      const auto file = platform::fonts::DescribeFace(path, index, &family);
      if (!file) continue;
      std::u16string characters;
      for (char16_t c = 0x20; c < 0xD800; ++c) {
        if ((c < 0x7F || c >= 0xA0) && platform::fonts::FaceHasCharacter(*file, c)) characters.push_back(c);
      }
      for (LONG em : {12, 16}) {
        for (std::size_t at = 0; at < characters.size(); at += 128) {
          char label[160];
          std::snprintf(label, sizeof label, "%s%s%s em %ld from U+%04X", family.c_str(),
                        file->bold ? " bold" : "", file->italic ? " italic" : "", static_cast<long>(em),
                        static_cast<unsigned>(characters[at]));
          PrintDrawn(dc, bitmap, label, family.c_str(), em, file->bold, file->italic, DEFAULT_CHARSET,
                     characters.substr(at, 128));
        }
      }
    }
  }
  SelectObject(dc, oldBitmap);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return 0;
}
