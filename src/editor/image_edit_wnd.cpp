#include "editor/image_edit_wnd.h"

#include <cstring>

#include "resources/cursor_table.h"
#include "resources/localized_text.h"

namespace {

constexpr char kEditorClassName[] = "OstrelImageEdit";

struct DefaultFont {
  BYTE charSet;
  const char* faceName;
};

DefaultFont DefaultFontFor(WORD language) {
  if (language == kLanguageKorean) return {129, "굴림체"};
  if (language == kLanguageChinese) return {134, "宋体"};
  return {0, "Arial"};
}

}  // namespace

CImageEditWnd::CImageEditWnd() {
  m_userLanguage = static_cast<WORD>(GetUserDefaultLangID() & 0x3FF);
  InitTextFont();
  m_textBackgroundBrush = CreateSolidBrush(0xFFFFFF);
  BuildPopupMenu();
  LoadCursors();
  m_imageLibrary = LoadLibraryA("MSIMG32.DLL");
  if (m_imageLibrary) {
    m_transparentBlt =
        reinterpret_cast<TransparentBltEntry>(GetProcAddress(m_imageLibrary, "TransparentBlt"));
  }
}

void CImageEditWnd::InitTextFont() {
  std::memset(&m_textFontDescription, 0, sizeof m_textFontDescription);
  if (HDC screen = ::GetDC(nullptr)) {
    m_textFontDescription.lfHeight = -MulDiv(9, GetDeviceCaps(screen, LOGPIXELSY), 72);
    ::ReleaseDC(nullptr, screen);
  }
  const DefaultFont font = DefaultFontFor(m_userLanguage);
  m_textFontDescription.lfWeight = 400;
  m_textFontDescription.lfCharSet = font.charSet;
  m_textFontDescription.lfOutPrecision = 3;
  m_textFontDescription.lfClipPrecision = 2;
  m_textFontDescription.lfQuality = 1;
  std::strncpy(m_textFontDescription.lfFaceName, font.faceName, LF_FACESIZE - 1);
  m_textFont = CreateFontIndirectA(&m_textFontDescription);
}

// The object menu's items arrive with the inserted objects; until then the menus
// exist empty so that the shortcut-menu flag and the destruction order are already
// what they will be.
void CImageEditWnd::BuildPopupMenu() {
  m_popupMenu = CreatePopupMenu();
  if (!m_popupMenu) return;
  m_zOrderMenu = CreatePopupMenu();
  m_shortcutMenuEnabled = true;
}

void CImageEditWnd::LoadCursors() {
  RegisterModuleResources();
  for (int i = 0; i < kCursorCount; ++i) {
    m_cursors[i] = LoadCursorA(AfxGetInstanceHandle(), MAKEINTRESOURCEA(kCursorTable[i].resourceId));
  }
}

CImageEditWnd::~CImageEditWnd() {
  ReleaseSurface(m_composition);
  if (m_drawingLayer.dc) {
    if (m_drawingLayerPreviousPen) DeleteObject(SelectObject(m_drawingLayer.dc, m_drawingLayerPreviousPen));
    if (m_drawingLayerPreviousBrush)
      DeleteObject(SelectObject(m_drawingLayer.dc, m_drawingLayerPreviousBrush));
  }
  ReleaseSurface(m_drawingLayer);
  ReleaseSurface(m_imageSurface);

  for (HGDIOBJ object : {static_cast<HGDIOBJ>(m_originalImage), static_cast<HGDIOBJ>(m_bitmapBrush),
                         static_cast<HGDIOBJ>(m_selectionBitmap), static_cast<HGDIOBJ>(m_textFont),
                         static_cast<HGDIOBJ>(m_textBackgroundBrush)}) {
    if (object) DeleteObject(object);
  }

  if (m_snapshotDC) {
    if (m_snapshotPreviousBitmap) SelectObject(m_snapshotDC, m_snapshotPreviousBitmap);
    DeleteDC(m_snapshotDC);
  }
  for (int level = 0; level < m_historyCount; ++level) {
    if (m_history[level].snapshot) DeleteObject(m_history[level].snapshot);
    for (FramePiece& piece : m_history[level].frame) {
      if (piece.bitmap) DeleteObject(piece.bitmap);
    }
  }
  for (FramePiece& piece : m_frame) {
    if (piece.bitmap) DeleteObject(piece.bitmap);
  }

  if (m_popupMenu) {
    if (m_zOrderMenu) DestroyMenu(m_zOrderMenu);
    DestroyMenu(m_popupMenu);
  }
  for (HCURSOR cursor : m_cursors) {
    if (cursor) DestroyCursor(cursor);
  }
  if (m_imageLibrary) FreeLibrary(m_imageLibrary);

  // The window may outlive the control's own teardown order only in tests that
  // destroy the editor directly; the CWnd base destroys it then.
}

void CImageEditWnd::ReleaseSurface(Surface& surface) {
  if (surface.dc) {
    if (surface.previousBitmap) SelectObject(surface.dc, surface.previousBitmap);
    DeleteDC(surface.dc);
  }
  if (surface.bitmap) DeleteObject(surface.bitmap);
  surface = Surface{};
}

BOOL CImageEditWnd::PreCreateWindow(CREATESTRUCTA& cs) {
  UseWindowClass(cs, kEditorClassName, CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS);
  return CWnd::PreCreateWindow(cs);
}

int CImageEditWnd::OnCreate(LPCREATESTRUCTA cs) {
  if (CWnd::OnCreate(cs) == -1) return -1;

  if (IsWindow(m_hWnd)) {
    if (HDC windowDC = ::GetDC(m_hWnd)) {
      for (Surface* surface : {&m_composition, &m_drawingLayer, &m_imageSurface}) {
        surface->dc = CreateCompatibleDC(windowDC);
        if (!surface->dc) continue;
        surface->bitmap = CreateCompatibleBitmap(windowDC, 1, 1);
        if (surface->bitmap) {
          surface->previousBitmap = static_cast<HBITMAP>(SelectObject(surface->dc, surface->bitmap));
        }
      }
      if (m_imageSurface.dc) SetStretchBltMode(m_imageSurface.dc, HALFTONE);
      m_snapshotDC = CreateCompatibleDC(windowDC);
      ::ReleaseDC(m_hWnd, windowDC);
    }
  }

  const RECT none{0, 0, 0, 0};
  m_textEdit.Create(nullptr, "Text Edit", 0x40040120, none, this, 1);
  return 0;
}

void CImageEditWnd::OnSize(UINT type, int cx, int cy) {
  CWnd::OnSize(type, cx, cy);
  if (cx > 0 && cy > 0 && m_surfacesPending) {
    m_surfacesPending = false;
    CreateCompositionBuffer(cx, cy);
    CreateDrawingLayer(cx, cy);
    CreateImageSurface(cx, cy);
  }
}

void CImageEditWnd::OnClose() {
  if (m_sprayTimerId) KillTimer(m_sprayTimerId);
  if (m_autoScrollTimerId) KillTimer(m_autoScrollTimerId);
  CWnd::OnClose();
}

void CImageEditWnd::EnableShortcutMenu(long bShortcutMenu) { m_shortcutMenuEnabled = (bShortcutMenu == 1); }

void CImageEditWnd::EnableVerbose(long bVerbose) { m_verbose = (bVerbose == 1); }

void CImageEditWnd::ShowOutOfMemoryMessage() const {
  AfxMessageBox(kOutOfMemoryText.For(m_userLanguage), MB_ICONHAND | MB_OK, 0);
}
