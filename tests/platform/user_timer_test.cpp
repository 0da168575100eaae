#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using Timers = user_test::HostFixture;
using user_test::Log;

// Logs "id@time" for each timer message. Killing, restarting and a window's timers
// dying with it are what the scroll bars' repeat relies on (user_scrollbar_input_test
// and the scenario tests/cli/view_scroll_bars.ies).
class TimerWnd : public CWnd {
 public:
  explicit TimerWnd(Log* log) : log_(log) {}
  void OnTimer(UINT_PTR id) override {
    log_->push_back(std::to_string(id) + "@" + std::to_string(platform::ClockNow() - start));
  }
  unsigned long long start = platform::ClockNow();

 private:
  Log* log_;
};

TEST_F(Timers, FireInTimeOrderAndCatchUpOverLongSteps) {
  Log log;
  TimerWnd wnd(&log);
  ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, RECT{0, 0, 10, 10}, hostWindow_, 1));
  EXPECT_EQ(wnd.SetTimer(1, 200, nullptr), 1u);
  EXPECT_EQ(wnd.SetTimer(2, 300, nullptr), 2u);
  platform::AdvanceClock(199);
  EXPECT_TRUE(log.empty());
  platform::AdvanceClock(801);
  // Both due at 600: the timer set first fires first.
  EXPECT_EQ(log, (Log{"1@200", "2@300", "1@400", "1@600", "2@600", "1@800", "2@900", "1@1000"}));
  EXPECT_EQ(platform::ClockNow() - wnd.start, 1000u);
}

}  // namespace
