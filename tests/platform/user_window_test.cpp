#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;
using user_test::LoggingWnd;

using WindowTree = HostFixture;

constexpr RECT kChildRect{10, 20, 60, 50};

class ClassChoosingWnd : public LoggingWnd {
 public:
  using LoggingWnd::LoggingWnd;
  BOOL PreCreateWindow(CREATESTRUCTA& cs) override {
    Record("precreate");
    user_test::UseWindowClass(cs, "TestClass", LoadCursorA(nullptr, IDC_WAIT), nullptr);
    return CWnd::PreCreateWindow(cs);
  }
};

TEST_F(WindowTree, CreationRunsPreCreateThenCreateThenSizeAndLinksTheTree) {
  std::vector<std::string> log;
  ClassChoosingWnd wnd("w", &log);
  int before = platform::LiveWindowObjects().windows;
  ASSERT_TRUE(wnd.CreateInParent(nullptr, "Title", WS_CHILD | WS_VISIBLE, kChildRect, hostWindow_, 1));
  EXPECT_EQ(log, (std::vector<std::string>{"w precreate", "w create", "w size:50,30"}));
  EXPECT_TRUE(IsWindow(wnd.m_hWnd));
  EXPECT_EQ(GetParent(wnd.m_hWnd), hostWindow_);
  EXPECT_EQ(WindowObject(wnd.m_hWnd), &wnd);
  EXPECT_EQ(platform::LiveWindowObjects().windows, before + 1);
  RECT client{};
  ASSERT_TRUE(GetClientRect(wnd.m_hWnd, &client));
  EXPECT_EQ(client.right, 50);
  EXPECT_EQ(client.bottom, 30);
  RECT onHost{};
  ASSERT_TRUE(GetWindowRect(wnd.m_hWnd, &onHost));
  EXPECT_EQ(onHost.left, 10);
  EXPECT_EQ(onHost.top, 20);
  // The class is registered once; a second registration under the name is refused.
  WNDCLASSA again{};
  again.lpszClassName = "TestClass";
  EXPECT_FALSE(RegisterClassA(&again));
}

TEST_F(WindowTree, CreateFailsWhenCreateHandlerRefusesOrParentIsMissing) {
  std::vector<std::string> log;
  LoggingWnd refusing("r", &log);
  refusing.failCreate = true;
  int before = platform::LiveWindowObjects().windows;
  EXPECT_FALSE(refusing.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  EXPECT_EQ(refusing.m_hWnd, nullptr);
  EXPECT_EQ(platform::LiveWindowObjects().windows, before);
  EXPECT_EQ(log, (std::vector<std::string>{"r create", "r destroy"}));

  LoggingWnd orphan("o", &log);
  EXPECT_FALSE(orphan.Create(nullptr, "", WS_CHILD, kChildRect, nullptr, 1));
  EXPECT_EQ(orphan.m_hWnd, nullptr);
}

TEST_F(WindowTree, DestroyTellsParentFirstRemovesChildrenAndDetachesObjects) {
  std::vector<std::string> log;
  LoggingWnd parent("parent", &log);
  LoggingWnd child("child", &log);
  ASSERT_TRUE(parent.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, kChildRect, hostWindow_, 1));
  ASSERT_TRUE(child.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 5, 5}, &parent, 2));
  HWND childHandle = child.m_hWnd;
  log.clear();
  EXPECT_TRUE(parent.DestroyWindow());
  EXPECT_EQ(log, (std::vector<std::string>{"parent destroy", "child destroy"}));
  EXPECT_EQ(parent.m_hWnd, nullptr);
  EXPECT_EQ(child.m_hWnd, nullptr);
  EXPECT_FALSE(IsWindow(childHandle));
  EXPECT_EQ(WindowObject(childHandle), nullptr);
  // A stale handle is refused everywhere.
  EXPECT_FALSE(DestroyWindow(childHandle));
  EXPECT_EQ(SendMessageA(childHandle, WM_CLOSE, 0, 0), 0);
}

TEST_F(WindowTree, ObjectDestructorAndDefaultCloseDestroyTheWindow) {
  std::vector<std::string> log;
  HWND handle = nullptr;
  {
    CWnd plain;
    ASSERT_TRUE(plain.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
    handle = plain.m_hWnd;
  }
  EXPECT_FALSE(IsWindow(handle));

  LoggingWnd closing("c", &log);
  ASSERT_TRUE(closing.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  closing.SendMessage(WM_CLOSE);
  EXPECT_EQ(closing.m_hWnd, nullptr);
  EXPECT_EQ(log.back(), "c destroy");
}

TEST_F(WindowTree, ShowHideAndVisibilityFollowTheParentChain) {
  CWnd parent;
  CWnd child;
  ASSERT_TRUE(parent.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  ASSERT_TRUE(child.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 5, 5}, &parent, 2));
  EXPECT_FALSE(child.IsWindowVisible());     // its parent is hidden
  EXPECT_FALSE(parent.ShowWindow(SW_SHOW));  // returns the previous visibility
  EXPECT_TRUE(child.IsWindowVisible());
  EXPECT_TRUE(parent.ShowWindow(SW_HIDE));
  EXPECT_FALSE(child.IsWindowVisible());
}

TEST_F(WindowTree, MoveWindowSendsSizeOnlyWhenTheClientSizeChanges) {
  std::vector<std::string> log;
  LoggingWnd wnd("w", &log);
  ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  log.clear();
  EXPECT_TRUE(MoveWindow(wnd.m_hWnd, 0, 0, 50, 30, TRUE));
  EXPECT_TRUE(log.empty());
  EXPECT_TRUE(MoveWindow(wnd.m_hWnd, 0, 0, 70, 40, TRUE));
  EXPECT_EQ(log, (std::vector<std::string>{"w size:70,40"}));
  POINT p{3, 4};
  ASSERT_TRUE(ClientToScreen(wnd.m_hWnd, &p));
  EXPECT_EQ(p.x, 3);
  EXPECT_EQ(p.y, 4);
  EXPECT_FALSE(MoveWindow(hostWindow_, 0, 0, 10, 10, TRUE));  // a host window keeps its size
}

TEST_F(WindowTree, FocusMovesWithKillThenSetAndIsForgottenOnDestroy) {
  std::vector<std::string> log;
  LoggingWnd a("a", &log);
  LoggingWnd b("b", &log);
  ASSERT_TRUE(a.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  ASSERT_TRUE(b.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 2));
  SetFocus(nullptr);
  log.clear();
  EXPECT_EQ(a.SetFocus(), nullptr);
  EXPECT_EQ(b.SetFocus(), a.m_hWnd);
  EXPECT_EQ(log, (std::vector<std::string>{"a setfocus", "a killfocus", "b setfocus"}));
  EXPECT_EQ(GetFocus(), b.m_hWnd);
  b.DestroyWindow();
  EXPECT_EQ(GetFocus(), nullptr);
}

// Every unpacking the handlers rely on, checked through SendMessageA.
class ArgumentWnd : public CWnd {
 public:
  void OnLButtonDown(UINT flags, POINT point) override { seen = {int(flags), point.x, point.y}; }
  void OnMouseMove(UINT flags, POINT point) override { seen = {int(flags), point.x, point.y}; }
  void OnSize(UINT type, int cx, int cy) override { seen = {int(type), cx, cy}; }
  void OnTimer(UINT_PTR id) override { seen = {int(id)}; }
  void OnHScroll(UINT code, UINT pos, HWND) override { seen = {int(code), int(pos)}; }
  void OnVScroll(UINT code, UINT pos, HWND) override { seen = {int(code), int(pos), 1}; }
  void OnKeyDown(UINT key, UINT repeat, UINT flags) override { seen = {int(key), int(repeat), int(flags)}; }
  BOOL OnSetCursor(HWND hwnd, UINT hitTest, UINT message) override {
    seen = {hwnd == m_hWnd, int(hitTest), int(message)};
    return TRUE;
  }
  BOOL OnCommand(WPARAM wParam, LPARAM) override {
    seen = {int(LOWORD(wParam))};
    return TRUE;
  }
  std::vector<int> seen;
};

TEST_F(WindowTree, WindowProcUnpacksArgumentsAsWindowsPacksThem) {
  ArgumentWnd wnd;
  ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  using V = std::vector<int>;
  wnd.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, MAKELPARAM(-5, 7));
  EXPECT_EQ(wnd.seen, (V{int(MK_LBUTTON | MK_SHIFT), -5, 7}));
  wnd.SendMessage(WM_MOUSEMOVE, 0, MAKELPARAM(300, -2));
  EXPECT_EQ(wnd.seen, (V{0, 300, -2}));
  wnd.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(640, 480));
  EXPECT_EQ(wnd.seen, (V{0, 640, 480}));
  wnd.SendMessage(WM_TIMER, 2, 0);
  EXPECT_EQ(wnd.seen, (V{2}));
  wnd.SendMessage(WM_HSCROLL, (1234u << 16) | SB_THUMBTRACK, 0);
  EXPECT_EQ(wnd.seen, (V{int(SB_THUMBTRACK), 1234}));
  wnd.SendMessage(WM_VSCROLL, SB_PAGEDOWN, 0);
  EXPECT_EQ(wnd.seen, (V{int(SB_PAGEDOWN), 0, 1}));
  wnd.SendMessage(WM_KEYDOWN, VK_DELETE, 0x40000001);
  EXPECT_EQ(wnd.seen, (V{VK_DELETE, 1, 0x4000}));
  EXPECT_EQ(
      wnd.SendMessage(WM_SETCURSOR, reinterpret_cast<WPARAM>(wnd.m_hWnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)),
      TRUE);
  EXPECT_EQ(wnd.seen, (V{1, int(HTCLIENT), int(WM_MOUSEMOVE)}));
  wnd.SendMessage(WM_COMMAND, 32770, 0);
  EXPECT_EQ(wnd.seen, (V{32770}));
  // Unhandled messages get the default processing.
  EXPECT_EQ(wnd.SendMessage(WM_MOUSEACTIVATE), MA_ACTIVATE);
}

}  // namespace
