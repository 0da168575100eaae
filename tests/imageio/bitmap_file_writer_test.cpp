#include "imageio/bitmap_file_writer.h"

#include <gtest/gtest.h>

#include <fstream>

#include "bmp_builder.h"
#include "imageio/messages.h"
#include "resources/module_resources.h"
#include "support/bitmap_colors.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

namespace {

using imageio::WriteBitmapFile;
using imageio::WriteContext;

class BitmapFileWriterTest : public ::testing::Test {
 protected:
  // Message boxes are captioned with the module's title, one of its strings.
  void SetUp() override { RegisterModuleResources(); }

  InstalledRecordingHost host_;
  TempFiles files_{"imageio_writer_"};
};

const WriteContext kQuiet{nullptr, false, 0x09};
const WriteContext kVerbose{nullptr, true, 0x09};

HBITMAP PlainBitmap(int width, int height) {
  return MakeBitmap(nullptr, width, height, std::vector<COLORREF>(static_cast<std::size_t>(width * height)));
}

// The file must be byte for byte the one the test's own builder makes: headers of 54
// bytes (no table, 24 bits, bottom-up, sizes filled in) and rows padded to 4 bytes.
TEST_F(BitmapFileWriterTest, TrueColourBitmapsBecomeTwentyFourBitFilesWithPaddedRows) {
  for (const auto& [width, height] : {std::pair{3, 2}, std::pair{1, 3}}) {
    SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
    const auto rgb = [](int x, int y) { return static_cast<std::uint32_t>(0x102030 * (x + 3 * y + 1)); };
    std::vector<COLORREF> colors;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x)
        colors.push_back(RGB(rgb(x, y) >> 16, rgb(x, y) >> 8 & 0xFF, rgb(x, y) & 0xFF));
    }
    HBITMAP bitmap = MakeBitmap(nullptr, width, height, colors);
    const std::string bare = files_.Name("fields.bmp");
    WriteBitmapFile(bare.c_str(), bitmap, kQuiet);  // a bare name lands in the temp folder
    DeleteObject(bitmap);
    std::vector<std::uint8_t> expected = imageio_test::BuildTrueColourBmp(width, height, rgb);
    imageio_test::Put32(expected, 34, static_cast<std::uint32_t>(expected.size() - 54));  // biSizeImage
    EXPECT_EQ(ReadFileBytes(files_.last()), expected);
  }
  EXPECT_TRUE(host_.messages.empty());
}

// Bare names go to the temp folder (above) and paths with a slash stand (the
// scenarios save to "./name"); so does a path with backslashes.
TEST(SavePath, APathWithBackslashesStands) {
  EXPECT_EQ(imageio::ResolveSavePath("C:\\Temp\\out.bmp"), "C:\\Temp\\out.bmp");
}

TEST_F(BitmapFileWriterTest, NothingIsWrittenWithoutPathOrBitmap) {
  HBITMAP bitmap = PlainBitmap(1, 1);
  const std::string bare = files_.Name("nothing.bmp");
  WriteBitmapFile(bare.c_str(), nullptr, kVerbose);
  WriteBitmapFile("", bitmap, kVerbose);
  WriteBitmapFile(nullptr, bitmap, kVerbose);
  DeleteObject(bitmap);
  WriteBitmapFile(bare.c_str(), bitmap, kVerbose);  // a deleted bitmap cannot be described
  EXPECT_FALSE(std::ifstream(files_.last()).good());
  EXPECT_TRUE(host_.messages.empty());
}

// The texts in each language are scenarios (tests/cli/messages_*.ies).
TEST_F(BitmapFileWriterTest, AFileThatCannotBeCreatedIsReportedOnlyWhileVerbose) {
  HBITMAP bitmap = PlainBitmap(2, 2);
  const std::string path = platform::TempFolder() + "imageio_no_such_folder/out.bmp";
  WriteBitmapFile(path.c_str(), bitmap, kQuiet);
  EXPECT_TRUE(host_.messages.empty());
  WriteBitmapFile(path.c_str(), bitmap, kVerbose);
  ASSERT_EQ(host_.messages.size(), 1u);
  EXPECT_EQ(host_.messages[0].text, "I failed to save " + path + ".");
  EXPECT_EQ(host_.messages[0].type, MB_OK);
  EXPECT_EQ(host_.messages[0].caption, "Image Edit Control");
  DeleteObject(bitmap);
  // No save here runs short of memory; what one would say.
  EXPECT_EQ(imageio::SaveOutOfMemoryMessage(0x09), "Out Of Memory.");
  EXPECT_EQ(imageio::SaveOutOfMemoryMessage(0x12), "메모리가 부족합니다.");
  EXPECT_EQ(imageio::SaveOutOfMemoryMessage(0x04), "内存不足.");
}

}  // namespace
