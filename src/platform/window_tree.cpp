#include "platform/window_tree.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

namespace platform::window {
namespace {

struct Tree {
  std::unordered_map<std::uintptr_t, std::unique_ptr<Window>> windows;
  std::vector<HWND> hostRoots;
  std::uintptr_t nextHandle = 0x10000;
};

Tree& TheTree() {
  static Tree tree;
  return tree;
}

std::uintptr_t Key(HWND hwnd) { return reinterpret_cast<std::uintptr_t>(hwnd); }

}  // namespace

Window* Find(HWND hwnd) {
  if (hwnd == nullptr) return nullptr;
  auto& windows = TheTree().windows;
  auto it = windows.find(Key(hwnd));
  return it == windows.end() ? nullptr : it->second.get();
}

Window& Add(HWND parent, const WindowClass& windowClass, const std::u16string& title, DWORD style, UINT id,
            const RECT& rect) {
  Tree& tree = TheTree();
  auto window = std::make_unique<Window>();
  // Handles step by 4 and never repeat, so a stale handle can never name a new window.
  window->handle = reinterpret_cast<HWND>(tree.nextHandle);
  tree.nextHandle += 4;
  window->parent = parent;
  window->windowClass = windowClass;
  window->title = title;
  window->style = style;
  window->id = id;
  window->rect = rect;
  Window& added = *window;
  tree.windows.emplace(Key(added.handle), std::move(window));
  if (Window* parentWindow = Find(parent)) {
    parentWindow->children.push_back(added.handle);
  } else {
    tree.hostRoots.push_back(added.handle);
  }
  return added;
}

void Remove(HWND hwnd) {
  Tree& tree = TheTree();
  Window* window = Find(hwnd);
  if (window == nullptr) return;
  if (Window* parent = Find(window->parent)) {
    std::erase(parent->children, hwnd);
  }
  std::erase(tree.hostRoots, hwnd);
  tree.windows.erase(Key(hwnd));
}

Window* HostOf(HWND hwnd) {
  Window* window = Find(hwnd);
  while (window != nullptr && window->parent != nullptr) window = Find(window->parent);
  return window;
}

int FrameThickness(const Window& window) { return (window.style & WS_THICKFRAME) ? kThickFrame : 0; }

RECT ClientRect(const Window& window) {
  const int frame = FrameThickness(window);
  int width = window.rect.right - window.rect.left - 2 * frame;
  int height = window.rect.bottom - window.rect.top - 2 * frame;
  if (window.style & WS_VSCROLL) width -= SCROLLBAR_THICKNESS;
  if (window.style & WS_HSCROLL) height -= SCROLLBAR_THICKNESS;
  return RECT{0, 0, std::max(width, 0), std::max(height, 0)};
}

POINT WindowOrigin(const Window& window) {
  POINT origin{0, 0};
  if (const Window* parent = Find(window.parent)) origin = ClientOrigin(*parent);
  if (window.parent != nullptr) {
    origin.x += window.rect.left;
    origin.y += window.rect.top;
  }
  return origin;
}

RECT WindowRectOnHost(const Window& window) {
  const POINT origin = WindowOrigin(window);
  return RECT{origin.x, origin.y, origin.x + window.rect.right - window.rect.left,
              origin.y + window.rect.bottom - window.rect.top};
}

POINT ClientOrigin(const Window& window) {
  POINT origin = WindowOrigin(window);
  const int frame = FrameThickness(window);
  return POINT{origin.x + frame, origin.y + frame};
}

bool IsShownOnHost(const Window& window) {
  for (const Window* w = &window; w != nullptr && w->parent != nullptr; w = Find(w->parent)) {
    if (!(w->style & WS_VISIBLE)) return false;
  }
  return true;
}

RECT VisibleClientOnHost(const Window& window) {
  POINT origin = ClientOrigin(window);
  RECT visible = Offset(ClientRect(window), origin.x, origin.y);
  if (const Window* parent = Find(window.parent)) visible = Intersect(visible, VisibleClientOnHost(*parent));
  return visible;
}

RECT VisibleOnHost(const Window& window, const RECT& area) {
  if (!IsShownOnHost(window)) return RECT{};
  const Window* parent = Find(window.parent);
  return parent == nullptr ? area : Intersect(area, VisibleClientOnHost(*parent));
}

int Count() { return static_cast<int>(TheTree().windows.size()); }

std::vector<HWND> HostRoots() { return TheTree().hostRoots; }

bool IsEmpty(const RECT& r) { return r.right <= r.left || r.bottom <= r.top; }

RECT Intersect(const RECT& a, const RECT& b) {
  RECT r;
  IntersectRect(&r, &a, &b);
  return r;
}

RECT Union(const RECT& a, const RECT& b) {
  if (IsEmpty(a)) return b;
  if (IsEmpty(b)) return a;
  return RECT{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
              std::max(a.bottom, b.bottom)};
}

RECT Offset(const RECT& r, int dx, int dy) {
  return RECT{r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

}  // namespace platform::window

BOOL PtInRect(const RECT* rect, POINT point) {
  return rect != nullptr && point.x >= rect->left && point.x < rect->right && point.y >= rect->top &&
                 point.y < rect->bottom
             ? TRUE
             : FALSE;
}

BOOL IntersectRect(RECT* dst, const RECT* a, const RECT* b) {
  const RECT r{std::max(a->left, b->left), std::max(a->top, b->top), std::min(a->right, b->right),
               std::min(a->bottom, b->bottom)};
  const bool empty = platform::window::IsEmpty(r);
  *dst = empty ? RECT{0, 0, 0, 0} : r;
  return empty ? FALSE : TRUE;
}
