// Window timers on a virtual clock that the host advances.
//
// Advancing the clock fires every timer that falls due within the step, in time
// order (ties in the order the timers were set), once for each period that elapses:
// a 200 ms timer over a 1000 ms step fires five times. The clock reads the due time
// while a timer message is handled, and pending paints are flushed after each one, as
// a message loop would paint between two timer ticks.
#include <algorithm>
#include <vector>

#include "platform/user.h"
#include "platform/user_internal.h"

namespace {

// The shortest period Windows grants a timer.
constexpr UINT kMinimumPeriod = 10;

struct Timer {
  HWND hwnd;
  UINT_PTR id;
  unsigned long long period;
  unsigned long long due;
  unsigned long long order;
  platform::user::InternalTimerProc internal;  // null for a window's own timer
};

struct Clock {
  unsigned long long now = 0;
  unsigned long long nextOrder = 0;
  std::vector<Timer> timers;
};

Clock& TheClock() {
  static Clock clock;
  return clock;
}

// A window's own timers and the platform's internal ones have separate id spaces.
auto SameTimer(HWND hwnd, UINT_PTR id, bool internal) {
  return [hwnd, id, internal](const Timer& t) {
    return t.hwnd == hwnd && t.id == id && (t.internal != nullptr) == internal;
  };
}

UINT_PTR AddTimer(HWND hwnd, UINT_PTR id, UINT milliseconds, platform::user::InternalTimerProc internal) {
  if (!IsWindow(hwnd)) return 0;
  Clock& clock = TheClock();
  std::erase_if(clock.timers, SameTimer(hwnd, id, internal != nullptr));
  unsigned long long period = std::max(milliseconds, kMinimumPeriod);
  clock.timers.push_back(Timer{hwnd, id, period, clock.now + period, clock.nextOrder++, internal});
  return id;
}

// The next timer due by `limit`, earliest first; null when none is.
Timer* NextDue(unsigned long long limit) {
  Timer* next = nullptr;
  for (Timer& t : TheClock().timers) {
    if (t.due > limit) continue;
    if (next == nullptr || t.due < next->due || (t.due == next->due && t.order < next->order)) next = &t;
  }
  return next;
}

}  // namespace

UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT milliseconds, void* /*callback*/) {
  // Only window timers exist here: the message carries the id to the window.
  return AddTimer(hwnd, id, milliseconds, nullptr);
}

BOOL KillTimer(HWND hwnd, UINT_PTR id) {
  return std::erase_if(TheClock().timers, SameTimer(hwnd, id, false)) > 0 ? TRUE : FALSE;
}

namespace platform {

void AdvanceClock(unsigned milliseconds) {
  Clock& clock = TheClock();
  unsigned long long target = clock.now + milliseconds;
  while (Timer* timer = NextDue(target)) {
    clock.now = timer->due;
    timer->due += timer->period;
    HWND hwnd = timer->hwnd;
    UINT_PTR id = timer->id;
    platform::user::InternalTimerProc internal = timer->internal;
    if (internal != nullptr) {
      internal(hwnd);
    } else {
      SendMessageA(hwnd, WM_TIMER, id, 0);
    }
    user::FlushAllPaint();
  }
  clock.now = target;
}

unsigned long long ClockNow() { return TheClock().now; }

namespace user {

void SetInternalTimer(HWND hwnd, UINT_PTR id, UINT milliseconds, InternalTimerProc proc) {
  if (proc != nullptr) AddTimer(hwnd, id, milliseconds, proc);
}

void KillInternalTimer(HWND hwnd, UINT_PTR id) {
  std::erase_if(TheClock().timers, SameTimer(hwnd, id, true));
}

void KillWindowTimers(HWND hwnd) {
  std::erase_if(TheClock().timers, [hwnd](const Timer& t) { return t.hwnd == hwnd; });
}

int LiveTimers() { return static_cast<int>(TheClock().timers.size()); }

}  // namespace user
}  // namespace platform
