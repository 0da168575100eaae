// Splitting a pass's rows over the calling thread and the helper thread: every part
// runs once and is done by the time the pass returns, the helper is one thread kept
// from pass to pass, and passes that meet (from other threads, or from inside a
// part) neither wait forever nor lose a part.
#include "pixels/row_split.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

constexpr int kWide = 1024;  // rows of a width worth two threads at this height
constexpr int kTall = 512;

// Runs a pass over the parts of kTall rows and returns how often each row was
// visited; the part the helper takes is slowed so that a pass returning early is seen.
std::vector<int> VisitsOfOnePass(std::atomic<int>* running = nullptr) {
  const std::vector<RowPart> parts = RowParts(kTall, kWide);
  std::vector<int> visits(kTall, 0);
  RunParts(parts, [&](std::size_t p) {
    if (running != nullptr) running->fetch_add(1);
    if (p == 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    for (int y = parts[p].first; y < parts[p].end; ++y) ++visits[static_cast<std::size_t>(y)];
  });
  return visits;
}

TEST(RowSplit, PartsCoverEveryRowOnceInOrder) {
  for (const auto& [height, width] : {std::pair{kTall, kWide}, {3, 1 << 20}, {1, 1 << 20}, {7, 3}}) {
    const std::vector<RowPart> parts = RowParts(height, width);
    ASSERT_FALSE(parts.empty());
    int next = 0;
    for (const RowPart& part : parts) {
      EXPECT_EQ(part.first, next);
      EXPECT_LT(part.first, part.end);
      next = part.end;
    }
    EXPECT_EQ(next, height);
  }
  EXPECT_EQ(RowParts(kTall, kWide).size(), 2u);  // large enough to share
  EXPECT_EQ(RowParts(7, 3).size(), 1u);          // too small to share
  EXPECT_TRUE(RowParts(0, kWide).empty());
  EXPECT_TRUE(RowParts(kTall, 0).empty());
}

TEST(RowSplit, OneHelperThreadServesEveryPass) {
  const std::vector<RowPart> parts = RowParts(kTall, kWide);
  std::vector<std::thread::id> helpers;
  for (int pass = 0; pass < 5; ++pass) {
    std::thread::id first, last;
    RunParts(parts, [&](std::size_t p) { (p == 0 ? first : last) = std::this_thread::get_id(); });
    EXPECT_EQ(last, std::this_thread::get_id());
    EXPECT_NE(first, std::this_thread::get_id());
    helpers.push_back(first);
  }
  for (const std::thread::id& helper : helpers) EXPECT_EQ(helper, helpers.front());
}

TEST(RowSplit, PassesFromSeveralThreadsAtOnceAllFinish) {
  // Several controls in one process may run passes at the same moment; whichever
  // finds the helper taken does all its rows itself.
  std::atomic<int> wrong{0};
  std::atomic<int> parts{0};
  std::vector<std::thread> callers;
  for (int t = 0; t < 4; ++t) {
    callers.emplace_back([&] {
      for (int pass = 0; pass < 25; ++pass) {
        const std::vector<int> visits = VisitsOfOnePass(&parts);
        if (std::count(visits.begin(), visits.end(), 1) != kTall) wrong.fetch_add(1);
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(parts.load(), 4 * 25 * 2);
}

TEST(RowSplit, APassInsideAPartRunsWithoutWaitingForTheHelper) {
  const std::vector<RowPart> parts = RowParts(kTall, kWide);
  std::atomic<int> inner{0};
  RunParts(parts, [&](std::size_t) {
    const std::vector<int> visits = VisitsOfOnePass();
    inner.fetch_add(static_cast<int>(std::count(visits.begin(), visits.end(), 1)));
  });
  EXPECT_EQ(inner.load(), 2 * kTall);
}

TEST(RowSplit, SplitRowsHandsOutTheParts) {
  std::vector<int> visits(kTall, 0);
  std::atomic<int> calls{0};
  SplitRows(kTall, kWide, [&](int first, int end) {
    calls.fetch_add(1);
    for (int y = first; y < end; ++y) ++visits[static_cast<std::size_t>(y)];
  });
  EXPECT_EQ(calls.load(), 2);
  EXPECT_EQ(std::count(visits.begin(), visits.end(), 1), kTall);
}

}  // namespace
