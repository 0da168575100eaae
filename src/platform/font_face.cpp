#include "platform/font_face.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_DRIVER_H
#include FT_MODULE_H
#include FT_OUTLINE_H
#include FT_SIZES_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <map>
#include <tuple>

namespace platform::fonts {
namespace {

// A glyph cache holding more than this is emptied before it grows further.
constexpr std::size_t kGlyphCacheBytes = std::size_t{4} << 20;
// tan(12 degrees) in 16.16: the slant of a synthesised italic.
constexpr FT_Fixed kObliqueShear = 0x0366A;

// The FreeType library and every face opened from it, kept for the life of the
// process: sizes and glyph caches of faces may outlive any static owner.
class FontLibrary {
 public:
  static FontLibrary& Instance() {
    static FontLibrary* library = new FontLibrary;
    return *library;
  }

  // The face, opened on first use; null when the file is not a font FreeType reads.
  FT_Face Face(const std::string& path, int index) {
    const auto key = std::make_pair(path, index);
    if (const auto found = faces_.find(key); found != faces_.end()) return found->second;
    FT_Face face = nullptr;
    if (!library_ || FT_New_Face(library_, path.c_str(), index, &face) != 0) face = nullptr;
    faces_.emplace(key, face);
    return face;
  }

 private:
  FontLibrary() {
    if (FT_Init_FreeType(&library_) != 0) {
      library_ = nullptr;
      return;
    }
    // The engines this version uses by default, named so that the environment
    // cannot change them: the TrueType interpreter's version 40 (which hints
    // monochrome glyphs in full) and Adobe's CFF hinter.
    FT_UInt interpreter = TT_INTERPRETER_VERSION_40;
    FT_Property_Set(library_, "truetype", "interpreter-version", &interpreter);
    FT_UInt cffEngine = FT_HINTING_ADOBE;
    FT_Property_Set(library_, "cff", "hinting-engine", &cffEngine);
  }

  FT_Library library_ = nullptr;
  std::map<std::pair<std::string, int>, FT_Face> faces_;
};

// value * em / unitsPerEm, rounded half away from zero.
int Scale(std::int64_t value, int em, int unitsPerEm) {
  const std::int64_t scaled = value * em * 2;
  const std::int64_t rounded =
      (scaled >= 0 ? scaled + unitsPerEm : scaled - unitsPerEm) / (std::int64_t{2} * unitsPerEm);
  return static_cast<int>(rounded);
}

// The face's Windows ascent and descent in font units: what a GDI cell spans.
std::pair<int, int> WindowsAscentDescent(FT_Face face) {
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 && os2->version != 0xFFFF && os2->usWinAscent + os2->usWinDescent > 0)
    return {os2->usWinAscent, os2->usWinDescent};
  return {face->ascender, -face->descender};
}

int EmboldenPixels(int em) { return std::max(1, (em + 12) / 24); }

bool IsBoldFace(FT_Face face) {
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 && os2->version != 0xFFFF && os2->usWeightClass > 0) return os2->usWeightClass >= 600;
  return (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
}

FaceMetrics ComputeMetrics(FT_Face face, const FaceSize& size) {
  const int upem = face->units_per_EM > 0 ? face->units_per_EM : 1000;
  const int em = size.emPixels;
  const auto scale = [&](std::int64_t units) { return Scale(units, em, upem); };
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  const bool hasOs2 = os2 && os2->version != 0xFFFF;
  const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA));
  const auto [winAscent, winDescent] = WindowsAscentDescent(face);

  FaceMetrics m;
  m.ascent = scale(winAscent);
  m.descent = std::max(0, scale(winDescent));
  if (m.ascent + m.descent <= 0) m.ascent = em;
  // What the cell holds beyond the em, so that a negative logical height asks for
  // exactly tmHeight - tmInternalLeading pixels.
  m.internalLeading = std::max(0, m.ascent + m.descent - em);
  const std::int64_t lineHeight = hhea ? hhea->Ascender - hhea->Descender + hhea->Line_Gap : face->height;
  m.externalLeading = std::max(0, scale(lineHeight - (winAscent + winDescent)));
  const int bold = size.embolden ? EmboldenPixels(em) : 0;
  m.averageWidth =
      std::max(1, scale(hasOs2 && os2->xAvgCharWidth > 0 ? os2->xAvgCharWidth : upem / 2)) + bold;
  m.maxWidth = std::max(1, scale(face->max_advance_width)) + bold;
  m.fixedPitch = FT_IS_FIXED_WIDTH(face);

  // FreeType gives the underline's centre (negative below the baseline); OS/2 the
  // strike-out's top, above it.
  const int underlineUnits = face->underline_thickness > 0 ? face->underline_thickness : upem / 14;
  m.underlineThickness = std::max(1, scale(underlineUnits));
  m.underlineOffset = scale(-face->underline_position - underlineUnits / 2);
  const int strikeoutUnits = hasOs2 && os2->yStrikeoutSize > 0 ? os2->yStrikeoutSize : underlineUnits;
  m.strikeoutThickness = std::max(1, scale(strikeoutUnits));
  m.strikeoutOffset = -scale(hasOs2 && os2->yStrikeoutPosition > 0 ? os2->yStrikeoutPosition : winAscent / 3);
  const auto keepInCell = [&](int& offset, int& thickness) {
    thickness = std::min(thickness, m.ascent + m.descent);
    offset = std::clamp(offset, -m.ascent, m.descent - thickness);
  };
  keepInCell(m.underlineOffset, m.underlineThickness);
  keepInCell(m.strikeoutOffset, m.strikeoutThickness);
  return m;
}

}  // namespace

std::shared_ptr<SizedFace> SizedFace::Open(const FontFile& file, const FaceSize& size) {
  using Key = std::tuple<std::string, int, int, bool, bool>;
  static std::map<Key, std::weak_ptr<SizedFace>> open;
  const Key key{file.path, file.index, size.emPixels, size.embolden, size.oblique};
  if (auto shared = open[key].lock()) return shared;
  std::erase_if(open, [](const auto& entry) { return entry.second.expired(); });

  if (size.emPixels < 1 || size.emPixels > kMaxEmPixels) return nullptr;
  FT_Face face = FontLibrary::Instance().Face(file.path, file.index);
  if (!face || !FT_IS_SCALABLE(face)) return nullptr;
  FT_Size ftSize = nullptr;
  if (FT_New_Size(face, &ftSize) != 0) return nullptr;
  FT_Activate_Size(ftSize);
  if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size.emPixels)) != 0) {
    FT_Done_Size(ftSize);
    return nullptr;
  }
  std::shared_ptr<SizedFace> shared(new SizedFace(face, ftSize, size));
  open[key] = shared;
  return shared;
}

int SizedFace::EmPixelsFor(const FontFile& file, std::int64_t logicalHeight) {
  FT_Face face = FontLibrary::Instance().Face(file.path, file.index);
  if (!face) return 0;
  std::int64_t em = -logicalHeight;
  if (logicalHeight >= 0) {
    const std::int64_t cell = logicalHeight > 0 ? logicalHeight : kDefaultCellHeight;
    const auto [ascent, descent] = WindowsAscentDescent(face);
    const int upem = face->units_per_EM > 0 ? face->units_per_EM : 1000;
    const std::int64_t cellUnits = ascent + descent > 0 ? ascent + descent : upem;
    em = (std::min<std::int64_t>(cell, kMaxEmPixels * 4) * upem * 2 + cellUnits) / (cellUnits * 2);
  }
  return static_cast<int>(std::clamp<std::int64_t>(em, 1, kMaxEmPixels));
}

SizedFace::SizedFace(FT_Face face, FT_Size ftSize, const FaceSize& size)
    : face_(face), ftSize_(ftSize), size_(size), metrics_(ComputeMetrics(face, size)) {}

SizedFace::~SizedFace() { FT_Done_Size(ftSize_); }

bool SizedFace::Has(char32_t c) const { return FT_Get_Char_Index(face_, c) != 0; }

const Glyph& SizedFace::GlyphOf(char32_t c) {
  const unsigned index = FT_Get_Char_Index(face_, c);
  if (const auto found = glyphs_.find(index); found != glyphs_.end()) return found->second;
  Glyph glyph = Render(index);
  if (cachedBytes_ > kGlyphCacheBytes) {
    glyphs_.clear();
    cachedBytes_ = 0;
  }
  cachedBytes_ += sizeof(Glyph) + glyph.bits.size();
  return glyphs_.emplace(index, std::move(glyph)).first->second;
}

Glyph SizedFace::Render(unsigned glyphIndex) {
  Glyph glyph;
  FT_Activate_Size(ftSize_);
  if (FT_Load_Glyph(face_, glyphIndex, FT_LOAD_TARGET_MONO) != 0 &&
      (glyphIndex == 0 || FT_Load_Glyph(face_, 0, FT_LOAD_TARGET_MONO) != 0)) {
    return glyph;
  }
  FT_GlyphSlot slot = face_->glyph;
  glyph.advance = static_cast<int>((slot->advance.x + 32) >> 6);
  if (slot->format == FT_GLYPH_FORMAT_OUTLINE) {
    if (size_.embolden) {
      const int strength = EmboldenPixels(size_.emPixels);
      FT_Outline_EmboldenXY(&slot->outline, strength * 64, 0);
      glyph.advance += strength;
    }
    if (size_.oblique) {
      FT_Matrix shear{0x10000, kObliqueShear, 0, 0x10000};
      FT_Outline_Transform(&slot->outline, &shear);
    }
  }
  if (FT_Render_Glyph(slot, FT_RENDER_MODE_MONO) != 0) return glyph;
  const FT_Bitmap& bitmap = slot->bitmap;
  // Outlines render top row first (a positive pitch); anything else draws nothing.
  if (bitmap.pixel_mode != FT_PIXEL_MODE_MONO || bitmap.pitch <= 0 || !bitmap.buffer) return glyph;
  glyph.left = slot->bitmap_left;
  glyph.top = slot->bitmap_top;
  glyph.width = static_cast<int>(bitmap.width);
  glyph.rows = static_cast<int>(bitmap.rows);
  glyph.pitch = bitmap.pitch;
  glyph.bits.assign(bitmap.buffer, bitmap.buffer + static_cast<std::size_t>(bitmap.pitch) * bitmap.rows);
  return glyph;
}

int FacesInFile(const std::string& path) {
  FT_Face face = FontLibrary::Instance().Face(path, 0);
  return face ? static_cast<int>(face->num_faces) : 0;
}

std::optional<FontFile> DescribeFace(const std::string& path, int index, std::string* family) {
  FT_Face face = FontLibrary::Instance().Face(path, index);
  if (!face || !FT_IS_SCALABLE(face)) return std::nullopt;
  if (family) *family = face->family_name ? face->family_name : "";
  return FontFile{path, index, IsBoldFace(face), (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0};
}

bool FaceHasCharacter(const FontFile& file, char32_t c) {
  FT_Face face = FontLibrary::Instance().Face(file.path, file.index);
  return face && FT_Get_Char_Index(face, c) != 0;
}

}  // namespace platform::fonts
