// Saving what only the engine can set up (strokes, a placed selection box); loading
// and saving as a host sees them is the scenario tests/cli/image_files.ies.
#include <fstream>

#include "imageio/bmp_builder.h"
#include "imageio/image_loader.h"
#include "support/temp_files.h"
#include "test_support.h"

namespace {

constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kBlue = 0xFF0000;
using Colors = std::vector<COLORREF>;

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
  live.Show(3, 2, colors);
  // A stroke on the drawing layer over the image's second pixel.
  SetPixel(live->m_surfaces.drawingLayer.dc(), live->m_view.imageRect().left + 1,
           live->m_view.imageRect().top, 0x0000AA);
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

TEST_F(ImageFilesTest, SelectionBoxSaveTakesThePixelsSeenInTheBoxWhenScrolledAndNeedsABox) {
  LiveEditor live(40, 30);
  // An 80 x 60 picture larger than the view, each pixel distinct: both bars, which
  // leave a client area of 23 x 13.
  Colors colors;
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 80; ++x) colors.push_back(RGB(x * 3, y * 4, 77));
  }
  live.Show(80, 60, colors);
  ASSERT_EQ(live->m_view.imageRect().left, 0);
  live->OnHScroll(SB_THUMBPOSITION, 5, nullptr);
  live->OnVScroll(SB_THUMBPOSITION, 3, nullptr);
  live->SetSelectionBox(3, 2);
  const RECT box = live->m_selectionBox.WindowRect();
  ASSERT_EQ(box.left, 10);
  ASSERT_EQ(box.top, 5);
  live->SetSaveEditedBitmapSize(100, 100);  // the save size plays no part here
  const int objectsBefore = platform::LiveGdiObjects().total();
  live->SaveSelectionBoxBitmap(files_.Name("box.bmp").c_str());
  EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore);
  const WrittenPicture written = ReadWritten(files_.last());
  ASSERT_EQ(written.width, 3);
  const auto seen = [&](int x, int y) {
    return colors[static_cast<std::size_t>((y + 5 + 3) * 80 + x + 10 + 5)];
  };
  EXPECT_EQ(written.colors, (Colors{seen(0, 0), seen(1, 0), seen(2, 0), seen(0, 1), seen(1, 1), seen(2, 1)}));

  live->SetSelectionBox(3, 0);
  live->SaveSelectionBoxBitmap(files_.Name("nobox.bmp").c_str());
  EXPECT_FALSE(std::ifstream(files_.last()).good());
}

}  // namespace
