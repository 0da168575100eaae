// Cursor handles: the module's cursor resources, the two system cursors, and the
// cursor currently shown, which the host is told about whenever it changes.
#include <map>

#include "platform/host.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

namespace {

constexpr int kArrowId = 0;
constexpr int kWaitId = 32514;
constexpr int kNoCursor = -1;

struct Cursor {
  int resourceId;
  POINT hotSpot;
  bool system;
};

struct Cursors {
  std::map<std::uintptr_t, Cursor> live;
  std::uintptr_t nextHandle = 0x30000;
  HCURSOR arrow = nullptr;
  HCURSOR wait = nullptr;
  HCURSOR current = nullptr;
};

Cursors& TheCursors() {
  static Cursors cursors;
  return cursors;
}

HCURSOR AddCursor(int resourceId, POINT hotSpot, bool system) {
  Cursors& cursors = TheCursors();
  std::uintptr_t key = cursors.nextHandle;
  cursors.nextHandle += 4;
  cursors.live[key] = Cursor{resourceId, hotSpot, system};
  return reinterpret_cast<HCURSOR>(key);
}

const Cursor* Find(HCURSOR cursor) {
  auto& live = TheCursors().live;
  auto it = live.find(reinterpret_cast<std::uintptr_t>(cursor));
  return it == live.end() ? nullptr : &it->second;
}

// The system cursors exist once and are never destroyed.
HCURSOR SystemCursor(LPCSTR name) {
  Cursors& cursors = TheCursors();
  if (name == IDC_ARROW) {
    if (cursors.arrow == nullptr) cursors.arrow = AddCursor(kArrowId, POINT{0, 0}, true);
    return cursors.arrow;
  }
  if (name == IDC_WAIT) {
    if (cursors.wait == nullptr) cursors.wait = AddCursor(kWaitId, POINT{15, 15}, true);
    return cursors.wait;
  }
  return nullptr;
}

bool IsIntResource(LPCSTR name) { return (reinterpret_cast<std::uintptr_t>(name) >> 16) == 0; }

}  // namespace

HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name) {
  if (instance == nullptr) return SystemCursor(name);
  if (name == nullptr || !IsIntResource(name)) return nullptr;
  int id = static_cast<int>(reinterpret_cast<std::uintptr_t>(name));
  POINT hotSpot{};
  if (!platform::user::FindCursorResource(id, &hotSpot)) return nullptr;
  return AddCursor(id, hotSpot, false);
}

HCURSOR SetCursor(HCURSOR cursor) {
  Cursors& cursors = TheCursors();
  HCURSOR previous = cursors.current;
  if (cursor != previous) {
    cursors.current = cursor;
    platform::CurrentHost().ShowCursor(platform::CursorResourceId(cursor));
  }
  return previous;
}

BOOL DestroyCursor(HCURSOR cursor) {
  const Cursor* found = Find(cursor);
  if (found == nullptr || found->system) return FALSE;
  TheCursors().live.erase(reinterpret_cast<std::uintptr_t>(cursor));
  return TRUE;
}

namespace platform {

int CursorResourceId(HCURSOR cursor) {
  const Cursor* found = Find(cursor);
  return found == nullptr ? kNoCursor : found->resourceId;
}

POINT CursorHotSpot(HCURSOR cursor) {
  const Cursor* found = Find(cursor);
  return found == nullptr ? POINT{0, 0} : found->hotSpot;
}

namespace user {

LRESULT DefaultSetCursor(HWND hwnd, WPARAM wParam, LPARAM lParam) {
  window::Window* window = window::Find(hwnd);
  // A child first lets its parent choose, as Windows does.
  window::Window* parent = window::Find(window->parent);
  if (parent != nullptr && parent->parent != nullptr &&
      SendMessageA(parent->handle, WM_SETCURSOR, wParam, lParam)) {
    return TRUE;
  }
  window = window::Find(hwnd);
  if (window == nullptr) return FALSE;
  if (LOWORD(static_cast<std::uintptr_t>(lParam)) != HTCLIENT) {
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    return FALSE;
  }
  if (window->windowClass.cursor != nullptr) SetCursor(window->windowClass.cursor);
  return FALSE;
}

int LiveCursors() {
  int count = 0;
  for (const auto& [key, cursor] : TheCursors().live) count += cursor.system ? 0 : 1;
  return count;
}

}  // namespace user
}  // namespace platform
