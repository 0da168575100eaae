#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using Timers = user_test::HostFixture;
using user_test::Log;

// Logs "id@time" for each timer message; can kill a timer from inside its handler.
class TimerWnd : public CWnd {
 public:
  explicit TimerWnd(Log* log) : log_(log) {}
  void OnTimer(UINT_PTR id) override {
    log_->push_back(std::to_string(id) + "@" + std::to_string(platform::ClockNow() - start));
    if (id == killOnFire) KillTimer(id);
  }
  unsigned long long start = platform::ClockNow();
  UINT_PTR killOnFire = 0;

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

TEST_F(Timers, KillInsideHandlerStopsSettingAgainRestartsAndDestroyedWindowsLoseTheirTimers) {
  Log log;
  const int before = platform::LiveWindowObjects().timers;
  {
    TimerWnd wnd(&log);
    ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, RECT{0, 0, 10, 10}, hostWindow_, 1));
    wnd.killOnFire = 1;
    wnd.SetTimer(1, 50, nullptr);
    wnd.SetTimer(2, 100, nullptr);
    platform::AdvanceClock(60);
    wnd.SetTimer(2, 100, nullptr);  // replaces the running timer 2: next due at 160
    platform::AdvanceClock(140);
    EXPECT_EQ(log, (Log{"1@50", "2@160"}));
    EXPECT_EQ(platform::LiveWindowObjects().timers, before + 1);
    wnd.SetTimer(3, 10, nullptr);
    EXPECT_TRUE(wnd.KillTimer(2));
    EXPECT_FALSE(wnd.KillTimer(2));
  }
  EXPECT_EQ(platform::LiveWindowObjects().timers, before);
  platform::AdvanceClock(100);
  EXPECT_EQ(log.size(), 2u);
  EXPECT_EQ(SetTimer(nullptr, 1, 10, nullptr), 0u);
}

}  // namespace
