// The graphics-memory budget: what is charged, what fails past it and how, and that
// everything charged is given back.
#include "platform/graphics_memory.h"

#include "platform/gdi_test_support.h"
#include "platform/kept_bitmaps.h"

namespace {

class GraphicsMemory : public ::testing::Test {
 protected:
  void TearDown() override {
    platform::SetGraphicsMemoryBudget(0);
    platform::SetGraphicsMemoryReclaimer(nullptr);
    EXPECT_EQ(platform::GraphicsMemoryInUse(), start_);
  }
  const std::size_t start_ = platform::GraphicsMemoryInUse();
};

// A bitmap is charged its whole size when made, however little of it is stored, and
// a bitmap past the budget is not made; a lowered budget takes nothing away.
TEST_F(GraphicsMemory, BitmapsAreChargedWholeAndRefusedPastTheBudget) {
  HDC screen = platform::CreateScreenDC();
  const std::size_t base = platform::GraphicsMemoryInUse();
  platform::SetGraphicsMemoryBudget(base + 1000 * 1000 * 4 + 10 * 10 * 4);
  HBITMAP big = CreateCompatibleBitmap(screen, 1000, 1000);
  ASSERT_NE(big, nullptr);
  EXPECT_EQ(platform::GraphicsMemoryInUse(), base + 4000000);
  EXPECT_EQ(CreateCompatibleBitmap(screen, 11, 10), nullptr);
  HBITMAP small = CreateCompatibleBitmap(screen, 10, 10);
  EXPECT_NE(small, nullptr);
  EXPECT_EQ(CreateCompatibleBitmap(screen, 1, 1), nullptr);
  DeleteObject(small);

  platform::SetGraphicsMemoryBudget(base + 100);
  EXPECT_EQ(CreateCompatibleBitmap(screen, 1, 1), nullptr);
  DeleteObject(big);
  HBITMAP after = CreateCompatibleBitmap(screen, 5, 5);
  EXPECT_NE(after, nullptr) << "the memory came back";
  DeleteObject(after);
  DeleteDC(screen);
}

// Pixel memory asks the reclaimer for memory kept only for speed before it gives up.
TEST_F(GraphicsMemory, PixelMemoryReclaimsBeforeItFails) {
  platform::SetGraphicsMemoryBudget(start_ + 1000);
  static platform::GraphicsBytes kept;
  kept = platform::GraphicsBytes::Allocate(800);
  ASSERT_TRUE(kept);
  EXPECT_FALSE(platform::GraphicsBytes::Allocate(300));
  EXPECT_FALSE(platform::GraphicsMemoryWouldFit(300));
  platform::SetGraphicsMemoryReclaimer([] { kept = platform::GraphicsBytes(); });
  const platform::GraphicsBytes wanted = platform::GraphicsBytes::Allocate(300);
  EXPECT_TRUE(wanted);
  EXPECT_FALSE(kept);
  EXPECT_FALSE(platform::GraphicsBytes::Allocate(701));
  EXPECT_TRUE(platform::GraphicsMemoryWouldFit(700));
}

// Packed rows are charged what they hold. Where they do not fit, compaction leaves
// the rows unpacked (the bitmap's charge covers them), and drawing into packed or
// shared rows never fails for the budget.
TEST_F(GraphicsMemory, CompactionAndDrawingPastTheBudgetKeepThePixels) {
  gdi_test::MemSurface surface(64, 64);
  surface.Fill(RGB(1, 2, 3));
  for (int y = 0; y < 64; y += 7) SetPixel(surface.dc(), 5, y, RGB(9, 9, 9));
  const std::size_t full = platform::GraphicsMemoryInUse();
  platform::SetGraphicsMemoryBudget(full);
  EXPECT_TRUE(platform::CompactBitmap(surface.bitmap()));
  EXPECT_EQ(platform::GraphicsMemoryInUse(), full);
  platform::SetGraphicsMemoryBudget(0);
  ASSERT_TRUE(platform::CompactBitmap(surface.bitmap()));
  EXPECT_GT(platform::GraphicsMemoryInUse(), full) << "packed rows are charged";
  platform::SetGraphicsMemoryBudget(platform::GraphicsMemoryInUse());
  for (int y = 0; y < 64; ++y) SetPixel(surface.dc(), y, y, RGB(200, 0, 0));
  EXPECT_EQ(GetPixel(surface.dc(), 5, 5), RGB(200, 0, 0));
  EXPECT_EQ(GetPixel(surface.dc(), 5, 7), RGB(9, 9, 9));
  EXPECT_EQ(GetPixel(surface.dc(), 6, 5), RGB(1, 2, 3));
  EXPECT_EQ(GetPixel(surface.dc(), 63, 63), RGB(200, 0, 0));
}

}  // namespace
