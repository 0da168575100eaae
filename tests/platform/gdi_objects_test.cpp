#include "platform/gdi_test_support.h"

using gdi_test::MemSurface;

namespace {

// Checks that a block of work leaves no GDI object behind.
class GdiObjects : public ::testing::Test {
 protected:
  void SetUp() override { before_ = platform::LiveGdiObjects(); }
  void TearDown() override {
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    platform::FailNthCreation(platform::GdiKind::DC, 0);
    EXPECT_EQ(platform::LiveGdiObjects().total(), before_.total());
  }
  platform::GdiCounts before_;
};

int BitsPerPixel(HBITMAP bitmap) {
  BITMAP bm{};
  return GetObjectA(bitmap, sizeof bm, &bm) == sizeof bm ? bm.bmBitsPixel : 0;
}

TEST_F(GdiObjects, CompatibleBitmapFollowsTheDcsBitmapKind) {
  HDC screen = platform::CreateScreenDC();
  HDC fresh = CreateCompatibleDC(screen);
  HBITMAP mono = CreateCompatibleBitmap(fresh, 17, 2);  // fresh DC: the stock mono bitmap
  HBITMAP colour = CreateCompatibleBitmap(screen, 5, 3);
  HGDIOBJ old = SelectObject(fresh, colour);
  HBITMAP second = CreateCompatibleBitmap(fresh, 1, 1);
  EXPECT_EQ(BitsPerPixel(mono), 1);
  EXPECT_EQ(BitsPerPixel(colour), 32);
  EXPECT_EQ(BitsPerPixel(second), 32);
  EXPECT_EQ(CreateCompatibleBitmap(fresh, 1 << 15, 1 << 15), nullptr);  // 2^30 pixels
  SelectObject(fresh, old);
  for (HBITMAP b : {colour, mono, second}) EXPECT_TRUE(DeleteObject(b));
  DeleteDC(fresh);
  DeleteDC(screen);
}

TEST_F(GdiObjects, SelectionRules) {
  HDC a = CreateCompatibleDC(nullptr);
  HDC b = CreateCompatibleDC(nullptr);
  HBITMAP bitmap = CreateBitmap(2, 2, 1, 32, nullptr);
  HBRUSH brush = CreateSolidBrush(RGB(9, 9, 9));
  HGDIOBJ stockBitmap = SelectObject(a, bitmap);
  ASSERT_NE(stockBitmap, nullptr);
  EXPECT_EQ(SelectObject(b, bitmap), nullptr);           // selected elsewhere
  EXPECT_EQ(SelectObject(b, stockBitmap), stockBitmap);  // the stock bitmap is shared
  EXPECT_FALSE(DeleteObject(bitmap));                    // still selected: stays alive
  EXPECT_EQ(SelectObject(a, brush), GetStockObject(WHITE_BRUSH));
  EXPECT_EQ(SelectObject(b, brush), GetStockObject(WHITE_BRUSH));  // brushes may be shared
  EXPECT_EQ(SelectObject(a, a), nullptr);                          // a DC is not selectable
  // Deleting a DC releases but does not delete what it held.
  EXPECT_TRUE(DeleteDC(a));
  EXPECT_TRUE(DeleteObject(bitmap));
  EXPECT_FALSE(DeleteObject(brush));  // b still holds it
  EXPECT_TRUE(DeleteDC(b));
  EXPECT_TRUE(DeleteObject(brush));
}

TEST_F(GdiObjects, StaleForeignAndNullHandlesFailQuietly) {
  HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
  HDC dc = CreateCompatibleDC(nullptr);
  HBITMAP bitmap = CreateBitmap(1, 1, 1, 32, nullptr);
  ASSERT_TRUE(DeleteObject(brush));
  ASSERT_TRUE(DeleteObject(bitmap));
  ASSERT_TRUE(DeleteDC(dc));
  // A new object may reuse the slot; the old handles must still not reach it.
  HBRUSH reused = CreateSolidBrush(RGB(4, 5, 6));
  HDC reusedDc = CreateCompatibleDC(nullptr);
  LOGBRUSH out{};
  EXPECT_EQ(GetPixel(dc, 0, 0), CLR_INVALID);
  EXPECT_EQ(SelectObject(reusedDc, bitmap), nullptr);
  for (const void* bogus :
       {static_cast<const void*>(brush), static_cast<const void*>(dc), static_cast<const void*>(nullptr),
        reinterpret_cast<const void*>(0x12345678), reinterpret_cast<const void*>(~std::uintptr_t{0}),
        static_cast<const void*>(&out)}) {
    HGDIOBJ handle = const_cast<void*>(bogus);
    EXPECT_EQ(GetObjectType(handle), 0u);
    EXPECT_FALSE(DeleteObject(handle));
    EXPECT_EQ(GetObjectA(handle, sizeof out, &out), 0);
    EXPECT_FALSE(DeleteDC(static_cast<HDC>(handle)));
    EXPECT_EQ(SelectObject(reusedDc, handle), nullptr);
    if (handle) {
      EXPECT_EQ(CreateCompatibleDC(static_cast<HDC>(handle)), nullptr);
    }
  }
  DeleteObject(reused);
  DeleteDC(reusedDc);
}

// What GetObject writes depends on the object and on the room it is given.
TEST_F(GdiObjects, GetObjectDescribesDibSectionsAndDeviceBitmapsWithinTheBuffer) {
  BITMAPINFO info{};
  info.bmiHeader = {40, 3, -2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  HBITMAP dib = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
  DIBSECTION section{};
  ASSERT_EQ(GetObjectA(dib, sizeof section, &section), 84);
  EXPECT_EQ(section.dsBmih.biHeight, -2);
  EXPECT_EQ(GetObjectA(dib, sizeof(BITMAP), &section), 24);
  HBITMAP device = CreateBitmap(2, 2, 1, 32, nullptr);
  EXPECT_EQ(GetObjectA(device, sizeof section, &section), 24);  // a device bitmap has no DIB header
  EXPECT_EQ(GetObjectA(device, 23, &section), 0);               // too small a buffer
  EXPECT_TRUE(DeleteObject(dib));
  EXPECT_TRUE(DeleteObject(device));
}

// The overflow row would be 2^31; the 64-bit row overflows a 32-bit product.
TEST(GdiMath, MulDivRoundsHalfAwayFromZero) {
  using Case = std::tuple<int, int, int, int>;
  for (const auto& [number, numerator, denominator, result] :
       {Case{5, 1, 2, 3}, Case{-5, 1, 2, -3}, Case{5, -1, 2, -3}, Case{-5, -1, -2, -3}, Case{7, 3, 4, 5},
        Case{0x40000000, 4, 2, -1}, Case{1 << 30, 1 << 20, 1 << 20, 1 << 30}, Case{3, 4, 0, -1}}) {
    EXPECT_EQ(MulDiv(number, numerator, denominator), result)
        << number << " * " << numerator << " / " << denominator;
  }
}

}  // namespace
