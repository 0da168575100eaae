// Links between the USER translation units; not for the engine.
#pragma once

#include "platform/types.h"

namespace platform::user {

// A destroyed window takes the focus and the capture with it (no messages).
void ForgetFocusAndCapture(HWND hwnd);
// Sets or clears style bits; a changed client size sends WM_SIZE.
void SetStyleBits(HWND hwnd, DWORD bits, bool on);
void KillWindowTimers(HWND hwnd);
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
// Paints everything pending in every host tree (after each timer message).
void FlushAllPaint();

}  // namespace platform::user
