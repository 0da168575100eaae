#include <gtest/gtest.h>

#include "imageio/bitmap_file_writer.h"
#include "imageio/messages.h"
#include "platform/kernel.h"

namespace {

using imageio::ComputeBitmapFileLayout;

TEST(BitmapFileLayout, TrueColourBitmapsBecomeTwentyFourBitWithoutTable) {
  for (int bits : {16, 24, 32}) {
    const auto layout = ComputeBitmapFileLayout(3, 2, 1, bits);
    EXPECT_EQ(layout.depth, 24);
    EXPECT_EQ(layout.colorCount, 0);
    EXPECT_EQ(layout.rowSize, 12u);  // 9 bytes of colour, 3 of padding
    EXPECT_EQ(layout.imageSize, 24u);
    EXPECT_EQ(layout.pixelOffset, 54u);
    EXPECT_EQ(layout.fileSize, 78u);
  }
  EXPECT_EQ(ComputeBitmapFileLayout(1, 5, 1, 32).rowSize, 4u);  // 3 bytes and 1 of padding
}

TEST(BitmapFileLayout, SmallDepthsRoundUpAndCarryAFullColourTable) {
  struct Case {
    int planes, bits, depth, colors;
  };
  for (const Case c : {Case{1, 1, 1, 2}, Case{1, 2, 4, 16}, Case{2, 2, 4, 16}, Case{1, 4, 4, 16},
                       Case{1, 5, 8, 256}, Case{1, 8, 8, 256}, Case{3, 4, 24, 0}}) {
    const auto layout = ComputeBitmapFileLayout(10, 3, c.planes, c.bits);
    EXPECT_EQ(layout.depth, c.depth) << c.planes << "x" << c.bits;
    EXPECT_EQ(layout.colorCount, c.colors);
    EXPECT_EQ(layout.pixelOffset, 54u + 4u * c.colors);
  }
  // 10 pixels: 1 bit -> 2 bytes -> 4; 4 bits -> 5 bytes -> 8; 8 bits -> 10 bytes -> 12.
  EXPECT_EQ(ComputeBitmapFileLayout(10, 3, 1, 1).rowSize, 4u);
  EXPECT_EQ(ComputeBitmapFileLayout(10, 3, 1, 4).rowSize, 8u);
  EXPECT_EQ(ComputeBitmapFileLayout(10, 3, 1, 8).rowSize, 12u);
  EXPECT_EQ(ComputeBitmapFileLayout(10, 3, 1, 8).fileSize, 54u + 1024u + 36u);
}

TEST(SavePath, BareNamesGoToTheTempFolderOtherPathsStand) {
  const std::string temp = platform::TempFolder();
  EXPECT_EQ(imageio::ResolveSavePath("out.bmp"), temp + "out.bmp");
  EXPECT_EQ(imageio::ResolveSavePath("/srv/pictures/out.bmp"), "/srv/pictures/out.bmp");
  EXPECT_EQ(imageio::ResolveSavePath("sub/out.bmp"), "sub/out.bmp");
  EXPECT_EQ(imageio::ResolveSavePath("C:\\Temp\\out.bmp"), "C:\\Temp\\out.bmp");
}

// The read and save failures in Korean and English are checked where they are shown
// (image_loader_test, bitmap_file_writer_test).
TEST(Messages, EachLanguageHasItsText) {
  EXPECT_EQ(imageio::ReadFailureMessage(0x04, "a.jpg", 12029), "读a.jpg 文件失败.\n错误代码是 “12029”.");
  EXPECT_EQ(imageio::SaveFailureMessage(0x07, "/x/y.bmp"), "I failed to save /x/y.bmp.");
  EXPECT_EQ(imageio::SaveFailureMessage(0x04, "y.bmp"), "保存y.bmp 文件失败.");
  EXPECT_EQ(imageio::SaveOutOfMemoryMessage(0x09), "Out Of Memory.");
  EXPECT_EQ(imageio::SaveOutOfMemoryMessage(0x12), "메모리가 부족합니다.");
  EXPECT_EQ(imageio::SaveOutOfMemoryMessage(0x04), "内存不足.");
}

}  // namespace
