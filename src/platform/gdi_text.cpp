// The text calls: a DC's font made ready (font_instance.h), its text decoded to
// characters, laid out in lines (gdi_text_layout.h) and painted on the DC's raster.
// Text ignores the ROP2, as in GDI: glyph pixels take the text colour, and in OPAQUE
// mode each line's cells take the background colour first. On a monochrome bitmap
// both colours become the nearer of black and white.
#include <algorithm>
#include <climits>
#include <limits>
#include <string>

#include "platform/font_instance.h"
#include "platform/gdi_objects.h"
#include "platform/gdi_text_layout.h"
#include "platform/user.h"

using namespace platform::gdi;
using platform::fonts::FontInstance;
using platform::fonts::Glyph;
using platform::text::LayoutRules;
using platform::text::TextLayout;
namespace raster = platform::raster;

namespace {

// DrawText's tab stops, in average character widths.
constexpr int kTabCharacters = 8;

LONG Saturate(std::int64_t value) {
  return static_cast<LONG>(
      std::clamp<std::int64_t>(value, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

// A DC with its font made ready; `font` is null for an invalid DC or a font that no
// face can draw.
struct TextDc {
  DcObject* dc = nullptr;
  FontInstance* font = nullptr;
};

TextDc TextDcOf(HDC hdc) {
  auto* dc = Lookup<DcObject>(hdc);
  auto* font = dc ? Lookup<FontObject>(dc->font) : nullptr;
  if (!font) return {};
  if (!font->instance) font->instance = FontInstance::For(font->font);
  return {dc, font->instance.get()};
}

// The characters of a text given with a length: up to that length or to the text's
// terminating zero, whichever comes first, so a length past the end reads nothing
// beyond it. -1 when the length is negative and `terminated` does not allow -1.
template <typename Char>
std::int64_t TextLength(const Char* text, int length, bool terminated) {
  if (length < 0 && !(terminated && length == -1)) return -1;
  if (!text) return length == 0 ? 0 : -1;
  const std::size_t limit = length < 0 ? SIZE_MAX : static_cast<std::size_t>(length);
  std::size_t n = 0;
  while (n < limit && text[n] != 0) ++n;
  return static_cast<std::int64_t>(n);
}

// UTF-16 to characters; a lone surrogate becomes U+FFFD.
std::u32string FromUtf16(const WCHAR* text, std::size_t length) {
  std::u32string out;
  out.reserve(length);
  for (std::size_t i = 0; i < length; ++i) {
    const char32_t c = text[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      out.push_back(0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00));
      ++i;
    } else {
      out.push_back(c >= 0xD800 && c <= 0xDFFF ? U'\uFFFD' : c);
    }
  }
  return out;
}

// Multibyte text in the font's code page; a malformed sequence becomes U+FFFD.
std::u32string FromMultiByte(const char* text, std::size_t length, UINT codePage) {
  if (length == 0) return {};
  const int count = static_cast<int>(std::min<std::size_t>(length, INT_MAX));
  const int needed = MultiByteToWideChar(codePage, 0, text, count, nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(std::max(needed, 0)), u'\0');
  if (needed > 0) MultiByteToWideChar(codePage, 0, text, count, wide.data(), needed);
  return FromUtf16(wide.data(), wide.size());
}

// One line as TextOut and GetTextExtentPoint draw and measure it.
TextLayout SingleLine(std::u32string_view text, FontInstance& font) {
  LayoutRules rules;
  rules.singleLine = true;
  return TextLayout(text, rules, [&font](char32_t c) { return font.Advance(c); });
}

// Paints laid-out lines on a DC's raster inside a clip rectangle (device
// coordinates): cells, glyphs and decoration lines.
class TextPainter {
 public:
  TextPainter(const DcObject& dc, const Surface& surface, FontInstance& font, const RECT& clip)
      : surface_(surface),
        font_(font),
        opaque_(dc.bkMode == OPAQUE),
        textPixel_(raster::PixelFor(dc.textColor, surface.mono())),
        backgroundPixel_(raster::PixelFor(dc.bkColor, surface.mono())) {
    IntersectRect(&clip_, &clip, &surface.clip);
  }

  // The line's cell has its top-left corner at (x, y), logical coordinates.
  void DrawLine(const TextLayout& layout, const TextLayout::Line& line, std::int64_t x, std::int64_t y) {
    const TEXTMETRICA& tm = font_.metrics();
    const auto& face = font_.faceMetrics();
    const std::int64_t left = surface_.originX + x;
    const std::int64_t top = surface_.originY + y;
    const std::int64_t baseline = top + tm.tmAscent;
    if (opaque_) Fill(left, top, left + line.width, top + tm.tmHeight, backgroundPixel_);
    layout.Walk(line, [&](std::size_t i, char32_t c, std::int64_t at, std::int64_t step) {
      PaintGlyph(font_.GlyphOf(c), left + at, baseline);
      if (i == line.underlined) {
        const std::int64_t row = baseline + face.underlineOffset;
        Fill(left + at, row, left + at + step, row + face.underlineThickness, textPixel_);
      }
    });
    if (font_.underlined()) {
      const std::int64_t row = baseline + face.underlineOffset;
      Fill(left, row, left + line.width, row + face.underlineThickness, textPixel_);
    }
    if (font_.struckOut()) {
      const std::int64_t row = baseline + face.strikeoutOffset;
      Fill(left, row, left + line.width, row + face.strikeoutThickness, textPixel_);
    }
  }

 private:
  void Fill(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom,
            std::uint32_t pixel) {
    left = std::max<std::int64_t>(left, clip_.left);
    top = std::max<std::int64_t>(top, clip_.top);
    right = std::min<std::int64_t>(right, clip_.right);
    bottom = std::min<std::int64_t>(bottom, clip_.bottom);
    if (left >= right || top >= bottom) return;
    surface_.raster->Fill(static_cast<int>(left), static_cast<int>(top), static_cast<int>(right),
                          static_cast<int>(bottom), pixel);
  }

  void PaintGlyph(const Glyph& glyph, std::int64_t originX, std::int64_t baseline) {
    const std::int64_t x0 = originX + glyph.left;
    const std::int64_t y0 = baseline - glyph.top;
    const int firstColumn = static_cast<int>(std::clamp<std::int64_t>(clip_.left - x0, 0, glyph.width));
    const int endColumn = static_cast<int>(std::clamp<std::int64_t>(clip_.right - x0, 0, glyph.width));
    const int firstRow = static_cast<int>(std::clamp<std::int64_t>(clip_.top - y0, 0, glyph.rows));
    const int endRow = static_cast<int>(std::clamp<std::int64_t>(clip_.bottom - y0, 0, glyph.rows));
    for (int row = firstRow; row < endRow; ++row) {
      std::uint32_t* pixels = nullptr;
      for (int column = firstColumn; column < endColumn; ++column) {
        if (!glyph.Ink(column, row)) continue;
        if (!pixels) pixels = surface_.raster->MutableRow(static_cast<int>(y0 + row)) + x0;
        pixels[column] = textPixel_;
      }
    }
  }

  Surface surface_;
  FontInstance& font_;
  RECT clip_{};
  bool opaque_;
  std::uint32_t textPixel_;
  std::uint32_t backgroundPixel_;
};

BOOL MeasureLine(const TextDc& target, std::u32string_view text, SIZE* size) {
  if (!size) return FALSE;
  const TextLayout layout = SingleLine(text, *target.font);
  size->cx = Saturate(layout.widest());
  size->cy = target.font->metrics().tmHeight;
  return TRUE;
}

BOOL DrawLineAt(const TextDc& target, int x, int y, std::u32string_view text) {
  const auto surface = SurfaceOf(*target.dc);
  if (!surface) return FALSE;
  const TextLayout layout = SingleLine(text, *target.font);
  TextPainter(*target.dc, *surface, *target.font, surface->clip)
      .DrawLine(layout, layout.lines().front(), x, y);
  return TRUE;
}

int DrawLaidOut(const TextDc& target, std::u32string_view text, RECT* rect, UINT format) {
  FontInstance& font = *target.font;
  const std::int64_t lineHeight = font.metrics().tmHeight;
  const bool singleLine = (format & DT_SINGLELINE) != 0;
  if (text.empty()) {
    // As GDI: a rectangle of no width, one line high only for a single line, and the
    // height of a line reported; drawing nothing reports nothing.
    if (!(format & DT_CALCRECT)) return 0;
    rect->right = rect->left;
    rect->bottom = singleLine ? Saturate(rect->top + lineHeight) : rect->top;
    return static_cast<int>(lineHeight);
  }
  const std::int64_t width = std::int64_t{rect->right} - rect->left;
  LayoutRules rules;
  rules.singleLine = singleLine;
  rules.wrap = (format & DT_WORDBREAK) && !singleLine && width >= 0;
  rules.width = width;
  rules.breakWords = (format & DT_EDITCONTROL) != 0;
  rules.prefix = !(format & DT_NOPREFIX);
  rules.tabStop = (format & DT_EXPANDTABS) ? std::int64_t{kTabCharacters} * font.metrics().tmAveCharWidth : 0;
  const TextLayout layout(text, rules, [&font](char32_t c) { return font.Advance(c); });
  const auto& lines = layout.lines();

  if (format & DT_CALCRECT) {
    const std::int64_t height = static_cast<std::int64_t>(lines.size()) * lineHeight;
    rect->right = Saturate(rect->left + layout.widest());
    rect->bottom = Saturate(rect->top + height);
    return Saturate(height);
  }

  const auto surface = SurfaceOf(*target.dc);
  if (!surface) return 0;
  std::int64_t top = rect->top;
  if (singleLine && (format & DT_VCENTER)) top += (std::int64_t{rect->bottom} - rect->top - lineHeight) / 2;
  if (singleLine && (format & DT_BOTTOM)) top = rect->bottom - lineHeight;
  RECT clip = surface->clip;
  if (!(format & DT_NOCLIP)) {
    const std::int64_t left = surface->originX + rect->left, right = surface->originX + rect->right;
    const std::int64_t upper = surface->originY + rect->top, lower = surface->originY + rect->bottom;
    clip = RECT{Saturate(left), Saturate(upper), Saturate(right), Saturate(lower)};
  }
  TextPainter painter(*target.dc, *surface, font, clip);
  const bool clipped = !(format & DT_NOCLIP);
  std::size_t drawn = 0;
  for (const TextLayout::Line& line : lines) {
    const std::int64_t y = top + static_cast<std::int64_t>(drawn) * lineHeight;
    // Past the first line, drawing stops below the rectangle: at the first line that
    // starts below it, or with DT_EDITCONTROL (which shows no partly visible last
    // line) at the first that ends more than a pixel below it, as GDI does.
    if (drawn > 0 && clipped) {
      if ((format & DT_EDITCONTROL) ? y + lineHeight > rect->bottom + std::int64_t{1} : y > rect->bottom)
        break;
    }
    std::int64_t x = rect->left;
    if (format & DT_CENTER) x = (std::int64_t{rect->left} + rect->right - line.width) / 2;
    if (format & DT_RIGHT) x = rect->right - line.width;
    painter.DrawLine(layout, line, x, y);
    ++drawn;
  }
  if (singleLine && (format & (DT_VCENTER | DT_BOTTOM))) return Saturate(top + lineHeight - rect->top);
  return Saturate(static_cast<std::int64_t>(drawn) * lineHeight);
}

}  // namespace

BOOL GetTextMetricsA(HDC hdc, TEXTMETRICA* metrics) {
  const TextDc target = TextDcOf(hdc);
  if (!target.font || !metrics) return FALSE;
  *metrics = target.font->metrics();
  return TRUE;
}

BOOL GetTextExtentPoint32A(HDC hdc, LPCSTR text, int length, SIZE* size) {
  const TextDc target = TextDcOf(hdc);
  const std::int64_t n = TextLength(text, length, false);
  if (!target.font || n < 0) return FALSE;
  return MeasureLine(target, FromMultiByte(text, static_cast<std::size_t>(n), target.font->codePage()), size);
}

BOOL GetTextExtentPoint32W(HDC hdc, const WCHAR* text, int length, SIZE* size) {
  const TextDc target = TextDcOf(hdc);
  const std::int64_t n = TextLength(text, length, false);
  if (!target.font || n < 0) return FALSE;
  return MeasureLine(target, FromUtf16(text, static_cast<std::size_t>(n)), size);
}

BOOL TextOutA(HDC hdc, int x, int y, LPCSTR text, int length) {
  const TextDc target = TextDcOf(hdc);
  const std::int64_t n = TextLength(text, length, false);
  if (!target.font || n < 0) return FALSE;
  return DrawLineAt(target, x, y, FromMultiByte(text, static_cast<std::size_t>(n), target.font->codePage()));
}

BOOL TextOutW(HDC hdc, int x, int y, const WCHAR* text, int length) {
  const TextDc target = TextDcOf(hdc);
  const std::int64_t n = TextLength(text, length, false);
  if (!target.font || n < 0) return FALSE;
  return DrawLineAt(target, x, y, FromUtf16(text, static_cast<std::size_t>(n)));
}

int DrawTextA(HDC hdc, LPCSTR text, int length, RECT* rect, UINT format) {
  const TextDc target = TextDcOf(hdc);
  const std::int64_t n = TextLength(text, length, true);
  if (!target.font || !text || !rect || n < 0) return 0;
  return DrawLaidOut(target, FromMultiByte(text, static_cast<std::size_t>(n), target.font->codePage()), rect,
                     format);
}

int DrawTextW(HDC hdc, const WCHAR* text, int length, RECT* rect, UINT format) {
  const TextDc target = TextDcOf(hdc);
  const std::int64_t n = TextLength(text, length, true);
  if (!target.font || !text || !rect || n < 0) return 0;
  return DrawLaidOut(target, FromUtf16(text, static_cast<std::size_t>(n)), rect, format);
}
