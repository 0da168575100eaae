// Drawing the inserted objects over the picture: keyed on their key colour, or blended
// with what lies below them by their transparency.
#include <algorithm>
#include <cstdint>
#include <utility>

#include "editor/clamped_int.h"
#include "editor/image_edit_wnd.h"
#include "pixels/pixel_buffer.h"

namespace {

// The part of the target an object at `at` of that size covers inside `bounds`; false
// when it covers none. Wide arithmetic: positions near the limits of int must not
// wrap around.
bool CoveredPart(POINT at, int width, int height, const RECT& bounds, RECT* part) {
  const std::int64_t left = std::max<std::int64_t>(at.x, bounds.left);
  const std::int64_t top = std::max<std::int64_t>(at.y, bounds.top);
  const std::int64_t right = std::min<std::int64_t>(std::int64_t{at.x} + width, bounds.right);
  const std::int64_t bottom = std::min<std::int64_t>(std::int64_t{at.y} + height, bounds.bottom);
  if (left >= right || top >= bottom) return false;
  *part = RECT{static_cast<LONG>(left), static_cast<LONG>(top), static_cast<LONG>(right),
               static_cast<LONG>(bottom)};
  return true;
}

// A pixel of the buffer by its top-down position.
BYTE* PixelAt(const PixelBuffer& pixels, int x, int y) {
  return pixels.data() + static_cast<std::ptrdiff_t>(pixels.height() - 1 - y) * pixels.stride() + 3 * x;
}

}  // namespace

void CImageEditWnd::DrawObjects(HDC target, int offsetX, int offsetY, bool plain, const RECT* area) {
  BITMAP targetSize{};
  if (!target || !GetObjectA(GetCurrentObject(target, OBJ_BITMAP), sizeof targetSize, &targetSize)) return;
  RECT bounds{0, 0, targetSize.bmWidth, targetSize.bmHeight};
  if (area && !IntersectRect(&bounds, &bounds, area)) return;

  const std::span<const int> order = m_objects.FrontToBack();
  for (auto slot = order.rbegin(); slot != order.rend(); ++slot) {
    const CInsertedObject& object = m_objects.Object(*slot);
    HBITMAP drawn = object.DrawnPicture(plain);
    const POINT at{ClampedInt(std::int64_t{object.x} + offsetX),
                   ClampedInt(std::int64_t{object.y} + offsetY)};
    RECT part{};
    if (!drawn || !CoveredPart(at, object.width, object.height, bounds, &part)) continue;
    if (object.transparency > 0 && object.transparency < 100) {
      BlendObject(target, object, drawn, at, part);
    } else {
      TransparentBlit(target, drawn, part.left, part.top, part.right - part.left, part.bottom - part.top,
                      object.keyColor, part.left - at.x, part.top - at.y);
    }
  }
}

// Text and frame pixels stay as the picture has them, so that they remain readable
// whatever lies below; every other pixel is mixed byte by byte.
void CImageEditWnd::BlendObject(HDC target, const CInsertedObject& object, HBITMAP drawn, POINT at,
                                const RECT& part) {
  const int width = part.right - part.left;
  const int height = part.bottom - part.top;
  const platform::MemoryDC scratch(target);
  const platform::OwnedBitmap under(scratch ? CreateCompatibleBitmap(target, width, height) : nullptr);
  if (!under) return;
  {
    const platform::SelectionGuard selected(scratch.get(), under.get());
    BitBlt(scratch.get(), 0, 0, width, height, target, part.left, part.top, SRCCOPY);
  }
  PixelBuffer below = ReadSurfacePixels(target, under.get());
  if (!below) return;
  const PixelBuffer above = ReadSurfacePixels(target, drawn);
  if (!above) return;

  const double t = object.transparency * 0.01;
  // The frame is drawn in the colour part of the border colour.
  const COLORREF frame = object.borderColor & 0x00FFFFFF;
  for (int y = 0; y < height; ++y) {
    const int pictureY = part.top - at.y + y;
    for (int x = 0; x < width; ++x) {
      const int pictureX = part.left - at.x + x;
      // An object larger than its picture leaves what lies below where it has none.
      if (pictureX >= above.width() || pictureY >= above.height()) continue;
      BYTE* result = PixelAt(below, x, y);
      const BYTE* mixed = PixelAt(above, pictureX, pictureY);
      const COLORREF color = PixelColor(mixed);
      if (color == object.textColor || color == frame) {
        std::copy(mixed, mixed + 3, result);
        continue;
      }
      for (int i = 0; i < 3; ++i) result[i] = static_cast<BYTE>(result[i] * t + mixed[i] * (1 - t));
    }
  }
  WriteSurfacePixels(target, under.get(), std::move(below));
  const platform::SelectionGuard selected(scratch.get(), under.get());
  BitBlt(target, part.left, part.top, width, height, scratch.get(), 0, 0, SRCCOPY);
}
