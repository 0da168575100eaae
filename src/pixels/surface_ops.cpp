// The editor's surface operations: creating and re-creating surfaces, rebuilding the
// image surface, moving pixels between surfaces and 24-bit buffers, and the
// transparent blit that every layered drawing goes through.
#include "editor/image_edit_wnd.h"
#include "pixels/pixel_buffer.h"

namespace {

bool BitmapSize(HBITMAP bitmap, int* width, int* height) {
  DIBSECTION section{};
  if (!bitmap || GetObjectA(bitmap, sizeof section, &section) == 0) return false;
  *width = section.dsBm.bmWidth;
  *height = section.dsBm.bmHeight;
  return true;
}

BITMAPINFO PixelBufferInfo(int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader = PixelBufferHeader(width, height);
  return info;
}

void FillWithColor(HDC dc, const RECT& rect, COLORREF color) {
  HBRUSH brush = CreateSolidBrush(color);
  if (!brush) return;
  FillRect(dc, &rect, brush);
  DeleteObject(brush);
}

}  // namespace

BYTE* CImageEditWnd::ReadSurfacePixels(HDC dc, HBITMAP bitmap, int* width, int* height, int* stride) {
  int w = 0;
  int h = 0;
  if (!dc || !BitmapSize(bitmap, &w, &h)) return nullptr;
  BITMAPINFO info = PixelBufferInfo(w, h);
  *width = w;
  *height = h;
  *stride = PixelRowStride(w);

  BYTE* buffer = AllocatePixelBuffer(static_cast<std::size_t>(*stride) * static_cast<std::size_t>(h));
  if (!buffer) {
    if (m_verbose) ShowOutOfMemoryMessage();
    return nullptr;
  }
  GetDIBits(dc, bitmap, 0, static_cast<UINT>(h), buffer, &info, DIB_RGB_COLORS);
  return buffer;
}

void CImageEditWnd::WriteSurfacePixels(HDC dc, HBITMAP bitmap, BYTE* buffer) {
  if (!buffer) return;
  int w = 0;
  int h = 0;
  if (dc && BitmapSize(bitmap, &w, &h)) {
    BITMAPINFO info = PixelBufferInfo(w, h);
    SetDIBits(dc, bitmap, 0, static_cast<UINT>(h), buffer, &info, DIB_RGB_COLORS);
  }
  FreePixelBuffer(buffer);
}

bool CImageEditWnd::ReplaceSurfaceBitmap(Surface& surface, int width, int height) {
  surface.rect = RECT{0, 0, width, height};
  // Made while the old surface bitmap is still selected, so that it is a colour
  // bitmap like the one it replaces.
  HBITMAP bitmap = CreateCompatibleBitmap(surface.dc, width, height);
  if (!bitmap) return false;
  if (surface.bitmap) {
    SelectObject(surface.dc, surface.previousBitmap);
    DeleteObject(surface.bitmap);
  }
  surface.bitmap = bitmap;
  surface.previousBitmap = static_cast<HBITMAP>(SelectObject(surface.dc, bitmap));
  return true;
}

void CImageEditWnd::CreateCompositionBuffer(int width, int height) {
  if (!m_composition.dc) return;
  if (ReplaceSurfaceBitmap(m_composition, width, height)) {
    FillRect(m_composition.dc, &m_composition.rect, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  }
}

void CImageEditWnd::CreateDrawingLayer(int width, int height) {
  if (!m_drawingLayer.dc) return;
  if (ReplaceSurfaceBitmap(m_drawingLayer, width, height)) {
    FillWithColor(m_drawingLayer.dc, m_drawingLayer.rect, m_drawingLayerKeyColor);
  }
  m_bitmapBrushKeyColor = m_drawingLayerKeyColor;
}

void CImageEditWnd::CreateImageSurface(int width, int height) {
  if (!m_imageSurface.dc) return;
  if (ReplaceSurfaceBitmap(m_imageSurface, width, height)) {
    FillRect(m_imageSurface.dc, &m_imageSurface.rect, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  }
}

void CImageEditWnd::ResizeDrawingLayer(int width, int height, const RECT& dest, const RECT& src) {
  if (!m_drawingLayer.dc) return;
  HDC scratch = CreateCompatibleDC(m_drawingLayer.dc);
  if (!scratch) return;
  HBITMAP bitmap = CreateCompatibleBitmap(m_drawingLayer.dc, width, height);
  if (!bitmap) {
    DeleteDC(scratch);
    return;
  }
  HGDIOBJ scratchPrevious = SelectObject(scratch, bitmap);
  FillWithColor(scratch, RECT{0, 0, width, height}, m_drawingLayerKeyColor);
  StretchBlt(scratch, dest.left, dest.top, dest.right - dest.left, dest.bottom - dest.top, m_drawingLayer.dc,
             src.left, src.top, src.right - src.left, src.bottom - src.top, SRCCOPY);
  SelectObject(scratch, scratchPrevious);

  if (m_drawingLayer.bitmap) {
    SelectObject(m_drawingLayer.dc, m_drawingLayer.previousBitmap);
    DeleteObject(m_drawingLayer.bitmap);
  }
  m_drawingLayer.rect = RECT{0, 0, width, height};
  m_drawingLayer.bitmap = bitmap;
  m_drawingLayer.previousBitmap = static_cast<HBITMAP>(SelectObject(m_drawingLayer.dc, bitmap));
  DeleteDC(scratch);
}

void CImageEditWnd::RebuildImageSurface() {
  if (!m_imageSurface.dc) return;
  if (!m_originalImage) {
    FillWithColor(m_imageSurface.dc, m_imageSurface.rect, m_drawingLayerKeyColor);
    return;
  }
  HDC scratch = CreateCompatibleDC(m_imageSurface.dc);
  if (!scratch) return;
  HGDIOBJ previous = SelectObject(scratch, m_originalImage);
  StretchBlt(m_imageSurface.dc, m_imageRect.left, m_imageRect.top, m_displayedWidth, m_displayedHeight,
             scratch, 0, 0, m_originalWidth, m_originalHeight, SRCCOPY);
  SelectObject(scratch, previous);
  DeleteDC(scratch);
}

void CImageEditWnd::CompositeDrawingLayer(HDC target) {
  if (!target || !m_drawingLayer.dc) return;
  SelectObject(m_drawingLayer.dc, m_drawingLayer.previousBitmap);
  TransparentBlit(target, m_drawingLayer.bitmap, 0, 0, m_drawingLayer.width(), m_drawingLayer.height(),
                  m_drawingLayerKeyColor);
  m_drawingLayer.previousBitmap =
      static_cast<HBITMAP>(SelectObject(m_drawingLayer.dc, m_drawingLayer.bitmap));
}

void CImageEditWnd::TransparentBlit(HDC target, HBITMAP source, int x, int y, int width, int height,
                                    COLORREF key) {
  HDC sourceDC = CreateCompatibleDC(target);
  if (!sourceDC) return;

  if (m_transparentBlt) {
    HGDIOBJ previous = SelectObject(sourceDC, source);
    m_transparentBlt(target, x, y, width, height, sourceDC, 0, 0, width, height, key);
    SelectObject(sourceDC, previous);
    DeleteDC(sourceDC);
    return;
  }

  // Without the platform's transparent copy, a monochrome mask of the key pixels
  // does the same in four raster operations. The source is copied first so that
  // blackening its key pixels never alters the caller's bitmap.
  HDC maskDC = CreateCompatibleDC(target);
  HBITMAP mask = maskDC ? CreateBitmap(width, height, 1, 1, nullptr) : nullptr;
  auto copy =
      mask ? static_cast<HBITMAP>(CopyImage(source, IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)) : nullptr;
  if (!copy) {
    if (mask) DeleteObject(mask);
    if (maskDC) DeleteDC(maskDC);
    DeleteDC(sourceDC);
    return;
  }

  HGDIOBJ sourcePrevious = SelectObject(sourceDC, copy);
  HGDIOBJ maskPrevious = SelectObject(maskDC, mask);
  SetMapMode(sourceDC, GetMapMode(target));

  COLORREF background = SetBkColor(sourceDC, key);
  BitBlt(maskDC, 0, 0, width, height, sourceDC, 0, 0, SRCCOPY);
  SetBkColor(sourceDC, background);

  BitBlt(target, x, y, width, height, maskDC, 0, 0, SRCAND);
  BitBlt(maskDC, 0, 0, width, height, maskDC, 0, 0, NOTSRCCOPY);
  BitBlt(sourceDC, 0, 0, width, height, maskDC, 0, 0, SRCAND);
  BitBlt(target, x, y, width, height, sourceDC, 0, 0, SRCPAINT);

  SelectObject(sourceDC, sourcePrevious);
  SelectObject(maskDC, maskPrevious);
  DeleteObject(copy);
  DeleteObject(mask);
  DeleteDC(maskDC);
  DeleteDC(sourceDC);
}

void CImageEditWnd::RecolorBitmapBrush(COLORREF color) {
  if (!m_drawingLayer.dc || !m_bitmapBrush || color == m_bitmapBrushKeyColor) return;

  // The brush is recoloured on a fresh copy, which then becomes the brush; the
  // bitmap that is no longer the brush goes at the end.
  HBITMAP copy = CreateCompatibleBitmap(m_drawingLayer.dc, m_toolWidth, m_toolWidth);
  HBITMAP discarded = copy;
  if (copy) {
    HDC from = CreateCompatibleDC(m_drawingLayer.dc);
    HDC to = CreateCompatibleDC(m_drawingLayer.dc);
    if (from && to) {
      HGDIOBJ fromPrevious = SelectObject(from, m_bitmapBrush);
      HGDIOBJ toPrevious = SelectObject(to, copy);
      BitBlt(to, 0, 0, m_toolWidth, m_toolWidth, from, 0, 0, SRCCOPY);
      SelectObject(from, fromPrevious);
      SelectObject(to, toPrevious);
      discarded = m_bitmapBrush;
      m_bitmapBrush = copy;
    }
    if (from) DeleteDC(from);
    if (to) DeleteDC(to);
  }

  int width = 0;
  int height = 0;
  int stride = 0;
  BYTE* pixels = ReadSurfacePixels(m_drawingLayer.dc, m_bitmapBrush, &width, &height, &stride);
  if (pixels) {
    for (int row = 0; row < height; ++row) {
      BYTE* pixel = pixels + static_cast<std::size_t>(row) * static_cast<std::size_t>(stride);
      for (int column = 0; column < width; ++column, pixel += 3) {
        if (PixelColor(pixel) != m_bitmapBrushKeyColor) StorePixelColor(pixel, color);
      }
    }
    WriteSurfacePixels(m_drawingLayer.dc, m_bitmapBrush, pixels);
  }
  if (discarded) DeleteObject(discarded);
}
