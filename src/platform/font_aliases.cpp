#include "platform/font_aliases.h"

#include <utility>

#include "platform/text.h"

namespace platform::fonts {
namespace {

constexpr char kBuiltinTable[] =
#include "font_aliases.inc"
    ;

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// "A, B ,C" as its trimmed, non-empty items.
std::vector<std::string> SplitFamilies(std::string_view list) {
  std::vector<std::string> families;
  while (true) {
    const std::size_t comma = list.find(',');
    const std::string_view item = Trim(list.substr(0, comma));
    if (!item.empty()) families.emplace_back(item);
    if (comma == std::string_view::npos) return families;
    list.remove_prefix(comma + 1);
  }
}

bool ReadLanguage(std::string_view name, FontLanguage* language) {
  static constexpr std::pair<std::string_view, FontLanguage> kNames[] = {
      {"ko", FontLanguage::Korean},
      {"zh-cn", FontLanguage::SimplifiedChinese},
      {"zh-tw", FontLanguage::TraditionalChinese},
      {"ja", FontLanguage::Japanese},
  };
  for (const auto& [text, value] : kNames) {
    if (EqualsIgnoringCase(name, text)) {
      *language = value;
      return true;
    }
  }
  return false;
}

const std::vector<std::string>& NoFamilies() {
  static const std::vector<std::string> none;
  return none;
}

}  // namespace

bool SameFamily(std::string_view a, std::string_view b) {
  std::size_t i = 0, j = 0;
  while (true) {
    while (i < a.size() && IsBlank(a[i])) ++i;
    while (j < b.size() && IsBlank(b[j])) ++j;
    if (i == a.size() || j == b.size()) return i == a.size() && j == b.size();
    if (AsciiLower(a[i]) != AsciiLower(b[j])) return false;
    ++i;
    ++j;
  }
}

const FontAliases& FontAliases::Builtin() {
  static const FontAliases table(kBuiltinTable);
  return table;
}

FontAliases::FontAliases(std::string_view text) {
  int number = 0;
  while (!text.empty()) {
    const std::size_t newline = text.find('\n');
    std::string_view line = text.substr(0, newline);
    text.remove_prefix(newline == std::string_view::npos ? text.size() : newline + 1);
    ++number;
    line = Trim(line);
    if (line.empty() || line.front() == '#') continue;
    const std::size_t equals = line.find('=');
    const std::string_view key = Trim(line.substr(0, equals));
    const std::vector<std::string> families = equals == std::string_view::npos
                                                  ? std::vector<std::string>{}
                                                  : SplitFamilies(line.substr(equals + 1));
    FontLanguage language = FontLanguage::None;
    if (families.empty()) {
      errors_.push_back("line " + std::to_string(number) + ": no family after '='");
    } else if (key.substr(0, 6) == "alias " && !Trim(key.substr(6)).empty()) {
      aliases_.push_back({std::string(Trim(key.substr(6))), families});
    } else if (key.substr(0, 9) == "fallback " && ReadLanguage(Trim(key.substr(9)), &language)) {
      fallbacks_.push_back({language, families});
    } else if (key == "default" && families.size() == 1) {
      default_ = families.front();
    } else {
      errors_.push_back("line " + std::to_string(number) + ": cannot read \"" + std::string(key) + "\"");
    }
  }
}

const std::vector<std::string>& FontAliases::Substitutes(std::string_view face) const {
  for (const Alias& alias : aliases_) {
    if (SameFamily(alias.face, face)) return alias.families;
  }
  return NoFamilies();
}

const std::vector<std::string>& FontAliases::Fallbacks(FontLanguage language) const {
  for (const Fallback& fallback : fallbacks_) {
    if (fallback.language == language) return fallback.families;
  }
  return NoFamilies();
}

}  // namespace platform::fonts
