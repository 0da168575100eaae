// The control object: what a host creates, sizes and scripts. It owns the editor and
// forwards every method to it once the editor window exists.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "control/variant.h"
#include "editor/editor_events.h"
#include "editor/editor_state.h"
#include "editor/image_edit_wnd.h"
#include "platform/platform.h"

// Interface identifiers a host may ask the control for. The control implements all
// but the last two (a control is neither a storage nor a class factory).
enum class InterfaceId {
  IUnknown,
  IDispatch,
  DImageEditCtrl,
  IObjectSafety,
  IConnectionPointContainer,
  IOleControl,
  IOleObject,
  IPersistPropertyBag,
  IStorage,
  IClassFactory
};

inline constexpr DWORD INTERFACESAFE_FOR_UNTRUSTED_CALLER = 1;
inline constexpr DWORD INTERFACESAFE_FOR_UNTRUSTED_DATA = 2;

// The editor window is the control's child with this id: hosts reach it through the
// platform (GetDlgItem) to send it window messages, such as those of its scroll bars.
inline constexpr int kEditorWindowId = 1;

inline constexpr int DISPID_COLORSELECTED = 1;
inline constexpr int DISPID_IMAGESCALED = 2;

// The event's name as a scripting host knows it, or null for a DISPID that is no event.
inline const char* EventName(int dispid) {
  return dispid == DISPID_COLORSELECTED ? "ColorSelected" : dispid == DISPID_IMAGESCALED ? "ImageScaled" : nullptr;
}

// A connected sink of the event interface.
class IEventSink {
 public:
  virtual ~IEventSink() = default;
  virtual void Invoke(int dispid, const std::vector<Variant>& args) = 0;
};

class CImageEditCtrl : public CWnd, public EditorEvents {
 public:
  CImageEditCtrl();
  ~CImageEditCtrl() override;

  // In-place activation by the host: creates the control's window in `parent` at the
  // given size (WM_CREATE then creates the editor window).
  BOOL CreateControl(HWND parent, int width, int height);

  // ---- dispatch methods ----
  void SetImage(LPCSTR lpszFilePath);
  void SaveEditedBitmap(LPCSTR lpszFilePath);
  Variant SetColor(LPCSTR lpszColor);
  Variant GetColor();
  void SelectColor();
  void FillWithSelectedColor();
  void SetEraser(int nEraserSize);
  void SetPen(int nPenSize);
  void SetBrush(int nBrushSize);
  void SetAirBrush(int nAirBrushSize);
  void SetBitmapBrush(LPCSTR lpszFilePath);
  void SetShape(int nShapeStyle);
  void EnterText();
  Variant SetTextFont(LPCSTR lpszFont);
  Variant SetTextBackgroundColor(LPCSTR lpszColor);
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
  void GrayImage(long bGraying);
  void BlockImage();
  void CheckImage();
  void WaterDropImage();
  void HeartImage();
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
  void InvertImage(long bInverting);
  void BlendImage(LPCSTR lpszFilePath, int nAlpha);
  void WhitenImage(int nStep);
  void SetNothing();
  void SetSelectionBox(int nWidth, int nHeight);
  void SaveSelectionBoxBitmap(LPCSTR lpcFilePath);
  void EnableShortcutMenu(long bShortcutMenu);
  void EnableVerbose(long bVerbose);
  void AboutBox();

  // ---- events ----
  // Connects a sink; returns its cookie, 0 for a null sink. A sink stays connected
  // until Unadvise; the control does not own it.
  DWORD Advise(IEventSink* sink);
  BOOL Unadvise(DWORD cookie);
  // Calls every connected sink, in the order they connected, with ColorSelected and
  // the colour string. A sink may disconnect itself or others while it is called.
  void FireColorSelected(const std::string& color) override;

  // ---- safety ----
  HRESULT QueryInterface(InterfaceId iid);
  HRESULT GetInterfaceSafetyOptions(InterfaceId iid, DWORD* supported, DWORD* enabled);
  HRESULT SetInterfaceSafetyOptions(InterfaceId iid, DWORD mask, DWORD enabled);

  // ---- window ----
  BOOL PreCreateWindow(CREATESTRUCTA& cs) override;
  BOOL PreTranslateMessage(MSG* msg) override;
  int OnCreate(LPCREATESTRUCTA cs) override;
  int OnMouseActivate(HWND topParent, UINT hitTest, UINT message) override;
  void OnSetFocus(HWND oldFocus) override;
  void OnPaint() override;
  // Paints the control's own area (white) and has the editor repaint itself.
  void OnDraw(HDC hdc, const RECT& bounds);

  // UI-active: activated in place with its user interface (it has the focus).
  bool IsUIActive() const { return uiActive_; }

  // ---- what hosts read ----
  // The editor's state as one value.
  EditorState State() const { return m_editor.State(); }
  // The bitmap of one of the editor's surfaces (null when there is none), for hosts that
  // write it out as a picture. A repaint composes only what the window shows, so the
  // composition buffer is composed whole first.
  HBITMAP SurfaceBitmap(SurfaceName surface);

  CImageEditWnd m_editor;

 private:
  // The gate of every forwarding method: the editor operation runs only once the
  // editor window exists; before that the result is the empty one (nothing, FALSE).
  template <typename R, typename... Params, typename... Args>
  R Forward(R (CImageEditWnd::*operation)(Params...), Args... args) {
    if (!m_editor.m_windowCreated) return R();
    return (m_editor.*operation)(args...);
  }
  // The same for the operations with a string result: null before the editor exists.
  template <typename... Params, typename... Args>
  Variant ForwardString(std::string (CImageEditWnd::*operation)(Params...), Args... args) {
    if (!m_editor.m_windowCreated) return Variant::Null();
    return Variant::String((m_editor.*operation)(args...));
  }
  void OnActivateInPlace();

  std::map<DWORD, IEventSink*> sinks_;
  DWORD nextCookie_ = 1;
  bool uiActive_ = false;
  int createWidth_ = 0;
  int createHeight_ = 0;
};
