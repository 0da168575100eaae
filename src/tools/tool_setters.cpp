// Choosing the tool: the tool-mode setters, the current colour, the pens and brushes
// they select into the drawing layer, the selection box's size and the cursor that
// shows the tool.
#include <cstdint>
#include <span>

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "tools/color_dialog.h"
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

std::string CImageEditWnd::GetColor() { return ColorString(m_tools.color); }

std::string CImageEditWnd::SetColor(LPCSTR lpszColor) {
  COLORREF color = 0;
  if (lpszColor != nullptr && lstrcmpiA(lpszColor, "DIALOG") == 0) {
    const std::optional<COLORREF> chosen = ChooseColorFrom(m_hWnd, m_tools.color, SetColorCustomColors());
    if (!chosen) return GetColor();
    color = *chosen;
  } else {
    color = ReadColorString(lpszColor);
  }
  if (color == m_tools.color) return GetColor();
  // Only the eraser paints in the drawing layer's key colour: a colour that would
  // vanish from the picture is lightened a little instead.
  m_tools.color = color == kDrawingLayerKeyColor ? color + 0x202020 : color;
  // The airbrush reads the colour at each spray and the eraser never uses it; the
  // tools that made something in the colour make it again.
  if (Interaction* tool = ActiveTool()) tool->ApplyColor();
  return GetColor();
}

void CImageEditWnd::RenewDrawingObjects() {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  MakeDrawingPen(PenStyleForSize(m_tools.penSize), m_tools.penSize, m_tools.color);
  m_tools.shapeStyle = ShapeStyleFrom(static_cast<int>(m_tools.shapeStyle));
  SelectShapeBrush();
}

void CImageEditWnd::ChooseTool(ToolMode mode) {
  if (mode != m_tools.mode) EndDrag();
  m_tools.mode = mode;
}

// A colour pick returns to the painting tool it interrupted, else to the pen.
void CImageEditWnd::SelectColor() {
  if (!m_surfaces.composition.dc()) return;
  CloseTextEntry();
  const Interaction* tool = ActiveTool();
  m_tools.savedMode = tool != nullptr && tool->ResumesAfterColorPick() ? m_tools.mode : ToolMode::Pen;
  ChooseTool(ToolMode::ColorPick);
}

void CImageEditWnd::FillWithSelectedColor() {
  if (!m_surfaces.composition.dc()) return;
  CloseTextEntry();
  m_tools.PutBackBrush();
  platform::OwnedBrush brush(CreateSolidBrush(m_tools.color));
  if (!brush) return;
  ChooseTool(ToolMode::Fill);
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
    ChooseTool(ToolMode::Eraser);
  }
}

void CImageEditWnd::SetPen(int nPenSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  if (MakeDrawingPen(PenStyleForSize(nPenSize), nPenSize, m_tools.color)) {
    ChooseTool(ToolMode::Pen);
    m_tools.penSize = nPenSize;
  }
}

void CImageEditWnd::SetBrush(int nBrushSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  const int size = NegatedSize(nBrushSize);
  SetPen(size);
  if (m_tools.penSize == size) ChooseTool(ToolMode::Brush);
}

void CImageEditWnd::SetAirBrush(int nAirBrushSize) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  ChooseTool(ToolMode::Airbrush);
  m_tools.penSize = nAirBrushSize;
  m_tools.toolWidth = nAirBrushSize;
  m_toolBox.airbrush().ResetDensity();
}

void CImageEditWnd::SetBitmapBrush(LPCSTR lpszFilePath) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  if (lpszFilePath == nullptr || *lpszFilePath == '\0') return;
  m_tools.bitmapBrush.reset();
  m_tools.bitmapBrush =
      platform::OwnedBitmap(imageio::LoadImage(lpszFilePath, m_messages.LoadContext(m_hWnd)));
  BITMAP description{};
  if (!m_tools.bitmapBrush || !GetObjectA(m_tools.bitmapBrush.get(), sizeof description, &description))
    return;
  // The brush is recoloured as a square of side = its width: a brush whose square,
  // with the pixels read to recolour it, would not fit the graphics memory is
  // refused as one that could not be loaded, rather than kept as a brush that can
  // never take the colour.
  const auto side = static_cast<std::uint64_t>(description.bmWidth);
  const auto stride = static_cast<std::uint64_t>(platform::DibRowStride(description.bmWidth, 24));
  if (!platform::GraphicsMemoryWouldFit(side * (side * 4 + stride))) {
    m_tools.bitmapBrush.reset();
    return;
  }
  ChooseTool(ToolMode::BitmapBrush);
  m_tools.penSize = m_tools.toolWidth = description.bmWidth;
  RecolorBitmapBrush(m_tools.color);
}

void CImageEditWnd::SetShape(int nShapeStyle) {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  SetPen(m_tools.penSize);
  ChooseTool(ToolMode::Shape);
  m_tools.shapeStyle = ShapeStyleFrom(nShapeStyle);
  SelectShapeBrush();
}

void CImageEditWnd::SelectShapeBrush() {
  HDC layer = m_surfaces.drawingLayer.dc();
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
  if (m_surfaces.drawingLayer.dc()) ChooseTool(ToolMode::Text);
}

void CImageEditWnd::SelectRectangle() {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  ChooseTool(ToolMode::RectangleSelection);
}

void CImageEditWnd::SelectIrregular() {
  if (!m_surfaces.drawingLayer.dc()) return;
  CloseTextEntry();
  ChooseTool(ToolMode::IrregularSelection);
}

void CImageEditWnd::SetNothing() { ChooseTool(ToolMode::None); }

void CImageEditWnd::CutImage() {
  CloseTextEntry();
  if (m_surfaces.composition.dc()) ChooseTool(ToolMode::Cut);
}

void CImageEditWnd::MosaicImage() {
  CloseTextEntry();
  if (m_surfaces.imageSurface.dc()) ChooseTool(ToolMode::Mosaic);
}

void CImageEditWnd::SetSelectionBox(int nWidth, int nHeight) {
  RECT client{0, 0, 0, 0};
  GetClientRect(&client);
  m_selectionBox.Place(nWidth, nHeight, client);
  RedrawWindow();
}

// ---- the cursor ----

// Every WM_SETCURSOR is answered by the tool alone, wherever the pointer is; with no
// tool, by what is under the pointer.
BOOL CImageEditWnd::OnSetCursor(HWND hwnd, UINT hitTest, UINT message) {
  int cursor = kSystemArrowCursor;
  if (m_tools.mode == ToolMode::None) {
    cursor = m_hover.Cursor(m_view.hScrollShown() || m_view.vScrollShown());
  } else if (const Interaction* tool = ActiveTool()) {
    cursor = tool->Cursor();
  }
  HCURSOR shown = cursor == kSystemArrowCursor   ? LoadCursorA(nullptr, IDC_ARROW)
                  : cursor == kWindowClassCursor ? nullptr
                                                 : m_shell.Cursor(cursor);
  if (shown == nullptr) return CWnd::OnSetCursor(hwnd, hitTest, message);
  SetCursor(shown);
  return TRUE;
}
