// Finding faces: the alias table, the fontconfig catalogue of this machine, and the
// folder catalogue a web page uses, which must answer as fontconfig does for the faces
// the page carries; and the synthesised styles of a face that lacks them.
#include "platform/font_catalogue.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <ostream>
#include <string>

#include "platform/font_face.h"
#include "platform/font_folder_catalogue.h"
#include "platform/kernel.h"

using namespace platform::fonts;

namespace platform::fonts {
void PrintTo(const FontFile& file, std::ostream* out) {
  *out << file.path << " #" << file.index << (file.bold ? " bold" : "") << (file.italic ? " italic" : "");
}
}  // namespace platform::fonts

namespace {

TEST(FontAliases, TheBuiltinTableReadsCleanly) {
  const FontAliases& table = FontAliases::Builtin();
  EXPECT_TRUE(table.errors().empty()) << table.errors().front();
  EXPECT_EQ(table.Substitutes("Arial"), (std::vector<std::string>{"Liberation Sans"}));
  EXPECT_EQ(table.Substitutes("굴림체"), (std::vector<std::string>{"Noto Sans Mono CJK KR"}));
  EXPECT_EQ(table.Substitutes("宋体"), (std::vector<std::string>{"Noto Sans Mono CJK SC"}));
  EXPECT_EQ(table.Fallbacks(FontLanguage::Korean), (std::vector<std::string>{"Noto Sans Mono CJK KR"}));
  EXPECT_EQ(table.DefaultFamily(), "Liberation Sans");
  // The faces the stock fonts name are drawn with a face every build carries.
  EXPECT_EQ(table.Substitutes("System"), (std::vector<std::string>{"Liberation Sans"}));
  EXPECT_EQ(table.Substitutes("MS Shell Dlg"), (std::vector<std::string>{"Liberation Sans"}));
}

TEST(FontAliases, NamesCompareWithoutCaseOrBlanks) {
  EXPECT_TRUE(SameFamily("Liberation Sans", "liberationsans"));
  EXPECT_TRUE(SameFamily(" Arial ", "A R I A L"));
  EXPECT_FALSE(SameFamily("Arial", "Arial Black"));
  EXPECT_FALSE(SameFamily("Arial", ""));
  EXPECT_TRUE(SameFamily("", "  "));
  EXPECT_EQ(FontAliases::Builtin().Substitutes("ARIAL").size(), 1u);
  EXPECT_TRUE(FontAliases::Builtin().Substitutes("Arial Black").empty());
}

TEST(FontAliases, LinesItCannotReadAreReportedAndSkipped) {
  const FontAliases table(
      "# comment\n"
      "\n"
      "alias A = B, , C \r\n"
      "alias = B\n"
      "alias D =\n"
      "fallback xx = E\n"
      "fallback ko = F\n"
      "default = G, H\n"
      "nonsense\n"
      "default = I");
  EXPECT_EQ(table.Substitutes("A"), (std::vector<std::string>{"B", "C"}));
  EXPECT_EQ(table.Fallbacks(FontLanguage::Korean), (std::vector<std::string>{"F"}));
  EXPECT_TRUE(table.Fallbacks(FontLanguage::Japanese).empty());
  EXPECT_EQ(table.DefaultFamily(), "I");
  EXPECT_EQ(table.errors(),
            (std::vector<std::string>{"line 4: cannot read \"alias\"", "line 5: no family after '='",
                                      "line 6: cannot read \"fallback xx\"",
                                      "line 8: cannot read \"default\"", "line 9: no family after '='"}));
}

std::string FamilyOf(const FontFile& file) {
  std::string family;
  EXPECT_TRUE(DescribeFace(file.path, file.index, &family));
  return family;
}

TEST(InstalledFonts, ArialIsLiberationSansInEveryStyle) {
  for (bool bold : {false, true}) {
    for (bool italic : {false, true}) {
      const auto file = InstalledFonts().Find({"Arial", bold, italic});
      ASSERT_TRUE(file);
      EXPECT_EQ(FamilyOf(*file), "Liberation Sans");
      EXPECT_EQ(file->bold, bold);
      EXPECT_EQ(file->italic, italic);
    }
  }
  const auto korean = InstalledFonts().Find({"굴림체", false, false, FontLanguage::Korean});
  ASSERT_TRUE(korean);
  EXPECT_EQ(FamilyOf(*korean), "Noto Sans Mono CJK KR");
  // A face nobody has still gets a face, and one without a name the default family.
  EXPECT_TRUE(InstalledFonts().Find({"No Such Face 12345"}));
  EXPECT_EQ(FamilyOf(*InstalledFonts().Find({""})), "Liberation Sans");
  // Characters a face lacks come from a face that has them, the language's first.
  const auto hangul = InstalledFonts().FindCovering({"Arial"}, U'한');
  ASSERT_TRUE(hangul);
  EXPECT_TRUE(FaceHasCharacter(*hangul, U'한'));
  EXPECT_FALSE(InstalledFonts().FindCovering({"Arial"}, 0x10FFFD));  // a private-use character
}

// A folder of links to the files a web page carries.
class PageFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = platform::TempFolder() + "page_fonts_XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    const FontRequest shipped[] = {{"Liberation Sans", false, false}, {"Liberation Sans", true, false},
                                   {"Liberation Sans", false, true},  {"Liberation Sans", true, true},
                                   {"Noto Sans Mono CJK KR"},         {"Noto Sans Mono CJK SC"}};
    for (const FontRequest& request : shipped) {
      const auto file = InstalledFonts().Find(request);
      ASSERT_TRUE(file);
      const std::filesystem::path target(file->path);
      const std::filesystem::path link = folder_ / target.filename();
      if (!std::filesystem::exists(link)) std::filesystem::create_symlink(target, link);
    }
  }
  // The file and face, with the link taken to the file it names.
  static std::optional<FontFile> Resolved(std::optional<FontFile> file) {
    if (file) file->path = std::filesystem::canonical(file->path).string();
    return file;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::filesystem::path folder_;
};

TEST_F(PageFolder, FindsWhatFontconfigFindsForTheShippedFaces) {
  FolderFontCatalogue page(folder_.string());
  const FontRequest requests[] = {
      {"Arial"},
      {"Arial", true},
      {"Arial", false, true},
      {"Arial", true, true},
      {"arial"},
      {""},
      {"굴림체", false, false, FontLanguage::Korean},
      {"宋体", false, false, FontLanguage::SimplifiedChinese},
      {"MS Shell Dlg"},
  };
  for (const FontRequest& request : requests) {
    EXPECT_EQ(Resolved(page.Find(request)), Resolved(InstalledFonts().Find(request))) << request.face;
  }
  const std::pair<FontRequest, char32_t> covering[] = {
      {{"Arial"}, U'한'},
      {{"Arial", false, false, FontLanguage::Korean}, U'韓'},
      {{"Arial", false, true, FontLanguage::SimplifiedChinese}, U'中'},
      {{"굴림체", false, false, FontLanguage::Korean}, U'가'},
  };
  for (const auto& [request, c] : covering) {
    EXPECT_EQ(Resolved(page.FindCovering(request, c)), Resolved(InstalledFonts().FindCovering(request, c)))
        << request.face << " " << static_cast<std::uint32_t>(c);
  }
}

TEST_F(PageFolder, FacesThePageLacksFallBackToTheDefaultFamily) {
  FolderFontCatalogue page(folder_.string());
  for (const char* face : {"Times New Roman", "No Such Face"}) {
    const auto file = page.Find({face, true});
    ASSERT_TRUE(file);
    EXPECT_EQ(FamilyOf(*file), "Liberation Sans");
    EXPECT_TRUE(file->bold);
  }
  // The nearest style: a wrong slant counts worse than a wrong weight.
  const auto korean = page.Find({"굴림체", true, true});
  ASSERT_TRUE(korean);
  EXPECT_EQ(FamilyOf(*korean), "Noto Sans Mono CJK KR");
  EXPECT_FALSE(korean->bold || korean->italic);
  // The page carries regular CJK faces only: bold Hangul is synthesised from them.
  const auto boldHangul = page.FindCovering({"Arial", true}, U'한');
  ASSERT_TRUE(boldHangul);
  EXPECT_FALSE(boldHangul->bold);
  EXPECT_FALSE(page.FindCovering({"Arial"}, 0x10FFFD));
  // A folder without fonts has nothing to offer.
  FolderFontCatalogue empty((folder_ / "missing").string());
  EXPECT_FALSE(empty.Find({"Arial"}));
}

TEST(SizedFace, SynthesisedBoldWidensAndObliqueSlants) {
  const auto file = InstalledFonts().Find({"Arial"});
  ASSERT_TRUE(file);
  const auto plain = SizedFace::Open(*file, {20, false, false});
  const auto bold = SizedFace::Open(*file, {20, true, false});
  const auto oblique = SizedFace::Open(*file, {20, false, true});
  ASSERT_TRUE(plain && bold && oblique);
  EXPECT_EQ(SizedFace::Open(*file, {20, false, false}), plain);  // shared while held
  const Glyph l = plain->GlyphOf(U'l');
  const Glyph thick = bold->GlyphOf(U'l');
  const Glyph slanted = oblique->GlyphOf(U'l');
  EXPECT_EQ(thick.advance, l.advance + 1);
  EXPECT_EQ(thick.width, l.width + 1);
  EXPECT_EQ(slanted.advance, l.advance);
  const auto firstInk = [](const Glyph& glyph, int row) {
    for (int x = 0; x < glyph.width; ++x) {
      if (glyph.Ink(x, row)) return x;
    }
    return -1;
  };
  EXPECT_EQ(firstInk(l, 0), firstInk(l, l.rows - 1));
  EXPECT_GT(slanted.left + firstInk(slanted, 0), slanted.left + firstInk(slanted, slanted.rows - 1) + 2);
  // Sizes beyond the cap or below a pixel are refused; heights map into them.
  EXPECT_FALSE(SizedFace::Open(*file, {kMaxEmPixels + 1}));
  EXPECT_FALSE(SizedFace::Open(*file, {0}));
  EXPECT_EQ(SizedFace::EmPixelsFor(*file, -13), 13);
  EXPECT_EQ(SizedFace::EmPixelsFor(*file, INT32_MIN), kMaxEmPixels);
  EXPECT_EQ(SizedFace::EmPixelsFor(*file, INT32_MAX), kMaxEmPixels);
  EXPECT_EQ(SizedFace::EmPixelsFor(FontFile{"/no/such/font.ttf"}, -13), 0);
  EXPECT_FALSE(SizedFace::Open(FontFile{"/no/such/font.ttf"}, {13}));
}

}  // namespace
