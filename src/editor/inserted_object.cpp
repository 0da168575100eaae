#include "editor/inserted_object.h"

#include <cstdint>
#include <utility>

#include "editor/clamped_int.h"
#include "editor/user_messages.h"
#include "pixels/mirror.h"
#include "platform/gdi_draw.h"

namespace {}  // namespace

platform::OwnedBrush CopyOfBrush(HBRUSH brush) {
  LOGBRUSH description{};
  if (!brush || !GetObjectA(brush, sizeof description, &description)) return platform::OwnedBrush();
  return platform::OwnedBrush(CreateBrushIndirect(&description));
}

CInsertedObject::CInsertedObject() : language(static_cast<WORD>(GetUserDefaultLangID() & 0x3FF)) {}

CInsertedObject::~CInsertedObject() = default;

void CInsertedObject::Reset() {
  x = y = width = height = sourceWidth = sourceHeight = 0;
  picture.reset();
  sourcePicture.reset();
  selectedPicture.reset();
  keyColor = 0;
  selected_ = false;
  resizable = false;
  textColor = 0;
  backgroundBrush.reset();
  transparency = 0;
  borderColor = kObjectBorderColor;
}

void CInsertedObject::CopyFrom(const CInsertedObject& other) {
  if (&other == this) return;
  Reset();
  kind_ = other.kind_;
  x = other.x;
  y = other.y;
  width = other.width;
  height = other.height;
  sourceWidth = other.sourceWidth;
  sourceHeight = other.sourceHeight;
  picture = platform::CopyOfBitmap(other.picture.get());
  sourcePicture = platform::CopyOfBitmap(other.sourcePicture.get());
  selectedPicture = platform::CopyOfBitmap(other.selectedPicture.get());
  keyColor = other.keyColor;
  selected_ = other.selected_;
  resizable = other.resizable;
  language = other.language;
  textColor = other.textColor;
  backgroundBrush = CopyOfBrush(other.backgroundBrush.get());
  transparency = other.transparency;
  borderColor = other.borderColor;
}

PixelBuffer CInsertedObject::ReadSurfacePixels(HDC dc, HBITMAP bitmap) const {
  PixelBuffer buffer = ReadBitmapPixels(dc, bitmap);
  if (!buffer && buffer.width() > 0) ShowOutOfMemory(language);
  return buffer;
}

void CInsertedObject::RebuildSelectedPicture() {
  selectedPicture = platform::CopyOfBitmap(picture.get());
  // A frame in the background's own colour would not show: it takes the complement.
  LOGBRUSH background{};
  const bool hasBackground =
      backgroundBrush && GetObjectA(backgroundBrush.get(), sizeof background, &background) != 0;
  borderColor = kObjectBorderColor;
  if (hasBackground && background.lbColor == borderColor) borderColor = ~borderColor;
  if (!selectedPicture) return;

  const platform::MemoryDC dc(nullptr);
  const platform::OwnedPen pen(CreatePen(PS_SOLID, 1, borderColor));
  if (!dc || !pen) return;
  const platform::SelectionGuard bitmapSelected(dc.get(), selectedPicture.get());
  const platform::SelectionGuard penSelected(dc.get(), pen.get());
  MoveToEx(dc.get(), 0, 0, nullptr);
  LineTo(dc.get(), width - 1, 0);
  LineTo(dc.get(), width - 1, height - 1);
  LineTo(dc.get(), 0, height - 1);
  LineTo(dc.get(), 0, 0);
  // The grip is drawn with the DC's own brush, which is white.
  if (resizable)
    Rectangle(dc.get(), width - kObjectGripSide, height - kObjectGripSide, width - 1, height - 1);
}

void CInsertedObject::Mirror(HDC dc) {
  for (platform::OwnedBitmap* bitmap : {&picture, &sourcePicture}) {
    PixelBuffer pixels = ReadSurfacePixels(dc, bitmap->get());
    if (!pixels) continue;
    MirrorRows(pixels.Whole());
    WriteBitmapPixels(dc, bitmap->get(), pixels);
  }
}

void CInsertedObject::RestoreOriginalSize() {
  if (!sourcePicture) return;
  ScaleFromSource(sourceWidth, sourceHeight);
  RebuildSelectedPicture();
}

bool CInsertedObject::ScaleFromSource(int newWidth, int newHeight) {
  if (!sourcePicture) return true;
  platform::OwnedBitmap scaled = platform::CopyOfBitmap(sourcePicture.get(), newWidth, newHeight);
  if (!scaled) return false;
  picture = std::move(scaled);
  width = newWidth;
  height = newHeight;
  return true;
}

namespace {

// Wide arithmetic: a position near the limits of int must not wrap around.
bool InSpan(std::int64_t at, std::int64_t from, std::int64_t to) { return at >= from && at < to; }

}  // namespace

bool CInsertedObject::BodyContains(POINT window) const {
  return InSpan(window.x, x, std::int64_t{x} + width) && InSpan(window.y, y, std::int64_t{y} + height);
}

bool CInsertedObject::GripContains(POINT window) const {
  const std::int64_t right = std::int64_t{x} + width - 1;
  const std::int64_t bottom = std::int64_t{y} + height - 1;
  return resizable && InSpan(window.x, right - kObjectGripSide + 1, right) &&
         InSpan(window.y, bottom - kObjectGripSide + 1, bottom);
}

RECT CInsertedObject::WindowRect() const {
  return RECT{x, y, ClampedInt(std::int64_t{x} + width), ClampedInt(std::int64_t{y} + height)};
}
