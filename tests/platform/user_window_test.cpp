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
