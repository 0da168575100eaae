#include "editor/image_edit_wnd.h"

namespace {

constexpr char kEditorClassName[] = "OstrelImageEdit";

}  // namespace

CImageEditWnd::CImageEditWnd(EditorEvents* control)
    : m_textEntry(m_messages.language),
      m_shell(m_messages.language),
      m_toolBox(*this),
      m_noToolDrags(*this),
      m_control(control) {}

// Everything the editor holds goes back in this order, whatever order the parts are
// declared in: each DC gives back what was selected into it before it goes (the
// drawing layer its pen and brush, the snapshot DC the current level's snapshot), and
// the history's snapshots are deleted only once no DC holds them.
CImageEditWnd::~CImageEditWnd() {
  m_surfaces.composition.Release();
  m_tools.PutBackPen();
  m_tools.PutBackBrush();
  m_surfaces.drawingLayer.Release();
  m_surfaces.imageSurface.Release();
  m_surfaces.original.reset();
  m_tools.bitmapBrush.reset();
  m_captured.Release();
  m_textEntry.Release();
  m_surfaces.snapshotDC = platform::MemoryDC();
  m_history.Clear(m_surfaces.snapshotDC);
  m_frame = PictureFrame{};
  m_shell.Release();
}

BOOL CImageEditWnd::PreCreateWindow(CREATESTRUCTA& cs) {
  UseWindowClass(cs, kEditorClassName, CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS);
  return CWnd::PreCreateWindow(cs);
}

int CImageEditWnd::OnCreate(LPCREATESTRUCTA cs) {
  if (CWnd::OnCreate(cs) == -1) return -1;

  if (IsWindow(m_hWnd)) {
    if (HDC windowDC = ::GetDC(m_hWnd)) {
      m_surfaces.Create(windowDC);
      ::ReleaseDC(m_hWnd, windowDC);
    }
  }
  m_textEntry.Create(this);
  return 0;
}

void CImageEditWnd::OnSize(UINT type, int cx, int cy) {
  CWnd::OnSize(type, cx, cy);
  if (cx > 0 && cy > 0 && m_surfaces.sizePending) {
    m_surfaces.sizePending = false;
    CreateCompositionBuffer(cx, cy);
    CreateDrawingLayer(cx, cy);
    CreateImageSurface(cx, cy);
  }
}

void CImageEditWnd::OnClose() {
  m_toolBox.airbrush().StopSpraying();
  StopAutoScroll();
  CWnd::OnClose();
}

// Capture ends with the window, but the pointer's confinement is the whole screen's:
// an editor that goes away in the middle of a drag must not leave the pointer held
// inside the rectangle it no longer shows.
void CImageEditWnd::OnDestroy() {
  if (DragUnderWay()) ClipCursor(nullptr);
  CWnd::OnDestroy();
}

void CImageEditWnd::EnableShortcutMenu(long bShortcutMenu) {
  m_shell.shortcutMenuEnabled = (bShortcutMenu == 1);
}

void CImageEditWnd::EnableVerbose(long bVerbose) { m_messages.verbose = (bVerbose == 1); }

void CImageEditWnd::FireColorSelected(const std::string& color) {
  if (m_control != nullptr) m_control->FireColorSelected(color);
}
