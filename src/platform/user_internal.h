// Links between the USER translation units; not for the engine.
#pragma once

#include "platform/types.h"

namespace platform::user {

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
