#include "editor/render_text_block.h"

#include <cstdint>

#include "editor/clamped_int.h"
#include "platform/gdi_handles.h"
#include "resources/localized_text.h"

namespace {

constexpr UINT kMeasureFormat = DT_CALCRECT | DT_EDITCONTROL;
constexpr UINT kDrawFormat = DT_EDITCONTROL | DT_WORDBREAK;

// Three bytes whose height makes one line: Latin letters for most users, a Latin
// letter and a double-byte character (가 in code page 949, 啊 in 936) for Korean and
// Chinese users, whose lines must fit their own script.
const char* LineSample(WORD language) {
  return language == kLanguageKorean || language == kLanguageChinese ? "A\xB0\xA1" : "AaBbCc";
}

// The rectangle a text without a size of its own needs: measured on one line per
// line break; when that is wider than the picture allows, as many sample lines as the
// width needs, at the widest allowed width.
RECT MeasuredBlock(HDC dc, const char* text, RECT rect, const TextBlockLimits& limits) {
  DrawTextA(dc, text, -1, &rect, kMeasureFormat);
  const int maxWidth = limits.displayedWidth - 6;
  // Without a picture wide enough to wrap at, the measured size stands.
  if (maxWidth > 0 && std::int64_t{rect.right} - rect.left > maxWidth) {
    RECT sample{0, 0, 0, 0};
    DrawTextA(dc, LineSample(limits.language), 3, &sample, kMeasureFormat);
    const std::int64_t measured = std::int64_t{rect.right} - rect.left;
    const std::int64_t lines = (measured + maxWidth - 1) / maxWidth;
    // The bottom edge itself becomes the height of those lines, whatever the top.
    rect.bottom = ClampedInt(lines * (std::int64_t{sample.bottom} - sample.top));
    rect.right = ClampedInt(std::int64_t{rect.left} + maxWidth);
  }
  rect.right = ClampedInt(std::int64_t{rect.right} + 2);
  return rect;
}

}  // namespace

HBITMAP RenderTextBlock(HDC dc, HBITMAP picture, const char* text, HFONT font, COLORREF color, HBRUSH brush,
                        int left, int top, int width, int height, const TextBlockLimits& limits) {
  platform::MemoryDC memory(dc);
  if (!memory) return picture;
  platform::SelectionGuard fontSelection;
  if (font) fontSelection = platform::SelectionGuard(memory.get(), font);
  SetTextColor(memory.get(), color);
  SetBkMode(memory.get(), TRANSPARENT);
  RECT rect{left, top, ClampedInt(std::int64_t{left} + width), ClampedInt(std::int64_t{top} + height)};

  HBITMAP target = picture;
  if (!target) {
    if (width == 0 || height == 0) rect = MeasuredBlock(memory.get(), text, rect, limits);
    target = CreateCompatibleBitmap(dc, ClampedInt(std::int64_t{rect.right} - rect.left),
                                    ClampedInt(std::int64_t{rect.bottom} - rect.top));
    if (!target) return nullptr;
  }
  memory.Show(target);
  if (GetCurrentObject(memory.get(), OBJ_BITMAP) == target) {
    if (!picture) {
      const RECT whole{0, 0, ClampedInt(std::int64_t{rect.right} - rect.left),
                       ClampedInt(std::int64_t{rect.bottom} - rect.top)};
      FillRect(memory.get(), &whole, brush ? brush : static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    }
    DrawTextA(memory.get(), text, -1, &rect, kDrawFormat);
  }
  memory.ShowOriginal();
  return target;
}
