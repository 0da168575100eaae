// The window tree behind the USER calls: one record per live window, looked up by
// handle. Handles are never reused, so a stale handle simply finds nothing.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/types.h"
#include "platform/user.h"

namespace platform::window {

// One standard scroll bar of a window: its range, page and position; while its thumb
// is dragged, the tracked position, at which the thumb is drawn; while an arrow is
// held down under the cursor, which one (-1 back, 1 forward, 0 none), drawn pressed.
struct ScrollBarState {
  int min = 0;
  int max = 0;
  UINT page = 0;
  int pos = 0;
  int trackPos = 0;
  bool tracking = false;
  int pressedArrow = 0;
};

// What a built-in window class keeps for each of its windows (its window words on
// Windows); it goes with the window.
struct ClassData {
  virtual ~ClassData() = default;
};

struct WindowClass {
  std::string name;
  UINT style = 0;
  WNDPROC proc = nullptr;
  HCURSOR cursor = nullptr;
  HBRUSH background = nullptr;
};

struct Window {
  HWND handle = nullptr;
  HWND parent = nullptr;       // null for a host root
  std::vector<HWND> children;  // bottom to top: later siblings lie above earlier ones
  WindowClass windowClass;
  std::u16string title;
  DWORD style = 0;
  UINT id = 0;
  RECT rect{};  // the whole window, frame included, in the parent's client coordinates
                // (a host root: 0,0,width,height)
  CWnd* object = nullptr;
  std::unique_ptr<ClassData> classData;
  HBITMAP frame = nullptr;    // a host root's composed frame
  bool frameChanged = false;  // a host root's frame holds pixels not yet presented
  RECT frameDrawn{};          // what of a host root's frame DCs drew on since it was taken
  RECT update{};              // pending invalid area in client coordinates; empty when none
  bool erasePending = false;
  bool nonClientPending = false;  // its frame and scroll bars need drawing in the next paint pass
  ScrollBarState horizontal;
  ScrollBarState vertical;
  bool destroying = false;
};

Window* Find(HWND hwnd);
// Creates a window record and links it under `parent` (null: a new host root).
Window& Add(HWND parent, const WindowClass& windowClass, const std::u16string& title, DWORD style, UINT id,
            const RECT& rect);
// Unlinks and forgets a window whose destruction is complete.
void Remove(HWND hwnd);

// The registered class of that name, or null.
const WindowClass* FindClass(const std::string& name);

// The host root at the top of the window's tree.
Window* HostOf(HWND hwnd);
// The width of the sizing frame round a window with WS_THICKFRAME (what Windows gives a
// child window's sizing frame), 0 without one.
inline constexpr int kThickFrame = 4;
int FrameThickness(const Window& window);
// Client size: the window size less the frame and the shown scroll bars (never
// negative).
RECT ClientRect(const Window& window);
// Offset of the window's top-left corner, and of its client origin, from its host
// root's client origin.
POINT WindowOrigin(const Window& window);
POINT ClientOrigin(const Window& window);
// The whole window in its host root's client coordinates.
RECT WindowRectOnHost(const Window& window);
// Whether the window and every ancestor are visible (a host root always is).
bool IsShownOnHost(const Window& window);
// The part of the host frame the window's client area may touch: its client area
// clipped by every ancestor's client area, in host coordinates.
RECT VisibleClientOnHost(const Window& window);
// The same for an area of the window given in host coordinates (its frame, its bars):
// clipped by every ancestor's client area; empty when the window is not shown.
RECT VisibleOnHost(const Window& window, const RECT& area);

// How many windows are alive.
int Count();

// All live host roots, oldest first.
std::vector<HWND> HostRoots();

// Rectangle helpers (empty means right <= left or bottom <= top).
bool IsEmpty(const RECT& r);
RECT Intersect(const RECT& a, const RECT& b);
RECT Union(const RECT& a, const RECT& b);
RECT Offset(const RECT& r, int dx, int dy);

}  // namespace platform::window
