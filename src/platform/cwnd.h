// A small window framework over the USER layer: CWnd owns one window and receives
// its messages through virtual On... handlers, the way a framework message map would
// route them. Handlers that a class does not override run the default handling.
#pragma once

#include <utility>

#include "platform/types.h"
#include "platform/user.h"

class CWnd {
 public:
  CWnd() = default;
  virtual ~CWnd();
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  HWND m_hWnd = nullptr;
  HWND GetSafeHwnd() const { return m_hWnd; }

  // Creates the window: runs PreCreateWindow, creates the window as a child of
  // `parent` (which must have a window), attaches it to this object and sends
  // WM_CREATE, then WM_SIZE with the client size. A WM_CREATE handler that returns -1
  // destroys the window and Create returns FALSE.
  BOOL Create(LPCSTR className, LPCSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id);
  // The same for a window whose parent is known only by handle (the host window).
  BOOL CreateInParent(LPCSTR className, LPCSTR windowName, DWORD style, const RECT& rect, HWND parent,
                      UINT id);
  BOOL DestroyWindow();

  virtual BOOL PreCreateWindow(CREATESTRUCTA& cs);
  // Key and mouse messages pass through this before delivery; true stops them.
  virtual BOOL PreTranslateMessage(MSG* msg);
  // Routes a message to its handler; the default handling for the rest.
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  // The default handling of the message being processed now.
  LRESULT Default();

  // Handlers. Each default runs Default() (the window's default processing).
  virtual int OnCreate(LPCREATESTRUCTA cs);
  virtual void OnDestroy();
  virtual void OnClose();
  virtual void OnSize(UINT type, int cx, int cy);
  virtual void OnPaint();
  // The frame and scroll bars; the default draws them as the system does.
  virtual void OnNcPaint();
  virtual BOOL OnEraseBkgnd(HDC hdc);
  virtual void OnLButtonDown(UINT flags, POINT point);
  virtual void OnLButtonUp(UINT flags, POINT point);
  virtual void OnLButtonDblClk(UINT flags, POINT point);
  virtual void OnRButtonDown(UINT flags, POINT point);
  virtual void OnRButtonUp(UINT flags, POINT point);
  virtual void OnMouseMove(UINT flags, POINT point);
  virtual void OnKeyDown(UINT virtualKey, UINT repeatCount, UINT flags);
  virtual void OnKeyUp(UINT virtualKey, UINT repeatCount, UINT flags);
  virtual void OnChar(UINT character, UINT repeatCount, UINT flags);
  virtual void OnTimer(UINT_PTR id);
  virtual void OnHScroll(UINT code, UINT pos, HWND scrollBar);
  virtual void OnVScroll(UINT code, UINT pos, HWND scrollBar);
  virtual BOOL OnSetCursor(HWND hwnd, UINT hitTest, UINT message);
  virtual int OnMouseActivate(HWND topParent, UINT hitTest, UINT message);
  virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
  virtual void OnSetFocus(HWND oldFocus);
  virtual void OnKillFocus(HWND newFocus);
  // Sent by TrackPopupMenu before the menu is shown, so the owner can update items.
  virtual void OnInitMenuPopup(HMENU popup, UINT index, BOOL systemMenu);

  // Conveniences over the USER calls for this window.
  BOOL ShowWindow(int command) { return ::ShowWindow(m_hWnd, command); }
  BOOL IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
  void GetClientRect(RECT* rect) const { ::GetClientRect(m_hWnd, rect); }
  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return ::SendMessageA(m_hWnd, message, wParam, lParam);
  }
  BOOL RedrawWindow(const RECT* rect = nullptr, HRGN region = nullptr,
                    UINT flags = RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW) {
    return ::RedrawWindow(m_hWnd, rect, region, flags);
  }
  void Invalidate(BOOL erase = TRUE) { ::InvalidateRect(m_hWnd, nullptr, erase); }
  UINT_PTR SetTimer(UINT_PTR id, UINT milliseconds, void* callback) {
    return ::SetTimer(m_hWnd, id, milliseconds, callback);
  }
  BOOL KillTimer(UINT_PTR id) { return ::KillTimer(m_hWnd, id); }
  HWND SetCapture() { return ::SetCapture(m_hWnd); }
  HDC GetDC() { return ::GetDC(m_hWnd); }
  int ReleaseDC(HDC hdc) { return ::ReleaseDC(m_hWnd, hdc); }
  HWND SetFocus() { return ::SetFocus(m_hWnd); }

  // The wait cursor shown during long work.
  void BeginWaitCursor();
  void EndWaitCursor();

  // Called by the USER layer: delivers one message to this object.
  LRESULT Dispatch(UINT message, WPARAM wParam, LPARAM lParam);
  // Lets this object stand for a window made elsewhere (by CreateWindowExW). Its
  // messages still go to its class's procedure, not to this object's handlers. False
  // when the object already has a window or the handle names none.
  BOOL Attach(HWND hwnd);
  // Gives the window up without destroying it; the USER layer calls it when the window
  // of an object that receives its messages is gone.
  HWND Detach() { return std::exchange(m_hWnd, nullptr); }

 private:
  struct CurrentMessage {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
  };
  CurrentMessage current_;
};

// A CWnd that stands for an edit control ("EDIT"), with the framework's shorthands for
// the messages that select and clear its text.
class CEdit : public CWnd {
 public:
  // Selects from `start` to `end` (0, -1: everything) and, unless told not to, scrolls
  // the caret into view.
  void SetSel(int start, int end, BOOL noScroll = FALSE);
  // Deletes the selection.
  void Clear() { SendMessage(WM_CLEAR); }
};

// The framework's message box, captioned with the module's title (its string 57344).
int AfxMessageBox(LPCSTR text, UINT type = MB_OK, UINT helpId = 0);
// Registers a window class; false when the name is taken or the class is invalid.
BOOL AfxRegisterClass(WNDCLASSA* windowClass);
// The class every window of the control uses under its own name: the given class
// style, the default window procedure, the arrow cursor and no background brush.
// Registers it the first time and points the creation structure at it.
void UseWindowClass(CREATESTRUCTA& cs, LPCSTR className, UINT classStyle);
