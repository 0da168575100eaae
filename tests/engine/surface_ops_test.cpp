#include <algorithm>

#include "pixels/pixel_buffer.h"
#include "test_support.h"

namespace {

constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kGreen = 0x00FF00;
constexpr COLORREF kBlue = 0xFF0000;
constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kKey = kDrawingLayerKeyColor;

class SurfaceOpsTest : public HostedTest {
 protected:
  // Restores the buffer limit that some tests lower.
  void TearDown() override {
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
    HostedTest::TearDown();
  }
};

TEST_F(SurfaceOpsTest, BufferRowsArePaddedToFourBytes) {
  LiveEditor live(8, 2);
  for (auto [width, stride] : {std::pair{1, 4}, std::pair{4, 12}, std::pair{5, 16}}) {
    HBITMAP bitmap = CreateCompatibleBitmap(live->m_composition.dc, width, 2);
    int w = 0, h = 0, s = 0;
    BYTE* pixels = live->ReadSurfacePixels(live->m_composition.dc, bitmap, &w, &h, &s);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(w, width);
    EXPECT_EQ(h, 2);
    EXPECT_EQ(s, stride);
    live->WriteSurfacePixels(live->m_composition.dc, bitmap, pixels);
    DeleteObject(bitmap);
  }
}

TEST_F(SurfaceOpsTest, BufferIsBottomUpBlueGreenRed) {
  LiveEditor live(8, 2);
  HBITMAP bitmap = MakeBitmap(live->m_composition.dc, 2, 2, {kRed, kGreen, kBlue, 0x123456});
  int w = 0, h = 0, s = 0;
  BYTE* pixels = live->ReadSurfacePixels(live->m_composition.dc, bitmap, &w, &h, &s);
  ASSERT_NE(pixels, nullptr);
  // Row 0 of the buffer is the bottom row of the bitmap.
  EXPECT_EQ(PixelColor(pixels + 0), kBlue);
  EXPECT_EQ(PixelColor(pixels + 3), 0x123456u);
  EXPECT_EQ(pixels[3], 0x12);  // blue byte first
  EXPECT_EQ(PixelColor(pixels + s), kRed);
  EXPECT_EQ(PixelColor(pixels + s + 3), kGreen);

  StorePixelColor(pixels, kWhite);
  live->WriteSurfacePixels(live->m_composition.dc, bitmap, pixels);
  EXPECT_EQ(BitmapColors(bitmap), (std::vector<COLORREF>{kRed, kGreen, kWhite, 0x123456}));
  DeleteObject(bitmap);
}

TEST_F(SurfaceOpsTest, ReadingAnUnreadableBitmapLeavesTheOutArgumentsAlone) {
  LiveEditor live(8, 2);
  HBITMAP bitmap = CreateCompatibleBitmap(live->m_composition.dc, 3, 3);
  DeleteObject(bitmap);  // a stale handle: its header can no longer be read
  int w = -7, h = -8, s = -9;
  EXPECT_EQ(live->ReadSurfacePixels(live->m_composition.dc, bitmap, &w, &h, &s), nullptr);
  EXPECT_EQ(live->ReadSurfacePixels(nullptr, live->m_composition.bitmap, &w, &h, &s), nullptr);
  EXPECT_EQ(w, -7);
  EXPECT_EQ(h, -8);
  EXPECT_EQ(s, -9);
}

TEST_F(SurfaceOpsTest, OutOfMemoryIsReportedOnlyWhileVerboseInTheUserLanguage) {
  struct Case {
    LANGID language;
    const char* text;
  };
  for (const Case& c :
       {Case{0x0412, "메모리가 부족합니다."}, Case{0x0804, "内存不足."}, Case{0x0409, "Out of Memory."}}) {
    platform::SetUserDefaultLangID(c.language);
    LiveEditor live(8, 4);
    SetPixelBufferLimit(16);
    int w = 0, h = 0, s = 0;
    EXPECT_EQ(live->ReadSurfacePixels(live->m_composition.dc, live->m_composition.bitmap, &w, &h, &s),
              nullptr);
    EXPECT_TRUE(host_.messages.empty());
    // The sizes are known before the allocation fails.
    EXPECT_EQ(w, 8);
    EXPECT_EQ(s, 24);

    live->EnableVerbose(1);
    EXPECT_EQ(live->ReadSurfacePixels(live->m_composition.dc, live->m_composition.bitmap, &w, &h, &s),
              nullptr);
    ASSERT_EQ(host_.messages.size(), 1u);
    EXPECT_EQ(host_.messages[0].text, c.text);
    EXPECT_EQ(host_.messages[0].caption, "Image Edit Control");
    EXPECT_EQ(host_.messages[0].type & MB_ICONHAND, MB_ICONHAND);
    host_.messages.clear();
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
  }
}

TEST_F(SurfaceOpsTest, WritingToNoBitmapStillFreesTheBuffer) {
  LiveEditor live(8, 2);
  // The sanitizer build's leak check fails this test if the buffer is kept.
  live->WriteSurfacePixels(live->m_composition.dc, nullptr, AllocatePixelBuffer(64));
  live->WriteSurfacePixels(nullptr, live->m_composition.bitmap, AllocatePixelBuffer(64));
  EXPECT_EQ(GetPixel(live->m_composition.dc, 0, 0), kWhite);
}

TEST_F(SurfaceOpsTest, DrawingLayerCreationResetsTheBrushKeyEvenWhenItFails) {
  LiveEditor live(10, 10);
  live->m_bitmapBrushKeyColor = kInitialBitmapBrushKeyColor;
  HBITMAP before = live->m_drawingLayer.bitmap;
  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  live->CreateDrawingLayer(30, 20);
  platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
  EXPECT_EQ(live->m_bitmapBrushKeyColor, kKey);
  // The old bitmap stays; only the rectangle already has the new size.
  EXPECT_EQ(live->m_drawingLayer.bitmap, before);
  EXPECT_EQ(live->m_drawingLayer.width(), 30);
  BITMAP info{};
  GetObjectA(live->m_drawingLayer.bitmap, sizeof info, &info);
  EXPECT_EQ(info.bmWidth, 10);
}

TEST_F(SurfaceOpsTest, SurfaceCreationReplacesAndFills) {
  LiveEditor live(10, 10);
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;
  FillRect(live->m_composition.dc, &live->m_composition.rect,
           static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  live->CreateCompositionBuffer(3, 2);
  live->CreateDrawingLayer(2, 2);
  live->CreateImageSurface(1, 1);
  EXPECT_EQ(SurfaceColors(live->m_composition.dc, 3, 2), std::vector<COLORREF>(6, kWhite));
  EXPECT_EQ(SurfaceColors(live->m_drawingLayer.dc, 2, 2), std::vector<COLORREF>(4, kKey));
  EXPECT_EQ(GetPixel(live->m_imageSurface.dc, 0, 0), kWhite);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);
}

// The two ways of layering must give identical pixels: the platform's transparent
// copy and the mask sequence used when it is missing.
class TransparentBlitTest : public SurfaceOpsTest, public ::testing::WithParamInterface<bool> {};

TEST_P(TransparentBlitTest, LeavesOutExactlyTheKeyPixels) {
  platform::SetModuleAvailable("MSIMG32.DLL", GetParam());
  LiveEditor live(4, 4);
  ASSERT_EQ(live->m_transparentBlt != nullptr, GetParam());
  HDC target = live->m_composition.dc;
  const int before = platform::LiveGdiObjects().total();

  const std::vector<COLORREF> sourceColors{kKey, kRed, kGreen, kKey, 0x0B4312, kBlue};
  HBITMAP source = MakeBitmap(target, 3, 2, sourceColors);
  live->TransparentBlit(target, source, 1, 1, 3, 2, kKey);
  EXPECT_EQ(SurfaceColors(target, 4, 4),
            (std::vector<COLORREF>{kWhite, kWhite, kWhite, kWhite,   //
                                   kWhite, kWhite, kRed, kGreen,     //
                                   kWhite, kWhite, 0x0B4312, kBlue,  // one bit off the key is paint
                                   kWhite, kWhite, kWhite, kWhite}));
  EXPECT_EQ(BitmapColors(source), sourceColors) << "the source must not change";

  // A key that occurs nowhere is a plain copy; a source all of the key changes nothing.
  live->TransparentBlit(target, source, 0, 0, 3, 2, 0x010101);
  EXPECT_EQ(SurfaceColors(target, 3, 1), (std::vector<COLORREF>{kKey, kRed, kGreen}));
  HBITMAP allKey = MakeBitmap(target, 2, 2, std::vector<COLORREF>(4, kKey));
  const std::vector<COLORREF> untouched = SurfaceColors(target, 4, 4);
  live->TransparentBlit(target, allKey, 2, 2, 2, 2, kKey);
  EXPECT_EQ(SurfaceColors(target, 4, 4), untouched);

  DeleteObject(source);
  DeleteObject(allKey);
  EXPECT_EQ(platform::LiveGdiObjects().total(), before);
}

TEST_P(TransparentBlitTest, DrawsNothingAndLeaksNothingWhenAResourceFails) {
  platform::SetModuleAvailable("MSIMG32.DLL", GetParam());
  LiveEditor live(4, 4);
  HDC target = live->m_composition.dc;
  HBITMAP source = MakeBitmap(target, 2, 2, std::vector<COLORREF>(4, kRed));
  const int before = platform::LiveGdiObjects().total();
  platform::FailNthCreation(platform::GdiKind::DC, 1);
  live->TransparentBlit(target, source, 0, 0, 2, 2, kKey);
  platform::FailNthCreation(platform::GdiKind::DC, 0);
  if (!GetParam()) {
    // The copy of the source is the second bitmap the mask sequence makes.
    platform::FailNthCreation(platform::GdiKind::Bitmap, 2);
    live->TransparentBlit(target, source, 0, 0, 2, 2, kKey);
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
  }
  EXPECT_EQ(SurfaceColors(target, 2, 2), std::vector<COLORREF>(4, kWhite));
  EXPECT_EQ(platform::LiveGdiObjects().total(), before);
  DeleteObject(source);
}

INSTANTIATE_TEST_SUITE_P(BothBranches, TransparentBlitTest, ::testing::Values(true, false),
                         [](const auto& param) { return param.param ? "PlatformEntry" : "MaskSequence"; });

TEST_F(SurfaceOpsTest, CompositingPutsStrokesOverTheTargetAndReselectsTheLayer) {
  LiveEditor live(3, 1);
  SetPixel(live->m_drawingLayer.dc, 1, 0, kBlue);
  FillRect(live->m_composition.dc, &live->m_composition.rect,
           static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  live->CompositeDrawingLayer(live->m_composition.dc);
  EXPECT_EQ(SurfaceColors(live->m_composition.dc, 3, 1), (std::vector<COLORREF>{0, kBlue, 0}));
  // The layer is selected into its DC again: drawing on it still works.
  EXPECT_EQ(GetCurrentObject(live->m_drawingLayer.dc, OBJ_BITMAP), live->m_drawingLayer.bitmap);
  live->CompositeDrawingLayer(nullptr);
  EXPECT_EQ(GetPixel(live->m_drawingLayer.dc, 1, 0), kBlue);
}

TEST_F(SurfaceOpsTest, RebuildWithoutAnOriginalPaintsTheKeyColour) {
  LiveEditor live(4, 3);
  live->RebuildImageSurface();
  EXPECT_EQ(SurfaceColors(live->m_imageSurface.dc, 4, 3), std::vector<COLORREF>(12, kKey));
}

TEST_F(SurfaceOpsTest, RebuildStretchesTheOriginalIntoTheImageRectangleOnly) {
  LiveEditor live(6, 4);
  live->m_originalImage = MakeBitmap(live->m_composition.dc, 2, 1, {kRed, kBlue});
  live->m_originalWidth = 2;
  live->m_originalHeight = 1;
  live->m_imageRect = RECT{1, 1, 5, 3};
  live->m_displayedWidth = 4;
  live->m_displayedHeight = 2;
  live->RebuildImageSurface();
  const std::vector<COLORREF> colors = SurfaceColors(live->m_imageSurface.dc, 6, 4);
  // Outside the image rectangle the surface keeps its white.
  for (int x = 0; x < 6; ++x) {
    EXPECT_EQ(colors[static_cast<size_t>(x)], kWhite);
    EXPECT_EQ(colors[static_cast<size_t>(18 + x)], kWhite);
  }
  EXPECT_EQ(colors[6], kWhite);
  EXPECT_EQ(colors[11], kWhite);
  // Inside, the ends of each row keep the original's colours.
  EXPECT_EQ(colors[7], kRed);
  EXPECT_EQ(colors[10], kBlue);
  EXPECT_EQ(colors[13], kRed);
  EXPECT_EQ(colors[16], kBlue);
}

TEST_F(SurfaceOpsTest, ResizingTheDrawingLayerStretchesItsSourceRectangle) {
  LiveEditor live(2, 2);
  SetPixel(live->m_drawingLayer.dc, 0, 0, kRed);
  SetPixel(live->m_drawingLayer.dc, 1, 1, kBlue);
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;
  live->ResizeDrawingLayer(4, 3, RECT{0, 0, 4, 2}, RECT{0, 0, 2, 1});
  EXPECT_EQ(live->m_drawingLayer.width(), 4);
  EXPECT_EQ(live->m_drawingLayer.height(), 3);
  EXPECT_EQ(SurfaceColors(live->m_drawingLayer.dc, 4, 3),
            (std::vector<COLORREF>{kRed, kRed, kKey, kKey, kRed, kRed, kKey, kKey, kKey, kKey, kKey, kKey}));
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);

  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  live->ResizeDrawingLayer(8, 8, RECT{0, 0, 8, 8}, RECT{0, 0, 4, 3});
  platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
  EXPECT_EQ(live->m_drawingLayer.width(), 4);
  EXPECT_EQ(GetPixel(live->m_drawingLayer.dc, 0, 0), kRed);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);
}

TEST_F(SurfaceOpsTest, RecoloringTheBitmapBrushSparesKeyPixels) {
  LiveEditor live(4, 4);
  const COLORREF key = live->m_bitmapBrushKeyColor;
  live->m_toolWidth = 2;
  live->m_bitmapBrush = MakeBitmap(live->m_composition.dc, 2, 2, {key, kRed, kBlue, key});
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;

  live->RecolorBitmapBrush(key);
  EXPECT_EQ(BitmapColors(live->m_bitmapBrush), (std::vector<COLORREF>{key, kRed, kBlue, key}));

  live->RecolorBitmapBrush(kGreen);
  EXPECT_EQ(BitmapColors(live->m_bitmapBrush), (std::vector<COLORREF>{key, kGreen, kGreen, key}));
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);
}

}  // namespace
