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

// A stroke under way: the button, the timers it runs and the points it went through.
struct StrokeState {
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

  ToolMode mode = ToolMode::None;
  ToolMode savedMode = ToolMode::None;  // restored after a colour pick
  COLORREF color = 0;
  int penSize = 0;  // signed: the size given to the last tool setter
  int toolWidth = 0;
  ShapeStyle shapeStyle = ShapeStyle::None;
  int airbrushDensity = 64;
  platform::OwnedBitmap bitmapBrush;
  COLORREF bitmapBrushKeyColor = kInitialBitmapBrushKeyColor;
  // Put back the drawing layer's previous pen and brush when the tools' own go.
  platform::SelectionGuard drawingLayerPen;
  platform::SelectionGuard drawingLayerBrush;
  StrokeState stroke;
};
