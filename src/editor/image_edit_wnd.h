// The editor: the child window that fills the control and owns every piece of
// editing state. The control forwards each interface method to the public operation
// of the same name here.
#pragma once

#include <optional>
#include <string>

#include "editor/editor_events.h"
#include "editor/editor_state.h"
#include "editor/history.h"
#include "editor/inserted_objects.h"
#include "editor/selection_box.h"
#include "editor/surfaces.h"
#include "editor/view_placement.h"
#include "imageio/image_loader.h"
#include "pixels/adjustment_settings.h"
#include "pixels/frame_piece.h"
#include "pixels/pixel_buffer.h"
#include "platform/gdi_handles.h"
#include "platform/platform.h"
#include "resources/cursor_table.h"
#include "tools/text_edit_wnd.h"
#include "tools/tool_state.h"

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

  // ---- tools ----
  // When the text-entry window is shown and the drawing layer exists: stamps the
  // typed text into the drawing layer (that step arrives with text entry), then hides
  // and empties the window.
  void CloseTextEntry();
  // The dotted grey rectangle drawn with not-xor, so drawing it twice leaves no trace:
  // erases the band (left, top, oldRight, oldBottom), then draws (left, top, right,
  // bottom).
  void DrawRubberBand(HDC dc, int left, int top, int right, int bottom, int oldRight, int oldBottom,
                      bool draw, bool erase);
  // One airbrush spray of single pixels in the current colour around (cx, cy); while
  // the density is above 1 the spray timer is armed to spray again, denser.
  void SprayAirBrush(HDC dc, int cx, int cy, int radius, int density);
  // The bitmap brush stamped with its key colour left out; nothing without a brush.
  void StampBitmapBrush(HDC dc, int left, int top, int width, int height);

  // ---- what hosts read ----
  // Everything a host reports about the editor, as one value.
  EditorState State() const;
  // The bitmap of one of the surfaces (null when there is none), for hosts that write
  // it out as a picture.
  HBITMAP SurfaceBitmap(SurfaceName surface) const;

  // ---- surface operations ----
  // The bitmap's pixels as a new 24-bit bottom-up buffer; empty (nothing allocated)
  // when the DC or the bitmap is missing or the memory cannot be had.
  PixelBuffer ReadSurfacePixels(HDC dc, HBITMAP bitmap);
  // Replaces the bitmap's rows from the buffer, which is released in every case.
  void WriteSurfacePixels(HDC dc, HBITMAP bitmap, PixelBuffer buffer);
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

  // The out-of-memory message box in the user's language (shown by callers only
  // while verbose, except where they say otherwise).
  void ShowOutOfMemoryMessage() const;

  // What the image loader needs to know about the editor that calls it.
  imageio::LoadContext LoaderContext() const;

  // ---- view ----
  // Composes the picture as shown (image surface, then strokes) into the
  // composition buffer at surface coordinates, over at least `area` (surface
  // coordinates; null for the whole buffer). Whatever reads the composition buffer
  // composes the part it reads first: repaints the visible part, saves the saved part.
  void ComposeView(const RECT* area = nullptr);
  // Shows or hides the scroll bars for content of that size, resets the scroll
  // positions and measures the view.
  void UpdateScrollBars(int contentWidth, int contentHeight);

  // ---- window ----
  BOOL PreCreateWindow(CREATESTRUCTA& cs) override;
  int OnCreate(LPCREATESTRUCTA cs) override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnClose() override;
  void OnPaint() override;
  void OnHScroll(UINT code, UINT pos, HWND scrollBar) override;
  void OnVScroll(UINT code, UINT pos, HWND scrollBar) override;
  void OnKeyDown(UINT virtualKey, UINT repeatCount, UINT flags) override;
  void OnLButtonDown(UINT flags, POINT point) override;
  void OnMouseMove(UINT flags, POINT point) override;
  void OnLButtonUp(UINT flags, POINT point) override;
  void OnTimer(UINT_PTR id) override;
  BOOL OnSetCursor(HWND hwnd, UINT hitTest, UINT message) override;

  // The control that owns this editor, for events.
  EditorEvents* m_control;
  // Set by the control right after it has created the editor window.
  bool m_windowCreated = false;

  // The parts. The history is declared before the surfaces and the tools after them,
  // so that the snapshot DC lets go of a level's snapshot before the history deletes
  // it, and the tools put the drawing layer's previous pen and brush back before the
  // drawing layer goes.
  EditHistory m_history;
  bool m_framePresent = false;
  FramePiece m_frame[kFramePieceCount];
  EditorSurfaces m_surfaces;
  ViewPlacement m_view;
  ToolState m_tools;
  InsertedObjects m_objects;
  SelectionBox m_selectionBox;
  AdjustmentSettings m_settings;

  // View dragging (panning) with no tool.
  bool m_panning = false;
  POINT m_panLastPoint{-1, -1};
  // Last SetTransparency and SetTexture arguments.
  int m_transparentColor = 0;
  int m_transparency = 0;
  int m_texture = 0;

  // Text entry and the captured selection.
  CTextEditWnd m_textEdit;
  platform::OwnedBitmap m_selectionBitmap;
  int m_selectionX = 0;
  int m_selectionY = 0;
  int m_selectionWidth = 0;
  int m_selectionHeight = 0;
  WORD m_userLanguage = 0;
  LOGFONTA m_textFontDescription{};
  platform::OwnedFont m_textFont;
  COLORREF m_textColor = 0;
  COLORREF m_textBackgroundColor = 0xFFFFFF;
  platform::OwnedBrush m_textBackgroundBrush;
  bool m_textBackgroundTransparent = false;

  // Saving at a chosen size; 0 means the displayed size.
  int m_saveWidth = 0;
  int m_saveHeight = 0;

  // Shell resources.
  bool m_shortcutMenuEnabled = false;
  HMENU m_popupMenu = nullptr;
  HMENU m_zOrderMenu = nullptr;
  HCURSOR m_cursors[kCursorCount]{};
  bool m_verbose = false;
  HMODULE m_imageLibrary = nullptr;
  using TransparentBltEntry = BOOL (*)(HDC, int, int, int, int, HDC, int, int, int, int, UINT);
  TransparentBltEntry m_transparentBlt = nullptr;

 private:
  void InitTextFont();
  void BuildPopupMenu();
  void LoadCursors();
  // Everything a history level records except the drawing layer, and giving it back.
  void RecordLevel(HistoryLevel& level) const;
  void RestoreLevel(const HistoryLevel& level);
  // Centres the original, scaled by the display scale, in a surface of that size
  // and stretches it there on white.
  void DrawScaledOriginal(const Surface& surface);
  // One scroll message on one axis; both axes share the arithmetic.
  void Scroll(int bar, UINT code, int position);

  // ---- tool setters ----
  // Makes the drawing pen: the layer's previous pen goes back first, and only a pen
  // that could be made changes the tool. False when it could not.
  bool MakeDrawingPen(DWORD style, int size, COLORREF color);
  // A new current colour reaches the pen, brush or stamp of the active tool.
  void ApplyColorToTool();
  // The cursor with that resource id as loaded, the system arrow for
  // kSystemArrowCursor, null when it is not there.
  HCURSOR CursorFor(int resourceId) const;
  // What the pointer is over, for the cursor of tool mode 0.
  void UpdateHover(POINT point);

  // ---- mouse tools ----
  // The image rectangle as the window shows it: shifted by the scroll position and
  // cut to the client area, in window coordinates.
  RECT VisibleImageRect() const;
  // A window point of a drag as a surface point: scrolled axes take the scroll
  // position and stay inside the image.
  POINT DragPoint(POINT window) const;
  void PressTool(POINT down);
  // One step of a drag; returns the part of the surfaces it changed when the tool
  // knows it, so that only that part is repainted, else nothing (all may have).
  std::optional<RECT> DragTool(POINT point);
  // Repaints the window where it shows that part of the surfaces.
  void RepaintSurfaceArea(const RECT& area);
  void ReleaseTool(POINT point, bool textWasShown);
  void ScrollAtEdge(POINT window);
  // The airbrush and the bitmap brush where the pointer is.
  void SprayAt(POINT pointer, int density);
  void StampAt(POINT pointer);
  // Copies that part of the snapshot DC (the drawing layer as the current history
  // level has it) back into the drawing layer.
  void RestoreFromSnapshot(const RECT& area);
  void CopyLayerToSnapshot();
  void DrawShapePreview(POINT point);
  void MoveSelection(POINT point);
  void OpenTextBox(POINT down, POINT up);
  // The release of the selection, cut and mosaic tools: what the drag covered.
  void CaptureSelection(POINT up);
  void CutToWholeImage(POINT up);
  void Pixelate(POINT up);
};
