// What the editor window shows: each repaint composed off screen (only what the
// buffer lacks, view/composed_area.h) and copied in one blit, the scroll bars and
// their steps, and the two ways of setting the display size.
#include <algorithm>

#include "editor/image_edit_wnd.h"
#include "platform/bitmap_version.h"
#include "platform/kept_bitmaps.h"
#include "tools/rubber_band.h"
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

// Every field the bar is given: range, page and position, with a bar that cannot
// scroll shown disabled rather than hidden.
constexpr UINT kScrollInfoMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
static_assert(sizeof(SCROLLINFO) == 28, "SCROLLINFO has the size the scroll-bar calls expect");

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
  const Surface& composition = m_surfaces.composition;
  if (!composition.dc() || !composition.bitmap()) {
    const RECT client = ClientRect(m_hWnd);
    FillRect(windowDC, &client, WhiteBrush());
    EndPaint(m_hWnd, &paint);
    return;
  }

  // Only the part of the buffer the window shows is composed: a repaint costs in
  // proportion to the window, not to the picture.
  const RECT visible = m_view.ToSurface(paint.rcPaint);
  ComposeView(&visible);
  const int h = m_view.hScrollPos();
  const int v = m_view.vScrollPos();
  BitBlt(windowDC, 0, 0, composition.width() - h, composition.height() - v, composition.dc(), h, v, SRCCOPY);
  ReleaseHiddenComposition();
  // Text typed while an object is selected goes over the object, just inside its
  // frame's left and top edges.
  if (m_objects.selected() >= 0 && m_textEntry.IsShown()) {
    const CInsertedObject& object = m_objects.Object(m_objects.selected());
    m_textEntry.MoveTo(
        RECT{object.x - 1, object.y - 1, object.x + object.width + 1, object.y + object.height});
  }
  if (m_selectionBox.IsShown()) {
    const RECT box = m_selectionBox.WindowRect();
    DrawRubberBand(windowDC, box.left, box.top, box.right, box.bottom, 0, 0, true, false);
  }
  EndPaint(m_hWnd, &paint);
}

// The buffer's rows above and below the window are given up. Nothing reads a part of
// the buffer without composing it first, so no one misses them; but a drag that
// scrolls the whole picture past a small window would otherwise leave a composed copy
// of all of it behind.
void CImageEditWnd::ReleaseHiddenComposition() {
  const Surface& composition = m_surfaces.composition;
  const RECT shown = m_view.ToSurface(ClientRect(m_hWnd));
  const ComposedFrom before = ComposedSources();
  platform::DiscardBitmapRows(composition.bitmap(), 0, shown.top);
  platform::DiscardBitmapRows(composition.bitmap(), shown.bottom, composition.height());
  m_composed.GaveUpOutside(RECT{0, shown.top, composition.width(), shown.bottom}, before, ComposedSources());
}

ComposedFrom CImageEditWnd::ComposedSources() const {
  const auto version = [](const Surface& surface) {
    return surface.dc() ? platform::VersionOfBitmap(surface.bitmap()) : std::nullopt;
  };
  return ComposedFrom{version(m_surfaces.imageSurface), version(m_surfaces.drawingLayer),
                      version(m_surfaces.composition)};
}

void CImageEditWnd::ComposeView(const RECT* area, bool plain) {
  const Surface& composition = m_surfaces.composition;
  const Surface& image = m_surfaces.imageSurface;
  if (!composition.dc()) return;
  RECT part = composition.rect();
  if (area && !IntersectRect(&part, &composition.rect(), area)) return;
  // Objects and the frame are drawn over what is composed, from state of their own.
  const bool overlaid = m_objects.count() > 0 || m_frame.present();
  const std::vector<RECT> stale =
      overlaid ? std::vector<RECT>{part} : m_composed.ToCompose(part, ComposedSources());
  if (stale.empty()) return;
  for (const RECT& piece : stale) {
    if (image.dc() && image.bitmap()) {
      BitBlt(composition.dc(), piece.left, piece.top, piece.right - piece.left, piece.bottom - piece.top,
             image.dc(), piece.left, piece.top, SRCCOPY);
    }
    if (m_surfaces.drawingLayer.dc() && m_surfaces.drawingLayer.bitmap())
      CompositeDrawingLayer(composition.dc(), &piece);
  }
  if (overlaid) {
    m_composed.Forget();
    if (m_objects.count() > 0)
      DrawObjects(composition.dc(), m_view.hScrollPos(), m_view.vScrollPos(), plain, &part);
    if (m_frame.present()) DrawFrame(composition.dc(), part);
    return;
  }
  m_composed.Composed(part, ComposedSources());
}

COLORREF CImageEditWnd::ShownColorAt(POINT point) {
  const RECT pixel{point.x, point.y, point.x + 1, point.y + 1};
  ComposeView(&pixel);
  return GetPixel(m_surfaces.composition.dc(), point.x, point.y);
}

void CImageEditWnd::UpdateScrollBars(int contentWidth, int contentHeight) {
  for (const int bar : {SB_HORZ, SB_VERT}) {
    if (!m_view.BarShown(bar)) continue;
    ShowScrollBar(m_hWnd, bar, FALSE);
    m_view.HideBar(bar);
  }

  // Both decisions use the client size without bars, so a bar on one axis never
  // causes the other.
  const RECT bare = ClientRect(m_hWnd);
  const auto showBar = [this](int bar, int content, int available) {
    if (content <= available) return;
    ShowScrollBar(m_hWnd, bar, TRUE);
    m_view.ShowBar(bar);
    const int overflow = content - available;
    const int maximum = overflow + overflow / 20;
    const SCROLLINFO info{
        sizeof(SCROLLINFO), kScrollInfoMask, 0, maximum, static_cast<UINT>(maximum / 20), 0, 0};
    SetScrollInfo(m_hWnd, bar, &info, TRUE);
  };
  showBar(SB_HORZ, contentWidth, bare.right);
  showBar(SB_VERT, contentHeight, bare.bottom);

  const RECT client = ClientRect(m_hWnd);
  m_view.MeasureView(client.right, client.bottom);
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
  const int displayed = horizontal ? m_view.displayedWidth() : m_view.displayedHeight();
  const int current = m_view.ScrollPos(bar);
  // A line is a fiftieth of the displayed length, a page a twentieth.
  int step = 0;
  switch (code) {
    case SB_LINEUP:
    case SB_LINEDOWN:
      step = displayed / 50;
      break;
    case SB_PAGEUP:
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
  if (code == SB_LINEUP || code == SB_PAGEUP) step = -step;
  if (step != 0) {
    const int scrolled = m_view.ScrollBy(bar, step);
    SetScrollPos(m_hWnd, bar, scrolled, TRUE);
    // Objects keep window coordinates: they move against the scroll by as much as it
    // really moved, so that they stay over the same spot of the picture.
    const int moved = current - scrolled;
    m_objects.ShiftAll(horizontal ? moved : 0, horizontal ? 0 : moved);
  }
  RedrawWindow();
}

BOOL CImageEditWnd::ScaleImage(int nScaleFactor) {
  if (!m_view.scalingAllowed) return FALSE;
  EndDrag();  // the surfaces a drag works on are drawn afresh
  const int percent = std::clamp(nScaleFactor, 0, 200);
  m_view.scale = ScaleFromPercentage(percent, m_view.originalWidth, m_view.originalHeight,
                                     m_surfaces.imageSurface.width(), m_surfaces.imageSurface.height());
  DrawScaledOriginal(m_surfaces.drawingLayer);
  // The image surface is drawn second: its placement is the image rectangle that
  // remains.
  DrawScaledOriginal(m_surfaces.imageSurface);
  RedrawWindow();
  return TRUE;
}

void CImageEditWnd::DrawScaledOriginal(const Surface& surface) {
  if (!surface.dc()) return;
  const platform::MemoryDC scratch(surface.dc());
  if (!scratch) return;
  m_view.SizeToScale();
  m_view.CentreIn(surface.width(), surface.height());
  FillRect(surface.dc(), &surface.rect(), WhiteBrush());
  const platform::SelectionGuard selected(scratch.get(), m_surfaces.original.get());
  const RECT& image = m_view.imageRect();
  StretchBlt(surface.dc(), image.left, image.top, m_view.displayedWidth(), m_view.displayedHeight(),
             scratch.get(), 0, 0, m_view.originalWidth, m_view.originalHeight, SRCCOPY);
}

void CImageEditWnd::SetImageWidth(int nImageWidth) {
  // A drag's points are those of the layout it began in.
  EndDrag();
  CloseTextEntry();
  if (nImageWidth == 0) {
    m_view.requestedImageWidth = 0;
    ShowScrollBar(m_hWnd, SB_BOTH, FALSE);
    m_view.ForgetScrolling();
    return;
  }
  double scale = 1.0;
  if (nImageWidth > 0) {
    m_view.requestedImageWidth = nImageWidth;
    if (nImageWidth < m_view.originalWidth) scale = static_cast<double>(nImageWidth) / m_view.originalWidth;
  } else {
    m_view.requestedImageWidth = 0;
    const int percent = nImageWidth < -200 ? 200 : -nImageWidth;
    scale = ScaleFromPercentage(percent, m_view.originalWidth, m_view.originalHeight,
                                m_surfaces.composition.width(), m_surfaces.composition.height());
  }
  m_view.scale = scale;
  if (!m_surfaces.imageSurface.dc() || !m_surfaces.original) return;

  m_view.SizeToScale();
  UpdateScrollBars(m_view.displayedWidth(), m_view.displayedHeight());

  const RECT client = ClientRect(m_hWnd);
  const int width = std::max(static_cast<int>(client.right), m_view.displayedWidth());
  const int height = std::max(static_cast<int>(client.bottom), m_view.displayedHeight());
  const RECT oldImageRect = m_view.imageRect();
  m_view.CentreIn(width, height);

  CreateCompositionBuffer(width, height);
  ResizeDrawingLayer(width, height, m_view.imageRect(), oldImageRect);
  CreateImageSurface(width, height);

  BeginWaitCursor();
  RunAdjustedRebuild();
  EndWaitCursor();
  RedrawWindow();
}
