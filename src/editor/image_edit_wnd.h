// The editor: the child window that fills the control and owns every piece of
// editing state. The control forwards each interface method to the public operation
// of the same name here.
#pragma once

#include <string>

#include "editor/history_level.h"
#include "editor/inserted_object.h"
#include "pixels/adjustment_settings.h"
#include "pixels/frame_piece.h"
#include "platform/platform.h"
#include "tools/text_edit_wnd.h"

class CImageEditCtrl;

// A memory DC with its own bitmap, the bitmap that was selected before it, and its
// extent (left and top are always 0).
struct Surface {
  HDC dc = nullptr;
  HBITMAP previousBitmap = nullptr;
  HBITMAP bitmap = nullptr;
  RECT rect{0, 0, 0, 0};
  int width() const { return rect.right - rect.left; }
  int height() const { return rect.bottom - rect.top; }
};

inline constexpr COLORREF kDrawingLayerKeyColor = 0x000B4313;
inline constexpr COLORREF kInitialBitmapBrushKeyColor = 0x00E9CE72;
inline constexpr int kCursorCount = 20;
inline constexpr UINT_PTR kSprayTimerId = 1;
inline constexpr UINT_PTR kAutoScrollTimerId = 2;

class CImageEditWnd : public CWnd {
 public:
  CImageEditWnd();
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

  // ---- surface operations ----
  // A new 24-bit bottom-up pixel buffer of the bitmap, or null. Width, height and
  // stride are stored as soon as the bitmap's header is known.
  BYTE* ReadSurfacePixels(HDC dc, HBITMAP bitmap, int* width, int* height, int* stride);
  // Replaces the bitmap's rows from the buffer and frees the buffer in every case.
  void WriteSurfacePixels(HDC dc, HBITMAP bitmap, BYTE* buffer);
  void CreateCompositionBuffer(int width, int height);
  void CreateDrawingLayer(int width, int height);
  void CreateImageSurface(int width, int height);
  void ResizeDrawingLayer(int width, int height, const RECT& dest, const RECT& src);
  void RebuildImageSurface();
  void CompositeDrawingLayer(HDC target);
  void TransparentBlit(HDC target, HBITMAP source, int x, int y, int width, int height, COLORREF key);
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

  // ---- view ----
  // Composes the picture as shown (image surface, then strokes) into the
  // composition buffer at surface coordinates; repaints and saves start from it.
  void ComposeView();
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

  // The control that owns this editor, for events.
  CImageEditCtrl* m_control = nullptr;

  // 1. window state
  bool m_windowCreated = false;
  bool m_surfacesPending = true;

  // 2. surfaces
  Surface m_composition;
  Surface m_drawingLayer;
  COLORREF m_drawingLayerKeyColor = kDrawingLayerKeyColor;
  Surface m_imageSurface;
  HBITMAP m_originalImage = nullptr;
  int m_originalWidth = 0;
  int m_originalHeight = 0;
  RECT m_imageRect{0, 0, 0, 0};
  int m_displayedWidth = 0;
  int m_displayedHeight = 0;
  double m_displayScale = 1.0;
  bool m_scalingAllowed = false;

  // 3. mouse and tool state
  bool m_panning = false;
  POINT m_panLastPoint{-1, -1};
  int m_toolMode = 0;
  int m_savedToolMode = 0;
  COLORREF m_color = 0;
  int m_penSize = 0;
  int m_shapeStyle = 0;
  int m_transparentColor = 0;
  int m_transparency = 0;
  int m_texture = 0;
  int m_toolWidth = 0;
  HBITMAP m_bitmapBrush = nullptr;
  COLORREF m_bitmapBrushKeyColor = kInitialBitmapBrushKeyColor;
  HGDIOBJ m_drawingLayerPreviousPen = nullptr;
  HGDIOBJ m_drawingLayerPreviousBrush = nullptr;
  int m_airbrushDensity = 64;
  UINT_PTR m_sprayTimerId = 0;

  // 4. text entry and selection
  CTextEditWnd m_textEdit;
  HBITMAP m_selectionBitmap = nullptr;
  int m_selectionX = 0;
  int m_selectionY = 0;
  int m_selectionWidth = 0;
  int m_selectionHeight = 0;
  COLORREF m_pickedColor = 0;
  WORD m_userLanguage = 0;
  LOGFONTA m_textFontDescription{};
  HFONT m_textFont = nullptr;
  COLORREF m_textColor = 0;
  COLORREF m_textBackgroundColor = 0xFFFFFF;
  HBRUSH m_textBackgroundBrush = nullptr;
  bool m_textBackgroundTransparent = false;

  // 5. stroke state
  bool m_buttonDown = false;
  UINT_PTR m_autoScrollTimerId = 0;
  POINT m_autoScrollPoint{0, 0};
  POINT m_downPoint{0, 0};
  POINT m_lastPoint{0, 0};
  POINT m_curvePoints[4]{};
  int m_curveStage = 0;

  // 6. history
  HDC m_snapshotDC = nullptr;
  HBITMAP m_snapshotPreviousBitmap = nullptr;
  HistoryLevel m_history[kHistoryLevels];
  int m_historyCount = 0;
  int m_historyIndex = -1;

  // 7. save size and frame
  int m_saveWidth = 0;
  int m_saveHeight = 0;
  int m_requestedImageWidth = 0;
  bool m_framePresent = false;
  FramePiece m_frame[kFramePieceCount];

  // 8. scrolling
  int m_viewWidth = 0;
  int m_viewHeight = 0;
  bool m_hScrollShown = false;
  int m_hScrollPos = 0;
  bool m_vScrollShown = false;
  int m_vScrollPos = 0;

  // 9. inserted objects
  CInsertedObject m_objects[kMaxInsertedObjects];
  int m_objectCount = 0;
  int m_draggedObject = -1;
  int m_dragLastX = -1;
  int m_dragLastY = -1;
  int m_selectedObject = -1;
  int m_zOrder[kMaxInsertedObjects + 1] = {0, 0, 0, 0, 0, 0};
  bool m_overObjectBody = false;
  bool m_resizingObject = false;
  bool m_overObjectGrip = false;

  // 10. adjustment settings
  AdjustmentSettings m_settings;

  // 11. selection box
  int m_selectionBoxX = 0;
  int m_selectionBoxY = 0;
  int m_selectionBoxWidth = 0;
  int m_selectionBoxHeight = 0;
  bool m_selectionBoxDragging = false;
  POINT m_selectionBoxLastPoint{0, 0};
  bool m_overSelectionBox = false;

  // 12. shell resources
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
  void ReleaseSurface(Surface& surface);
  // Steps 1 to 4 shared by the three surface creations; false when the surface has
  // no DC or the new bitmap could not be made.
  bool ReplaceSurfaceBitmap(Surface& surface, int width, int height);
  // Centres the original, scaled by the display scale, in a surface of that size
  // and stretches it there on white.
  void DrawScaledOriginal(const Surface& surface);
  // One scroll message on one axis; both axes share the arithmetic.
  void Scroll(int bar, UINT code, int position);
};
