// The GDI object model behind the handles: what a DC, bitmap, pen, brush and font hold,
// and the table that turns opaque handles into objects. Handles are slot numbers with a
// generation, never addresses, so a stale or foreign handle is simply not found.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>

#include "platform/gdi.h"
#include "platform/gdi_draw.h"
#include "platform/raster.h"
#include "platform/raster_geometry.h"

namespace platform::fonts {
class FontInstance;
}

namespace platform::gdi {

// As ExtCreatePen accepted it: the PS_* style bits, the width made absolute.
struct PenObject {
  DWORD style = 0;
  std::int64_t width = 1;
  COLORREF color = 0;
};

struct BrushObject {
  UINT style = BS_SOLID;
  COLORREF color = 0;
};

struct FontObject {
  LOGFONTA font{};
  // Made when text is first measured or drawn with the font (gdi_text.cpp).
  std::shared_ptr<fonts::FontInstance> instance;
};

struct BitmapObject {
  raster::Raster raster;
  bool dibSection = false;
  LONG dibHeight = 0;  // the height its DIB header gave (negative: top-down rows)
  int windowDcs = 0;   // window DCs drawing into it; it cannot be deleted meanwhile
};

// How the selected pen draws: not at all, one-pixel lines, or filled wide outlines.
enum class PenKind { Null, Thin, Wide };

// The selected pen, brush and ROP2 resolved for the DC's current raster, so that
// drawing kernels read ready pixel values instead of re-interpreting objects.
struct DrawState {
  PenKind pen = PenKind::Thin;
  bool penDotted = false;
  bool penEndsSlantedLines = false;  // a thin geometric pen: an open path's slanted end is drawn
  std::int64_t penWidth = 1;
  raster::LineCap penCap = raster::LineCap::Round;
  std::uint32_t penPixel = raster::kBlack;
  bool brushVisible = true;
  std::uint32_t brushPixel = raster::kWhite;
  std::uint8_t rop = raster::Rop2Index(R2_COPYPEN);  // the ROP2 as a ternary index
};

enum class DcType { Memory, Window, Screen };

struct DcObject {
  DcType type = DcType::Memory;
  HBITMAP bitmap = nullptr;  // memory DC: the selected bitmap; window DC: the frame
  HPEN pen = nullptr;
  HBRUSH brush = nullptr;
  HFONT font = nullptr;
  COLORREF bkColor = RGB(255, 255, 255);
  COLORREF textColor = RGB(0, 0, 0);
  int bkMode = OPAQUE;
  int rop2 = R2_COPYPEN;
  int stretchMode = BLACKONWHITE;
  int mapMode = MM_TEXT;
  POINT position{0, 0};  // the current position of MoveToEx and LineTo (logical)
  POINT origin{0, 0};    // window DCs: where logical (0, 0) lies in the frame
  RECT clip{};           // window DCs: the part of the frame it may touch
  DrawState draw;
};

using GdiObject = std::variant<DcObject, BitmapObject, PenObject, BrushObject, FontObject>;

// The object behind a handle, or null for a null, stale or foreign handle.
GdiObject* LookupObject(const void* handle);
template <typename T>
T* Lookup(const void* handle) {
  GdiObject* object = LookupObject(handle);
  return object ? std::get_if<T>(object) : nullptr;
}
bool IsStock(const void* handle);

// Reports whether a creation of this kind may go ahead (FailNthCreation may veto it).
bool AllowCreation(GdiKind kind);
// Enters a new object into the table and counts it; null if the table is full.
void* Register(GdiObject object);

// A new bitmap: checks the creation budget and size limits; null on failure.
HBITMAP NewBitmap(int width, int height, bool mono, bool dibSection = false, LONG dibHeight = 0);
// A host window's frame: the screen the windows are drawn on, which the host makes
// and which is not charged against the graphics-memory budget (as a display's memory
// is not an application's bitmaps).
HBITMAP NewScreenFrame(int width, int height);

// A raster a DC draws on, with the DC's origin and the rectangle (raster coordinates)
// it may read and write.
struct Surface {
  raster::Raster* raster = nullptr;
  std::int64_t originX = 0;
  std::int64_t originY = 0;
  RECT clip{};
  bool mono() const { return raster->mono; }
};
std::optional<Surface> SurfaceOf(const DcObject& dc);
Surface WholeRaster(raster::Raster& raster);

// Re-resolves dc.draw after its pen, brush, ROP2 or bitmap changed.
void RefreshDrawState(DcObject& dc);

}  // namespace platform::gdi
