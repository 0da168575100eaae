#include "editor/image_edit_wnd.h"

#include <cstring>

#include "resources/cursor_table.h"
#include "resources/localized_text.h"

namespace {

constexpr char kEditorClassName[] = "OstrelImageEdit";
// The text-entry child is hidden until text is entered.
constexpr DWORD kTextEntryStyle = WS_CHILD | WS_THICKFRAME | kClassStyleBits;
constexpr UINT kTextEntryChildId = 1;

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

CImageEditWnd::CImageEditWnd(EditorEvents* control) : m_control(control) {
  m_userLanguage = static_cast<WORD>(GetUserDefaultLangID() & 0x3FF);
  InitTextFont();
  m_textBackgroundBrush = platform::OwnedBrush(CreateSolidBrush(m_textBackgroundColor));
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
  m_textFont = platform::OwnedFont(CreateFontIndirectA(&m_textFontDescription));
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

// The GDI objects go with the parts that own them; what is left are the menus, the
// cursors and the image library.
CImageEditWnd::~CImageEditWnd() {
  if (m_popupMenu) {
    if (m_zOrderMenu) DestroyMenu(m_zOrderMenu);
    DestroyMenu(m_popupMenu);
  }
  for (HCURSOR cursor : m_cursors) {
    if (cursor) DestroyCursor(cursor);
  }
  if (m_imageLibrary) FreeLibrary(m_imageLibrary);
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

  const RECT none{0, 0, 0, 0};
  m_textEdit.Create(nullptr, "Text Edit", kTextEntryStyle, none, this, kTextEntryChildId);
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
  if (m_tools.stroke.sprayTimerId) KillTimer(m_tools.stroke.sprayTimerId);
  if (m_tools.stroke.autoScrollTimerId) KillTimer(m_tools.stroke.autoScrollTimerId);
  CWnd::OnClose();
}

void CImageEditWnd::EnableShortcutMenu(long bShortcutMenu) { m_shortcutMenuEnabled = (bShortcutMenu == 1); }

void CImageEditWnd::EnableVerbose(long bVerbose) { m_verbose = (bVerbose == 1); }

void CImageEditWnd::ShowOutOfMemoryMessage() const {
  AfxMessageBox(kOutOfMemoryText.For(m_userLanguage), MB_ICONHAND | MB_OK, 0);
}
