// What a host reads about the editor: one plain value, taken whole, so that hosts
// never reach into the editor's parts.
#pragma once

#include <vector>

#include "pixels/adjustment_settings.h"
#include "platform/platform.h"

// One live inserted object as a host reports it.
struct ObjectState {
  int slot = 0;
  int kind = 0;  // 1 icon, 2 balloon text
  int x = 0;     // window coordinates
  int y = 0;
  int width = 0;
  int height = 0;
  bool selected = false;
};

struct EditorState {
  int toolMode = 0;
  int savedToolMode = 0;
  COLORREF color = 0;
  int penSize = 0;
  int toolWidth = 0;
  int shapeStyle = 0;
  int curveStage = 0;
  int airbrushDensity = 64;
  double scale = 1.0;
  RECT imageRect{0, 0, 0, 0};
  SIZE displayed{0, 0};
  SIZE original{0, 0};
  POINT scroll{0, 0};  // horizontal, vertical
  bool hScrollShown = false;
  bool vScrollShown = false;
  SIZE view{0, 0};
  // The extents of the three surfaces, and whether there is an original picture to
  // rebuild them from (a failed load leaves none, but keeps its size above).
  SIZE composition{0, 0};
  SIZE drawingLayer{0, 0};
  SIZE imageSurface{0, 0};
  bool originalPresent = false;
  int historyCount = 0;
  int historyIndex = -1;
  std::vector<ObjectState> objects;  // the live ones, by slot
  std::vector<int> zOrder;           // live object slots, front first
  int selectedObject = -1;
  RECT selectionBox{0, 0, 0, 0};  // x, y, width, height
  bool frame = false;
  // What SetTransparency and SetTexture stored.
  COLORREF transparentColor = 0;
  int transparency = 0;
  int texture = 0;
  bool textShown = false;
  AdjustmentSettings settings;
  bool scalingAllowed = false;
  bool shortcutMenu = false;
  bool verbose = false;
  int gdiObjects = 0;  // live GDI objects of the whole process
};

// The surfaces a host may write out as pictures.
enum class SurfaceName { Image, Drawing, Composition, Snapshot, Original };
