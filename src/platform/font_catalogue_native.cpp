// The fonts of the machine, found through fontconfig. A request becomes one pattern
// whose families are the alias table's, then the face asked for, so an installed
// substitute wins over fontconfig's own guesses; what none of them names gets
// fontconfig's best match, the way the desktop's own programs see it.
#include <fontconfig/fontconfig.h>

#include <memory>

#include "platform/font_catalogue.h"
#include "platform/font_face.h"

namespace platform::fonts {
namespace {

struct PatternDeleter {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

const char* LanguageTag(FontLanguage language) {
  switch (language) {
    case FontLanguage::Korean:
      return "ko";
    case FontLanguage::SimplifiedChinese:
      return "zh-cn";
    case FontLanguage::TraditionalChinese:
      return "zh-tw";
    case FontLanguage::Japanese:
      return "ja";
    case FontLanguage::None:
      break;
  }
  return nullptr;
}

class FontconfigCatalogue final : public FontCatalogue {
 public:
  FontconfigCatalogue() : ready_(FcInit() == FcTrue) {}
  // fontconfig keeps its configuration where leak checkers cannot see it: it is
  // handed back when the catalogue goes, at exit.
  ~FontconfigCatalogue() override {
    if (ready_) FcFini();
  }

  std::optional<FontFile> Find(const FontRequest& request) override {
    return Match(request, RequestedFamilies(request, FontAliases::Builtin()), nullptr);
  }

  std::optional<FontFile> FindCovering(const FontRequest& request, char32_t c) override {
    const FontAliases& aliases = FontAliases::Builtin();
    std::vector<std::string> families = aliases.Fallbacks(request.language);
    for (std::string& family : RequestedFamilies(request, aliases)) families.push_back(std::move(family));
    return Match(request, families, &c);
  }

 private:
  // The best match for the families and style; with a character, fontconfig weighs
  // covering it above the family, and the match must have it.
  std::optional<FontFile> Match(const FontRequest& request, const std::vector<std::string>& families,
                                const char32_t* character) const {
    if (!ready_) return std::nullopt;
    Pattern pattern(FcPatternCreate());
    for (const std::string& family : families)
      FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, request.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    if (const char* tag = LanguageTag(request.language))
      FcPatternAddString(pattern.get(), FC_LANG, reinterpret_cast<const FcChar8*>(tag));
    if (character) {
      FcCharSet* wanted = FcCharSetCreate();
      FcCharSetAddChar(wanted, *character);
      FcPatternAddCharSet(pattern.get(), FC_CHARSET, wanted);
      FcCharSetDestroy(wanted);
    }
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    Pattern match(FcFontMatch(nullptr, pattern.get(), &result));
    if (!match) return std::nullopt;

    FcChar8* file = nullptr;
    int index = 0;
    FcCharSet* covered = nullptr;
    if (FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch) return std::nullopt;
    FcPatternGetInteger(match.get(), FC_INDEX, 0, &index);
    if (character && (FcPatternGetCharSet(match.get(), FC_CHARSET, 0, &covered) != FcResultMatch ||
                      !FcCharSetHasChar(covered, *character)))
      return std::nullopt;
    // The style the face has itself: the match reports the style fontconfig would
    // synthesise as if the face had it.
    return DescribeFace(reinterpret_cast<const char*>(file), index, nullptr);
  }

  bool ready_;
};

}  // namespace

FontCatalogue& InstalledFonts() {
  static FontconfigCatalogue catalogue;
  return catalogue;
}

}  // namespace platform::fonts
