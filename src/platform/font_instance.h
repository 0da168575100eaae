// A logical font made ready to draw: the face its LOGFONTA asks for at its size, the
// metrics GetTextMetricsA reports, the code page its character set reads multibyte
// text in, and the face that draws each character: its own, or for a character it
// lacks a fallback face of the text's language, so that Hangul in an Arial text
// never shows as boxes.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/font_face.h"
#include "platform/gdi_text.h"

namespace platform::fonts {

// The code page the A calls read text in for a LOGFONTA character set: 949, 936,
// 950 or 932 for the East Asian sets, UTF-8 (the ANSI code page) for any other.
UINT CodePageOfCharset(BYTE charset);
// The language a character set implies; None for the others.
FontLanguage LanguageOfCharset(BYTE charset);
// What a LOGFONTA asks the catalogue for: its face, bold from a weight of 600 up, its
// slant and the language of its character set.
FontRequest RequestFor(const LOGFONTA& font);
// The language whose face draws a character that the font `request` finds lacks: the
// font's own language; else the one a Hangul or kana character shows; else the
// user's, for Han characters that several languages share.
FontLanguage FallbackLanguage(const FontRequest& request, char32_t c);

class FontInstance {
 public:
  // Shared by every font object with the same description; null when no face can be
  // found and sized at all.
  static std::shared_ptr<FontInstance> For(const LOGFONTA& font);

  const TEXTMETRICA& metrics() const { return metrics_; }
  const FaceMetrics& faceMetrics() const { return primary_->metrics(); }
  UINT codePage() const { return codePage_; }
  bool underlined() const { return underlined_; }
  bool struckOut() const { return struckOut_; }

  // The glyph that draws `c`: the font's own; for a character it lacks, a fallback
  // face's; a control character it lacks takes the space's glyph; anything no face
  // has, the font's missing-glyph box. The reference holds until the next call.
  const Glyph& GlyphOf(char32_t c);
  int Advance(char32_t c) { return GlyphOf(c).advance; }

 private:
  FontInstance(const LOGFONTA& font, std::shared_ptr<SizedFace> primary, int em);
  SizedFace& FallbackFor(char32_t c);

  FontRequest request_;
  std::shared_ptr<SizedFace> primary_;
  int em_;
  TEXTMETRICA metrics_{};
  UINT codePage_;
  bool underlined_;
  bool struckOut_;
  // The fallback faces in use, and for each character the font lacks the one that
  // has it (null: none has it).
  std::vector<std::shared_ptr<SizedFace>> fallbackFaces_;
  std::unordered_map<char32_t, SizedFace*> fallbacks_;
};

}  // namespace platform::fonts
