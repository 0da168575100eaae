#include "platform/font_instance.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

namespace platform::fonts {
namespace {

bool IsHangul(char32_t c) {
  return (c >= 0x1100 && c <= 0x11FF) || (c >= 0x3130 && c <= 0x318F) || (c >= 0xA960 && c <= 0xA97F) ||
         (c >= 0xAC00 && c <= 0xD7FF);
}

bool IsKana(char32_t c) { return (c >= 0x3040 && c <= 0x30FF) || (c >= 0x31F0 && c <= 0x31FF); }

// C0 and C1 controls: drawn as spaces when the face has no glyph of its own for them,
// the way GDI shows a line break in a single-line text.
bool IsControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

std::string FaceName(const LOGFONTA& font) {
  return std::string(font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE));
}

}  // namespace

UINT CodePageOfCharset(BYTE charset) {
  switch (charset) {
    case HANGEUL_CHARSET:
      return 949;
    case GB2312_CHARSET:
      return 936;
    case CHINESEBIG5_CHARSET:
      return 950;
    case SHIFTJIS_CHARSET:
      return 932;
    default:
      return CP_UTF8;
  }
}

FontLanguage LanguageOfCharset(BYTE charset) {
  switch (charset) {
    case HANGEUL_CHARSET:
      return FontLanguage::Korean;
    case GB2312_CHARSET:
      return FontLanguage::SimplifiedChinese;
    case CHINESEBIG5_CHARSET:
      return FontLanguage::TraditionalChinese;
    case SHIFTJIS_CHARSET:
      return FontLanguage::Japanese;
    default:
      return FontLanguage::None;
  }
}

FontRequest RequestFor(const LOGFONTA& font) {
  return FontRequest{FaceName(font), font.lfWeight >= 600, font.lfItalic != 0,
                     LanguageOfCharset(font.lfCharSet)};
}

std::shared_ptr<FontInstance> FontInstance::For(const LOGFONTA& font) {
  // Descriptions that differ only after the face name's terminator are one font.
  LOGFONTA normal = font;
  const std::string face = FaceName(font);
  std::memset(normal.lfFaceName, 0, LF_FACESIZE);
  std::memcpy(normal.lfFaceName, face.data(), face.size());
  static std::map<std::string, std::weak_ptr<FontInstance>> instances;
  const std::string key(reinterpret_cast<const char*>(&normal), sizeof normal);
  if (auto shared = instances[key].lock()) return shared;
  std::erase_if(instances, [](const auto& entry) { return entry.second.expired(); });

  const FontRequest request = RequestFor(font);
  const std::optional<FontFile> file = InstalledFonts().Find(request);
  if (!file) return nullptr;
  const int em = SizedFace::EmPixelsFor(*file, font.lfHeight);
  auto primary = SizedFace::Open(*file, {em, request.bold && !file->bold, request.italic && !file->italic});
  if (!primary) return nullptr;
  std::shared_ptr<FontInstance> shared(new FontInstance(normal, std::move(primary), em));
  instances[key] = shared;
  return shared;
}

FontInstance::FontInstance(const LOGFONTA& font, std::shared_ptr<SizedFace> primary, int em)
    : request_(RequestFor(font)),
      primary_(std::move(primary)),
      em_(em),
      codePage_(CodePageOfCharset(font.lfCharSet)),
      underlined_(font.lfUnderline != 0),
      struckOut_(font.lfStrikeOut != 0) {
  const FaceMetrics& face = primary_->metrics();
  TEXTMETRICA& m = metrics_;
  m.tmAscent = face.ascent;
  m.tmDescent = face.descent;
  m.tmHeight = face.ascent + face.descent;
  m.tmInternalLeading = face.internalLeading;
  m.tmExternalLeading = face.externalLeading;
  m.tmAveCharWidth = face.averageWidth;
  m.tmMaxCharWidth = face.maxWidth;
  m.tmWeight = request_.bold ? FW_BOLD : FW_NORMAL;
  m.tmDigitizedAspectX = 96;
  m.tmDigitizedAspectY = 96;
  m.tmFirstChar = 0x20;
  m.tmLastChar = 0xFF;
  m.tmDefaultChar = 0x1F;
  m.tmBreakChar = 0x20;
  m.tmItalic = request_.italic ? 0xFF : 0;
  m.tmUnderlined = underlined_ ? 0xFF : 0;
  m.tmStruckOut = struckOut_ ? 0xFF : 0;
  m.tmPitchAndFamily =
      static_cast<BYTE>((face.fixedPitch ? 0 : TMPF_FIXED_PITCH) | TMPF_VECTOR | TMPF_TRUETYPE);
  m.tmCharSet = font.lfCharSet == DEFAULT_CHARSET ? ANSI_CHARSET : font.lfCharSet;
}

const Glyph& FontInstance::GlyphOf(char32_t c) {
  if (primary_->Has(c)) return primary_->GlyphOf(c);
  if (IsControl(c)) return primary_->GlyphOf(U' ');
  return FallbackFor(c).GlyphOf(c);
}

SizedFace& FontInstance::FallbackFor(char32_t c) {
  auto found = fallbacks_.find(c);
  if (found == fallbacks_.end()) {
    SizedFace* face = nullptr;
    FontRequest request = request_;
    request.language = FallbackLanguage(request_, c);
    if (const std::optional<FontFile> file = InstalledFonts().FindCovering(request, c)) {
      if (auto opened =
              SizedFace::Open(*file, {em_, request.bold && !file->bold, request.italic && !file->italic})) {
        face = opened.get();
        if (std::find(fallbackFaces_.begin(), fallbackFaces_.end(), opened) == fallbackFaces_.end())
          fallbackFaces_.push_back(std::move(opened));
      }
    }
    found = fallbacks_.emplace(c, face).first;
  }
  return found->second ? *found->second : *primary_;
}

FontLanguage FallbackLanguage(const FontRequest& request, char32_t c) {
  if (request.language != FontLanguage::None) return request.language;
  if (IsHangul(c)) return FontLanguage::Korean;
  if (IsKana(c)) return FontLanguage::Japanese;
  const LANGID language = GetUserDefaultLangID();
  switch (language & 0x3FF) {
    case 0x12:
      return FontLanguage::Korean;
    case 0x11:
      return FontLanguage::Japanese;
    case 0x04: {
      // Taiwan, Hong Kong and Macao write traditional characters.
      const int region = language >> 10;
      return region == 1 || region == 3 || region == 5 ? FontLanguage::TraditionalChinese
                                                       : FontLanguage::SimplifiedChinese;
    }
    default:
      return FontLanguage::None;
  }
}

}  // namespace platform::fonts
