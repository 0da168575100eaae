// The editor's tool state: the tool mode and the settings the tool setters choose
// (colour, sizes, shape, airbrush density, bitmap brush), the pen and brush the tools
// keep selected in the drawing layer, and the state of a stroke under way.
#pragma once

#include "platform/gdi_handles.h"
#include "platform/platform.h"

// What the left mouse button does inside the image.
enum class ToolMode : int {
  None = 0,
  ColorPick = 3,
  Fill = 4,
  Eraser = 5,
  Pen = 6,
  Brush = 7,
  Airbrush = 8,
  BitmapBrush = 9,
  Shape = 10,
  Text = 11,
  RectangleSelection = 12,
  IrregularSelection = 13,
  RectangleSelectionHeld = 14,
  Frame = 19,
  Cut = 21,
  Mosaic = 27,
};

// What the shape tool draws; 0 until SetShape chooses one.
enum class ShapeStyle : int {
  None = 0,
  Line = 1,
  Curve = 2,
  Rectangle = 3,
  Ellipse = 4,
  FilledRectangle = 5,
  FilledEllipse = 6,
};

inline constexpr COLORREF kInitialBitmapBrushKeyColor = 0x00E9CE72;
inline constexpr UINT_PTR kSprayTimerId = 1;
inline constexpr UINT_PTR kAutoScrollTimerId = 2;
inline constexpr UINT kSprayIntervalMs = 200;
inline constexpr UINT kAutoScrollIntervalMs = 50;
inline constexpr int kFullAirbrushDensity = 64;

// The cursor a tool shows: a cursor resource id, or one of these.
inline constexpr int kSystemArrowCursor = 0;
inline constexpr int kWindowClassCursor = -1;  // the window's default handling decides

// SetShape keeps styles 1 to 6; anything else draws lines.
ShapeStyle ShapeStyleFrom(int style);
// The pen style SetPen makes for a size: 1 a cosmetic pen, 2 and more a geometric one
// with round ends, 0 and below a geometric one with square ends (so a brush, which is
// SetPen of the negated size, has square ends).
DWORD PenStyleForSize(int size);
// The number of tries one airbrush spray makes (four dots each at most): the disc's
// area over the density. Capped so that a huge diameter cannot stall the editor.
long long SprayTries(int radius, int density);
inline constexpr long long kMaxSprayTries = 1 << 18;
// The rectangle a drag from `a` to `b` spans, whichever way it went.
RECT SpannedRect(POINT a, POINT b);
// The pixels from `a` to `b` (both included) and `margin` around them: what a stroke
// or spray may have painted there.
RECT PaintedArea(POINT a, POINT b, long long margin);

// A stroke under way: the button, the timers it runs and the points it went through.
struct StrokeState {
  // Where a shape preview from the down point to the last point may have drawn with
  // a pen of `width`, and the same for the curve through its four points, grown by
  // `grow` to the right and bottom.
  RECT ShapePreviewArea(int width) const;
  RECT CurveArea(int width, int grow) const;

  bool buttonDown = false;
  UINT_PTR sprayTimerId = 0;  // non-zero while the airbrush sprays
  UINT_PTR autoScrollTimerId = 0;
  POINT autoScrollPoint{0, 0};
  POINT downPoint{0, 0};
  POINT lastPoint{0, 0};
  POINT curvePoints[4]{};
  int curveStage = 0;
};

struct ToolState {
  // Undo and Clear abandon what cannot be finished any more: a half-built curve
  // starts over, and a captured rectangle being held goes back to plain rectangle
  // selection.
  void AbandonUnfinished();
  // A colour pick returns to the painting tool it interrupted, else to the pen.
  ToolMode ModeAfterColorPick() const;
  // Whether a press of the current tool starts a new history level: not a colour
  // pick, not a drag of a held selection, not the second and third press of a curve.
  bool PressCommitsHistory() const;
  bool DrawingCurve() const { return mode == ToolMode::Shape && shapeStyle == ShapeStyle::Curve; }
  // The cursor of the current tool; tool mode 0 chooses by what is under the pointer.
  int CursorId() const;
  // The airbrush sprays a disc as wide as the tool, centred half its width up and to
  // the left of the pointer; the bitmap brush stamps a square of that side there.
  POINT ToolCorner(POINT pointer) const {
    return POINT{pointer.x - toolWidth / 2, pointer.y - toolWidth / 2};
  }
  RECT SprayArea(POINT pointer) const;
  RECT StampArea(POINT pointer) const;

  // The drawing layer's pen and brush: selecting one first puts back the one before;
  // the tools' own is selected into `layer` (a stock brush is selected without being
  // owned), and putting it back selects the layer's previous one again and deletes
  // the tools' own.
  void SelectPen(HDC layer, platform::OwnedPen pen);
  void PutBackPen();
  void SelectBrush(HDC layer, platform::OwnedBrush brush);
  void SelectStockBrush(HDC layer, int stockBrush);
  void PutBackBrush();

  ToolMode mode = ToolMode::None;
  ToolMode savedMode = ToolMode::None;  // restored after a colour pick
  COLORREF color = 0;
  int penSize = 0;  // signed: the size given to the last tool setter
  int toolWidth = 0;
  ShapeStyle shapeStyle = ShapeStyle::None;
  int airbrushDensity = kFullAirbrushDensity;
  platform::OwnedBitmap bitmapBrush;
  COLORREF bitmapBrushKeyColor = kInitialBitmapBrushKeyColor;
  COLORREF pickedColor = 0;
  // Declared before the selections so that they are put back before these go.
  platform::OwnedPen drawingPen;
  platform::OwnedBrush drawingBrush;
  platform::SelectionGuard drawingLayerPen;
  platform::SelectionGuard drawingLayerBrush;
  StrokeState stroke;
};
