#include "editor/image_edit_wnd.h"

EditorState CImageEditWnd::State() const {
  EditorState state;
  state.toolMode = static_cast<int>(m_tools.mode);
  state.savedToolMode = static_cast<int>(m_tools.savedMode);
  state.color = m_tools.color;
  state.penSize = m_tools.penSize;
  state.toolWidth = m_tools.toolWidth;
  state.shapeStyle = static_cast<int>(m_tools.shapeStyle);
  state.curveStage = m_toolBox.curve().stage();
  state.airbrushDensity = m_toolBox.airbrush().density();
  state.scale = m_view.scale;
  state.imageRect = m_view.imageRect();
  state.displayed = SIZE{m_view.displayedWidth(), m_view.displayedHeight()};
  state.original = SIZE{m_view.originalWidth, m_view.originalHeight};
  state.scroll = POINT{m_view.hScrollPos(), m_view.vScrollPos()};
  state.hScrollShown = m_view.hScrollShown();
  state.vScrollShown = m_view.vScrollShown();
  state.view = SIZE{m_view.viewWidth(), m_view.viewHeight()};
  auto extent = [](const Surface& surface) { return SIZE{surface.width(), surface.height()}; };
  state.composition = extent(m_surfaces.composition);
  state.drawingLayer = extent(m_surfaces.drawingLayer);
  state.imageSurface = extent(m_surfaces.imageSurface);
  state.originalPresent = static_cast<bool>(m_surfaces.original);
  state.historyCount = m_history.count();
  state.historyIndex = m_history.index();
  for (int slot = 0; slot < kMaxInsertedObjects; ++slot) {
    const CInsertedObject& object = m_objects.Object(slot);
    if (object.kind() == ObjectKind::Free) continue;
    state.objects.push_back(ObjectState{slot, static_cast<int>(object.kind()), object.x, object.y,
                                        object.width, object.height, object.selected()});
  }
  const std::span<const int> zOrder = m_objects.FrontToBack();
  state.zOrder.assign(zOrder.begin(), zOrder.end());
  state.selectedObject = m_objects.selected();
  const RECT box = m_selectionBox.WindowRect();
  state.selectionBox = RECT{box.left, box.top, m_selectionBox.width(), m_selectionBox.height()};
  state.frame = m_frame.present();
  state.transparentColor = m_objects.storedTransparentColor;
  state.transparency = m_objects.storedTransparency;
  state.texture = m_texture;
  state.textShown = m_textEntry.IsShown();
  state.settings = m_settings;
  state.scalingAllowed = m_view.scalingAllowed;
  state.shortcutMenu = m_shell.shortcutMenuEnabled;
  state.verbose = m_messages.verbose;
  state.gdiObjects = platform::LiveGdiObjects().total();
  return state;
}

HBITMAP CImageEditWnd::SurfaceBitmap(SurfaceName surface) const {
  switch (surface) {
    case SurfaceName::Image:
      return m_surfaces.imageSurface.bitmap();
    case SurfaceName::Drawing:
      return m_surfaces.drawingLayer.bitmap();
    case SurfaceName::Composition:
      return m_surfaces.composition.bitmap();
    case SurfaceName::Snapshot:
      return static_cast<HBITMAP>(GetCurrentObject(m_surfaces.snapshotDC.get(), OBJ_BITMAP));
    case SurfaceName::Original:
      return m_surfaces.original.get();
  }
  return nullptr;
}
