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
#include "interface/control_events.h"
#include "platform/platform.h"

// The editor window is the control's one child, with this id: hosts reach it through
// the platform to send it window messages, such as those of its scroll bars.
inline constexpr int kEditorWindowId = 1;

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

  // ---- interface methods ----
  // Generated from the interface description (resources/image_edit_ctrl.odl); AboutBox
  // is the one the control answers itself, in every state.
#include "interface/control_methods.inc"

  // The Properties verb: the control's one property page, which has nothing to set.
  void OnProperties();

  // ---- events ----
  // Connects a sink; returns its cookie, 0 for a null sink. A sink stays connected
  // until Unadvise; the control does not own it.
  DWORD Advise(IEventSink* sink);
  BOOL Unadvise(DWORD cookie);
  // Calls every connected sink, in the order they connected, with ColorSelected and
  // the colour string. A sink may disconnect itself or others while it is called.
  void FireColorSelected(const std::string& color) override;

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

 private:
  void OnActivateInPlace();

  // The editor is reached only through the interface methods above.
  CImageEditWnd m_editor;

  std::map<DWORD, IEventSink*> sinks_;
  DWORD nextCookie_ = 1;
  bool uiActive_ = false;
  int createWidth_ = 0;
  int createHeight_ = 0;
};
