// The editor: the child window that fills the control and owns every piece of
// editing state, in parts that each keep their own rules. The control forwards each
// interface method to the public operation of the same name here.
#pragma once

#include <string>

#include "editor/editor_events.h"
#include "editor/editor_state.h"
#include "editor/history.h"
#include "editor/inserted_objects.h"
#include "editor/picture_frame.h"
#include "editor/save_size.h"
#include "editor/selection_box.h"
#include "editor/shell_resources.h"
#include "editor/surfaces.h"
#include "editor/user_messages.h"
#include "editor/view_placement.h"
#include "pixels/adjustment_settings.h"
#include "pixels/pixel_buffer.h"
#include "pixels/pixel_rows.h"
#include "platform/gdi_handles.h"
#include "platform/platform.h"
#include "tools/captured_pixels.h"
#include "tools/no_tool_drags.h"
#include "tools/pointer_hover.h"
#include "tools/stroke_state.h"
#include "tools/text_entry.h"
#include "tools/tool_box.h"
#include "tools/tool_state.h"
#include "view/composed_area.h"

// The class-specific low style bits the editor window and its text-entry child are
// created with. Neither window class gives them a meaning; they are kept so that both
// windows carry the styles they always had.
inline constexpr DWORD kClassStyleBits = 0x0120;

class CImageEditWnd : public CWnd {
 public:
  // `control` hears the editor's events; null for an editor that reports to nobody.
  explicit CImageEditWnd(EditorEvents* control = nullptr);
  ~CImageEditWnd() override;

  // ---- interface operations (one per dispatch method) ----
  void SetImage(LPCSTR lpszFilePath);
  void SaveEditedBitmap(LPCSTR lpszFilePath);
  std::string SetColor(LPCSTR lpszColor);
  std::string GetColor();
  void SelectColor();
  void FillWithSelectedColor();
  void SetEraser(int nEraserSize);
  void SetPen(int nPenSize);
  void SetBrush(int nBrushSize);
  void SetAirBrush(int nAirBrushSize);
  void SetBitmapBrush(LPCSTR lpszFilePath);
  void SetShape(int nShapeStyle);
  void EnterText();
  std::string SetTextFont(LPCSTR lpszFont);
  std::string SetTextBackgroundColor(LPCSTR lpszColor);
  void SelectRectangle();
  void SelectIrregular();
  void SetTransparency(int nTransparentColor, int nTransparency);
  void SetTexture(int nTexture);
  void Undo();
  void Redo();
  void Clear(long bImage);
  BOOL ScaleImage(int nScaleFactor);
  void SetSaveEditedBitmapSize(int nWidth, int nHeight);
  void SetImageWidth(int nImageWidth);
  void SetFrame(int nOrientation, LPCSTR lpszFilePath, int nOffset, int nTransparentColor);
  void RotateImage(int nDegree);
  void CutImage();
  void GrayImage(bool bGraying);
  void BlockImage();
  void CheckImage();
  // WaterDropImage and HeartImage of the interface both land here.
  void WaterDropImage();
  void MosaicImage();
  void InsertBalloonText(int nStartX, int nStartY, LPCSTR lpszFilePath, int nTextStartX, int nTextStartY,
                         int nTextEndX, int nTextEndY, LPCSTR lpszText);
  void InsertIcon(int nStartX, int nStartY, LPCSTR lpszFilePath);
  void FlipImage();
  void ReverseImage();
  void SharpenImage(int nStep);
  void SmoothImage(int nStep);
  void EmbossImage();
  void BrightenImage(int nBrightness);
  void ContrastImage(int nContrast);
  void HueImage(int nHue);
  void SaturateImage(int nSaturation);
  void CorrectGamma(int nRedGamma, int nGreenGamma, int nBlueGamma);
  void EqualizeHistogram();
  void InvertImage(bool bInverting);
  void BlendImage(LPCSTR lpszFilePath, int nAlpha);
  void WhitenImage(int nStep);
  void SetSelectionBox(int nWidth, int nHeight);
  void SaveSelectionBoxBitmap(LPCSTR lpcFilePath);
  void EnableShortcutMenu(long bShortcutMenu);
  void EnableVerbose(long bVerbose);
  // Only the tool mode changes: pending text stays in its box and nothing is redrawn.
  void SetNothing();

  // ---- what hosts read ----
  // Everything a host reports about the editor, as one value.
  EditorState State() const;
  // The bitmap of one of the surfaces (null when there is none), for hosts that write
  // it out as a picture.
  HBITMAP SurfaceBitmap(SurfaceName surface) const;

  // ---- for the tools ----
  // When the text-entry window is shown and the drawing layer exists: stamps the
  // typed text into the drawing layer, then hides and empties the window.
  void CloseTextEntry();
  // Stamps the typed text into the layer of that DC where the box shows it: in the
  // text font and colour on the text background, converted to the keyboard's code
  // page, word-wrapped at the box's width, then repaints.
  void CommitText(HDC drawingLayer);
  // The pen and the shape brush made again in the current colour, for the tool that
  // is chosen: what SetPen with the pen size and SetShape with the shape style make,
  // the tool mode and a drag under way left as they are.
  void RenewDrawingObjects();
  // The colour the person sees at that point of the surfaces.
  COLORREF ShownColorAt(POINT point);
  // Repaints the window where it shows that part of the surfaces.
  void RepaintSurfaceArea(const RECT& area);
  // Tells the control that a colour was picked: its colour string.
  void FireColorSelected(const std::string& color);

  // ---- surface operations ----
  // The bitmap's pixels as a new 24-bit bottom-up buffer; empty (nothing allocated)
  // when the DC or the bitmap is missing or the memory cannot be had.
  PixelBuffer ReadSurfacePixels(HDC dc, HBITMAP bitmap);
  // Replaces the bitmap's rows from the buffer, which is released in every case.
  void WriteSurfacePixels(HDC dc, HBITMAP bitmap, PixelBuffer buffer);
  // The image surface's own rows of `area`, to be read from `source` (the surface
  // itself, or a bitmap of its size) and written in place, four bytes a pixel; false
  // where the platform does not map them. Taken only when a 24-bit buffer of the
  // surface could be had, so that a surface beyond the pixel limit fails as reading
  // that buffer fails.
  bool MapSurfaceRows(HBITMAP source, const RECT& area, PixelRows* rows);
  void CreateCompositionBuffer(int width, int height);
  void CreateDrawingLayer(int width, int height);
  void CreateImageSurface(int width, int height);
  void ResizeDrawingLayer(int width, int height, const RECT& dest, const RECT& src);
  void RebuildImageSurface();
  // The bitmap to read the rebuilt image surface's pixels from. When the original
  // fills the surface at 1:1 that is the original itself (the same pixels), and the
  // surface is left to the passes that write it (or to RebuildImageSurface when its
  // pixels cannot be had); otherwise the image surface, rebuilt here.
  HBITMAP RebuiltImageSource();
  // `area` (surface coordinates; null for all of it) limits the drawing to that part.
  void CompositeDrawingLayer(HDC target, const RECT* area = nullptr);
  // The source's part from (srcX, srcY) of that size is drawn.
  void TransparentBlit(HDC target, HBITMAP source, int x, int y, int width, int height, COLORREF key,
                       int srcX = 0, int srcY = 0);
  void RecolorBitmapBrush(COLORREF color);
  // The adjusted rebuild: the image rectangle refilled from the original and both
  // pixel passes run with every stored setting.
  void RunAdjustedRebuild();

  // ---- history ----
  // Appends the current state as the new current level, discarding the redo levels;
  // with a source DC (the drawing layer) the level also keeps a snapshot of it.
  void CommitHistoryLevel(HDC source, int width, int height);

  // ---- view ----
  // Composes the picture as shown (image surface, strokes, objects, then the frame)
  // into the composition buffer at surface coordinates, over at least `area` (surface
  // coordinates; null for the whole buffer). Whatever reads the composition buffer
  // composes the part it reads first: repaints the visible part, saves the saved part.
  // `plain` shows a selected object as it is saved, without its frame and grip.
  void ComposeView(const RECT* area = nullptr, bool plain = false);
  // What the composition buffer is composed from, as it stands.
  ComposedFrom ComposedSources() const;
  // Draws the frame around the image rectangle into `target` (a surface), only inside
  // `area` (surface coordinates).
  void DrawFrame(HDC target, const RECT& area);

  // ---- inserted objects ----
  // Frees the selected object and repaints; no history level (the shortcut menu's
  // "Delete" adds one, the Delete key does not).
  void DeleteSelectedObject();
  // Draws the live objects back to front into `target`, each at its window position
  // plus the offset (the scroll position, for a surface), keyed or blended as the
  // object says. `plain` draws selected objects without their frame; `area` (target
  // coordinates; null for the whole target) limits the drawing.
  void DrawObjects(HDC target, int offsetX, int offsetY, bool plain, const RECT* area = nullptr);

  // ---- window ----
  BOOL PreCreateWindow(CREATESTRUCTA& cs) override;
  int OnCreate(LPCREATESTRUCTA cs) override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnClose() override;
  void OnDestroy() override;
  void OnPaint() override;
  void OnHScroll(UINT code, UINT pos, HWND scrollBar) override;
  void OnVScroll(UINT code, UINT pos, HWND scrollBar) override;
  void OnKeyDown(UINT virtualKey, UINT repeatCount, UINT flags) override;
  void OnLButtonDown(UINT flags, POINT point) override;
  void OnMouseMove(UINT flags, POINT point) override;
  void OnLButtonUp(UINT flags, POINT point) override;
  void OnTimer(UINT_PTR id) override;
  BOOL OnSetCursor(HWND hwnd, UINT hitTest, UINT message) override;
  // The inserted objects' shortcut menu: shown by the right button, its items brought
  // up to date before they show, its commands run.
  void OnRButtonDown(UINT flags, POINT point) override;
  void OnInitMenuPopup(HMENU popup, UINT index, BOOL systemMenu) override;
  BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;

  // Set by the control right after it has created the editor window.
  bool m_windowCreated = false;

  // ---- the parts, in the order they are made; the destructor gives back what they
  // hold in an order of its own ----
  UserMessages m_messages;        // the user's language and the verbose flag
  TextEntry m_textEntry;          // the text box, its font and background
  ShellResources m_shell;         // popup menu, cursors, the image library
  EditorSurfaces m_surfaces;      // composition buffer, drawing layer, image surface, snapshot DC, original
  ComposedArea m_composed;        // what the composition buffer still holds as composed
  ViewPlacement m_view;           // scale, image rectangle, scrolling
  EditHistory m_history;          // ten levels of undo
  PictureFrame m_frame;           // the decorative frame
  int m_texture = 0;              // the texture percentage, 0..100; nothing draws with it
  InsertedObjects m_objects;      // balloon texts and icons over the picture
  SelectionBox m_selectionBox;    // the box whose content can be saved on its own
  AdjustmentSettings m_settings;  // the stored tonal and filter settings
  SaveSize m_saveSize;            // the size a whole save is written at
  ToolState m_tools;              // the chosen tool, its colour and sizes, the drawing pen and brush
  ToolBox m_toolBox;              // one interaction per tool
  StrokeState m_stroke;           // the stroke under way
  PointerHover m_hover;           // what the pointer is over, for the cursor of no tool
  NoToolDrags m_noToolDrags;      // the drags of the box, the objects and the view with no tool
  CapturedPixels m_captured;      // what the rectangle selection captured

 private:
  // The interaction of the chosen tool; null for no tool.
  Interaction* ActiveTool() const { return m_toolBox.For(m_tools.mode, m_tools.shapeStyle); }
  // Everything a history level records except the drawing layer, and giving it back.
  void RecordLevel(HistoryLevel& level) const;
  void RestoreLevel(const HistoryLevel& level);
  // Centres the original, scaled by the display scale, in a surface of that size
  // and stretches it there on white.
  void DrawScaledOriginal(const Surface& surface);
  // Shows or hides the scroll bars for content of that size, resets the scroll
  // positions and measures the view.
  void UpdateScrollBars(int contentWidth, int contentHeight);
  // One scroll message on one axis; both axes share the arithmetic.
  void Scroll(int bar, UINT code, int position);
  // Gives up the composition buffer's rows the window does not show.
  void ReleaseHiddenComposition();
  // Makes the drawing pen: the layer's previous pen goes back first, and only a pen
  // that could be made changes the tool. False when it could not.
  bool MakeDrawingPen(DWORD style, int size, COLORREF color);
  // The image rectangle as the window shows it: shifted by the scroll position and
  // cut to the client area, in window coordinates.
  RECT VisibleImageRect() const;
  // Whether the left button drags: a tool's stroke, or a drag with no tool.
  bool DragUnderWay() const { return m_stroke.buttonDown || m_noToolDrags.Active(); }
  // Ends a drag under way before its release, for a call that replaces what the drag
  // works on: the mouse and the cursor are let go, the timers stop, the tool takes
  // back what it showed only for the drag, and the moves and the release that follow
  // do nothing. A drag with no tool ends as its release ends it.
  void EndDrag();
  // The tool mode becomes `mode`; another tool than the one chosen ends a drag under
  // way, whose moves and release would otherwise reach a tool that never saw its press.
  void ChooseTool(ToolMode mode);
  // SetShape's brush for the shape style: a solid one of the current colour for the
  // filled shapes, the null brush for the others.
  void SelectShapeBrush();
  // A window point of a drag as a surface point: scrolled axes take the scroll
  // position and stay inside the image.
  POINT DragPoint(POINT window) const;
  // Scrolls by a pixel when a drag is near an edge with a scroll bar.
  void ScrollAtEdge(POINT window);
  void StopAutoScroll();
  // What ends every drag, at its release or earlier: the cursor clip, the capture,
  // the auto-scroll timer and the button state go.
  void LetGoOfMouse();
  // Makes the free `slot`, whose kind-specific fields are set, a live object of that
  // kind showing `picture` (of that description), placed at (startX, startY) or
  // centred when either is negative, in front of the others; then repaints and
  // records a history level.
  void PlaceInsertedObject(int slot, ObjectKind kind, platform::OwnedBitmap picture, const BITMAP& size,
                           int startX, int startY);
  // Draws the object's `drawn` picture, placed at `at`, blended over `part` of the
  // target by the object's transparency.
  void BlendObject(HDC target, const CInsertedObject& object, HBITMAP drawn, POINT at, const RECT& part);
  // One command of the shortcut menu, on the selected object.
  void RunObjectCommand(UINT command);

  EditorEvents* m_control;
};
