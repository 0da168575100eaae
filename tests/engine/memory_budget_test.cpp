// The editor under a graphics-memory budget: requests past it fail the way the
// platform's calls fail, the editor takes its own out-of-memory paths, and it keeps
// working. Each case is one that took the process to gigabytes without a budget.
#include <cstdint>
#include <vector>

#include "imageio/bmp_builder.h"
#include "platform/raster.h"
#include "test_support.h"

namespace {

constexpr COLORREF kInk = RGB(0x10, 0x80, 0x20);
constexpr std::size_t kMiB = std::size_t{1} << 20;

class MemoryBudgetTest : public HostedTest {
 protected:
  void TearDown() override {
    platform::SetGraphicsMemoryBudget(0);
    HostedTest::TearDown();
  }
  static void BudgetAbove(std::size_t inUse, std::size_t more) {
    platform::SetGraphicsMemoryBudget(inUse + more);
  }
  static void ExpectWithinBudget() {
    EXPECT_LE(platform::GraphicsMemoryInUse(), platform::GraphicsMemoryBudget());
  }
  // A stroke with a fresh pen, and what the window shows at its middle.
  static COLORREF StrokeAndLook(LiveEditor& live, int x0, int y, int x1) {
    live->SetColor("108020");
    live->SetPen(3);
    live.Drag(x0, y, x1, y);
    return GetPixel(live->m_surfaces.composition.dc(), (x0 + x1) / 2, y);
  }
};

// A one-row brush is recoloured as a square of side = its width: at 16384 that
// square (1 GiB and its pixels read back) is refused as an unloadable brush, and the
// tool stays as it was; a brush whose square fits is taken.
TEST_F(MemoryBudgetTest, ABrushWhoseSquareWouldNotFitIsRefused) {
  LiveEditor live(100, 80);
  live.Show(100, 80, 0xFFFFFF);
  live->SetPen(3);
  BudgetAbove(platform::GraphicsMemoryInUse(), 64 * kMiB);
  const std::string wide =
      live.files.Write("wide.bmp", BitmapFile(16384, 1, std::vector<COLORREF>(16384, 0)));
  live->SetBitmapBrush(wide.c_str());
  EXPECT_FALSE(live->m_tools.bitmapBrush);
  EXPECT_EQ(live->m_tools.mode, ToolMode::Pen);
  EXPECT_EQ(live->m_tools.toolWidth, 3);
  ExpectWithinBudget();

  const std::string narrow = live.files.Write("narrow.bmp", BitmapFile(64, 1, std::vector<COLORREF>(64, 0)));
  live->SetBitmapBrush(narrow.c_str());
  EXPECT_TRUE(live->m_tools.bitmapBrush);
  EXPECT_EQ(live->m_tools.mode, ToolMode::BitmapBrush);
  EXPECT_EQ(StrokeAndLook(live, 10, 40, 90), kInk);
}

// A small picture in a 16384 x 16384 control under the largest default budget: the
// three surfaces take 3 GiB as GDI counts them, so a snapshot for the history does not
// fit. Strokes still draw and show; the commits record nothing; the storage really
// used stays small.
TEST_F(MemoryBudgetTest, AHugeControlDrawsWhenItsHistoryDoesNotFit) {
  platform::SetGraphicsMemoryBudget(std::size_t{4} << 30);
  LiveEditor live(16384, 16384);
  live.Show(80, 60, 0xFFFFFF);
  const RECT image = live->m_view.imageRect();
  const int y = static_cast<int>(image.top) + 30;
  for (int stroke = 0; stroke < 3; ++stroke)
    EXPECT_EQ(StrokeAndLook(live, image.left + 10, y + 10 * stroke - 10, image.left + 70), kInk) << stroke;
  EXPECT_EQ(live->m_history.count(), 0);
  ExpectWithinBudget();
  EXPECT_LT(platform::raster::LivePixelBytes(), 64 * kMiB);
}

// A 64-megapixel picture: laid out at 100 % within the budget, then asked for 200 %,
// whose surfaces (a gigabyte each) do not fit. The surfaces stay as they were and the
// editor goes on drawing, undoing and redoing.
TEST_F(MemoryBudgetTest, A64MegapixelPictureAt200PercentLeavesAWorkingEditor) {
  constexpr int kSide = 8000;
  imageio_test::BmpLayout layout;
  layout.width = layout.height = kSide;
  layout.bitCount = 1;
  layout.palette = {0xFFFFFF, 0x4060A0};
  layout.pixels.assign(static_cast<std::size_t>(kSide / 8) * kSide, 0x0F);
  LiveEditor live(640, 480);
  platform::SetGraphicsMemoryBudget(std::size_t{2} << 30);
  live->SetImage(live.files.Write("64mp.bmp", imageio_test::BuildBmp(layout)).c_str());
  ASSERT_EQ(live->m_history.count(), 1);
  const std::size_t laidOut = platform::GraphicsMemoryInUse();

  live->SetImageWidth(-200);
  ExpectWithinBudget();
  EXPECT_LT(platform::GraphicsMemoryInUse(), laidOut + (std::size_t{1} << 30));

  EXPECT_EQ(StrokeAndLook(live, 100, 200, 300), kInk);
  EXPECT_EQ(live->m_history.count(), 2);
  live->Undo();
  EXPECT_NE(GetPixel(live->m_surfaces.composition.dc(), 200, 200), kInk);
  live->Redo();
  EXPECT_EQ(GetPixel(live->m_surfaces.composition.dc(), 200, 200), kInk);
  ExpectWithinBudget();
}

}  // namespace
