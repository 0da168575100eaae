// The tool the setters chose and the settings they chose with it: the tool mode, the
// colour, the sizes, the shape style and the bitmap brush; and the pen and brush the
// tools keep selected in the drawing layer, with the layer's previous ones put back
// whenever they are replaced or go.
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

// SetShape keeps styles 1 to 6; anything else draws lines.
ShapeStyle ShapeStyleFrom(int style);
// The pen style SetPen makes for a size: 1 a cosmetic pen, 2 and more a geometric one
// with round ends, 0 and below a geometric one with square ends (so a brush, which is
// SetPen of the negated size, has square ends).
DWORD PenStyleForSize(int size);

class ToolState {
 public:
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
  platform::OwnedBitmap bitmapBrush;
  COLORREF bitmapBrushKeyColor = kInitialBitmapBrushKeyColor;

 private:
  platform::OwnedPen drawingPen_;
  platform::OwnedBrush drawingBrush_;
  platform::SelectionGuard drawingLayerPen_;
  platform::SelectionGuard drawingLayerBrush_;
};
