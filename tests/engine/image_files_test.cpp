#include <fstream>

#include "imageio/bmp_builder.h"
#include "imageio/image_loader.h"
#include "support/temp_files.h"
#include "test_support.h"

namespace {

constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kBlue = 0xFF0000;
using Colors = std::vector<COLORREF>;

// A 24-bit bitmap file of the given COLORREFs, top row first.
std::vector<std::uint8_t> BitmapFile(int width, int height, const Colors& colors) {
  return imageio_test::BuildTrueColourBmp(width, height, [&](int x, int y) {
    const COLORREF c = colors[static_cast<std::size_t>(y * width + x)];
    return static_cast<std::uint32_t>(GetRValue(c) << 16 | GetGValue(c) << 8 | GetBValue(c));
  });
}

// The picture in a written file: its width and height, and its pixels.
struct WrittenPicture {
  int width = 0;
  int height = 0;
  Colors colors;
};

WrittenPicture ReadWritten(const std::string& path) {
  HBITMAP bitmap = imageio::LoadImage(path.c_str(), {nullptr, false, 0x09});
  BITMAP info{};
  GetObjectA(bitmap, sizeof info, &info);
  WrittenPicture picture{info.bmWidth, info.bmHeight, BitmapColors(bitmap)};
  if (bitmap) DeleteObject(bitmap);
  return picture;
}

class ImageFilesTest : public HostedTest {
 protected:
  TempFiles files_{"image_files_"};
};

TEST_F(ImageFilesTest, SetImageLoadsTheOriginalAndLaysItOut) {
  LiveEditor live(20, 10);
  const Colors colors{kRed, kRed, kBlue, kBlue, kBlue, kBlue, kRed, kRed};
  live->m_view.scalingAllowed = false;
  live->SetImage(files_.Write("a.bmp", BitmapFile(4, 2, colors)).c_str());
  EXPECT_EQ(live->m_view.originalWidth, 4);
  EXPECT_EQ(live->m_view.originalHeight, 2);
  EXPECT_TRUE(live->m_view.scalingAllowed);
  EXPECT_EQ(BitmapColors(live->m_surfaces.original.get()), colors);
  // At 100 %, centred in the 20 x 10 surfaces (x 8..11, y 4..5).
  const Colors shown = SurfaceColors(live->m_surfaces.imageSurface.dc(), 20, 10);
  EXPECT_EQ(Colors(shown.begin() + 4 * 20 + 7, shown.begin() + 4 * 20 + 13),
            (Colors{0xFFFFFF, kRed, kRed, kBlue, kBlue, 0xFFFFFF}));
  EXPECT_EQ(Colors(shown.begin() + 5 * 20 + 8, shown.begin() + 5 * 20 + 12),
            (Colors{kBlue, kBlue, kRed, kRed}));
}

TEST_F(ImageFilesTest, FailedSetImageKeepsTheViewAndDropsTheOriginal) {
  LiveEditor live(20, 10);
  live->SetImage(files_.Write("b.bmp", BitmapFile(2, 1, {kRed, kBlue})).c_str());
  ASSERT_TRUE(live->m_surfaces.original);
  const Colors shown = SurfaceColors(live->m_surfaces.imageSurface.dc(), 20, 10);
  const HBITMAP drawingLayer = live->m_surfaces.drawingLayer.bitmap();
  live->m_view.scalingAllowed = false;
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;

  live->SetImage((platform::TempFolder() + "image_files_missing.bmp").c_str());
  EXPECT_FALSE(live->m_surfaces.original);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore - 1) << "the old original is deleted";
  EXPECT_FALSE(live->m_view.scalingAllowed);
  EXPECT_EQ(live->m_surfaces.drawingLayer.bitmap(), drawingLayer);
  EXPECT_EQ(SurfaceColors(live->m_surfaces.imageSurface.dc(), 20, 10), shown);
}

TEST_F(ImageFilesTest, SaveEditedBitmapWritesTheDisplayedImageWithItsStrokes) {
  LiveEditor live(20, 10);
  const Colors colors{kRed, 0x00FF00, kBlue, 0x808080, 0x123456, 0xFFFFFF};
  live->SetImage(files_.Write("c.bmp", BitmapFile(3, 2, colors)).c_str());
  // A stroke on the drawing layer over the image's second pixel.
  SetPixel(live->m_surfaces.drawingLayer.dc(), live->m_view.imageRect.left + 1, live->m_view.imageRect.top,
           0x0000AA);
  const std::string bare = files_.Name("saved.bmp");
  const int objectsBefore = platform::LiveGdiObjects().total();
  live->SaveEditedBitmap(bare.c_str());  // a bare name goes to the temp folder
  EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore) << "the scratch DC and bitmap are released";
  const WrittenPicture written = ReadWritten(files_.last());
  EXPECT_EQ(written.width, 3);
  Colors expected = colors;
  expected[1] = 0x0000AA;
  EXPECT_EQ(written.colors, expected);
}

TEST_F(ImageFilesTest, SaveSizeStretchesToAnyProportions) {
  LiveEditor live(20, 10);
  live->SetImage(
      files_.Write("d.bmp", BitmapFile(4, 2, {kRed, kRed, kBlue, kBlue, kRed, kRed, kBlue, kBlue})).c_str());
  live->SetSaveEditedBitmapSize(640, 0);
  live->SetSaveEditedBitmapSize(-1, 480);
  EXPECT_EQ(live->m_saveWidth, 0);
  EXPECT_EQ(live->m_saveHeight, 0);
  live->SetSaveEditedBitmapSize(8, 5);
  live->SaveEditedBitmap(files_.Name("stretched.bmp").c_str());
  const WrittenPicture written = ReadWritten(files_.last());
  ASSERT_EQ(written.width, 8);
  ASSERT_EQ(written.height, 5);
  // Halftoning, not sampling: the columns where red meets blue are blended 3:1 and 1:3.
  const Colors row{kRed, kRed, kRed, RGB(0xBF, 0, 0x40), RGB(0x40, 0, 0xBF), kBlue, kBlue, kBlue};
  for (int y = 0; y < 5; ++y) {
    EXPECT_EQ(Colors(written.colors.begin() + y * 8, written.colors.begin() + y * 8 + 8), row) << "row " << y;
  }
}

TEST_F(ImageFilesTest, FramePiecesWidenTheSavedArea) {
  LiveEditor live(60, 50);
  live->SetImage(files_.Write("e.bmp", BitmapFile(2, 2, {kRed, kRed, kRed, kRed})).c_str());
  live->m_framePresent = true;
  for (int orientation : {0, 2, 4, 6}) {
    live->m_frame[orientation].width = 20;
    live->m_frame[orientation].height = 20;
  }
  live->SaveEditedBitmap(files_.Name("framed.bmp").c_str());
  const WrittenPicture written = ReadWritten(files_.last());
  EXPECT_EQ(written.width, 42);
  EXPECT_EQ(written.height, 42);
  EXPECT_EQ(written.colors.at(20 * 42 + 20), kRed) << "the image sits inside the frame";
}

TEST_F(ImageFilesTest, SelectionBoxSaveTakesThePixelsSeenInTheBoxWhenScrolledAndNeedsABox) {
  LiveEditor live(10, 8);
  // A 30 x 20 picture larger than the view, each pixel distinct.
  Colors colors;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) colors.push_back(RGB(x * 8, y * 12, 77));
  }
  live->SetImage(files_.Write("f.bmp", BitmapFile(30, 20, colors)).c_str());
  ASSERT_EQ(live->m_view.imageRect.left, 0);
  live->m_view.hScrollPos = 5;
  live->m_view.vScrollPos = 3;
  live->m_selectionBox = {.x = 2, .y = 1, .width = 3, .height = 2};
  live->m_saveWidth = 100;  // the save size plays no part here
  live->m_saveHeight = 100;
  const int objectsBefore = platform::LiveGdiObjects().total();
  live->SaveSelectionBoxBitmap(files_.Name("box.bmp").c_str());
  EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore);
  const WrittenPicture written = ReadWritten(files_.last());
  ASSERT_EQ(written.width, 3);
  const auto seen = [&](int x, int y) { return colors[static_cast<std::size_t>((y + 4) * 30 + x + 7)]; };
  EXPECT_EQ(written.colors, (Colors{seen(0, 0), seen(1, 0), seen(2, 0), seen(0, 1), seen(1, 1), seen(2, 1)}));

  live->m_selectionBox.height = 0;
  live->SaveSelectionBoxBitmap(files_.Name("nobox.bmp").c_str());
  EXPECT_FALSE(std::ifstream(files_.last()).good());
}

}  // namespace
