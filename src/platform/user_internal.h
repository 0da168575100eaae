// Links between the USER translation units; not for the engine.
#pragma once

#include <string>
#include <string_view>

#include "platform/kernel.h"
#include "platform/types.h"
#include "platform/user.h"
#include "platform/window_tree.h"

class CWnd;

namespace platform::user {

// A child window to make: its messages go to `object` when there is one, else to its
// class's procedure (a class not registered has none: the default procedure).
struct NewWindow {
  HWND parent = nullptr;
  std::string className;
  std::u16string title;
  DWORD style = 0;
  UINT id = 0;
  RECT rect{};  // in the parent's client coordinates
  CWnd* object = nullptr;
};
// Makes the window under its live parent, sends WM_CREATE with `createStruct` and then
// WM_SIZE. Null when the parent is gone or WM_CREATE refuses with -1 (the window is
// then destroyed).
HWND CreateChildWindow(const NewWindow& spec, LPARAM createStruct);
// A DC on the host frame with its origin at `origin` and every write clipped to `clip`,
// both in the window's host's coordinates; null without a host frame.
HDC HostFrameDC(const window::Window& window, POINT origin, const RECT& clip);
// DefWindowProcA's WM_NCPAINT: the sizing frame and the scroll bars.
void DrawNonClient(HWND hwnd);
// What lies under `point` (the window's client coordinates) outside its client area:
// the frame's sizing codes, then the scroll bars.
UINT NonClientHitTest(const window::Window& window, POINT point);
// DefWindowProcA's text messages: WM_SETTEXT, WM_GETTEXT and WM_GETTEXTLENGTH on the
// window's title.
LRESULT DefaultTextMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
// WM_GETTEXT's answer: at most `size` - 1 units of `text` and a terminating zero into
// the caller's buffer; the units copied.
LRESULT CopyTextOut(std::u16string_view text, WPARAM size, LPARAM buffer);
// UTF-8 (the ANSI code page) and UTF-16; malformed input becomes U+FFFD.
std::u16string WideFromUtf8(std::string_view text);
std::string Utf8FromWide(std::u16string_view text);
// The built-in class "EDIT".
window::WindowClass EditClass();

// A destroyed window takes the focus and the capture with it (no messages).
void ForgetFocusAndCapture(HWND hwnd);
// Sets or clears style bits; a changed client size sends WM_SIZE.
void SetStyleBits(HWND hwnd, DWORD bits, bool on);
void KillWindowTimers(HWND hwnd);
// A timer the platform keeps on a window for itself (the scroll bars' repeat): when
// due it calls `proc` instead of sending WM_TIMER, so the window never sees it. Its
// ids are apart from the window's own; it dies with the window.
using InternalTimerProc = void (*)(HWND hwnd);
void SetInternalTimer(HWND hwnd, UINT_PTR id, UINT milliseconds, InternalTimerProc proc);
void KillInternalTimer(HWND hwnd, UINT_PTR id);
int LiveTimers();
int LiveMenus();
int LiveCursors();
// DefWindowProcA's WM_SETCURSOR: the class cursor in the client area.
LRESULT DefaultSetCursor(HWND hwnd, WPARAM wParam, LPARAM lParam);
// The screen is the most recently created host window's client area.
void SetScreenSize(int width, int height);
// A registered cursor resource and its hot spot.
bool FindCursorResource(int id, POINT* hotSpot);
// Draws a window's shown scroll bars (and the corner between two) into its host frame.
void RedrawScrollBars(HWND hwnd);
// The scroll bar gesture: a left press on a window's standard bar (`bar` SB_HORZ or
// SB_VERT, `point` in the window's coordinates) starts one; while it lasts every mouse
// message (`point` in host coordinates) belongs to it and ScrollBarMouse returns true.
void PressScrollBar(HWND hwnd, int bar, POINT point);
bool ScrollBarMouse(UINT message, POINT point);
// Paints everything pending in every host tree (after each timer message).
void FlushAllPaint();

}  // namespace platform::user
