// Owners for GDI handles. Engine code holds every DC, bitmap, pen, brush and font it
// creates in one of these, so a handle is released exactly once, on every path, and
// never while it is still selected: creation and deletion are not paired by hand.
// All of them are move-only; a moved-from owner holds nothing.
#pragma once

#include <utility>

#include "platform/gdi.h"
#include "platform/owned_handle.h"

namespace platform {

// A GDI object (bitmap, pen, brush, font) deleted when its owner goes or takes another.
template <typename Handle>
using OwnedGdiObject = OwnedHandle<Handle, &DeleteObject>;

using OwnedBitmap = OwnedGdiObject<HBITMAP>;
using OwnedPen = OwnedGdiObject<HPEN>;
using OwnedBrush = OwnedGdiObject<HBRUSH>;
using OwnedFont = OwnedGdiObject<HFONT>;

// An independent copy of the bitmap (a DIB section) at its own size, or stretched to
// width x height; empty without a bitmap or when the copy cannot be made.
inline OwnedBitmap CopyOfBitmap(HBITMAP bitmap, int width = 0, int height = 0) {
  if (!bitmap) return OwnedBitmap();
  return OwnedBitmap(
      static_cast<HBITMAP>(CopyImage(bitmap, IMAGE_BITMAP, width, height, LR_CREATEDIBSECTION)));
}

// Selects an object into a DC for the guard's lifetime and then puts back whatever
// was selected before it. A failed selection (null DC or object) puts back nothing.
class SelectionGuard {
 public:
  SelectionGuard() = default;
  SelectionGuard(HDC dc, HGDIOBJ object) : dc_(dc), previous_(dc ? SelectObject(dc, object) : nullptr) {}
  ~SelectionGuard() {
    if (previous_) SelectObject(dc_, previous_);
  }
  SelectionGuard(SelectionGuard&& other) noexcept { *this = std::move(other); }
  // Takes the other guard's selection; its own is put back when `other` goes.
  SelectionGuard& operator=(SelectionGuard&& other) noexcept {
    std::swap(dc_, other.dc_);
    std::swap(previous_, other.previous_);
    return *this;
  }

 private:
  HDC dc_ = nullptr;
  HGDIOBJ previous_ = nullptr;
};

// A memory DC, deleted when its owner goes. It remembers the bitmap it was created
// with the first time another one is shown in it, so that a shown bitmap can always be
// taken out again (before it is deleted or lent to another DC) and the DC goes with
// its own bitmap back in. The shown bitmap is not owned.
class MemoryDC {
 public:
  MemoryDC() = default;
  // CreateCompatibleDC; holds nothing when that fails.
  explicit MemoryDC(HDC compatibleWith) : dc_(CreateCompatibleDC(compatibleWith)) {}
  ~MemoryDC() {
    if (!dc_) return;
    ShowOriginal();
    DeleteDC(dc_);
  }
  MemoryDC(MemoryDC&& other) noexcept { *this = std::move(other); }
  // Takes the other DC; its own goes when `other` does.
  MemoryDC& operator=(MemoryDC&& other) noexcept {
    std::swap(dc_, other.dc_);
    std::swap(original_, other.original_);
    return *this;
  }

  HDC get() const { return dc_; }
  explicit operator bool() const { return dc_ != nullptr; }

  // Selects the bitmap into the DC.
  void Show(HBITMAP bitmap) {
    HGDIOBJ previous = SelectObject(dc_, bitmap);
    if (!original_) original_ = previous;
  }
  // Puts the DC's own bitmap back, so that nothing shown before stays selected.
  void ShowOriginal() {
    if (original_) SelectObject(dc_, original_);
  }
  // Takes the bitmap out if it is the one shown now.
  void Hide(HBITMAP bitmap) {
    if (original_ && GetCurrentObject(dc_, OBJ_BITMAP) == bitmap) SelectObject(dc_, original_);
  }

 private:
  HDC dc_ = nullptr;
  HGDIOBJ original_ = nullptr;
};

}  // namespace platform
