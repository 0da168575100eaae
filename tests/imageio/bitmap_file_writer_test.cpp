#include "imageio/bitmap_file_writer.h"

#include <gtest/gtest.h>

#include <fstream>

#include "bmp_builder.h"
#include "pillow_reader.h"
#include "platform/platform.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

namespace {

using imageio::WriteBitmapFile;
using imageio::WriteContext;

// A colour bitmap whose pixel (x, y) is `color(x, y)` (0x00RRGGBB).
template <typename ColorAt>
HBITMAP MakeBitmap(int width, int height, ColorAt color) {
  HDC screen = GetDC(nullptr);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
  const std::vector<std::uint8_t> file = imageio_test::BuildTrueColourBmp(width, height, color);
  BITMAPINFO info{};
  info.bmiHeader = {40, width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  SetDIBits(screen, bitmap, 0, static_cast<UINT>(height), file.data() + 54, &info, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  return bitmap;
}

std::uint32_t Field32(const std::vector<std::uint8_t>& file, std::size_t at) {
  return file[at] | (file[at + 1] << 8) | (file[at + 2] << 16) |
         (static_cast<std::uint32_t>(file[at + 3]) << 24);
}
std::uint32_t Field16(const std::vector<std::uint8_t>& file, std::size_t at) {
  return file[at] | (file[at + 1] << 8);
}

class BitmapFileWriterTest : public ::testing::Test {
 protected:
  InstalledRecordingHost host_;
  TempFiles files_{"imageio_writer_"};
};

const WriteContext kQuiet{nullptr, false, 0x09};
const WriteContext kVerbose{nullptr, true, 0x09};

TEST_F(BitmapFileWriterTest, TrueColourFileHasTheTwentyFourBitHeader) {
  HBITMAP bitmap =
      MakeBitmap(3, 2, [](int x, int y) { return static_cast<std::uint32_t>(0x102030 * (x + 3 * y)); });
  const std::string bare = files_.Name("fields.bmp");
  WriteBitmapFile(bare.c_str(), bitmap, kQuiet);  // a bare name lands in the temp folder
  const std::vector<std::uint8_t> file = ReadFileBytes(files_.last());
  ASSERT_EQ(file.size(), 54u + 12u * 2u);
  EXPECT_EQ(Field16(file, 0), 0x4D42u);
  EXPECT_EQ(Field32(file, 2), 78u);   // bfSize
  EXPECT_EQ(Field32(file, 6), 0u);    // reserved
  EXPECT_EQ(Field32(file, 10), 54u);  // bfOffBits
  EXPECT_EQ(Field32(file, 14), 40u);
  EXPECT_EQ(Field32(file, 18), 3u);
  EXPECT_EQ(Field32(file, 22), 2u);  // positive: bottom-up
  EXPECT_EQ(Field16(file, 26), 1u);
  EXPECT_EQ(Field16(file, 28), 24u);
  EXPECT_EQ(Field32(file, 30), 0u);   // BI_RGB
  EXPECT_EQ(Field32(file, 34), 24u);  // biSizeImage
  EXPECT_EQ(Field32(file, 38), 0u);
  EXPECT_EQ(Field32(file, 42), 0u);
  EXPECT_EQ(Field32(file, 46), 0u);  // biClrUsed
  EXPECT_EQ(Field32(file, 50), 0u);
  // First stored row is the bottom one: pixels 3, 4, 5 of 0x102030 steps, then padding.
  EXPECT_EQ(file[54], 0x90);  // blue of 3 x 0x102030 = 0x306090
  EXPECT_EQ(file[55], 0x60);
  EXPECT_EQ(file[56], 0x30);
  EXPECT_EQ(file[63], 0);
  EXPECT_EQ(file[64], 0);
  EXPECT_EQ(file[65], 0);
  DeleteObject(bitmap);
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(BitmapFileWriterTest, OnePixelWideRowsArePaddedToFourBytes) {
  HBITMAP bitmap = MakeBitmap(1, 3, [](int, int y) { return 0x010203u * static_cast<std::uint32_t>(y + 1); });
  files_.Name("narrow.bmp");
  WriteBitmapFile(files_.last().c_str(), bitmap, kQuiet);
  const std::vector<std::uint8_t> file = ReadFileBytes(files_.last());
  ASSERT_EQ(file.size(), 54u + 12u);
  EXPECT_EQ(Field32(file, 34), 12u);
  const std::vector<std::uint8_t> rows(file.begin() + 54, file.end());
  EXPECT_EQ(rows, (std::vector<std::uint8_t>{0x09, 0x06, 0x03, 0, 0x06, 0x04, 0x02, 0, 0x03, 0x02, 0x01, 0}));
  DeleteObject(bitmap);
}

TEST_F(BitmapFileWriterTest, AnotherReaderSeesTheSamePixels) {
  SKIP_WITHOUT_PILLOW();
  auto color = [](int x, int y) {
    return static_cast<std::uint32_t>((x * 37) << 16 | (y * 53) << 8 | ((x + y) * 11));
  };
  HBITMAP bitmap = MakeBitmap(7, 5, color);
  files_.Name("pillow.bmp");
  WriteBitmapFile(files_.last().c_str(), bitmap, kQuiet);
  const auto picture = imageio_test::ReadWithPillow(files_.last());
  ASSERT_TRUE(picture);
  ASSERT_EQ(picture->width, 7);
  ASSERT_EQ(picture->height, 5);
  for (int y = 0; y < 5; ++y) {
    for (int x = 0; x < 7; ++x) EXPECT_EQ(picture->at(x, y), color(x, y)) << x << "," << y;
  }
  DeleteObject(bitmap);
}

TEST_F(BitmapFileWriterTest, NothingIsWrittenWithoutPathOrBitmap) {
  HBITMAP bitmap = MakeBitmap(1, 1, [](int, int) { return 0u; });
  const std::string bare = files_.Name("nothing.bmp");
  WriteBitmapFile(bare.c_str(), nullptr, kVerbose);
  WriteBitmapFile("", bitmap, kVerbose);
  WriteBitmapFile(nullptr, bitmap, kVerbose);
  DeleteObject(bitmap);
  WriteBitmapFile(bare.c_str(), bitmap, kVerbose);  // a deleted bitmap cannot be described
  EXPECT_FALSE(std::ifstream(files_.last()).good());
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(BitmapFileWriterTest, AFileThatCannotBeCreatedIsReportedOnlyWhileVerbose) {
  HBITMAP bitmap = MakeBitmap(2, 2, [](int, int) { return 0xFFFFFFu; });
  const std::string path = platform::TempFolder() + "imageio_no_such_folder/out.bmp";
  WriteBitmapFile(path.c_str(), bitmap, kQuiet);
  EXPECT_TRUE(host_.messages.empty());
  WriteBitmapFile(path.c_str(), bitmap, kVerbose);
  WriteBitmapFile(path.c_str(), bitmap, {nullptr, true, 0x12});
  ASSERT_EQ(host_.messages.size(), 2u);
  EXPECT_EQ(host_.messages[0].text, "I failed to save " + path + ".");
  EXPECT_EQ(host_.messages[0].type, MB_OK);
  EXPECT_EQ(host_.messages[0].caption, "Image Edit Control");
  EXPECT_EQ(host_.messages[1].text, path + " 파일을 저장하는 데 실패하였습니다.");
  DeleteObject(bitmap);
}

}  // namespace
