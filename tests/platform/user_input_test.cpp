#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;
using user_test::Log;

// Records the mouse and key messages it receives, and can take keys in
// PreTranslateMessage or eat activating clicks.
class InputWnd : public CWnd {
 public:
  InputWnd(std::string name, Log* log) : name_(std::move(name)), log_(log) {}
  void OnLButtonDown(UINT flags, POINT p) override { Mouse("ldown", flags, p); }
  void OnLButtonUp(UINT flags, POINT p) override { Mouse("lup", flags, p); }
  void OnMouseMove(UINT flags, POINT p) override { Mouse("move", flags, p); }
  void OnKeyDown(UINT key, UINT, UINT) override { log_->push_back(name_ + " key " + std::to_string(key)); }
  void OnChar(UINT c, UINT, UINT) override { log_->push_back(name_ + " char " + std::to_string(c)); }
  int OnMouseActivate(HWND, UINT hitTest, UINT message) override {
    log_->push_back(name_ + " activate " + std::to_string(hitTest) + " " + std::to_string(message));
    return eatClicks ? MA_NOACTIVATEANDEAT : CWnd::OnMouseActivate(nullptr, hitTest, message);
  }
  BOOL PreTranslateMessage(MSG* msg) override {
    if (msg->message != WM_KEYDOWN) return FALSE;
    log_->push_back(name_ + " pretranslate");
    return static_cast<int>(msg->wParam) == takeKey;
  }
  void Mouse(const std::string& what, UINT flags, POINT p) {
    log_->push_back(name_ + " " + what + " " + std::to_string(flags) + " " + std::to_string(p.x) + "," +
                    std::to_string(p.y));
  }
  bool eatClicks = false;
  int takeKey = -1;

 private:
  std::string name_;
  Log* log_;
};

class Routing : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    // outer at (10,10) 60 x 50 on the host; inner at (20,20) 20 x 20 inside it.
    ASSERT_TRUE(
        outer_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{10, 10, 70, 60}, hostWindow_, 1));
    ASSERT_TRUE(inner_.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{20, 20, 40, 40}, &outer_, 2));
    SetFocus(nullptr);
  }
  Log log_;
  InputWnd outer_{"outer", &log_};
  InputWnd inner_{"inner", &log_};
};

TEST_F(Routing, MouseGoesToTheDeepestWindowOrTheCaptureInClientCoordinates) {
  platform::MouseInput(hostWindow_, WM_MOUSEMOVE, 35, 36);
  platform::MouseInput(hostWindow_, WM_MOUSEMOVE, 15, 16);
  EXPECT_EQ(log_, (Log{"inner move 0 5,6", "outer move 0 5,6"}));

  log_.clear();
  EXPECT_EQ(SetCapture(inner_.m_hWnd), nullptr);
  platform::MouseInput(hostWindow_, WM_MOUSEMOVE, 5, 95);
  EXPECT_EQ(log_, (Log{"inner move 0 -25,65"}));
  ReleaseCapture();
  EXPECT_EQ(GetCapture(), nullptr);
  SetCapture(inner_.m_hWnd);
  inner_.DestroyWindow();
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(Routing, PressesActivateUpTheChainAndCarryButtonState) {
  platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, 35, 36);
  std::string activate = " activate 1 " + std::to_string(WM_LBUTTONDOWN);
  EXPECT_EQ(log_, (Log{"inner" + activate, "outer" + activate, "inner ldown 1 5,6"}));
  EXPECT_LT(GetKeyState(VK_LBUTTON), 0);
  log_.clear();
  platform::SetKeyDown(VK_CONTROL, true);
  platform::MouseInput(hostWindow_, WM_MOUSEMOVE, 36, 36);
  platform::MouseInput(hostWindow_, WM_LBUTTONUP, 36, 36);
  EXPECT_EQ(log_, (Log{"inner move 9 6,6", "inner lup 8 6,6"}));
  EXPECT_EQ(GetKeyState(VK_LBUTTON), 0);

  // An eaten click is not delivered.
  log_.clear();
  outer_.eatClicks = true;
  platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, 35, 36);
  EXPECT_EQ(log_, (Log{"inner" + activate, "outer" + activate}));
}

TEST_F(Routing, KeysPassThePreTranslateChainFromTheFocusUpOrGoToTheHostsFirstChild) {
  // Without focus, keys and characters go to the host's first child.
  platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_DELETE);
  platform::CharInput(hostWindow_, 0xAC00);
  EXPECT_EQ(log_, (Log{"outer pretranslate", "outer key 46", "outer char 44032"}));

  // With the focus inside, the first window to take the key in PreTranslateMessage
  // keeps it (the control's key routing relies on the chain: control_test).
  log_.clear();
  inner_.SetFocus();
  outer_.takeKey = VK_ESCAPE;
  platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_ESCAPE);
  EXPECT_EQ(log_, (Log{"inner pretranslate", "outer pretranslate"}));
}

}  // namespace
