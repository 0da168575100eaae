// DC attributes, FillRect and single pixels.
#include <algorithm>

#include "platform/gdi_objects.h"
#include "platform/raster_spans.h"

using namespace platform::gdi;
namespace raster = platform::raster;

namespace {

// Reads an attribute of a valid DC, or returns `failure`.
template <typename Value, typename Read>
Value ReadDc(HDC hdc, Value failure, Read read) {
  const auto* dc = Lookup<DcObject>(hdc);
  return dc ? read(*dc) : failure;
}

// Replaces an attribute of a valid DC and returns the old value, or returns `failure`.
template <typename Value>
Value Exchange(HDC hdc, Value DcObject::*member, Value value, Value failure) {
  auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return failure;
  const Value old = dc->*member;
  dc->*member = value;
  RefreshDrawState(*dc);
  return old;
}

// A device pixel inside the DC's clip, or false.
bool DevicePoint(const Surface& surface, int x, int y, int* deviceX, int* deviceY) {
  const std::int64_t dx = surface.originX + x;
  const std::int64_t dy = surface.originY + y;
  if (dx < surface.clip.left || dx >= surface.clip.right || dy < surface.clip.top ||
      dy >= surface.clip.bottom) {
    return false;
  }
  *deviceX = static_cast<int>(dx);
  *deviceY = static_cast<int>(dy);
  return true;
}

}  // namespace

COLORREF SetBkColor(HDC hdc, COLORREF color) {
  return Exchange(hdc, &DcObject::bkColor, color & raster::kColorMask, CLR_INVALID);
}
COLORREF GetBkColor(HDC hdc) {
  return ReadDc(hdc, CLR_INVALID, [](const DcObject& dc) { return dc.bkColor; });
}
COLORREF SetTextColor(HDC hdc, COLORREF color) {
  return Exchange(hdc, &DcObject::textColor, color & raster::kColorMask, CLR_INVALID);
}
COLORREF GetTextColor(HDC hdc) {
  return ReadDc(hdc, CLR_INVALID, [](const DcObject& dc) { return dc.textColor; });
}

int SetBkMode(HDC hdc, int mode) {
  if (mode != TRANSPARENT && mode != OPAQUE) return 0;
  return Exchange(hdc, &DcObject::bkMode, mode, 0);
}
int GetBkMode(HDC hdc) {
  return ReadDc(hdc, 0, [](const DcObject& dc) { return dc.bkMode; });
}

int SetROP2(HDC hdc, int mode) {
  if (mode < R2_BLACK || mode > R2_WHITE) return 0;
  return Exchange(hdc, &DcObject::rop2, mode, 0);
}
int GetROP2(HDC hdc) {
  return ReadDc(hdc, 0, [](const DcObject& dc) { return dc.rop2; });
}

int SetStretchBltMode(HDC hdc, int mode) {
  if (mode < BLACKONWHITE || mode > HALFTONE) return 0;
  return Exchange(hdc, &DcObject::stretchMode, mode, 0);
}
int GetStretchBltMode(HDC hdc) {
  return ReadDc(hdc, 0, [](const DcObject& dc) { return dc.stretchMode; });
}

// Mapping modes are stored for callers that save and restore them; this raster draws
// in device units (MM_TEXT) whatever the mode.
int SetMapMode(HDC hdc, int mode) {
  if (mode < MM_TEXT || mode > 8) return 0;
  return Exchange(hdc, &DcObject::mapMode, mode, 0);
}
int GetMapMode(HDC hdc) {
  return ReadDc(hdc, 0, [](const DcObject& dc) { return dc.mapMode; });
}

// Every DC reports the display it is compatible with: true colour at 96 dpi. Memory
// DCs report it too, even while they hold a monochrome bitmap, as GDI does. The display
// size is the frame for a window DC and a fixed 1920 x 1080 otherwise.
int GetDeviceCaps(HDC hdc, int index) {
  const auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return 0;
  const auto* frame = dc->type == DcType::Window ? Lookup<BitmapObject>(dc->bitmap) : nullptr;
  switch (index) {
    case LOGPIXELSX:
    case LOGPIXELSY:
      return 96;
    case BITSPIXEL:
      return 32;
    case PLANES:
      return 1;
    case HORZRES:
      return frame ? frame->raster.width : 1920;
    case VERTRES:
      return frame ? frame->raster.height : 1080;
    default:
      return 0;
  }
}

int FillRect(HDC hdc, const RECT* rect, HBRUSH brush) {
  const auto* dc = Lookup<DcObject>(hdc);
  const auto* fill = Lookup<BrushObject>(brush);
  if (!dc || !rect || !fill) return 0;
  const auto surface = SurfaceOf(*dc);
  if (!surface) return 0;
  if (fill->style == BS_NULL) return 1;
  const std::int64_t left = std::max<std::int64_t>(surface->clip.left, surface->originX + rect->left);
  const std::int64_t right = std::min<std::int64_t>(surface->clip.right, surface->originX + rect->right);
  const std::int64_t top = std::max<std::int64_t>(surface->clip.top, surface->originY + rect->top);
  const std::int64_t bottom = std::min<std::int64_t>(surface->clip.bottom, surface->originY + rect->bottom);
  const std::uint32_t pixel = raster::PixelFor(fill->color, surface->mono());
  surface->raster->Fill(static_cast<int>(left), static_cast<int>(top), static_cast<int>(right),
                        static_cast<int>(bottom), pixel);
  return 1;
}

COLORREF GetPixel(HDC hdc, int x, int y) {
  const auto* dc = Lookup<DcObject>(hdc);
  const auto surface = dc ? SurfaceOf(*dc) : std::nullopt;
  int dx, dy;
  if (!surface || !DevicePoint(*surface, x, y, &dx, &dy)) return CLR_INVALID;
  return raster::ColorOf(surface->raster->Row(dy)[dx] & raster::kColorMask);
}

COLORREF SetPixel(HDC hdc, int x, int y, COLORREF color) {
  const auto* dc = Lookup<DcObject>(hdc);
  const auto surface = dc ? SurfaceOf(*dc) : std::nullopt;
  int dx, dy;
  if (!surface || !DevicePoint(*surface, x, y, &dx, &dy)) return CLR_INVALID;
  const std::uint32_t pixel = raster::PixelFor(color & raster::kColorMask, surface->mono());
  raster::PaintPixel(*surface->raster, dx, dy, pixel, dc->draw.rop);
  return raster::ColorOf(pixel);
}
