// What the left mouse button does with a tool: the press, the drag and the release of
// strokes, sprays, stamps, shapes, fills, colour picks and rubber bands, with mouse
// capture, the cursor kept over the image, auto-scrolling at the window's edge and
// the two timers. The frame (capture, auto-scroll, closing text entry) is shared
// with tool mode 0, whose drags are the selection box's, the objects' and the view's.
#include <algorithm>
#include <cstdlib>

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "tools/color_string.h"

namespace {

// How close to the window's edge a drag scrolls the picture.
constexpr int kAutoScrollMargin = 10;

RECT ToScreen(HWND window, const RECT& rect) {
  POINT topLeft{rect.left, rect.top};
  POINT bottomRight{rect.right, rect.bottom};
  ClientToScreen(window, &topLeft);
  ClientToScreen(window, &bottomRight);
  return RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
}

bool DrawsRubberBand(ToolMode mode) {
  return mode == ToolMode::Text || mode == ToolMode::RectangleSelection || mode == ToolMode::Cut ||
         mode == ToolMode::Mosaic;
}

}  // namespace

RECT CImageEditWnd::VisibleImageRect() const {
  const RECT& placed = m_view.imageRect;
  const RECT image{placed.left - m_view.hScrollPos, placed.top - m_view.vScrollPos,
                   placed.right - m_view.hScrollPos, placed.bottom - m_view.vScrollPos};
  RECT client{0, 0, 0, 0};
  ::GetClientRect(m_hWnd, &client);
  RECT visible{0, 0, 0, 0};
  IntersectRect(&visible, &image, &client);
  return visible;
}

// Without a scroll bar on an axis the window coordinate is the surface coordinate.
POINT CImageEditWnd::DragPoint(POINT window) const {
  POINT point = window;
  if (m_view.hScrollShown) point.x = std::min(window.x + m_view.hScrollPos, m_view.imageRect.right - 1);
  if (m_view.vScrollShown) point.y = std::min(window.y + m_view.vScrollPos, m_view.imageRect.bottom - 1);
  return point;
}

void CImageEditWnd::RestoreFromSnapshot(const RECT& area) {
  BitBlt(m_surfaces.drawingLayer.dc(), area.left, area.top, area.right - area.left, area.bottom - area.top,
         m_surfaces.snapshotDC.get(), area.left, area.top, SRCCOPY);
}

// The history level committed at the press then holds the picture after the stroke.
void CImageEditWnd::CopyLayerToSnapshot() {
  const Surface& layer = m_surfaces.drawingLayer;
  BitBlt(m_surfaces.snapshotDC.get(), 0, 0, layer.width(), layer.height(), layer.dc(), 0, 0, SRCCOPY);
}

// ---- press ----

void CImageEditWnd::OnLButtonDown(UINT flags, POINT point) {
  // With no tool the press drags the selection box, an object or the view; those
  // drags arrive with the objects.
  const bool surfaces =
      m_surfaces.composition.dc() && m_surfaces.drawingLayer.dc() && m_surfaces.imageSurface.dc();
  const RECT visible = VisibleImageRect();
  if (m_tools.mode != ToolMode::None && surfaces && PtInRect(&visible, point)) {
    StrokeState& stroke = m_tools.stroke;
    stroke.buttonDown = true;
    stroke.downPoint = stroke.lastPoint = POINT{point.x + m_view.hScrollPos, point.y + m_view.vScrollPos};
    m_view.scalingAllowed = false;
    // A press on the held selection (its edges included) drags it; anywhere else it
    // starts a new rectangle.
    if (m_tools.mode == ToolMode::RectangleSelectionHeld) {
      const POINT down = stroke.downPoint;
      const bool onSelection = down.x >= m_selectionX && down.x <= m_selectionX + m_selectionWidth &&
                               down.y >= m_selectionY && down.y <= m_selectionY + m_selectionHeight;
      if (!onSelection) m_tools.mode = ToolMode::RectangleSelection;
    }
    if (m_tools.PressCommitsHistory()) {
      const Surface& layer = m_surfaces.drawingLayer;
      CommitHistoryLevel(layer.dc(), layer.width(), layer.height());
    }
    PressTool(stroke.downPoint);
    RedrawWindow();
    SetCapture();
    const RECT clip = ToScreen(m_hWnd, visible);
    ClipCursor(&clip);
  }
  CWnd::OnLButtonDown(flags, point);
}

void CImageEditWnd::PressTool(POINT down) {
  HDC layer = m_surfaces.drawingLayer.dc();
  StrokeState& stroke = m_tools.stroke;
  const int w = m_tools.toolWidth;
  switch (m_tools.mode) {
    case ToolMode::ColorPick: {
      const RECT pixel{down.x, down.y, down.x + 1, down.y + 1};
      ComposeView(&pixel);
      m_tools.pickedColor = GetPixel(m_surfaces.composition.dc(), down.x, down.y);
      break;
    }
    case ToolMode::Fill: {
      // The colour the person sees decides, but only strokes are filled: where the
      // drawing layer has no stroke of that colour, nothing is.
      const RECT pixel{down.x, down.y, down.x + 1, down.y + 1};
      ComposeView(&pixel);
      const COLORREF seen = GetPixel(m_surfaces.composition.dc(), down.x, down.y);
      ExtFloodFill(layer, down.x, down.y, seen, FLOODFILLSURFACE);
      break;
    }
    case ToolMode::Eraser:
    case ToolMode::Pen:
    case ToolMode::Brush:
      MoveToEx(layer, down.x, down.y, nullptr);
      LineTo(layer, down.x + 1, down.y);
      break;
    case ToolMode::Airbrush:
      SprayAt(down, m_tools.airbrushDensity);
      break;
    case ToolMode::BitmapBrush:
      StampAt(down);
      break;
    case ToolMode::Shape:
      if (m_tools.shapeStyle == ShapeStyle::Line) {
        MoveToEx(layer, down.x, down.y, nullptr);
        LineTo(layer, down.x + 1, down.y);
        stroke.lastPoint.x += 1;
      } else if (m_tools.shapeStyle == ShapeStyle::Curve) {
        // The first press places the whole curve at one point; the second and third
        // place its control points.
        if (stroke.curveStage == 0) {
          std::fill(std::begin(stroke.curvePoints), std::end(stroke.curvePoints), down);
        } else {
          RestoreFromSnapshot(stroke.CurveArea(w, 0));
          stroke.curvePoints[stroke.curveStage] = down;
          PolyBezier(layer, stroke.curvePoints, 4);
        }
      }
      break;
    default:
      break;
  }
}

// ---- drag ----

void CImageEditWnd::OnMouseMove(UINT flags, POINT point) {
  StrokeState& stroke = m_tools.stroke;
  if ((flags & MK_LBUTTON) == 0) {
    UpdateHover(point);
  } else if (stroke.buttonDown || m_selectionBox.dragging) {
    if (stroke.autoScrollTimerId != 0) {
      KillTimer(stroke.autoScrollTimerId);
      stroke.autoScrollTimerId = 0;
    }
    ScrollAtEdge(point);
    // With no tool the drag moves the selection box, an object or the view; those
    // drags arrive with the objects. A tool draws only over the image.
    const RECT visible = VisibleImageRect();
    if (m_tools.mode != ToolMode::None && PtInRect(&visible, point)) {
      if (const std::optional<RECT> changed = DragTool(DragPoint(point))) {
        RepaintSurfaceArea(*changed);
      } else {
        RedrawWindow();
      }
    }
  }
  CWnd::OnMouseMove(flags, point);
}

// Near an edge with a scroll bar the picture scrolls by one pixel, and keeps
// scrolling every 50 ms while the pointer stays there. The timer is armed whenever
// the pointer is near such an edge, also when the picture is already scrolled to its
// end there: being near the edge is what counts, not whether the picture moved.
void CImageEditWnd::ScrollAtEdge(POINT window) {
  RECT client{0, 0, 0, 0};
  GetClientRect(&client);
  const auto step = [](int at, int length) {
    if (at < kAutoScrollMargin) return -1;
    return at > length - kAutoScrollMargin ? 1 : 0;
  };
  const int dx = m_view.hScrollShown ? step(window.x, client.right) : 0;
  const int dy = m_view.vScrollShown ? step(window.y, client.bottom) : 0;
  // The position travels as a scroll bar sends it, an unsigned word of the message.
  if (dx != 0) OnHScroll(SB_THUMBPOSITION, static_cast<UINT>(m_view.hScrollPos + dx), nullptr);
  if (dy != 0) OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(m_view.vScrollPos + dy), nullptr);
  if (dx != 0 || dy != 0) {
    m_tools.stroke.autoScrollPoint = window;
    m_tools.stroke.autoScrollTimerId = SetTimer(kAutoScrollTimerId, kAutoScrollIntervalMs, nullptr);
  }
}

// Freehand tools repaint only around what they painted: while a stroke follows the
// pointer, that is all that changes on screen.
std::optional<RECT> CImageEditWnd::DragTool(POINT point) {
  HDC layer = m_surfaces.drawingLayer.dc();
  StrokeState& stroke = m_tools.stroke;
  const int w = m_tools.toolWidth;
  switch (m_tools.mode) {
    case ToolMode::Eraser:
    case ToolMode::Pen:
    case ToolMode::Brush: {
      // A pen's end reaches at most its width past the segment's end points.
      POINT from{0, 0};
      GetCurrentPositionEx(layer, &from);
      LineTo(layer, point.x, point.y);
      return PaintedArea(from, point, std::abs(static_cast<long long>(w)) + 1);
    }
    case ToolMode::Airbrush:
      stroke.lastPoint = point;
      m_tools.airbrushDensity = kFullAirbrushDensity;
      SprayAt(point, kFullAirbrushDensity);
      return m_tools.SprayArea(point);
    case ToolMode::BitmapBrush:
      // A new stamp only once the pointer has left the last one.
      if (std::abs(stroke.lastPoint.x - point.x) <= w && std::abs(stroke.lastPoint.y - point.y) <= w) {
        return RECT{0, 0, 0, 0};
      }
      stroke.lastPoint = point;
      StampAt(point);
      return m_tools.StampArea(point);
    case ToolMode::Shape:
      DrawShapePreview(point);
      break;
    case ToolMode::Text:
    case ToolMode::RectangleSelection:
    case ToolMode::Cut:
    case ToolMode::Mosaic:
      DrawRubberBand(layer, stroke.downPoint.x, stroke.downPoint.y, point.x, point.y, stroke.lastPoint.x,
                     stroke.lastPoint.y, true, true);
      stroke.lastPoint = point;
      break;
    case ToolMode::RectangleSelectionHeld:
      MoveSelection(point);
      break;
    default:
      break;
  }
  return std::nullopt;
}

void CImageEditWnd::RepaintSurfaceArea(const RECT& area) {
  const RECT shown{area.left - m_view.hScrollPos, area.top - m_view.vScrollPos,
                   area.right - m_view.hScrollPos, area.bottom - m_view.vScrollPos};
  RedrawWindow(&shown);
}

// The previous preview is wiped by restoring what the drawing layer had before the
// press, then the shape is drawn to the pointer.
void CImageEditWnd::DrawShapePreview(POINT point) {
  HDC layer = m_surfaces.drawingLayer.dc();
  StrokeState& stroke = m_tools.stroke;
  const int w = m_tools.toolWidth;
  const bool curve = m_tools.shapeStyle == ShapeStyle::Curve;
  // On a drag the curve is restored one pixel wider and taller than on a press.
  RestoreFromSnapshot(curve ? stroke.CurveArea(w, 1) : stroke.ShapePreviewArea(w));
  stroke.lastPoint = point;
  const POINT down = stroke.downPoint;
  switch (m_tools.shapeStyle) {
    case ShapeStyle::Line:
      MoveToEx(layer, down.x, down.y, nullptr);
      LineTo(layer, point.x, point.y);
      break;
    case ShapeStyle::Curve:
      // The first drag sets start and end, a straight line; the later ones bend it.
      if (stroke.curveStage == 0) {
        std::fill(std::begin(stroke.curvePoints) + 1, std::end(stroke.curvePoints), point);
      } else {
        stroke.curvePoints[stroke.curveStage] = point;
      }
      PolyBezier(layer, stroke.curvePoints, 4);
      break;
    case ShapeStyle::Rectangle:
    case ShapeStyle::FilledRectangle:
      Rectangle(layer, down.x, down.y, point.x, point.y);
      break;
    case ShapeStyle::Ellipse:
    case ShapeStyle::FilledEllipse:
      Ellipse(layer, down.x, down.y, point.x, point.y);
      break;
    case ShapeStyle::None:
      break;
  }
}

// The captured pixels follow the pointer; where they were, the drawing layer gets
// back what the snapshot holds there (white, since the capture).
void CImageEditWnd::MoveSelection(POINT point) {
  if (!m_selectionBitmap) return;
  HDC layer = m_surfaces.drawingLayer.dc();
  POINT& last = m_tools.stroke.lastPoint;
  RestoreFromSnapshot(
      RECT{m_selectionX, m_selectionY, m_selectionX + m_selectionWidth, m_selectionY + m_selectionHeight});
  m_selectionX += point.x - last.x;
  m_selectionY += point.y - last.y;
  last = point;
  const platform::MemoryDC source(layer);
  if (!source) return;
  const platform::SelectionGuard selected(source.get(), m_selectionBitmap.get());
  BitBlt(layer, m_selectionX, m_selectionY, m_selectionWidth, m_selectionHeight, source.get(), 0, 0, SRCCOPY);
}

// ---- release ----

void CImageEditWnd::OnLButtonUp(UINT flags, POINT point) {
  StrokeState& stroke = m_tools.stroke;
  if (stroke.buttonDown || m_selectionBox.dragging) {
    const bool textWasShown = m_textEdit.IsShown();
    CloseTextEntry();
    ClipCursor(nullptr);
    ReleaseCapture();
    if (stroke.autoScrollTimerId != 0) {
      KillTimer(stroke.autoScrollTimerId);
      stroke.autoScrollTimerId = 0;
    }
    stroke.buttonDown = false;
    if (m_tools.mode != ToolMode::None) {
      ReleaseTool(POINT{point.x + m_view.hScrollPos, point.y + m_view.vScrollPos}, textWasShown);
    } else {
      // The releases of the selection box's, the objects' and the view's drags
      // arrive with the objects.
      RedrawWindow();
    }
  }
  CWnd::OnLButtonUp(flags, point);
}

void CImageEditWnd::ReleaseTool(POINT point, bool textWasShown) {
  HDC layer = m_surfaces.drawingLayer.dc();
  StrokeState& stroke = m_tools.stroke;
  const ToolMode mode = m_tools.mode;
  // The band of the drag goes before anything reads the picture.
  if (DrawsRubberBand(mode) || mode == ToolMode::IrregularSelection) {
    DrawRubberBand(layer, stroke.downPoint.x, stroke.downPoint.y, 0, 0, stroke.lastPoint.x,
                   stroke.lastPoint.y, false, true);
    RedrawWindow();
  }
  // The snapshot takes the layer once, as the release leaves it: text entry, the cut
  // and the mosaic finish below, the other tools have finished with their drag.
  const bool curveUnfinished = m_tools.DrawingCurve() && stroke.curveStage != 2;
  const bool snapshotAfterRelease =
      mode == ToolMode::Text || mode == ToolMode::Cut || mode == ToolMode::Mosaic;
  if (mode != ToolMode::ColorPick && mode != ToolMode::RectangleSelectionHeld && !curveUnfinished &&
      !snapshotAfterRelease) {
    CopyLayerToSnapshot();
  }
  switch (mode) {
    case ToolMode::ColorPick:
      m_tools.mode = m_tools.savedMode;
      m_tools.savedMode = ToolMode::None;
      if (m_control != nullptr) m_control->FireColorSelected(ColorString(m_tools.pickedColor));
      break;
    case ToolMode::Airbrush:
      stroke.lastPoint = POINT{0, 0};
      if (stroke.sprayTimerId != 0) {
        KillTimer(stroke.sprayTimerId);
        stroke.sprayTimerId = 0;
      }
      m_tools.airbrushDensity = kFullAirbrushDensity;
      break;
    case ToolMode::BitmapBrush:
      stroke.lastPoint = POINT{0, 0};
      break;
    case ToolMode::Shape:
      if (m_tools.shapeStyle == ShapeStyle::Curve) {
        if (stroke.curveStage == 2) {
          std::fill(std::begin(stroke.curvePoints), std::end(stroke.curvePoints), POINT{0, 0});
          stroke.curveStage = 0;
        } else {
          ++stroke.curveStage;
        }
      }
      break;
    case ToolMode::Text:
      // A click that only closed the open box opens no new one.
      if (!textWasShown ||
          (std::abs(stroke.downPoint.x - point.x) >= 31 && std::abs(stroke.downPoint.y - point.y) >= 16)) {
        OpenTextBox(stroke.downPoint, point);
      }
      break;
    case ToolMode::RectangleSelection:
      CaptureSelection(point);
      break;
    case ToolMode::RectangleSelectionHeld:
      DrawRubberBand(layer, m_selectionX, m_selectionY, m_selectionX + m_selectionWidth,
                     m_selectionY + m_selectionHeight, 0, 0, true, false);
      RedrawWindow();
      break;
    case ToolMode::Cut:
      CutToWholeImage(point);
      break;
    case ToolMode::Mosaic:
      Pixelate(point);
      break;
    default:
      break;
  }
  if (snapshotAfterRelease) CopyLayerToSnapshot();
}

// The box covers the drag, at least 30 x 15, and takes the keyboard.
void CImageEditWnd::OpenTextBox(POINT down, POINT up) {
  const RECT spanned = SpannedRect(down, up);
  const int width = spanned.right - spanned.left < 31 ? 30 : spanned.right - spanned.left;
  const int height = spanned.bottom - spanned.top < 16 ? 15 : spanned.bottom - spanned.top;
  const int left = spanned.left - m_view.hScrollPos;
  const int top = spanned.top - m_view.vScrollPos;
  m_textEdit.Open(RECT{left, top, left + width, top + height}, m_textFont.get());
}

// ---- timers ----

void CImageEditWnd::OnTimer(UINT_PTR id) {
  StrokeState& stroke = m_tools.stroke;
  if (id == kSprayTimerId) {
    KillTimer(id);
    stroke.sprayTimerId = 0;
    // Held still, the airbrush sprays again, twice as dense each time.
    if (m_surfaces.drawingLayer.dc()) {
      m_tools.airbrushDensity >>= 1;
      SprayAt(stroke.lastPoint, m_tools.airbrushDensity);
      RepaintSurfaceArea(m_tools.SprayArea(stroke.lastPoint));
    }
  } else if (id == kAutoScrollTimerId) {
    KillTimer(id);
    stroke.autoScrollTimerId = 0;
    OnMouseMove(MK_LBUTTON, stroke.autoScrollPoint);
  }
  CWnd::OnTimer(id);
}

// ---- drawing operations of the tools ----

void CImageEditWnd::DrawRubberBand(HDC dc, int left, int top, int right, int bottom, int oldRight,
                                   int oldBottom, bool draw, bool erase) {
  const LOGBRUSH grey{BS_SOLID, RGB(0x80, 0x80, 0x80), 0};
  const platform::OwnedPen pen(ExtCreatePen(PS_COSMETIC | PS_DOT, 1, &grey, 0, nullptr));
  // Without its own pen the band would be drawn with the tool's.
  if (!pen) return;
  const platform::SelectionGuard penSelected(dc, pen.get());
  const platform::SelectionGuard brushSelected(dc, GetStockObject(NULL_BRUSH));
  const int previousMode = SetROP2(dc, R2_NOTXORPEN);
  if (erase) Rectangle(dc, left, top, oldRight, oldBottom);
  if (draw) Rectangle(dc, left, top, right, bottom);
  SetROP2(dc, previousMode);
}

// Each try picks a point in one quadrant of the square around the centre and keeps
// it only inside the disc: four tries a round, one per quadrant.
void CImageEditWnd::SprayAirBrush(HDC dc, int cx, int cy, int radius, int density) {
  const long long tries = SprayTries(radius, density);
  const long long limit = static_cast<long long>(radius) * radius;
  const POINT signs[4] = {{-1, -1}, {1, 1}, {-1, 1}, {1, -1}};
  for (long long i = 0; i < tries; ++i) {
    for (const POINT sign : signs) {
      const long long a = platform::Rand() % radius;
      const long long b = platform::Rand() % radius;
      if (a * a + b * b <= limit) {
        SetPixel(dc, static_cast<int>(cx + sign.x * a), static_cast<int>(cy + sign.y * b), m_tools.color);
      }
    }
  }
  if (density > 1) m_tools.stroke.sprayTimerId = SetTimer(kSprayTimerId, kSprayIntervalMs, nullptr);
}

void CImageEditWnd::SprayAt(POINT pointer, int density) {
  const POINT centre = m_tools.ToolCorner(pointer);
  SprayAirBrush(m_surfaces.drawingLayer.dc(), centre.x, centre.y, m_tools.toolWidth / 2, density);
}

void CImageEditWnd::StampAt(POINT pointer) {
  const POINT corner = m_tools.ToolCorner(pointer);
  StampBitmapBrush(m_surfaces.drawingLayer.dc(), corner.x, corner.y, m_tools.toolWidth, m_tools.toolWidth);
}

void CImageEditWnd::StampBitmapBrush(HDC dc, int left, int top, int width, int height) {
  if (!m_tools.bitmapBrush) return;
  TransparentBlit(dc, m_tools.bitmapBrush.get(), left, top, width, height, m_tools.bitmapBrushKeyColor);
}
