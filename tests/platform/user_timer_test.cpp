#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using user_test::HostFixture;

using Timers = HostFixture;

// Logs "id@time" for each timer message; can kill a timer from inside its handler.
class TimerWnd : public CWnd {
 public:
  explicit TimerWnd(std::vector<std::string>* log) : log_(log) {}
  void OnTimer(UINT_PTR id) override {
    log_->push_back(std::to_string(id) + "@" + std::to_string(platform::ClockNow() - start));
    if (id == killOnFire) KillTimer(id);
  }
  unsigned long long start = platform::ClockNow();
  UINT_PTR killOnFire = 0;

 private:
  std::vector<std::string>* log_;
};

TEST_F(Timers, FireInTimeOrderAndCatchUpOverLongSteps) {
  std::vector<std::string> log;
  TimerWnd wnd(&log);
  ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, RECT{0, 0, 10, 10}, hostWindow_, 1));
  EXPECT_EQ(wnd.SetTimer(1, 200, nullptr), 1u);
  EXPECT_EQ(wnd.SetTimer(2, 300, nullptr), 2u);
  platform::AdvanceClock(199);
  EXPECT_TRUE(log.empty());
  platform::AdvanceClock(801);
  // Both due at 600: the timer set first fires first.
  EXPECT_EQ(log, (std::vector<std::string>{"1@200", "2@300", "1@400", "1@600", "2@600", "1@800", "2@900",
                                           "1@1000"}));
  EXPECT_EQ(platform::ClockNow() - wnd.start, 1000u);
}

TEST_F(Timers, KillInsideHandlerStopsAndSettingAgainRestartsThePeriod) {
  std::vector<std::string> log;
  TimerWnd wnd(&log);
  ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, RECT{0, 0, 10, 10}, hostWindow_, 1));
  wnd.killOnFire = 1;
  wnd.SetTimer(1, 50, nullptr);
  wnd.SetTimer(2, 100, nullptr);
  platform::AdvanceClock(60);
  wnd.SetTimer(2, 100, nullptr);  // replaces the running timer 2: next due at 160
  platform::AdvanceClock(140);
  EXPECT_EQ(log, (std::vector<std::string>{"1@50", "2@160"}));
  EXPECT_EQ(platform::LiveWindowObjects().timers, 1);
  EXPECT_TRUE(wnd.KillTimer(2));
  EXPECT_FALSE(wnd.KillTimer(2));
}

TEST_F(Timers, DestroyedWindowsLoseTheirTimers) {
  std::vector<std::string> log;
  int before = platform::LiveWindowObjects().timers;
  {
    TimerWnd wnd(&log);
    ASSERT_TRUE(wnd.CreateInParent(nullptr, "", WS_CHILD, RECT{0, 0, 10, 10}, hostWindow_, 1));
    wnd.SetTimer(1, 10, nullptr);
    EXPECT_EQ(platform::LiveWindowObjects().timers, before + 1);
  }
  EXPECT_EQ(platform::LiveWindowObjects().timers, before);
  platform::AdvanceClock(100);
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(SetTimer(nullptr, 1, 10, nullptr), 0u);
}

}  // namespace
