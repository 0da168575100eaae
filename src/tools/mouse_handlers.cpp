// What is common to every drag of the left button: the press that starts it (for a
// tool on the picture, with the stroke state, the history level, mouse capture and the
// cursor kept over the image; with no tool anywhere in the window, which then holds
// the cursor), the moves (auto-scrolling at the window's edge, for a tool the point
// kept inside the picture, the repaint of what changed) and the release (closing text
// entry, letting the mouse go), with the two timers. What a drag does is the chosen
// tool's interaction's; with no tool, the press drags the selection box, an object or
// the view (NoToolDrags).
#include <algorithm>

#include "editor/image_edit_wnd.h"

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

}  // namespace

RECT CImageEditWnd::VisibleImageRect() const {
  const RECT image = m_view.ToWindow(m_view.imageRect());
  RECT client{0, 0, 0, 0};
  ::GetClientRect(m_hWnd, &client);
  RECT visible{0, 0, 0, 0};
  IntersectRect(&visible, &image, &client);
  return visible;
}

// Without a scroll bar on an axis the window coordinate is the surface coordinate.
POINT CImageEditWnd::DragPoint(POINT window) const {
  POINT point = window;
  const RECT& image = m_view.imageRect();
  if (m_view.hScrollShown()) point.x = std::min(window.x + m_view.hScrollPos(), image.right - 1);
  if (m_view.vScrollShown()) point.y = std::min(window.y + m_view.vScrollPos(), image.bottom - 1);
  return point;
}

void CImageEditWnd::RepaintSurfaceArea(const RECT& area) {
  const RECT shown = m_view.ToWindow(area);
  RedrawWindow(&shown);
}

// ---- press ----

void CImageEditWnd::OnLButtonDown(UINT flags, POINT point) {
  const bool surfaces =
      m_surfaces.composition.dc() && m_surfaces.drawingLayer.dc() && m_surfaces.imageSurface.dc();
  const RECT visible = VisibleImageRect();
  Interaction* tool = ActiveTool();
  if (m_tools.mode == ToolMode::None) {
    if (surfaces && m_noToolDrags.Press(point)) {
      SetCapture();
      RECT client{0, 0, 0, 0};
      GetClientRect(&client);
      const RECT clip = ToScreen(m_hWnd, client);
      ClipCursor(&clip);
    }
  } else if (tool != nullptr && surfaces && PtInRect(&visible, point)) {
    m_stroke.buttonDown = true;
    m_stroke.downPoint = m_stroke.lastPoint = m_view.ToSurface(point);
    m_view.scalingAllowed = false;
    if (tool->PressRecordsHistory(m_stroke.downPoint)) {
      const Surface& layer = m_surfaces.drawingLayer;
      CommitHistoryLevel(layer.dc(), layer.width(), layer.height());
    }
    tool->Press(m_stroke.downPoint);
    RedrawWindow();
    SetCapture();
    const RECT clip = ToScreen(m_hWnd, visible);
    ClipCursor(&clip);
  }
  CWnd::OnLButtonDown(flags, point);
}

// ---- drag ----

// Each step of a tool's drag goes to the tool that was pressed: choosing another one
// ends the drag (EndDrag).
void CImageEditWnd::OnMouseMove(UINT flags, POINT point) {
  if ((flags & MK_LBUTTON) == 0) {
    m_hover.Update(point, m_selectionBox, m_objects);
  } else if (DragUnderWay()) {
    StopAutoScroll();
    ScrollAtEdge(point);
    if (m_noToolDrags.Active()) {
      m_noToolDrags.Move(point);
    } else {
      // A tool draws only over the image.
      const RECT visible = VisibleImageRect();
      Interaction* tool = ActiveTool();
      if (tool != nullptr && PtInRect(&visible, point)) {
        if (const std::optional<RECT> changed = tool->Move(DragPoint(point))) {
          RepaintSurfaceArea(*changed);
        } else {
          RedrawWindow();
        }
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
  const int dx = m_view.hScrollShown() ? step(window.x, client.right) : 0;
  const int dy = m_view.vScrollShown() ? step(window.y, client.bottom) : 0;
  // The position travels as a scroll bar sends it, an unsigned word of the message.
  if (dx != 0) OnHScroll(SB_THUMBPOSITION, static_cast<UINT>(m_view.hScrollPos() + dx), nullptr);
  if (dy != 0) OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(m_view.vScrollPos() + dy), nullptr);
  if (dx != 0 || dy != 0) {
    m_stroke.autoScrollPoint = window;
    m_stroke.autoScrollTimerId = SetTimer(kAutoScrollTimerId, kAutoScrollIntervalMs, nullptr);
  }
}

void CImageEditWnd::StopAutoScroll() {
  if (m_stroke.autoScrollTimerId == 0) return;
  KillTimer(m_stroke.autoScrollTimerId);
  m_stroke.autoScrollTimerId = 0;
}

// ---- release ----

void CImageEditWnd::OnLButtonUp(UINT flags, POINT point) {
  if (DragUnderWay()) {
    m_stroke.releaseClosedText = m_textEntry.IsShown();
    CloseTextEntry();
    LetGoOfMouse();
    if (m_noToolDrags.Active()) {
      m_noToolDrags.Release();
    } else if (Interaction* tool = ActiveTool()) {
      tool->Release(m_view.ToSurface(point));
    } else {
      RedrawWindow();
    }
  }
  CWnd::OnLButtonUp(flags, point);
}

void CImageEditWnd::LetGoOfMouse() {
  ClipCursor(nullptr);
  ReleaseCapture();
  StopAutoScroll();
  m_stroke.buttonDown = false;
}

// ---- ending early ----

void CImageEditWnd::EndDrag() {
  if (!DragUnderWay()) return;
  LetGoOfMouse();
  if (m_noToolDrags.Active()) {
    m_noToolDrags.Release();
  } else if (Interaction* tool = ActiveTool()) {
    tool->Interrupt();
  }
}

// ---- timers ----

void CImageEditWnd::OnTimer(UINT_PTR id) {
  if (id == kSprayTimerId) {
    m_toolBox.airbrush().SprayAgain();
  } else if (id == kAutoScrollTimerId) {
    KillTimer(id);
    m_stroke.autoScrollTimerId = 0;
    OnMouseMove(MK_LBUTTON, m_stroke.autoScrollPoint);
  }
  CWnd::OnTimer(id);
}
