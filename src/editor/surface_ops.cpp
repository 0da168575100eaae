// The editor's surface operations: creating and re-creating surfaces, rebuilding the
// image surface, moving pixels between surfaces and 24-bit buffers, and the
// transparent blit that every layered drawing goes through.
#include <utility>

#include "editor/image_edit_wnd.h"
#include "pixels/pixel_buffer.h"

namespace {

void FillWithColor(HDC dc, const RECT& rect, COLORREF color) {
  const platform::OwnedBrush brush(CreateSolidBrush(color));
  if (brush) FillRect(dc, &rect, brush.get());
}

void FillWhite(const Surface& surface) {
  FillRect(surface.dc(), &surface.rect(), static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

}  // namespace

PixelBuffer CImageEditWnd::ReadSurfacePixels(HDC dc, HBITMAP bitmap) {
  PixelBuffer buffer = ReadBitmapPixels(dc, bitmap);
  if (!buffer && buffer.width() > 0) m_messages.ReportOutOfMemory();
  return buffer;
}

void CImageEditWnd::WriteSurfacePixels(HDC dc, HBITMAP bitmap, PixelBuffer buffer) {
  WriteBitmapPixels(dc, bitmap, buffer);
}

bool CImageEditWnd::MapSurfaceRows(HBITMAP source, const RECT& area, PixelRows* rows) {
  HBITMAP surface = m_surfaces.imageSurface.bitmap();
  platform::BitmapRows mapped;
  if (!PixelBufferWouldFit(surface) || !platform::MapBitmapRows(source, surface, area, &mapped)) return false;
  *rows = RowsOf(mapped);
  return true;
}

void CImageEditWnd::CreateCompositionBuffer(int width, int height) {
  Surface& surface = m_surfaces.composition;
  if (surface.dc() && surface.Recreate(width, height)) FillWhite(surface);
}

void CImageEditWnd::CreateDrawingLayer(int width, int height) {
  Surface& surface = m_surfaces.drawingLayer;
  if (!surface.dc()) return;
  if (surface.Recreate(width, height)) FillWithColor(surface.dc(), surface.rect(), kDrawingLayerKeyColor);
  m_tools.bitmapBrushKeyColor = kDrawingLayerKeyColor;
}

void CImageEditWnd::CreateImageSurface(int width, int height) {
  Surface& surface = m_surfaces.imageSurface;
  if (surface.dc() && surface.Recreate(width, height)) FillWhite(surface);
}

void CImageEditWnd::ResizeDrawingLayer(int width, int height, const RECT& dest, const RECT& src) {
  Surface& layer = m_surfaces.drawingLayer;
  if (!layer.dc()) return;
  const platform::MemoryDC scratch(layer.dc());
  if (!scratch) return;
  platform::OwnedBitmap bitmap(CreateCompatibleBitmap(layer.dc(), width, height));
  if (!bitmap) return;
  {
    const platform::SelectionGuard selected(scratch.get(), bitmap.get());
    FillWithColor(scratch.get(), RECT{0, 0, width, height}, kDrawingLayerKeyColor);
    StretchBlt(scratch.get(), dest.left, dest.top, dest.right - dest.left, dest.bottom - dest.top, layer.dc(),
               src.left, src.top, src.right - src.left, src.bottom - src.top, SRCCOPY);
  }
  layer.Adopt(std::move(bitmap), width, height);
}

void CImageEditWnd::RebuildImageSurface() {
  const Surface& surface = m_surfaces.imageSurface;
  if (!surface.dc()) return;
  if (!m_surfaces.original) {
    FillWithColor(surface.dc(), surface.rect(), kDrawingLayerKeyColor);
    return;
  }
  const platform::MemoryDC scratch(surface.dc());
  if (!scratch) return;
  const platform::SelectionGuard selected(scratch.get(), m_surfaces.original.get());
  const RECT& image = m_view.imageRect();
  StretchBlt(surface.dc(), image.left, image.top, m_view.displayedWidth(), m_view.displayedHeight(),
             scratch.get(), 0, 0, m_view.originalWidth, m_view.originalHeight, SRCCOPY);
}

HBITMAP CImageEditWnd::RebuiltImageSource() {
  const Surface& surface = m_surfaces.imageSurface;
  const ViewPlacement& view = m_view;
  BITMAP original{};
  // Measured on the surface's bitmap, not its extent: after a failed re-creation the
  // extent has the new size while the older bitmap stays, and the original's pixels
  // must never be written into a bitmap of another size.
  BITMAP target{};
  const bool fillsAtOneToOne =
      m_surfaces.original && GetObjectA(m_surfaces.original.get(), sizeof original, &original) &&
      GetObjectA(surface.bitmap(), sizeof target, &target) && original.bmBitsPixel == 32 &&
      view.displayedWidth() == view.originalWidth && view.displayedHeight() == view.originalHeight &&
      original.bmWidth == view.originalWidth && original.bmHeight == view.originalHeight &&
      view.imageRect().left == 0 && view.imageRect().top == 0 && view.imageRect().right == target.bmWidth &&
      view.imageRect().bottom == target.bmHeight;
  if (fillsAtOneToOne) return m_surfaces.original.get();
  RebuildImageSurface();
  return surface.bitmap();
}

void CImageEditWnd::CompositeDrawingLayer(HDC target, const RECT* area) {
  Surface& layer = m_surfaces.drawingLayer;
  if (!target || !layer.dc()) return;
  RECT part = layer.rect();
  if (area && !IntersectRect(&part, &layer.rect(), area)) return;
  layer.Lend([&](HBITMAP bitmap) {
    TransparentBlit(target, bitmap, part.left, part.top, part.right - part.left, part.bottom - part.top,
                    kDrawingLayerKeyColor, part.left, part.top);
  });
}

void CImageEditWnd::TransparentBlit(HDC target, HBITMAP source, int x, int y, int width, int height,
                                    COLORREF key, int srcX, int srcY) {
  const platform::MemoryDC sourceDC(target);
  if (!sourceDC) return;

  if (const TransparentBltEntry transparentBlt = m_shell.transparentBlt()) {
    const platform::SelectionGuard selected(sourceDC.get(), source);
    transparentBlt(target, x, y, width, height, sourceDC.get(), srcX, srcY, width, height, key);
    return;
  }

  // Without the platform's transparent copy, a monochrome mask of the key pixels
  // does the same in four raster operations. The source is copied first so that
  // blackening its key pixels never alters the caller's bitmap.
  const platform::MemoryDC maskDC(target);
  const platform::OwnedBitmap mask(maskDC ? CreateBitmap(width, height, 1, 1, nullptr) : nullptr);
  const platform::OwnedBitmap copy(mask ? platform::CopyOfBitmap(source) : platform::OwnedBitmap());
  if (!copy) return;

  const platform::SelectionGuard sourceSelected(sourceDC.get(), copy.get());
  const platform::SelectionGuard maskSelected(maskDC.get(), mask.get());
  SetMapMode(sourceDC.get(), GetMapMode(target));

  const COLORREF background = SetBkColor(sourceDC.get(), key);
  BitBlt(maskDC.get(), 0, 0, width, height, sourceDC.get(), srcX, srcY, SRCCOPY);
  SetBkColor(sourceDC.get(), background);

  BitBlt(target, x, y, width, height, maskDC.get(), 0, 0, SRCAND);
  BitBlt(maskDC.get(), 0, 0, width, height, maskDC.get(), 0, 0, NOTSRCCOPY);
  BitBlt(sourceDC.get(), srcX, srcY, width, height, maskDC.get(), 0, 0, SRCAND);
  BitBlt(target, x, y, width, height, sourceDC.get(), srcX, srcY, SRCPAINT);
}

void CImageEditWnd::RecolorBitmapBrush(COLORREF color) {
  HDC layerDC = m_surfaces.drawingLayer.dc();
  platform::OwnedBitmap& brush = m_tools.bitmapBrush;
  if (!layerDC || !brush || color == m_tools.bitmapBrushKeyColor) return;

  // The brush is recoloured on a fresh copy, which then becomes the brush; the
  // bitmap that is no longer the brush goes at the end.
  const int side = m_tools.toolWidth;
  platform::OwnedBitmap discarded(CreateCompatibleBitmap(layerDC, side, side));
  if (discarded) {
    const platform::MemoryDC from(layerDC);
    const platform::MemoryDC to(layerDC);
    if (from && to) {
      {
        const platform::SelectionGuard fromSelected(from.get(), brush.get());
        const platform::SelectionGuard toSelected(to.get(), discarded.get());
        BitBlt(to.get(), 0, 0, side, side, from.get(), 0, 0, SRCCOPY);
      }
      std::swap(brush, discarded);
    }
  }

  PixelBuffer pixels = ReadSurfacePixels(layerDC, brush.get());
  if (!pixels) return;
  ForEachPixel(pixels.Whole(), [&](BYTE* pixel, int, int) {
    if (PixelColor(pixel) != m_tools.bitmapBrushKeyColor) StorePixelColor(pixel, color);
  });
  WriteSurfacePixels(layerDC, brush.get(), std::move(pixels));
}
