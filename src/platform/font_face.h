// FreeType behind the fonts: every face of a font file is opened once; a face is
// drawn at one size, with bold or italic synthesised when its file lacks them; its
// metrics are the ones GDI reports for a TrueType font; its glyphs are hinted and
// rendered in monochrome, every pixel in or out, never smoothed.
//
// FreeType's hinting engines are chosen here rather than left to its defaults or to
// the FREETYPE_PROPERTIES variable, so that the native library and the one compiled
// into a web page (the same version) hint alike and give the same pixels.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/font_catalogue.h"

// FreeType's handle types, without its headers.
struct FT_FaceRec_;
struct FT_SizeRec_;

namespace platform::fonts {

// A font is drawn at most this many pixels an em (a 768-point font at 96 dpi), so
// that a huge logical height costs no more than a large glyph cache.
inline constexpr int kMaxEmPixels = 1024;
// The cell height of a font whose logical height is 0, GDI's default size.
inline constexpr int kDefaultCellHeight = 16;

struct Glyph {
  int advance = 0;  // pixels from this character's origin to the next one's
  int left = 0;     // the bitmap's first column, from the origin
  int top = 0;      // rows of the bitmap above the baseline
  int width = 0;
  int rows = 0;
  int pitch = 0;                   // bytes a row
  std::vector<std::uint8_t> bits;  // a bit a pixel, the leftmost in a byte's top bit
  bool Ink(int x, int y) const {
    return (bits[static_cast<std::size_t>(y) * pitch + (x >> 3)] >> (7 - (x & 7))) & 1;
  }
};

// A sized face's metrics in pixels, as GDI computes them for a TrueType font: the
// cell spans the face's Windows ascent and descent, the internal leading is what the
// cell holds beyond the em, and the external leading what the face's line gap adds.
struct FaceMetrics {
  int ascent = 0;
  int descent = 0;
  int internalLeading = 0;
  int externalLeading = 0;
  int averageWidth = 0;
  int maxWidth = 0;
  bool fixedPitch = false;
  // The decoration lines: where their first row lies, in rows below the baseline
  // (negative: above it), and how many rows they are thick. Both lie inside the cell.
  int underlineOffset = 0;
  int underlineThickness = 1;
  int strikeoutOffset = 0;
  int strikeoutThickness = 1;
};

// How large a face is drawn and what is synthesised: emboldening widens every glyph
// and its advance by em / 24 (at least one pixel), as GDI's simulated bold does; the
// oblique slants glyphs by about 12 degrees and leaves advances alone.
struct FaceSize {
  int emPixels = 0;
  bool embolden = false;
  bool oblique = false;
  bool operator==(const FaceSize&) const = default;
};

class SizedFace {
 public:
  // Shared by every font that draws that face at that size while any holds it; null
  // when the file cannot be read or its face is not scalable.
  static std::shared_ptr<SizedFace> Open(const FontFile& file, const FaceSize& size);
  // The em for a LOGFONTA height: a negative height is the em itself, a positive one
  // the cell (ascent + descent), 0 the default cell; between 1 and kMaxEmPixels. 0
  // when the file cannot be read.
  static int EmPixelsFor(const FontFile& file, std::int64_t logicalHeight);

  SizedFace(const SizedFace&) = delete;
  SizedFace& operator=(const SizedFace&) = delete;
  ~SizedFace();

  const FaceMetrics& metrics() const { return metrics_; }
  const FaceSize& size() const { return size_; }
  bool Has(char32_t c) const;
  // The glyph of `c`, the face's missing-glyph box when it has none. The reference
  // holds until the next call, which may empty the cache.
  const Glyph& GlyphOf(char32_t c);

 private:
  SizedFace(FT_FaceRec_* face, FT_SizeRec_* ftSize, const FaceSize& size);
  Glyph Render(unsigned glyphIndex);

  FT_FaceRec_* face_;
  FT_SizeRec_* ftSize_;
  FaceSize size_;
  FaceMetrics metrics_;
  std::unordered_map<unsigned, Glyph> glyphs_;  // by glyph index
  std::size_t cachedBytes_ = 0;
};

// What a catalogue of font files needs to know of them.
// The number of faces in a font file; 0 when it is not a font FreeType reads.
int FacesInFile(const std::string& path);
// A face of a font file as a FontFile, with its family name; nothing when unreadable.
std::optional<FontFile> DescribeFace(const std::string& path, int index, std::string* family);
bool FaceHasCharacter(const FontFile& file, char32_t c);

}  // namespace platform::fonts
