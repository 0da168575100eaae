// Saving what only the engine can set up (strokes, frame pieces, a placed selection
// box); loading and saving as a host sees them is the scenario tests/cli/image_files.ies.
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
