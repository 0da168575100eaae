// USER over the software raster: a window tree with client rectangles and sizing
// frames, message delivery to CWnd-derived objects and to class procedures, painting
// into the host's frame, timers on a host-driven clock, mouse capture, cursor
// clipping, key state, cursors, popup menus, scroll-bar geometry, the multi-line edit
// control, message boxes and the colour and font dialogs. Anything that needs a person
// is answered through the host interface (platform/host.h).
//
// Every window is a Unicode window: the text messages (WM_SETTEXT, WM_GETTEXT,
// WM_GETTEXTLENGTH, EM_REPLACESEL) reach window procedures with UTF-16 text and
// lengths in UTF-16 units. SendMessageA converts them from and to UTF-8, the ANSI code
// page, as Windows does when an ANSI caller talks to a Unicode window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/kernel.h"
#include "platform/types.h"

// ---- messages ----
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_SETCURSOR = 0x0020;
inline constexpr UINT WM_MOUSEACTIVATE = 0x0021;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_NCPAINT = 0x0085;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_HSCROLL = 0x0114;
inline constexpr UINT WM_VSCROLL = 0x0115;
inline constexpr UINT WM_INITMENUPOPUP = 0x0117;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_GETFONT = 0x0031;
// edit-control messages
inline constexpr UINT EM_GETSEL = 0x00B0;
inline constexpr UINT EM_SETSEL = 0x00B1;
inline constexpr UINT EM_SCROLLCARET = 0x00B7;
inline constexpr UINT EM_REPLACESEL = 0x00C2;
inline constexpr UINT EM_LIMITTEXT = 0x00C5;
inline constexpr UINT WM_CLEAR = 0x0303;

// mouse-message key flags
inline constexpr UINT MK_LBUTTON = 0x0001;
inline constexpr UINT MK_RBUTTON = 0x0002;
inline constexpr UINT MK_SHIFT = 0x0004;
inline constexpr UINT MK_CONTROL = 0x0008;

// virtual keys
inline constexpr int VK_BACK = 0x08;
inline constexpr int VK_TAB = 0x09;
inline constexpr int VK_RETURN = 0x0D;
inline constexpr int VK_SHIFT = 0x10;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_ESCAPE = 0x1B;
inline constexpr int VK_PRIOR = 0x21;
inline constexpr int VK_NEXT = 0x22;
inline constexpr int VK_END = 0x23;
inline constexpr int VK_HOME = 0x24;
inline constexpr int VK_LEFT = 0x25;
inline constexpr int VK_UP = 0x26;
inline constexpr int VK_RIGHT = 0x27;
inline constexpr int VK_DOWN = 0x28;
inline constexpr int VK_DELETE = 0x2E;
inline constexpr int VK_LBUTTON = 0x01;
inline constexpr int VK_RBUTTON = 0x02;

// window styles
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_THICKFRAME = 0x00040000;
inline constexpr DWORD WS_HSCROLL = 0x00100000;
inline constexpr DWORD WS_VSCROLL = 0x00200000;
// edit-control styles
inline constexpr DWORD ES_MULTILINE = 0x0004;
inline constexpr DWORD ES_AUTOVSCROLL = 0x0040;
inline constexpr DWORD ES_AUTOHSCROLL = 0x0080;
inline constexpr DWORD ES_WANTRETURN = 0x1000;

inline constexpr UINT CS_VREDRAW = 0x0001;
inline constexpr UINT CS_HREDRAW = 0x0002;
inline constexpr UINT CS_DBLCLKS = 0x0008;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOW = 5;

inline constexpr UINT RDW_INVALIDATE = 0x0001;
inline constexpr UINT RDW_ERASE = 0x0004;
inline constexpr UINT RDW_UPDATENOW = 0x0100;

inline constexpr UINT SIZE_RESTORED = 0;

inline constexpr int MA_ACTIVATE = 1;
inline constexpr int MA_ACTIVATEANDEAT = 2;
inline constexpr int MA_NOACTIVATE = 3;
inline constexpr int MA_NOACTIVATEANDEAT = 4;

// hit-test codes (WM_SETCURSOR, WM_MOUSEACTIVATE)
inline constexpr UINT HTNOWHERE = 0;
inline constexpr UINT HTCLIENT = 1;
inline constexpr UINT HTHSCROLL = 6;
inline constexpr UINT HTVSCROLL = 7;
inline constexpr UINT HTLEFT = 10;
inline constexpr UINT HTRIGHT = 11;
inline constexpr UINT HTTOP = 12;
inline constexpr UINT HTTOPLEFT = 13;
inline constexpr UINT HTTOPRIGHT = 14;
inline constexpr UINT HTBOTTOM = 15;
inline constexpr UINT HTBOTTOMLEFT = 16;
inline constexpr UINT HTBOTTOMRIGHT = 17;

// scroll bars
inline constexpr int SB_HORZ = 0;
inline constexpr int SB_VERT = 1;
inline constexpr int SB_BOTH = 3;
inline constexpr UINT SB_LINEUP = 0;
inline constexpr UINT SB_LINEDOWN = 1;
inline constexpr UINT SB_PAGEUP = 2;
inline constexpr UINT SB_PAGEDOWN = 3;
inline constexpr UINT SB_THUMBPOSITION = 4;
inline constexpr UINT SB_THUMBTRACK = 5;
inline constexpr UINT SB_TOP = 6;
inline constexpr UINT SB_BOTTOM = 7;
inline constexpr UINT SB_ENDSCROLL = 8;
inline constexpr UINT SIF_RANGE = 0x0001;
inline constexpr UINT SIF_PAGE = 0x0002;
inline constexpr UINT SIF_POS = 0x0004;
inline constexpr UINT SIF_DISABLENOSCROLL = 0x0008;
inline constexpr UINT SIF_TRACKPOS = 0x0010;
inline constexpr UINT SIF_ALL = 0x0017;
inline constexpr int SCROLLBAR_THICKNESS = 17;

struct SCROLLINFO {
  UINT cbSize;
  UINT fMask;
  int nMin;
  int nMax;
  UINT nPage;
  int nPos;
  int nTrackPos;
};

// message boxes
inline constexpr UINT MB_OK = 0x0000;
inline constexpr UINT MB_ICONHAND = 0x0010;
inline constexpr UINT MB_ICONERROR = MB_ICONHAND;
inline constexpr UINT MB_ICONEXCLAMATION = 0x0030;
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

// menus
inline constexpr UINT MF_STRING = 0x0000;
inline constexpr UINT MF_ENABLED = 0x0000;
inline constexpr UINT MF_UNCHECKED = 0x0000;
inline constexpr UINT MF_GRAYED = 0x0001;
inline constexpr UINT MF_DISABLED = 0x0002;
inline constexpr UINT MF_CHECKED = 0x0008;
inline constexpr UINT MF_POPUP = 0x0010;
inline constexpr UINT MF_SEPARATOR = 0x0800;
inline constexpr UINT MF_BYCOMMAND = 0x0000;
inline constexpr UINT MF_BYPOSITION = 0x0400;
inline constexpr UINT MIIM_STATE = 0x0001;
inline constexpr UINT MIIM_ID = 0x0002;
inline constexpr UINT MIIM_SUBMENU = 0x0004;
inline constexpr UINT MIIM_TYPE = 0x0010;
inline constexpr UINT MFT_STRING = 0x0000;
inline constexpr UINT MFT_SEPARATOR = 0x0800;
inline constexpr UINT MFS_GRAYED = 0x0003;
inline constexpr UINT MFS_CHECKED = 0x0008;
inline constexpr UINT TPM_LEFTALIGN = 0x0000;
inline constexpr UINT TPM_RIGHTBUTTON = 0x0002;
inline constexpr UINT TPM_RETURNCMD = 0x0100;

struct MENUITEMINFOA {
  UINT cbSize;
  UINT fMask;
  UINT fType;
  UINT fState;
  UINT wID;
  HMENU hSubMenu;
  HBITMAP hbmpChecked;
  HBITMAP hbmpUnchecked;
  std::uintptr_t dwItemData;
  LPSTR dwTypeData;
  UINT cch;
};

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
};

struct CREATESTRUCTA {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCSTR lpszName;
  LPCSTR lpszClass;
  DWORD dwExStyle;
};
using LPCREATESTRUCTA = CREATESTRUCTA*;
// What WM_CREATE carries for a window made by CreateWindowExW.
struct CREATESTRUCTW {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  const WCHAR* lpszName;
  const WCHAR* lpszClass;
  DWORD dwExStyle;
};

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);
struct WNDCLASSA {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  void* hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
};

inline const LPCSTR IDC_ARROW = reinterpret_cast<LPCSTR>(32512);
inline const LPCSTR IDC_WAIT = reinterpret_cast<LPCSTR>(32514);
inline LPCSTR MAKEINTRESOURCEA(int id) {
  return reinterpret_cast<LPCSTR>(static_cast<std::uintptr_t>(id & 0xFFFF));
}

// ---- windows ----
class CWnd;
// A child window of a registered or built-in class ("EDIT", the multi-line edit
// control). Every window lives in a host's tree, so `parent` must be a live window;
// the id of a child window comes as `menu`. Sends WM_CREATE and then WM_SIZE. Null when
// the class is unknown, the parent is missing or WM_CREATE refuses.
HWND CreateWindowExW(DWORD exStyle, const WCHAR* className, const WCHAR* windowName, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID param);
BOOL IsWindow(HWND hwnd);
BOOL IsWindowVisible(HWND hwnd);
BOOL ShowWindow(HWND hwnd, int command);
BOOL DestroyWindow(HWND hwnd);
HWND GetParent(HWND hwnd);
inline constexpr UINT GW_CHILD = 5;
// GW_CHILD only: the child at the top of the z-order, null when there is none.
HWND GetWindow(HWND hwnd, UINT command);
// The child of `parent` (not a deeper descendant) created with that id; the topmost
// when several were. Null when there is none.
HWND GetDlgItem(HWND parent, int id);
CWnd* WindowObject(HWND hwnd);
BOOL GetClientRect(HWND hwnd, RECT* rect);
// Whether the point lies in the rectangle: left and top edges in, right and bottom out.
BOOL PtInRect(const RECT* rect, POINT point);
// The overlap of two rectangles; an empty overlap gives (0, 0, 0, 0) and FALSE.
BOOL IntersectRect(RECT* dst, const RECT* a, const RECT* b);
BOOL GetWindowRect(HWND hwnd, RECT* rect);  // frame included, in the root window's coordinates
BOOL MoveWindow(HWND hwnd, int x, int y, int width, int height, BOOL repaint);
LRESULT SendMessageA(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT SendMessageW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT DefWindowProcA(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
HWND SetFocus(HWND hwnd);
HWND GetFocus();
BOOL GetClassInfoA(HINSTANCE instance, LPCSTR className, WNDCLASSA* out);
BOOL RegisterClassA(const WNDCLASSA* windowClass);
// The window's text (an edit control's content): at most `size` - 1 units and a
// terminating zero; returns the units copied.
int GetWindowTextW(HWND hwnd, WCHAR* text, int size);
int GetWindowTextLengthW(HWND hwnd);
BOOL SetWindowTextW(HWND hwnd, const WCHAR* text);

// ---- painting ----
HDC GetDC(HWND hwnd);  // null hwnd: the screen DC
// A DC over the whole window, frame included, with its origin at the window's top-left
// corner; released with ReleaseDC.
HDC GetWindowDC(HWND hwnd);
int ReleaseDC(HWND hwnd, HDC hdc);
HDC BeginPaint(HWND hwnd, PAINTSTRUCT* paint);
BOOL EndPaint(HWND hwnd, const PAINTSTRUCT* paint);
BOOL InvalidateRect(HWND hwnd, const RECT* rect, BOOL erase);
BOOL UpdateWindow(HWND hwnd);
BOOL RedrawWindow(HWND hwnd, const RECT* rect, HRGN region, UINT flags);

// ---- timers (virtual clock advanced by the host) ----
UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT milliseconds, void* callback);
BOOL KillTimer(HWND hwnd, UINT_PTR id);

// ---- mouse, cursor, keyboard ----
HWND SetCapture(HWND hwnd);
BOOL ReleaseCapture();
HWND GetCapture();
BOOL ClipCursor(const RECT* rect);  // screen (root) coordinates; null frees the cursor
BOOL GetClipCursor(RECT* rect);
BOOL GetCursorPos(POINT* point);
BOOL ClientToScreen(HWND hwnd, POINT* point);
BOOL ScreenToClient(HWND hwnd, POINT* point);
short GetKeyState(int virtualKey);
HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name);
HCURSOR SetCursor(HCURSOR cursor);
BOOL DestroyCursor(HCURSOR cursor);

// ---- scroll bars (geometry; shown bars take client area) ----
BOOL ShowScrollBar(HWND hwnd, int bar, BOOL show);
int SetScrollInfo(HWND hwnd, int bar, const SCROLLINFO* info, BOOL redraw);
BOOL GetScrollInfo(HWND hwnd, int bar, SCROLLINFO* info);
int SetScrollPos(HWND hwnd, int bar, int pos, BOOL redraw);
int GetScrollPos(HWND hwnd, int bar);

// ---- menus ----
HMENU CreatePopupMenu();
BOOL DestroyMenu(HMENU menu);
BOOL InsertMenuItemA(HMENU menu, UINT item, BOOL byPosition, const MENUITEMINFOA* info);
BOOL AppendMenuA(HMENU menu, UINT flags, UINT_PTR id, LPCSTR text);
UINT EnableMenuItem(HMENU menu, UINT item, UINT enable);
DWORD CheckMenuItem(HMENU menu, UINT item, UINT check);
int GetMenuItemCount(HMENU menu);
BOOL TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int reserved, HWND owner, const RECT* rect);

// ---- message boxes ----
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);

// ---- the colour dialog ----
inline constexpr DWORD CC_RGBINIT = 0x0001;
inline constexpr DWORD CC_ANYCOLOR = 0x0100;
struct CHOOSECOLORA {
  DWORD lStructSize;
  HWND hwndOwner;
  HWND hInstance;
  COLORREF rgbResult;
  COLORREF* lpCustColors;  // 16 entries, read and written by the dialog
  DWORD Flags;
  LPARAM lCustData;
  void* lpfnHook;
  LPCSTR lpTemplateName;
};
// Shown by the host. Starts at rgbResult with CC_RGBINIT (else black); TRUE with the
// chosen colour in rgbResult, FALSE when cancelled or without a custom-colour table.
BOOL ChooseColorA(CHOOSECOLORA* choose);

// ---- the font dialog ----
inline constexpr DWORD CF_SCREENFONTS = 0x0001;
inline constexpr DWORD CF_INITTOLOGFONTSTRUCT = 0x0040;
inline constexpr DWORD CF_EFFECTS = 0x0100;
struct CHOOSEFONTA {
  DWORD lStructSize;
  HWND hwndOwner;
  HDC hDC;
  LOGFONTA* lpLogFont;  // read with CF_INITTOLOGFONTSTRUCT, written when a font is chosen
  INT iPointSize;       // tenths of a point, set when a font is chosen
  DWORD Flags;
  COLORREF rgbColors;  // read and written with CF_EFFECTS
  LPARAM lCustData;
  void* lpfnHook;
  LPCSTR lpTemplateName;
  HINSTANCE hInstance;
  LPSTR lpszStyle;
  WORD nFontType;
  INT nSizeMin;
  INT nSizeMax;
};
// Shown by the host. TRUE with the chosen font in *lpLogFont (and its colour with
// CF_EFFECTS); FALSE when cancelled or without a font description to write.
BOOL ChooseFontA(CHOOSEFONTA* choose);

// The module's instance handle, for class registration and resources.
HINSTANCE AfxGetInstanceHandle();

namespace platform {

// A top-level host window of the given client size: the root of a window tree whose
// frame the host presents. Destroyed with DestroyWindow.
HWND CreateHostWindow(int width, int height);
// Gives the host window a new client size, as a person resizing a top-level window
// would: a new frame (the screen is taken to be the host window), repainted whole. The
// host's children keep their place and size. False, changing nothing, for a size below
// 1 x 1 or when the new frame cannot be had.
bool ResizeHostWindow(HWND host, int width, int height);

// Host input, in the host window's client coordinates. Mouse messages go to the
// capture window or to the visible child under the point, in its client coordinates;
// the point is first confined to the cursor clip rectangle.
void MouseInput(HWND host, UINT message, int x, int y);
// Key down or up with the virtual key; goes through the focus window's pre-translate
// chain (CWnd::PreTranslateMessage from the focus up to the root) before delivery.
// True when a window of the chain took the key, so the host must not act on it. A key
// press that no window took and that types a control character (Backspace, Tab,
// Return, Escape) is followed by that character, as the message loop's translation
// would send it; other characters come from CharInput.
bool KeyInput(HWND host, UINT message, int virtualKey, bool repeat = false);
// A typed character, to the focus window: WM_CHAR with the UTF-16 unit, or two for a
// character beyond U+FFFF. A value beyond U+10FFFF is ignored.
void CharInput(HWND host, unsigned int codePoint);
// Sets what GetKeyState reports for a key (down or up).
void SetKeyDown(int virtualKey, bool down);

// Paints every pending update of the host's window tree and presents the frame if it
// changed. Hosts call it after each input; painting otherwise waits for UpdateWindow
// or RedrawWindow with RDW_UPDATENOW.
void FlushPaint(HWND host);

// Virtual clock: advance by `milliseconds`, firing due timers in time order.
void AdvanceClock(unsigned milliseconds);
unsigned long long ClockNow();

// The host window's composed frame.
HBITMAP HostFrame(HWND host);
// The part of the host's frame (frame coordinates; empty when none) that was drawn on
// since the last call, all of it when the frame is new (made, or the host resized):
// a host that keeps a copy of the frame need look nowhere else for what changed.
RECT TakeHostFrameDrawn(HWND host);

// A cursor resource's picture: top-down rows of 0xAARRGGBB (alpha 0 = transparent).
struct CursorArtwork {
  int width = 0;
  int height = 0;
  POINT hotSpot{0, 0};
  std::vector<std::uint32_t> pixels;
};
// False when the resource id has no picture.
bool GetCursorArtwork(int resourceId, CursorArtwork* artwork);

// The module's cursor resources: LoadCursorA(instance, MAKEINTRESOURCEA(id)) finds
// only registered ids (the resources register theirs at start-up), with the picture's
// hot spot.
void RegisterCursorResource(int id, CursorArtwork artwork);
// What a cursor shows: its resource id, 0 for the arrow, 32514 for the wait cursor,
// -1 for no cursor or an unknown handle; and its hot spot.
int CursorResourceId(HCURSOR cursor);
POINT CursorHotSpot(HCURSOR cursor);

// One item of a menu as a host shows it.
struct MenuItem {
  std::string text;
  UINT id = 0;
  bool separator = false;
  bool grayed = false;
  bool checked = false;
  HMENU submenu = nullptr;
};
std::vector<MenuItem> MenuItems(HMENU menu);

struct WindowCounts {
  int windows = 0;
  int menus = 0;
  int cursors = 0;
  int timers = 0;
};
WindowCounts LiveWindowObjects();

}  // namespace platform
