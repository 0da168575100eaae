// What the editor window shows: each repaint composed off screen and copied in one
// blit, the scroll bars and their steps, and the two ways of setting the display
// size.
#include <algorithm>

#include "editor/image_edit_wnd.h"
#include "view/display_scale.h"

double ScaleFromPercentage(int percent, int originalWidth, int originalHeight, int referenceWidth,
                           int referenceHeight) {
  double scale = percent < 100 ? 0.25 + 0.0075 * percent : 1.0 + 0.01 * (percent - 100);
  if (scale < 1.0) {
    const double rx = referenceWidth > 0 ? static_cast<double>(originalWidth) / referenceWidth : 0.0;
    const double ry = referenceHeight > 0 ? static_cast<double>(originalHeight) / referenceHeight : 0.0;
    if (rx > 1.0 || ry > 1.0) {
      scale -= 0.02 * std::max(rx, ry);
      if (scale < 0.0) scale = 0.001;
    }
  }
  return scale;
}

namespace {

HBRUSH WhiteBrush() { return static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)); }

RECT ClientRect(HWND window) {
  RECT rect{0, 0, 0, 0};
  GetClientRect(window, &rect);
  return rect;
}

}  // namespace

void CImageEditWnd::OnPaint() {
  PAINTSTRUCT paint{};
  HDC windowDC = BeginPaint(m_hWnd, &paint);
  if (!m_composition.dc || !m_composition.bitmap) {
    const RECT client = ClientRect(m_hWnd);
    FillRect(windowDC, &client, WhiteBrush());
    EndPaint(m_hWnd, &paint);
    return;
  }

  ComposeView();
  // The selection box is drawn on the window here once it exists.
  BitBlt(windowDC, 0, 0, m_composition.width() - m_hScrollPos, m_composition.height() - m_vScrollPos,
         m_composition.dc, m_hScrollPos, m_vScrollPos, SRCCOPY);
  EndPaint(m_hWnd, &paint);
}

void CImageEditWnd::ComposeView() {
  if (!m_composition.dc) return;
  if (m_imageSurface.dc && m_imageSurface.bitmap) {
    BitBlt(m_composition.dc, 0, 0, m_composition.width(), m_composition.height(), m_imageSurface.dc, 0, 0,
           SRCCOPY);
  }
  if (m_drawingLayer.dc && m_drawingLayer.bitmap) CompositeDrawingLayer(m_composition.dc);
  // Inserted objects and the frame join the composition here once they exist.
}

void CImageEditWnd::UpdateScrollBars(int contentWidth, int contentHeight) {
  if (m_hScrollShown) {
    ShowScrollBar(m_hWnd, SB_HORZ, FALSE);
    m_hScrollShown = false;
    m_hScrollPos = 0;
  }
  if (m_vScrollShown) {
    ShowScrollBar(m_hWnd, SB_VERT, FALSE);
    m_vScrollShown = false;
    m_vScrollPos = 0;
  }

  // Both decisions use the client size without bars, so a bar on one axis never
  // causes the other.
  const RECT bare = ClientRect(m_hWnd);
  const auto showBar = [this](int bar, int content, int available, bool& shown, int& viewSize,
                              int& position) {
    if (content <= available) return;
    ShowScrollBar(m_hWnd, bar, TRUE);
    shown = true;
    viewSize = available;
    const int overflow = content - available;
    const int maximum = overflow + overflow / 20;
    position = 0;
    SCROLLINFO info{28, SIF_ALL, 0, maximum, static_cast<UINT>(maximum / 20), 0, 0};
    SetScrollInfo(m_hWnd, bar, &info, TRUE);
  };
  showBar(SB_HORZ, contentWidth, bare.right, m_hScrollShown, m_viewWidth, m_hScrollPos);
  showBar(SB_VERT, contentHeight, bare.bottom, m_vScrollShown, m_viewHeight, m_vScrollPos);

  const RECT client = ClientRect(m_hWnd);
  m_viewWidth = client.right;
  m_viewHeight = client.bottom;
}

void CImageEditWnd::OnHScroll(UINT code, UINT pos, HWND scrollBar) {
  Scroll(SB_HORZ, code, static_cast<int>(pos));
  CWnd::OnHScroll(code, pos, scrollBar);
}

void CImageEditWnd::OnVScroll(UINT code, UINT pos, HWND scrollBar) {
  Scroll(SB_VERT, code, static_cast<int>(pos));
  CWnd::OnVScroll(code, pos, scrollBar);
}

void CImageEditWnd::Scroll(int bar, UINT code, int position) {
  const bool horizontal = bar == SB_HORZ;
  const int displayed = horizontal ? m_displayedWidth : m_displayedHeight;
  const int view = horizontal ? m_viewWidth : m_viewHeight;
  int& current = horizontal ? m_hScrollPos : m_vScrollPos;

  int step = 0;
  switch (code) {
    case SB_LINEUP:
      step = -(displayed / 50);
      break;
    case SB_LINEDOWN:
      step = displayed / 50;
      break;
    case SB_PAGEUP:
      step = -(displayed / 20);
      break;
    case SB_PAGEDOWN:
      step = displayed / 20;
      break;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK:
      step = position - current;
      break;
    default:
      return;
  }
  if (step != 0) {
    int moved = std::max(current + step, 0);
    // The upper limit is applied last, so content narrower than the view pins the
    // position at a negative value rather than at 0.
    moved = std::min(moved, displayed - view);
    current = moved;
    SetScrollPos(m_hWnd, bar, moved, TRUE);
  }
  // Inserted objects follow the scroll here once they exist.
  RedrawWindow();
}

BOOL CImageEditWnd::ScaleImage(int nScaleFactor) {
  if (!m_scalingAllowed) return FALSE;
  const int percent = std::clamp(nScaleFactor, 0, 200);
  m_displayScale = ScaleFromPercentage(percent, m_originalWidth, m_originalHeight, m_imageSurface.width(),
                                       m_imageSurface.height());
  DrawScaledOriginal(m_drawingLayer);
  // The image surface is drawn second: its placement is the image rectangle that
  // remains.
  DrawScaledOriginal(m_imageSurface);
  RedrawWindow();
  return TRUE;
}

void CImageEditWnd::DrawScaledOriginal(const Surface& surface) {
  if (!surface.dc) return;
  HDC scratch = CreateCompatibleDC(surface.dc);
  if (!scratch) return;
  m_displayedWidth = static_cast<int>(m_originalWidth * m_displayScale);
  m_displayedHeight = static_cast<int>(m_originalHeight * m_displayScale);
  m_imageRect.left = surface.width() / 2 - m_displayedWidth / 2;
  m_imageRect.top = surface.height() / 2 - m_displayedHeight / 2;
  m_imageRect.right = m_imageRect.left + m_displayedWidth;
  m_imageRect.bottom = m_imageRect.top + m_displayedHeight;
  FillRect(surface.dc, &surface.rect, WhiteBrush());
  HGDIOBJ previous = SelectObject(scratch, m_originalImage);
  StretchBlt(surface.dc, m_imageRect.left, m_imageRect.top, m_displayedWidth, m_displayedHeight, scratch, 0,
             0, m_originalWidth, m_originalHeight, SRCCOPY);
  SelectObject(scratch, previous);
  DeleteDC(scratch);
}

void CImageEditWnd::SetImageWidth(int nImageWidth) {
  if (nImageWidth == 0) {
    m_requestedImageWidth = 0;
    ShowScrollBar(m_hWnd, SB_BOTH, FALSE);
    m_hScrollShown = m_vScrollShown = false;
    m_viewWidth = m_viewHeight = m_hScrollPos = m_vScrollPos = 0;
    return;
  }
  double scale = 1.0;
  if (nImageWidth > 0) {
    m_requestedImageWidth = nImageWidth;
    if (nImageWidth < m_originalWidth) scale = static_cast<double>(nImageWidth) / m_originalWidth;
  } else {
    m_requestedImageWidth = 0;
    const int percent = nImageWidth < -200 ? 200 : -nImageWidth;
    scale = ScaleFromPercentage(percent, m_originalWidth, m_originalHeight, m_composition.width(),
                                m_composition.height());
  }
  m_displayScale = scale;
  if (!m_imageSurface.dc || !m_originalImage) return;

  m_displayedWidth = static_cast<int>(m_originalWidth * scale);
  m_displayedHeight = static_cast<int>(m_originalHeight * scale);
  UpdateScrollBars(m_displayedWidth, m_displayedHeight);

  const RECT client = ClientRect(m_hWnd);
  const int width = std::max(static_cast<int>(client.right), m_displayedWidth);
  const int height = std::max(static_cast<int>(client.bottom), m_displayedHeight);
  const RECT oldImageRect = m_imageRect;
  m_imageRect.left = width / 2 - m_displayedWidth / 2;
  m_imageRect.top = height / 2 - m_displayedHeight / 2;
  m_imageRect.right = m_imageRect.left + m_displayedWidth;
  m_imageRect.bottom = m_imageRect.top + m_displayedHeight;

  CreateCompositionBuffer(width, height);
  ResizeDrawingLayer(width, height, m_imageRect, oldImageRect);
  CreateImageSurface(width, height);

  BeginWaitCursor();
  RunAdjustedRebuild();
  EndWaitCursor();
  RedrawWindow();
}
