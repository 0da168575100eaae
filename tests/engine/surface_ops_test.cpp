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

// Rows are stored bottom-up, each pixel blue, green, red.
TEST_F(SurfaceOpsTest, BuffersAreBottomUpBlueGreenRed) {
  LiveEditor live(8, 2);
  HDC dc = live->m_surfaces.composition.dc();
  HBITMAP bitmap = MakeBitmap(dc, 2, 2, {kRed, kGreen, kBlue, 0x123456});
  PixelBuffer pixels = live->ReadSurfacePixels(dc, bitmap);
  ASSERT_TRUE(pixels);
  const BYTE* bytes = pixels.data();
  EXPECT_EQ(PixelColor(bytes), kBlue);  // buffer row 0 is the bitmap's bottom row
  EXPECT_EQ(bytes[3], 0x12);            // blue byte first
  EXPECT_EQ(PixelColor(bytes + 3), 0x123456u);
  EXPECT_EQ(PixelColor(bytes + pixels.stride()), kRed);
  StorePixelColor(pixels.data(), kWhite);
  live->WriteSurfacePixels(dc, bitmap, std::move(pixels));
  EXPECT_EQ(BitmapColors(bitmap), (std::vector<COLORREF>{kRed, kGreen, kWhite, 0x123456}));
  DeleteObject(bitmap);
}

TEST_F(SurfaceOpsTest, NothingIsReadWithoutADcOrAReadableBitmap) {
  LiveEditor live(8, 2);
  HBITMAP bitmap = CreateCompatibleBitmap(live->m_surfaces.composition.dc(), 3, 3);
  DeleteObject(bitmap);  // a stale handle: its header can no longer be read
  EXPECT_FALSE(live->ReadSurfacePixels(live->m_surfaces.composition.dc(), bitmap));
  EXPECT_FALSE(live->ReadSurfacePixels(nullptr, live->m_surfaces.composition.bitmap()));
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
    const Surface& surface = live->m_surfaces.composition;
    SetPixelBufferLimit(16);
    const PixelBuffer quiet = live->ReadSurfacePixels(surface.dc(), surface.bitmap());
    EXPECT_FALSE(quiet);
    EXPECT_EQ(quiet.stride(), 24);  // the size is known before the allocation fails
    EXPECT_TRUE(host_.messages.empty());

    live->EnableVerbose(1);
    EXPECT_FALSE(live->ReadSurfacePixels(surface.dc(), surface.bitmap()));
    ASSERT_EQ(host_.messages.size(), 1u);
    EXPECT_EQ(host_.messages[0].text, c.text);
    EXPECT_EQ(host_.messages[0].caption, "Image Edit Control");
    EXPECT_EQ(host_.messages[0].type & MB_ICONHAND, MB_ICONHAND);
    host_.messages.clear();
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
  }
}

// Until the first sizing makes the drawing layer, the bitmap brush keeps its own key
// colour; making the layer sets it to the layer's, even when the layer's bitmap
// cannot be made.
TEST_F(SurfaceOpsTest, DrawingLayerCreationResetsTheBrushKeyEvenWhenItFails) {
  HWND host = platform::CreateHostWindow(40, 30);
  {
    CImageEditWnd editor;
    ASSERT_TRUE(editor.CreateInParent(nullptr, "Image Edit", WS_CHILD, RECT{0, 0, 0, 0}, host, 1));
    ASSERT_EQ(editor.m_tools.bitmapBrushKeyColor, kInitialBitmapBrushKeyColor);
    HBITMAP before = editor.m_surfaces.drawingLayer.bitmap();
    // The sizing makes the composition buffer's bitmap first, then the layer's.
    platform::FailNthCreation(platform::GdiKind::Bitmap, 2);
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(30, 20));
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    EXPECT_EQ(editor.m_tools.bitmapBrushKeyColor, kKey);
    // The old bitmap stays; only the rectangle already has the new size.
    EXPECT_EQ(editor.m_surfaces.drawingLayer.bitmap(), before);
    EXPECT_EQ(editor.m_surfaces.drawingLayer.width(), 30);
    BITMAP info{};
    GetObjectA(editor.m_surfaces.drawingLayer.bitmap(), sizeof info, &info);
    EXPECT_EQ(info.bmWidth, 1);
  }
  DestroyWindow(host);
}

// The two ways of layering must give identical pixels: the platform's transparent
// copy and the mask sequence used when it is missing.
class TransparentBlitTest : public SurfaceOpsTest, public ::testing::WithParamInterface<bool> {};

TEST_P(TransparentBlitTest, LeavesOutExactlyTheKeyPixels) {
  platform::SetModuleAvailable("MSIMG32.DLL", GetParam());
  LiveEditor live(4, 4);
  ASSERT_EQ(live->m_shell.transparentBlt() != nullptr, GetParam());
  HDC target = live->m_surfaces.composition.dc();
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
  HDC target = live->m_surfaces.composition.dc();
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
  SetPixel(live->m_surfaces.drawingLayer.dc(), 1, 0, kBlue);
  FillRect(live->m_surfaces.composition.dc(), &live->m_surfaces.composition.rect(),
           static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  live->CompositeDrawingLayer(live->m_surfaces.composition.dc());
  EXPECT_EQ(SurfaceColors(live->m_surfaces.composition.dc(), 3, 1), (std::vector<COLORREF>{0, kBlue, 0}));
  // The layer is selected into its DC again: drawing on it still works.
  EXPECT_EQ(GetCurrentObject(live->m_surfaces.drawingLayer.dc(), OBJ_BITMAP),
            live->m_surfaces.drawingLayer.bitmap());
  live->CompositeDrawingLayer(nullptr);
  EXPECT_EQ(GetPixel(live->m_surfaces.drawingLayer.dc(), 1, 0), kBlue);
}

TEST_F(SurfaceOpsTest, RebuildWithoutAnOriginalPaintsTheKeyColour) {
  LiveEditor live(4, 3);
  live->RebuildImageSurface();
  EXPECT_EQ(SurfaceColors(live->m_surfaces.imageSurface.dc(), 4, 3), std::vector<COLORREF>(12, kKey));
}

TEST_F(SurfaceOpsTest, ResizingTheDrawingLayerStretchesItsSourceRectangle) {
  LiveEditor live(2, 2);
  SetPixel(live->m_surfaces.drawingLayer.dc(), 0, 0, kRed);
  SetPixel(live->m_surfaces.drawingLayer.dc(), 1, 1, kBlue);
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;
  live->ResizeDrawingLayer(4, 3, RECT{0, 0, 4, 2}, RECT{0, 0, 2, 1});
  EXPECT_EQ(live->m_surfaces.drawingLayer.width(), 4);
  EXPECT_EQ(live->m_surfaces.drawingLayer.height(), 3);
  EXPECT_EQ(SurfaceColors(live->m_surfaces.drawingLayer.dc(), 4, 3),
            (std::vector<COLORREF>{kRed, kRed, kKey, kKey, kRed, kRed, kKey, kKey, kKey, kKey, kKey, kKey}));
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);

  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  live->ResizeDrawingLayer(8, 8, RECT{0, 0, 8, 8}, RECT{0, 0, 4, 3});
  platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
  EXPECT_EQ(live->m_surfaces.drawingLayer.width(), 4);
  EXPECT_EQ(GetPixel(live->m_surfaces.drawingLayer.dc(), 0, 0), kRed);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);
}

// The brush becomes a silhouette in the current colour: its key pixels (the layer's
// key colour, once the layer exists) stay transparent, and recolouring keeps no
// bitmap it no longer needs.
TEST_F(SurfaceOpsTest, RecoloringTheBitmapBrushSparesKeyPixels) {
  LiveEditor live(4, 4);
  live->SetColor("0000FF");
  live->SetBitmapBrush(live.files.Write("brush.bmp", BitmapFile(2, 2, {kKey, kRed, kBlue, kKey})).c_str());
  ASSERT_EQ(live->m_tools.mode, ToolMode::BitmapBrush);
  EXPECT_EQ(BitmapColors(live->m_tools.bitmapBrush.get()), (std::vector<COLORREF>{kKey, kBlue, kBlue, kKey}));
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;

  live->RecolorBitmapBrush(kKey);
  EXPECT_EQ(BitmapColors(live->m_tools.bitmapBrush.get()), (std::vector<COLORREF>{kKey, kBlue, kBlue, kKey}));

  live->SetColor("00FF00");
  EXPECT_EQ(BitmapColors(live->m_tools.bitmapBrush.get()),
            (std::vector<COLORREF>{kKey, kGreen, kGreen, kKey}));
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore);
}

}  // namespace
