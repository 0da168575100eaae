#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;
using user_test::Log;
using user_test::LoggingWnd;

using WindowTree = HostFixture;

constexpr RECT kChildRect{10, 20, 60, 50};

TEST_F(WindowTree, CreateFailsWhenCreateHandlerRefusesOrParentIsMissing) {
  Log log;
  LoggingWnd refusing("r", &log);
  refusing.failCreate = true;
  int before = platform::LiveWindowObjects().windows;
  EXPECT_FALSE(refusing.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  EXPECT_EQ(refusing.m_hWnd, nullptr);
  EXPECT_EQ(platform::LiveWindowObjects().windows, before);
  EXPECT_EQ(log, (Log{"r create", "r destroy"}));
  EXPECT_FALSE(refusing.Create(nullptr, "", WS_CHILD, kChildRect, nullptr, 1));  // no parent
}

TEST_F(WindowTree, DestroyTellsParentFirstAndDetachesObjects) {
  Log log;
  LoggingWnd parent("parent", &log);
  LoggingWnd child("child", &log);
  ASSERT_TRUE(parent.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, kChildRect, hostWindow_, 1));
  ASSERT_TRUE(child.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 5, 5}, &parent, 2));
  HWND childHandle = child.m_hWnd;
  log.clear();
  EXPECT_TRUE(parent.DestroyWindow());
  EXPECT_EQ(log, (Log{"parent destroy", "child destroy"}));
  EXPECT_EQ(child.m_hWnd, nullptr);
  EXPECT_FALSE(IsWindow(childHandle));
  EXPECT_EQ(WindowObject(childHandle), nullptr);
  // A stale handle is refused everywhere.
  EXPECT_FALSE(DestroyWindow(childHandle));
  EXPECT_EQ(SendMessageA(childHandle, WM_CLOSE, 0, 0), 0);
}

TEST_F(WindowTree, VisibilityFollowsTheParentChain) {
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

// Only children are found, never a grandchild with the id; of two siblings with one id,
// the one above.
TEST_F(WindowTree, GetDlgItemFindsAChildByIdTopmostFirst) {
  CWnd parent, lower, upper, grandchild;
  ASSERT_TRUE(parent.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  ASSERT_TRUE(lower.Create(nullptr, "", WS_CHILD, RECT{0, 0, 5, 5}, &parent, 2));
  ASSERT_TRUE(upper.Create(nullptr, "", WS_CHILD, RECT{0, 0, 5, 5}, &parent, 2));
  ASSERT_TRUE(grandchild.Create(nullptr, "", WS_CHILD, RECT{0, 0, 5, 5}, &lower, 3));
  EXPECT_EQ(GetDlgItem(hostWindow_, 1), parent.m_hWnd);
  EXPECT_EQ(GetDlgItem(parent.m_hWnd, 2), upper.m_hWnd);
  EXPECT_EQ(GetDlgItem(parent.m_hWnd, 3), nullptr);
  EXPECT_EQ(GetDlgItem(lower.m_hWnd, 3), grandchild.m_hWnd);
  upper.DestroyWindow();
  EXPECT_EQ(GetDlgItem(parent.m_hWnd, 2), lower.m_hWnd);
  HWND stale = parent.m_hWnd;
  parent.DestroyWindow();
  EXPECT_EQ(GetDlgItem(stale, 2), nullptr);
}

TEST_F(WindowTree, FocusMovesWithKillThenSetAndIsForgottenOnDestroy) {
  Log log;
  LoggingWnd a("a", &log);
  LoggingWnd b("b", &log);
  ASSERT_TRUE(a.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 1));
  ASSERT_TRUE(b.CreateInParent(nullptr, "", WS_CHILD, kChildRect, hostWindow_, 2));
  SetFocus(nullptr);
  log.clear();
  EXPECT_EQ(a.SetFocus(), nullptr);
  EXPECT_EQ(b.SetFocus(), a.m_hWnd);
  EXPECT_EQ(log, (Log{"a setfocus", "a killfocus", "b setfocus"}));
  EXPECT_EQ(GetFocus(), b.m_hWnd);
  b.DestroyWindow();
  EXPECT_EQ(GetFocus(), nullptr);
}

}  // namespace
