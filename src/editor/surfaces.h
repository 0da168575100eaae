// The editor's surfaces: the composition buffer, the drawing layer and the image
// surface (each a memory DC with a bitmap of its own), the snapshot DC that shows the
// current history level's drawing-layer snapshot, and the original picture.
#pragma once

#include "platform/gdi_handles.h"
#include "platform/platform.h"

// The colour that marks drawing-layer pixels without paint; the drawing layer is
// always composited keyed on it.
inline constexpr COLORREF kDrawingLayerKeyColor = 0x000B4313;

// A memory DC that keeps a bitmap of its own selected, and the bitmap's extent (left
// and top are always 0). Whether the bitmap is replaced or lent out, the DC holds it
// again afterwards, and it is never deleted while selected.
class Surface {
 public:
  // A DC compatible with the window's DC and a 1 x 1 bitmap compatible with the
  // window's DC selected into it, so that every bitmap made later against the surface's
  // DC is a colour one. Either may fail and stay null.
  void Create(HDC windowDC);
  // Sets the extent to width x height and replaces the bitmap by a new one of that
  // size. The new one is made while the old one is still selected (so it is colour
  // too); when it cannot be made the old bitmap stays, false. Needs the DC.
  bool Recreate(int width, int height);
  // Takes `bitmap` as the surface's bitmap, with that extent.
  void Adopt(platform::OwnedBitmap bitmap, int width, int height);
  // Calls use(bitmap) while the bitmap is selected nowhere, then selects it again.
  template <typename Use>
  void Lend(Use&& use) {
    dc_.ShowOriginal();
    use(bitmap_.get());
    dc_.Show(bitmap_.get());
  }
  // The DC goes with its first bitmap back in, then the surface's bitmap.
  void Release();

  HDC dc() const { return dc_.get(); }
  HBITMAP bitmap() const { return bitmap_.get(); }
  const RECT& rect() const { return rect_; }
  int width() const { return rect_.right - rect_.left; }
  int height() const { return rect_.bottom - rect_.top; }

 private:
  RECT rect_{0, 0, 0, 0};
  platform::OwnedBitmap bitmap_;
  platform::MemoryDC dc_;
};

struct EditorSurfaces {
  // Window creation: the three surfaces against the window's DC (the image surface
  // stretching in HALFTONE mode) and the snapshot DC, which has no bitmap of its own.
  void Create(HDC windowDC);
  // Copies that part of the snapshot DC (the drawing layer as the current history
  // level has it) back into the drawing layer: what a preview or a moved selection
  // covered is as it was before the press.
  void RestoreFromSnapshot(const RECT& area);
  // The whole drawing layer into the snapshot DC, so that the history level
  // committed at a press holds the picture after the stroke.
  void CopyLayerToSnapshot();

  Surface composition;   // each repaint is composed here
  Surface drawingLayer;  // strokes and shapes; key-coloured where unpainted
  Surface imageSurface;  // the scaled original with the adjustments applied
  // Shows the snapshot the history selected last; the tools read it as the picture
  // before the current stroke.
  platform::MemoryDC snapshotDC;
  // The picture as loaded, never altered by adjustments.
  platform::OwnedBitmap original;
  // True until the first positive size has sized the three surfaces.
  bool sizePending = true;
};
