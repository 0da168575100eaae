#include <fstream>

#include "imageio/bitmap_file_reader.h"
#include "imageio/bmp_builder.h"
#include "support/temp_files.h"
#include "test_support.h"

namespace {

constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kBlue = 0xFF0000;

// A 24-bit bitmap file of the given COLORREFs, top row first.
std::vector<std::uint8_t> BitmapFile(int width, int height, const std::vector<COLORREF>& colors) {
  return imageio_test::BuildTrueColourBmp(width, height, [&](int x, int y) {
    const COLORREF c = colors[static_cast<std::size_t>(y * width + x)];
    return static_cast<std::uint32_t>(GetRValue(c) << 16 | GetGValue(c) << 8 | GetBValue(c));
  });
}

// The pixels of a written bitmap file as COLORREFs, top row first.
struct WrittenPicture {
  int width = 0;
  int height = 0;
  std::vector<COLORREF> colors;
};

std::optional<WrittenPicture> ReadWritten(const std::string& path) {
  const std::vector<std::uint8_t> data = ReadFileBytes(path);
  const auto dib = imageio::ReadBitmapFile(data.data(), data.size());
  if (!dib) return std::nullopt;
  WrittenPicture picture{dib->width, dib->height, {}};
  for (int y = 0; y < dib->height; ++y) {
    for (int x = 0; x < dib->width; ++x) {
      const std::uint8_t* p =
          dib->rows.data() + static_cast<std::size_t>(dib->height - 1 - y) * dib->stride + x * 3;
      picture.colors.push_back(RGB(p[2], p[1], p[0]));
    }
  }
  return picture;
}

class ImageFilesTest : public HostedTest {
 protected:
  TempFiles files_{"image_files_"};
};

TEST_F(ImageFilesTest, SetImageLoadsTheOriginalAndLaysItOut) {
  LiveEditor live(20, 10);
  const std::vector<COLORREF> colors{kRed, kRed, kBlue, kBlue, kBlue, kBlue, kRed, kRed};
  live->m_view.scalingAllowed = false;
  live->SetImage(files_.Write("a.bmp", BitmapFile(4, 2, colors)).c_str());
  ASSERT_TRUE(live->m_surfaces.original);
  EXPECT_EQ(live->m_view.originalWidth, 4);
  EXPECT_EQ(live->m_view.originalHeight, 2);
  EXPECT_TRUE(live->m_view.scalingAllowed);
  EXPECT_EQ(BitmapColors(live->m_surfaces.original.get()), colors);
  // At 100 %, centred in the 20 x 10 surfaces.
  EXPECT_EQ(live->m_view.displayedWidth, 4);
  EXPECT_EQ(live->m_view.imageRect.left, 8);
  EXPECT_EQ(live->m_view.imageRect.top, 4);
  EXPECT_EQ(GetPixel(live->m_surfaces.imageSurface.dc(), 8, 4), kRed);
  EXPECT_EQ(GetPixel(live->m_surfaces.imageSurface.dc(), 11, 5), kRed);
  EXPECT_EQ(GetPixel(live->m_surfaces.imageSurface.dc(), 10, 4), kBlue);
}

TEST_F(ImageFilesTest, FailedSetImageKeepsTheViewAndDropsTheOriginal) {
  LiveEditor live(20, 10);
  live->SetImage(files_.Write("b.bmp", BitmapFile(2, 1, {kRed, kBlue})).c_str());
  ASSERT_TRUE(live->m_surfaces.original);
  const std::vector<COLORREF> shown = SurfaceColors(live->m_surfaces.imageSurface.dc(), 20, 10);
  const HBITMAP drawingLayer = live->m_surfaces.drawingLayer.bitmap();
  live->m_view.scalingAllowed = false;
  const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;

  live->SetImage((platform::TempFolder() + "image_files_missing.bmp").c_str());
  EXPECT_FALSE(live->m_surfaces.original);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmapsBefore - 1) << "the old original is deleted";
  EXPECT_FALSE(live->m_view.scalingAllowed);
  EXPECT_EQ(live->m_surfaces.drawingLayer.bitmap(), drawingLayer);
  EXPECT_EQ(SurfaceColors(live->m_surfaces.imageSurface.dc(), 20, 10), shown);
  EXPECT_TRUE(host_.messages.empty()) << "not verbose";

  live->m_verbose = true;
  live->SetImage("/nonexistent/picture.png");
  ASSERT_EQ(host_.messages.size(), 1u);
  EXPECT_EQ(host_.messages[0].text, "I failed to read /nonexistent/picture.png. An error code is 2.");
}

TEST_F(ImageFilesTest, SetImageBeforeTheWindowExistsDoesNothing) {
  CImageEditWnd editor;
  editor.SetImage((std::string(IE_TEST_DATA) + "/imageio/rgba_2x2.png").c_str());
  EXPECT_FALSE(editor.m_surfaces.original);
}

TEST_F(ImageFilesTest, SaveEditedBitmapWritesTheDisplayedImageWithItsStrokes) {
  LiveEditor live(20, 10);
  const std::vector<COLORREF> colors{kRed, 0x00FF00, kBlue, 0x808080, 0x123456, 0xFFFFFF};
  live->SetImage(files_.Write("c.bmp", BitmapFile(3, 2, colors)).c_str());
  // A stroke on the drawing layer over the image's second pixel.
  SetPixel(live->m_surfaces.drawingLayer.dc(), live->m_view.imageRect.left + 1, live->m_view.imageRect.top,
           0x0000AA);
  const std::string bare = files_.Name("saved.bmp");
  const int objectsBefore = platform::LiveGdiObjects().total();
  live->SaveEditedBitmap(bare.c_str());  // a bare name goes to the temp folder
  EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore) << "the scratch DC and bitmap are released";
  const auto written = ReadWritten(files_.last());
  ASSERT_TRUE(written);
  EXPECT_EQ(written->width, 3);
  EXPECT_EQ(written->height, 2);
  std::vector<COLORREF> expected = colors;
  expected[1] = 0x0000AA;
  EXPECT_EQ(written->colors, expected);
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
  EXPECT_EQ(live->m_saveWidth, 8);
  EXPECT_EQ(live->m_saveHeight, 5);

  live->SaveEditedBitmap(files_.Name("stretched.bmp").c_str());
  const auto written = ReadWritten(files_.last());
  ASSERT_TRUE(written);
  ASSERT_EQ(written->width, 8);
  ASSERT_EQ(written->height, 5);
  // The same halftone stretch of the displayed image, made directly.
  HDC expectedDc = CreateCompatibleDC(live->m_surfaces.composition.dc());
  HBITMAP expected = CreateCompatibleBitmap(live->m_surfaces.composition.dc(), 8, 5);
  HGDIOBJ previous = SelectObject(expectedDc, expected);
  SetStretchBltMode(expectedDc, HALFTONE);
  StretchBlt(expectedDc, 0, 0, 8, 5, live->m_surfaces.imageSurface.dc(), live->m_view.imageRect.left,
             live->m_view.imageRect.top, 4, 2, SRCCOPY);
  EXPECT_EQ(written->colors, SurfaceColors(expectedDc, 8, 5));
  EXPECT_EQ(written->colors.front(), kRed);
  EXPECT_EQ(written->colors.back(), kBlue);
  SelectObject(expectedDc, previous);
  DeleteObject(expected);
  DeleteDC(expectedDc);
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
  const auto written = ReadWritten(files_.last());
  ASSERT_TRUE(written);
  EXPECT_EQ(written->width, 42);
  EXPECT_EQ(written->height, 42);
  EXPECT_EQ(written->colors[static_cast<std::size_t>(20 * 42 + 20)], kRed)
      << "the image sits inside the frame";
}

TEST_F(ImageFilesTest, SelectionBoxSaveTakesThePixelsSeenInTheBoxWhenScrolled) {
  LiveEditor live(10, 8);
  // A 30 x 20 picture larger than the view, each pixel distinct.
  std::vector<COLORREF> colors;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) colors.push_back(RGB(x * 8, y * 12, 77));
  }
  live->SetImage(files_.Write("f.bmp", BitmapFile(30, 20, colors)).c_str());
  ASSERT_EQ(live->m_view.imageRect.left, 0);
  live->m_view.hScrollPos = 5;
  live->m_view.vScrollPos = 3;
  live->m_selectionBox.x = 2;
  live->m_selectionBox.y = 1;
  live->m_selectionBox.width = 3;
  live->m_selectionBox.height = 2;
  live->m_saveWidth = 100;  // the save size plays no part here
  live->m_saveHeight = 100;
  const int objectsBefore = platform::LiveGdiObjects().total();
  live->SaveSelectionBoxBitmap(files_.Name("box.bmp").c_str());
  EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore);
  const auto written = ReadWritten(files_.last());
  ASSERT_TRUE(written);
  ASSERT_EQ(written->width, 3);
  ASSERT_EQ(written->height, 2);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(written->colors[static_cast<std::size_t>(y * 3 + x)],
                colors[static_cast<std::size_t>((y + 4) * 30 + x + 7)]);
    }
  }
}

TEST_F(ImageFilesTest, SelectionBoxSaveWithoutABoxWritesNothing) {
  LiveEditor live(10, 8);
  live->SetImage(files_.Write("g.bmp", BitmapFile(2, 2, {kRed, kRed, kRed, kRed})).c_str());
  live->m_selectionBox.width = 5;
  live->SaveSelectionBoxBitmap(files_.Name("nobox.bmp").c_str());
  EXPECT_FALSE(std::ifstream(files_.last()).good());
}

}  // namespace
