// Draws text in the faces a web page carries, with the platform layer only. Built
// natively (tests/) and for Node (hosts/web/); tests/web/fonts.test.mjs requires the
// two to print the same, which holds only if both find the same font files (the page
// carries subsets of the CJK faces) and FreeType hints them alike.
//   text_sample         FreeType's version, then a sample of text, printed as
//                       "WIDTHxHEIGHT" and one line of hexadecimal red, green, blue
//                       bytes per row
//   text_sample --all FOLDER
//                       every character of the faces in the page's font folder
//                       (natively build/wasm/page-fonts, in the page /fonts), drawn
//                       in the faces of those names at two sizes, as digest lines
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/font_face.h"
#include "platform/gdi.h"
#include "platform/gdi_text.h"

namespace {

constexpr int kWidth = 240;
constexpr int kHeight = 120;

LOGFONTA Font(const char* face, LONG height, LONG weight, BYTE charset, bool italic, bool underline) {
  LOGFONTA font{};
  font.lfHeight = height;
  font.lfWeight = weight;
  font.lfCharSet = charset;
  font.lfItalic = italic;
  font.lfUnderline = underline;
  std::strncpy(font.lfFaceName, face, LF_FACESIZE - 1);
  return font;
}

// Draws `text` with the font in the rectangle and returns the rectangle's bottom.
int Draw(HDC dc, const LOGFONTA& description, const char* text, RECT rect, UINT format) {
  HFONT font = CreateFontIndirectA(&description);
  HGDIOBJ old = SelectObject(dc, font);
  const int height = DrawTextA(dc, text, -1, &rect, format);
  SelectObject(dc, old);
  DeleteObject(font);
  return rect.top + height;
}

// 64-bit FNV-1a of the bitmap's pixels.
std::uint64_t Digest(HBITMAP bitmap) {
  int width = 0, height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(bitmap, &width, &height);
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (std::size_t i = 0; i < static_cast<std::size_t>(width) * height; ++i) {
    hash = (hash ^ pixels[i]) * 0x100000001B3u;
  }
  return hash;
}

// Every character (up to U+FFFF) of every face in the font files of `folder`, drawn
// in a font naming the face's family and style, 128 characters to a digest line.
int AllCharacters(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end());
  HDC dc = CreateCompatibleDC(nullptr);
  HBITMAP bitmap = CreateBitmap(128 * 24, 32, 1, 32, nullptr);
  HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
  SetBkMode(dc, TRANSPARENT);
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
        const LOGFONTA description =
            Font(family.c_str(), -em, file->bold ? FW_BOLD : FW_NORMAL, DEFAULT_CHARSET, file->italic, false);
        HFONT font = CreateFontIndirectA(&description);
        HGDIOBJ oldFont = SelectObject(dc, font);
        for (std::size_t at = 0; at < characters.size(); at += 128) {
          const std::u16string chunk = characters.substr(at, 128);
          RECT all{0, 0, 128 * 24, 32};
          FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
          DrawTextW(dc, chunk.c_str(), static_cast<int>(chunk.size()), &all, DT_SINGLELINE | DT_NOPREFIX);
          std::printf("%s%s%s em %ld from U+%04X: %zu characters %016llx\n", family.c_str(),
                      file->bold ? " bold" : "", file->italic ? " italic" : "", static_cast<long>(em),
                      static_cast<unsigned>(chunk[0]), chunk.size(),
                      static_cast<unsigned long long>(Digest(bitmap)));
        }
        SelectObject(dc, oldFont);
        DeleteObject(font);
      }
    }
  }
  SelectObject(dc, oldBitmap);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], "--all") == 0) return AllCharacters(argv[2]);
  HDC dc = CreateCompatibleDC(nullptr);
  HBITMAP bitmap = CreateBitmap(kWidth, kHeight, 1, 32, nullptr);
  HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
  const RECT all{0, 0, kWidth, kHeight};
  FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0, 0, 0));

  int y = 0;
  // Hangul in an Arial text comes from the Korean face.
  y = Draw(dc, Font("Arial", -16, FW_NORMAL, ANSI_CHARSET, false, false), "Hello, 한글",
           {2, y, kWidth, kHeight}, DT_NOPREFIX);
  y = Draw(dc, Font("Arial", -13, FW_BOLD, ANSI_CHARSET, true, false), "Bold italic, &underlined",
           {2, y, kWidth, kHeight}, 0);
  // The Korean and Chinese default faces, their text in their code pages.
  y = Draw(dc, Font("굴림체", -12, FW_NORMAL, HANGEUL_CHARSET, false, false),
           "\xB1\xBC\xB8\xB2\xC3\xBC \xC7\xD1\xB1\xDB ABC", {2, y, kWidth, kHeight}, 0);
  y = Draw(dc, Font("宋体", -12, FW_NORMAL, GB2312_CHARSET, false, false),
           "\xCB\xCE\xCC\xE5 \xD6\xD0\xCE\xC4 ABC", {2, y, kWidth, kHeight}, 0);
  // A text box as the editor stamps one: wrapped, opaque, underlined.
  SetBkMode(dc, OPAQUE);
  SetBkColor(dc, RGB(255, 255, 0));
  SetTextColor(dc, RGB(200, 0, 0));
  Draw(dc, Font("Arial", -11, FW_NORMAL, ANSI_CHARSET, false, true),
       "The quick brown fox jumps over the lazy dog, 다람쥐 헌 쳇바퀴에 타고파", {2, y, 150, kHeight},
       DT_WORDBREAK | DT_EDITCONTROL);

  std::printf("FreeType %s\n%dx%d\n", platform::fonts::FreeTypeVersion().c_str(), kWidth, kHeight);
  for (int row = 0; row < kHeight; ++row) {
    std::string line;
    for (int x = 0; x < kWidth; ++x) {
      const COLORREF color = GetPixel(dc, x, row);
      char hex[7];
      std::snprintf(hex, sizeof hex, "%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
      line += hex;
    }
    std::printf("%s\n", line.c_str());
  }
  SelectObject(dc, oldBitmap);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return 0;
}
