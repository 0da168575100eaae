// The alias table (fonts/font_aliases.txt, compiled in): the families that draw a
// face, the families that supply the characters a face lacks, by language, and the
// family drawn when nothing else is. Both font catalogues read it, so a face is
// resolved alike natively and in a web page.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform::fonts {

// The language a text is written in, as far as choosing faces goes.
enum class FontLanguage { None, Korean, SimplifiedChinese, TraditionalChinese, Japanese };

// Family names are equal when they differ only in ASCII case and blanks, the way
// fontconfig compares them ("Liberation Sans" and "liberationsans").
bool SameFamily(std::string_view a, std::string_view b);

class FontAliases {
 public:
  // The table compiled into the platform layer.
  static const FontAliases& Builtin();

  // Reads a table in the format fonts/font_aliases.txt describes. A line that is not
  // in it is skipped and reported in errors(), by its line number.
  explicit FontAliases(std::string_view text);

  // The families that draw `face`, best first; empty when the table has none for it.
  const std::vector<std::string>& Substitutes(std::string_view face) const;
  // The families looked in first for a character a face lacks, in text of `language`.
  const std::vector<std::string>& Fallbacks(FontLanguage language) const;
  const std::string& DefaultFamily() const { return default_; }
  const std::vector<std::string>& errors() const { return errors_; }

 private:
  struct Alias {
    std::string face;
    std::vector<std::string> families;
  };
  struct Fallback {
    FontLanguage language;
    std::vector<std::string> families;
  };

  std::vector<Alias> aliases_;
  std::vector<Fallback> fallbacks_;
  std::string default_;
  std::vector<std::string> errors_;
};

}  // namespace platform::fonts
