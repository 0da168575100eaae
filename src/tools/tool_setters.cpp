// Choosing the tool: the tool-mode setters, the current colour, the pens and brushes
// they select into the drawing layer, the selection box's size, closing text entry,
// and the cursor that shows the tool.
#include <span>

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "tools/color_string.h"

namespace {

// The colour dialog's custom colours: one table for every SetColor of the process.
std::span<COLORREF, 16> SetColorCustomColors() {
  static COLORREF table[16] = {};
  return table;
}

// -n as the control's platform computes it: the negation of the most negative int
// is itself.
int NegatedSize(int n) { return static_cast<int>(0u - static_cast<unsigned>(n)); }

}  // namespace

void CImageEditWnd::CloseTextEntry() {
  if (!m_textEdit.IsShown() || !m_surfaces.drawingLayer.dc()) return;
  // Stamping the typed text into the drawing layer arrives with text entry.
  m_textEdit.HideAndClear();
}

std::string CImageEditWnd::GetColor() { return ColorString(m_tools.color); }

std::string CImageEditWnd::SetColor(LPCSTR lpszColor) {
  COLORREF color = 0;
  if (lpszColor != nullptr && lstrcmpiA(lpszColor, "DIALOG") == 0) {
    CHOOSECOLORA dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = m_hWnd;
    dialog.rgbResult = m_tools.color;
    dialog.lpCustColors = SetColorCustomColors().data();
    dialog.Flags = CC_RGBINIT | CC_ANYCOLOR;
    if (!ChooseColorA(&dialog)) return GetColor();
    color = dialog.rgbResult;
  } else {
    color = ReadColorString(lpszColor);
  }
  if (color == m_tools.color) return GetColor();
  // Only the eraser paints in the drawing layer's key colour: a colour that would
  // vanish from the picture is lightened a little instead.
  m_tools.color = color == kDrawingLayerKeyColor ? color + 0x202020 : color;
  ApplyColorToTool();
  return GetColor();
}

// The airbrush reads the colour at each spray and the eraser never uses it; the
// other modes have nothing made in the colour.
void CImageEditWnd::ApplyColorToTool() {
  switch (const ToolMode mode = m_tools.mode) {
    case ToolMode::Fill:
      FillWithSelectedColor();
      break;
    case ToolMode::Pen:
    case ToolMode::Brush:
    case ToolMode::Shape:
      SetPen(m_tools.penSize);
      SetShape(static_cast<int>(m_tools.shapeStyle));
      m_tools.mode = mode;
      break;
    case ToolMode::BitmapBrush:
      RecolorBitmapBrush(m_tools.color);
      break;
    default:
      break;
  }
}

void CImageEditWnd::SelectColor() {
  if (!m_surfaces.composition.dc()) return;
  CloseTextEntry();
  m_tools.savedMode = m_tools.ModeAfterColorPick();
  m_tools.mode = ToolMode::ColorPick;
}

void CImageEditWnd::FillWithSelectedColor() {
  if (!m_surfaces.composition.dc()) return;
  CloseTextEntry();
  m_tools.PutBackBrush();
  platform::OwnedBrush brush(CreateSolidBrush(m_tools.color));
  if (!brush) return;
  m_tools.mode = ToolMode::Fill;
  m_tools.SelectBrush(m_surfaces.drawingLayer.dc(), std::move(brush));
}

bool CImageEditWnd::MakeDrawingPen(DWORD style, int size, COLORREF color) {
  m_tools.PutBackPen();
  const LOGBRUSH solid{BS_SOLID, color, 0};
  // The width is the size's magnitude, worked unsigned so that no size overflows.
  const DWORD width = size < 0 ? 0u - static_cast<DWORD>(size) : static_cast<DWORD>(size);
  platform::OwnedPen pen(ExtCreatePen(style, width, &solid, 0, nullptr));
  if (!pen) return false;
  m_tools.toolWidth = static_cast<int>(width);
  m_tools.SelectPen(m_surfaces.drawingLayer.dc(), std::move(pen));
  return true;
}

void CImageEditWnd::SetEraser(int nEraserSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  if (MakeDrawingPen(PS_GEOMETRIC | PS_ENDCAP_SQUARE, nEraserSize, kDrawingLayerKeyColor)) {
    m_tools.mode = ToolMode::Eraser;
  }
}

void CImageEditWnd::SetPen(int nPenSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  if (MakeDrawingPen(PenStyleForSize(nPenSize), nPenSize, m_tools.color)) {
    m_tools.mode = ToolMode::Pen;
    m_tools.penSize = nPenSize;
  }
}

void CImageEditWnd::SetBrush(int nBrushSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  const int size = NegatedSize(nBrushSize);
  SetPen(size);
  if (m_tools.penSize == size) m_tools.mode = ToolMode::Brush;
}

void CImageEditWnd::SetAirBrush(int nAirBrushSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  m_tools.mode = ToolMode::Airbrush;
  m_tools.penSize = nAirBrushSize;
  m_tools.toolWidth = nAirBrushSize;
  m_tools.airbrushDensity = kFullAirbrushDensity;
}

void CImageEditWnd::SetBitmapBrush(LPCSTR lpszFilePath) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  if (lpszFilePath == nullptr || *lpszFilePath == '\0') return;
  m_tools.bitmapBrush.reset();
  m_tools.bitmapBrush = platform::OwnedBitmap(imageio::LoadImage(lpszFilePath, LoaderContext()));
  BITMAP description{};
  if (!m_tools.bitmapBrush || !GetObjectA(m_tools.bitmapBrush.get(), sizeof description, &description))
    return;
  m_tools.mode = ToolMode::BitmapBrush;
  m_tools.penSize = m_tools.toolWidth = description.bmWidth;
  RecolorBitmapBrush(m_tools.color);
}

void CImageEditWnd::SetShape(int nShapeStyle) {
  HDC layer = m_surfaces.drawingLayer.dc();
  if (!layer) return;
  CloseTextEntry();
  SetPen(m_tools.penSize);
  m_tools.mode = ToolMode::Shape;
  m_tools.shapeStyle = ShapeStyleFrom(nShapeStyle);
  if (m_tools.shapeStyle == ShapeStyle::FilledRectangle || m_tools.shapeStyle == ShapeStyle::FilledEllipse) {
    platform::OwnedBrush fill(CreateSolidBrush(m_tools.color));
    if (fill) {
      m_tools.SelectBrush(layer, std::move(fill));
    } else {
      m_tools.PutBackBrush();
    }
  } else {
    m_tools.SelectStockBrush(layer, NULL_BRUSH);
  }
}

void CImageEditWnd::EnterText() {
  if (m_surfaces.drawingLayer.dc()) m_tools.mode = ToolMode::Text;
}

void CImageEditWnd::SelectRectangle() {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  m_tools.mode = ToolMode::RectangleSelection;
}

void CImageEditWnd::SelectIrregular() {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  m_tools.mode = ToolMode::IrregularSelection;
}

void CImageEditWnd::SetNothing() { m_tools.mode = ToolMode::None; }

void CImageEditWnd::CutImage() {
  CloseTextEntry();
  if (m_surfaces.composition.dc()) m_tools.mode = ToolMode::Cut;
}

void CImageEditWnd::MosaicImage() {
  CloseTextEntry();
  if (m_surfaces.imageSurface.dc()) m_tools.mode = ToolMode::Mosaic;
}

// Either size below 1 removes the box. The box is centred in the client area, each
// half truncated on its own.
void CImageEditWnd::SetSelectionBox(int nWidth, int nHeight) {
  const bool shown = nWidth > 0 && nHeight > 0;
  SelectionBox& box = m_selectionBox;
  box.width = shown ? nWidth : 0;
  box.height = shown ? nHeight : 0;
  RECT client{0, 0, 0, 0};
  GetClientRect(&client);
  box.x = client.right / 2 - box.width / 2;
  box.y = client.bottom / 2 - box.height / 2;
  box.lastPoint = POINT{-1, -1};
  RedrawWindow();
}

// ---- the cursor ----

HCURSOR CImageEditWnd::CursorFor(int resourceId) const {
  if (resourceId == kSystemArrowCursor) return LoadCursorA(nullptr, IDC_ARROW);
  for (int i = 0; i < kCursorCount; ++i) {
    if (kCursorTable[i].resourceId == resourceId) return m_cursors[i];
  }
  return nullptr;
}

// Every WM_SETCURSOR is answered by the tool alone, wherever the pointer is. With no
// tool, the hand says what a drag there would do: move the selection box or an
// object, resize an object at its grip, or pan a picture that scrolls.
BOOL CImageEditWnd::OnSetCursor(HWND hwnd, UINT hitTest, UINT message) {
  int cursor = m_tools.CursorId();
  if (m_tools.mode == ToolMode::None) {
    const bool scrolls = m_view.hScrollShown || m_view.vScrollShown;
    if (m_selectionBox.overBox || m_objects.overBody) {
      cursor = kOpenHandMoveCursor;
    } else if (m_objects.overGrip) {
      cursor = kFourWayArrowsCursor;
    } else if (scrolls) {
      cursor = kOpenHandPanCursor;
    }
  }
  HCURSOR shown = cursor == kWindowClassCursor ? nullptr : CursorFor(cursor);
  if (shown == nullptr) return CWnd::OnSetCursor(hwnd, hitTest, message);
  SetCursor(shown);
  return TRUE;
}

// A move with no button held: what is under the pointer. The object bodies and grips
// join this walk once objects carry their rectangles.
void CImageEditWnd::UpdateHover(POINT point) {
  const SelectionBox& box = m_selectionBox;
  const RECT boxRect{box.x, box.y, box.x + box.width, box.y + box.height};
  m_selectionBox.overBox = PtInRect(&boxRect, point) == TRUE;
  if (m_selectionBox.overBox) return;
  m_objects.overBody = false;
  m_objects.overGrip = false;
}
