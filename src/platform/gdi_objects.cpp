// The handle table, the stock objects, object creation, selection and deletion.
#include "platform/gdi_objects.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

#include "platform/user.h"

namespace platform::gdi {
namespace {

// A handle is (generation << 20) | (slot + 1). A slot's generation changes each time
// it is freed, so an old handle to a reused slot no longer matches.
constexpr std::uint32_t kIndexBits = 20;
constexpr std::uint32_t kIndexMask = (1u << kIndexBits) - 1;
constexpr std::uint32_t kGenerationLimit = 1u << (32 - kIndexBits);
constexpr int kStockCount = DEFAULT_GUI_FONT + 1;

struct Slot {
  std::unique_ptr<GdiObject> object;
  std::uint32_t generation = 1;
  bool stock = false;
  int selections = 0;  // memory DCs it is selected into
};

class HandleTable {
 public:
  static HandleTable& Instance() {
    static HandleTable table;
    return table;
  }

  void* Add(GdiObject object, bool stock) {
    std::uint32_t index;
    if (!free_.empty()) {
      index = free_.front();
      free_.pop_front();
    } else {
      if (slots_.size() >= kIndexMask) return nullptr;
      index = static_cast<std::uint32_t>(slots_.size());
      slots_.emplace_back();
    }
    Slot& slot = slots_[index];
    slot.object = std::make_unique<GdiObject>(std::move(object));
    slot.stock = stock;
    slot.selections = 0;
    if (!stock) ++*CounterFor(*slot.object);
    const std::uintptr_t value = (static_cast<std::uintptr_t>(slot.generation) << kIndexBits) | (index + 1);
    return reinterpret_cast<void*>(value);
  }

  Slot* Find(const void* handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    if (value == 0 || value > 0xFFFFFFFFu) return nullptr;
    const std::uint32_t index = static_cast<std::uint32_t>(value & kIndexMask);
    if (index == 0 || index > slots_.size()) return nullptr;
    Slot& slot = slots_[index - 1];
    if (!slot.object || slot.generation != (value >> kIndexBits)) return nullptr;
    return &slot;
  }

  void Remove(const void* handle) {
    Slot* slot = Find(handle);
    if (!slot) return;
    --*CounterFor(*slot->object);
    slot->object.reset();
    slot->generation = slot->generation + 1 < kGenerationLimit ? slot->generation + 1 : 1;
    // Reusing the oldest free slot first keeps stale handles distinguishable longest.
    free_.push_back(static_cast<std::uint32_t>(slot - slots_.data()));
  }

  void* Stock(int index) const { return index >= 0 && index < kStockCount ? stock_[index] : nullptr; }
  void* StockBitmap() const { return stockBitmap_; }

  GdiCounts counts;
  int bitmapFailureIn = 0;
  int dcFailureIn = 0;

 private:
  HandleTable() {
    AddStockBrush(WHITE_BRUSH, BS_SOLID, RGB(255, 255, 255));
    AddStockBrush(LTGRAY_BRUSH, BS_SOLID, RGB(192, 192, 192));
    AddStockBrush(GRAY_BRUSH, BS_SOLID, RGB(128, 128, 128));
    AddStockBrush(DKGRAY_BRUSH, BS_SOLID, RGB(64, 64, 64));
    AddStockBrush(BLACK_BRUSH, BS_SOLID, RGB(0, 0, 0));
    AddStockBrush(NULL_BRUSH, BS_NULL, 0);
    stock_[WHITE_PEN] = Add(PenObject{PS_SOLID, 1, RGB(255, 255, 255)}, true);
    stock_[BLACK_PEN] = Add(PenObject{PS_SOLID, 1, RGB(0, 0, 0)}, true);
    stock_[NULL_PEN] = Add(PenObject{PS_NULL, 1, 0}, true);
    stock_[SYSTEM_FONT] = Add(StockFont("System", 16, 700), true);
    stock_[DEFAULT_GUI_FONT] = Add(StockFont("MS Shell Dlg", -11, 400), true);
    BitmapObject bitmap;
    bitmap.raster.Allocate(1, 1, true, false);  // the system's, never the budget's
    stockBitmap_ = Add(std::move(bitmap), true);
  }

  void AddStockBrush(int index, UINT style, COLORREF color) {
    stock_[index] = Add(BrushObject{style, color}, true);
  }

  static FontObject StockFont(const char* face, LONG height, LONG weight) {
    FontObject font;
    font.font.lfHeight = height;
    font.font.lfWeight = weight;
    std::strncpy(font.font.lfFaceName, face, LF_FACESIZE - 1);
    return font;
  }

  int* CounterFor(const GdiObject& object) {
    switch (object.index()) {
      case 0:
        return &counts.dcs;
      case 1:
        return &counts.bitmaps;
      case 2:
        return &counts.pens;
      case 3:
        return &counts.brushes;
      default:
        return &counts.fonts;
    }
  }

  std::vector<Slot> slots_;
  std::deque<std::uint32_t> free_;
  std::array<void*, kStockCount> stock_{};
  void* stockBitmap_ = nullptr;
};

HandleTable& Table() { return HandleTable::Instance(); }

// Selection bookkeeping: an object held by a memory DC cannot be deleted, and a bitmap
// cannot be selected into a second DC. Stock objects are shared freely.
void Hold(void* handle) {
  if (Slot* slot = Table().Find(handle); slot && !slot->stock) ++slot->selections;
}
void Release(void* handle) {
  if (Slot* slot = Table().Find(handle); slot && !slot->stock && slot->selections > 0) --slot->selections;
}
template <typename H>
void Replace(H& held, void* handle) {
  Release(held);
  Hold(handle);
  held = static_cast<H>(handle);
}

HDC NewDc(DcType type, HBITMAP bitmap) {
  if (!AllowCreation(GdiKind::DC)) return nullptr;
  DcObject dc;
  dc.type = type;
  dc.bitmap = bitmap;
  dc.pen = static_cast<HPEN>(GetStockObject(BLACK_PEN));
  dc.brush = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
  dc.font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
  RefreshDrawState(dc);
  return static_cast<HDC>(Register(std::move(dc)));
}

bool HoldsMonoBitmap(const DcObject& dc) {
  if (dc.type != DcType::Memory) return false;
  const auto* bitmap = Lookup<BitmapObject>(dc.bitmap);
  return bitmap && bitmap->raster.mono;
}

}  // namespace

GdiObject* LookupObject(const void* handle) {
  Slot* slot = Table().Find(handle);
  return slot ? slot->object.get() : nullptr;
}

bool IsStock(const void* handle) {
  Slot* slot = Table().Find(handle);
  return slot && slot->stock;
}

bool AllowCreation(GdiKind kind) {
  int& countdown = kind == GdiKind::Bitmap ? Table().bitmapFailureIn : Table().dcFailureIn;
  if (countdown <= 0) return true;
  return --countdown != 0;
}

void* Register(GdiObject object) { return Table().Add(std::move(object), false); }

namespace {

HBITMAP MakeBitmap(int width, int height, bool mono, bool dibSection, LONG dibHeight, bool charged) {
  if (width <= 0 || height <= 0 || static_cast<std::int64_t>(width) * height > raster::kMaxPixels)
    return nullptr;
  if (!AllowCreation(GdiKind::Bitmap)) return nullptr;
  BitmapObject bitmap;
  if (!bitmap.raster.Allocate(width, height, mono, charged)) return nullptr;
  bitmap.dibSection = dibSection;
  bitmap.dibHeight = dibSection ? dibHeight : height;
  return static_cast<HBITMAP>(Register(std::move(bitmap)));
}

}  // namespace

HBITMAP NewBitmap(int width, int height, bool mono, bool dibSection, LONG dibHeight) {
  return MakeBitmap(width, height, mono, dibSection, dibHeight, true);
}

HBITMAP NewScreenFrame(int width, int height) { return MakeBitmap(width, height, false, false, 0, false); }

std::optional<Surface> SurfaceOf(const DcObject& dc) {
  if (dc.type == DcType::Screen) return std::nullopt;
  auto* bitmap = Lookup<BitmapObject>(dc.bitmap);
  if (!bitmap) return std::nullopt;
  Surface surface = WholeRaster(bitmap->raster);
  if (dc.type == DcType::Window) {
    surface.originX = dc.origin.x;
    surface.originY = dc.origin.y;
    IntersectRect(&surface.clip, &surface.clip, &dc.clip);
  }
  return surface;
}

Surface WholeRaster(raster::Raster& raster) {
  Surface surface;
  surface.raster = &raster;
  surface.clip = RECT{0, 0, raster.width, raster.height};
  return surface;
}

void RefreshDrawState(DcObject& dc) {
  const bool mono = HoldsMonoBitmap(dc);
  DrawState& draw = dc.draw;
  if (const auto* pen = Lookup<PenObject>(dc.pen)) {
    const bool geometric = (pen->style & PS_TYPE_MASK) == PS_GEOMETRIC;
    // A geometric pen one pixel wide or less draws one-pixel lines too; only the last
    // pixel of an open path ending in a slanted line tells it from a cosmetic pen.
    draw.pen = (pen->style & PS_STYLE_MASK) == PS_NULL ? PenKind::Null
               : geometric && pen->width > 1           ? PenKind::Wide
                                                       : PenKind::Thin;
    draw.penDotted = (pen->style & PS_STYLE_MASK) == PS_DOT;
    draw.penEndsSlantedLines = geometric && draw.pen == PenKind::Thin;
    draw.penWidth = draw.pen == PenKind::Wide ? pen->width : 1;
    const DWORD cap = pen->style & PS_ENDCAP_MASK;
    draw.penCap = cap == PS_ENDCAP_SQUARE ? raster::LineCap::Square
                  : cap == PS_ENDCAP_FLAT ? raster::LineCap::Flat
                                          : raster::LineCap::Round;
    draw.penPixel = raster::PixelFor(pen->color, mono);
  }
  if (const auto* brush = Lookup<BrushObject>(dc.brush)) {
    draw.brushVisible = brush->style != BS_NULL;
    draw.brushPixel = raster::PixelFor(brush->color, mono);
  }
  draw.rop = raster::Rop2Index(dc.rop2);
}

}  // namespace platform::gdi

using namespace platform::gdi;

HDC CreateCompatibleDC(HDC hdc) {
  if (hdc && !Lookup<DcObject>(hdc)) return nullptr;
  return NewDc(DcType::Memory, static_cast<HBITMAP>(Table().StockBitmap()));
}

BOOL DeleteDC(HDC hdc) {
  auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return FALSE;
  if (dc->type == DcType::Window) {
    if (auto* frame = Lookup<BitmapObject>(dc->bitmap)) --frame->windowDcs;
  } else {
    Release(dc->bitmap);
  }
  Release(dc->pen);
  Release(dc->brush);
  Release(dc->font);
  Table().Remove(hdc);
  return TRUE;
}

HBITMAP CreateCompatibleBitmap(HDC hdc, int width, int height) {
  const auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return nullptr;
  return NewBitmap(width, height, HoldsMonoBitmap(*dc));
}

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits) {
  // Only the two formats the engine uses: 1-bit monochrome and the 32-bit display format.
  if (planes != 1 || (bitsPerPixel != 1 && bitsPerPixel != 32)) return nullptr;
  const bool mono = bitsPerPixel == 1;
  HBITMAP handle = NewBitmap(width, height, mono);
  if (!handle || !bits) return handle;
  auto& raster = Lookup<BitmapObject>(handle)->raster;
  const auto* bytes = static_cast<const BYTE*>(bits);
  if (!mono) {
    for (int y = 0; y < height; ++y) {
      std::uint32_t* out = raster.MutableRow(y);
      std::memcpy(out, bytes + static_cast<std::size_t>(y) * width * 4, static_cast<std::size_t>(width) * 4);
      for (int x = 0; x < width; ++x) out[x] &= platform::raster::kColorMask;
    }
    return handle;
  }
  const std::size_t stride = static_cast<std::size_t>((width + 15) / 16) * 2;
  for (int y = 0; y < height; ++y) {
    const BYTE* row = bytes + stride * static_cast<std::size_t>(y);
    std::uint32_t* out = raster.MutableRow(y);
    for (int x = 0; x < width; ++x) {
      out[x] = (row[x >> 3] >> (7 - (x & 7))) & 1 ? platform::raster::kWhite : platform::raster::kBlack;
    }
  }
  return handle;
}

HGDIOBJ SelectObject(HDC hdc, HGDIOBJ object) {
  auto* dc = Lookup<DcObject>(hdc);
  GdiObject* target = LookupObject(object);
  if (!dc || !target) return nullptr;
  HGDIOBJ previous = nullptr;
  if (std::holds_alternative<BitmapObject>(*target)) {
    if (dc->type != DcType::Memory) return nullptr;
    if (object == dc->bitmap) return object;
    Slot* slot = Table().Find(object);
    if (!slot->stock && slot->selections > 0) return nullptr;
    previous = dc->bitmap;
    Replace(dc->bitmap, object);
  } else if (std::holds_alternative<PenObject>(*target)) {
    previous = dc->pen;
    Replace(dc->pen, object);
  } else if (std::holds_alternative<BrushObject>(*target)) {
    previous = dc->brush;
    Replace(dc->brush, object);
  } else if (std::holds_alternative<FontObject>(*target)) {
    previous = dc->font;
    Replace(dc->font, object);
  } else {
    return nullptr;
  }
  RefreshDrawState(*dc);
  return previous;
}

HGDIOBJ GetCurrentObject(HDC hdc, UINT type) {
  const auto* dc = Lookup<DcObject>(hdc);
  if (!dc) return nullptr;
  switch (type) {
    case OBJ_PEN:
      return dc->pen;
    case OBJ_BRUSH:
      return dc->brush;
    case OBJ_FONT:
      return dc->font;
    case OBJ_BITMAP:
      return dc->bitmap ? static_cast<HGDIOBJ>(dc->bitmap) : Table().StockBitmap();
    default:
      return nullptr;
  }
}

BOOL DeleteObject(HGDIOBJ object) {
  Slot* slot = Table().Find(object);
  if (!slot || std::holds_alternative<DcObject>(*slot->object)) return FALSE;
  if (slot->stock) return TRUE;
  if (slot->selections > 0) return FALSE;
  if (auto* bitmap = std::get_if<BitmapObject>(slot->object.get()); bitmap && bitmap->windowDcs > 0)
    return FALSE;
  Table().Remove(object);
  return TRUE;
}

HGDIOBJ GetStockObject(int index) { return Table().Stock(index); }

namespace {

BITMAP BitmapHeader(const platform::raster::Raster& raster) {
  BITMAP header{};
  header.bmWidth = raster.width;
  header.bmHeight = raster.height;
  header.bmWidthBytes = raster.mono ? (raster.width + 15) / 16 * 2 : raster.width * 4;
  header.bmPlanes = 1;
  header.bmBitsPixel = raster.mono ? 1 : 32;
  return header;
}

template <typename T>
int CopyOut(const T& value, int size, void* out) {
  if (!out) return static_cast<int>(sizeof(T));
  if (size < static_cast<int>(sizeof(T))) return 0;
  std::memcpy(out, &value, sizeof(T));
  return static_cast<int>(sizeof(T));
}

int GetBitmapObject(const BitmapObject& bitmap, int size, void* out) {
  if (!bitmap.dibSection || (out && size < static_cast<int>(sizeof(DIBSECTION)))) {
    return CopyOut(BitmapHeader(bitmap.raster), size, out);
  }
  DIBSECTION section{};
  section.dsBm = BitmapHeader(bitmap.raster);
  BITMAPINFOHEADER& info = section.dsBmih;
  info.biSize = sizeof(BITMAPINFOHEADER);
  info.biWidth = bitmap.raster.width;
  info.biHeight = bitmap.dibHeight;
  info.biPlanes = 1;
  info.biBitCount = 32;
  info.biCompression = BI_RGB;
  info.biSizeImage = static_cast<DWORD>(section.dsBm.bmWidthBytes) * static_cast<DWORD>(bitmap.raster.height);
  return CopyOut(section, size, out);
}

}  // namespace

int GetObjectA(HANDLE object, int size, void* out) {
  GdiObject* target = LookupObject(object);
  if (!target) return 0;
  if (const auto* bitmap = std::get_if<BitmapObject>(target)) return GetBitmapObject(*bitmap, size, out);
  if (const auto* brush = std::get_if<BrushObject>(target)) {
    return CopyOut(LOGBRUSH{brush->style, brush->color, 0}, size, out);
  }
  if (const auto* font = std::get_if<FontObject>(target)) return CopyOut(font->font, size, out);
  if (const auto* pen = std::get_if<PenObject>(target)) {
    const bool hollow = (pen->style & PS_STYLE_MASK) == PS_NULL;
    return CopyOut(
        EXTLOGPEN{
            pen->style, static_cast<DWORD>(pen->width), hollow ? BS_NULL : BS_SOLID, pen->color, 0, 0, {0}},
        size, out);
  }
  return 0;
}

DWORD GetObjectType(HGDIOBJ object) {
  const GdiObject* target = LookupObject(object);
  if (!target) return 0;
  if (const auto* dc = std::get_if<DcObject>(target)) return dc->type == DcType::Memory ? OBJ_MEMDC : OBJ_DC;
  if (std::holds_alternative<BitmapObject>(*target)) return OBJ_BITMAP;
  if (std::holds_alternative<PenObject>(*target)) return OBJ_PEN;
  if (std::holds_alternative<BrushObject>(*target)) return OBJ_BRUSH;
  return OBJ_FONT;
}

HBRUSH CreateSolidBrush(COLORREF color) {
  return static_cast<HBRUSH>(Register(BrushObject{BS_SOLID, color & platform::raster::kColorMask}));
}

HBRUSH CreateBrushIndirect(const LOGBRUSH* brush) {
  // Solid and hollow brushes only; hatched and pattern brushes are not part of this raster.
  if (!brush || (brush->lbStyle != BS_SOLID && brush->lbStyle != BS_NULL)) return nullptr;
  const COLORREF color = brush->lbStyle == BS_SOLID ? brush->lbColor & platform::raster::kColorMask : 0;
  return static_cast<HBRUSH>(Register(BrushObject{brush->lbStyle, color}));
}

HFONT CreateFontIndirectA(const LOGFONTA* font) {
  if (!font) return nullptr;
  FontObject object{*font};
  object.font.lfFaceName[LF_FACESIZE - 1] = '\0';
  return static_cast<HFONT>(Register(object));
}

namespace platform {

GdiCounts LiveGdiObjects() { return Table().counts; }

void FailNthCreation(GdiKind kind, int n) {
  (kind == GdiKind::Bitmap ? Table().bitmapFailureIn : Table().dcFailureIn) = n > 0 ? n : 0;
}

HDC CreateWindowDC(HBITMAP frame, int originX, int originY, const RECT& clip) {
  auto* bitmap = Lookup<BitmapObject>(frame);
  if (!bitmap || bitmap->raster.mono) return nullptr;
  HDC hdc = NewDc(DcType::Window, frame);
  if (!hdc) return nullptr;
  auto* dc = Lookup<DcObject>(hdc);
  dc->origin = POINT{originX, originY};
  dc->clip = clip;
  ++bitmap->windowDcs;
  return hdc;
}

HDC CreateScreenDC() { return NewDc(DcType::Screen, nullptr); }

const std::uint32_t* BitmapPixels(HBITMAP bitmap, int* width, int* height) {
  auto* object = Lookup<BitmapObject>(bitmap);
  if (!object || object->raster.mono) return nullptr;
  if (width) *width = object->raster.width;
  if (height) *height = object->raster.height;
  return object->raster.Pin();
}

std::optional<PixelsVersion> VersionOfBitmap(HBITMAP bitmap) {
  const auto* object = Lookup<BitmapObject>(bitmap);
  if (!object) return std::nullopt;
  return object->raster.Version();
}

namespace {
bool g_bitmapRowsOffered = true;
}  // namespace

void OfferBitmapRows(bool offered) { g_bitmapRowsOffered = offered; }

bool MapBitmapRows(HBITMAP source, HBITMAP target, const RECT& area, BitmapRows* rows) {
  if (!g_bitmapRowsOffered) return false;
  const auto* from = Lookup<BitmapObject>(source);
  auto* to = Lookup<BitmapObject>(target);
  if (!from || !to || !rows || from->raster.mono || to->raster.mono ||
      from->raster.width != to->raster.width || from->raster.height != to->raster.height)
    return false;
  raster::Raster& out = to->raster;
  const int left = std::clamp(static_cast<int>(area.left), 0, out.width);
  const int right = std::clamp(static_cast<int>(area.right), left, out.width);
  const int top = std::clamp(static_cast<int>(area.top), 0, out.height);
  const int bottom = std::clamp(static_cast<int>(area.bottom), top, out.height);
  rows->source.clear();
  rows->target.clear();
  rows->width = right - left;
  if (left == right) return true;
  // Target rows first: making them its own may move a band the source shares.
  if (from != to && left == 0 && right == out.width) out.OwnRowsToReplace(top, bottom);
  for (int y = top; y < bottom; ++y) rows->target.push_back(out.MutableRow(y) + left);
  for (int y = top; y < bottom; ++y) rows->source.push_back(from->raster.Row(y) + left);
  return true;
}

}  // namespace platform
