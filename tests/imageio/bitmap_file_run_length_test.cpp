// Run-length compressed bitmap files, read and loaded, against what Windows' SetDIBits
// made of the same files in a new bitmap (tests/data/rle).
#include <gtest/gtest.h>

#include <cstring>

#include "imageio/bitmap_file_reader.h"
#include "imageio/image_loader.h"
#include "support/bitmap_colors.h"
#include "support/recording_host.h"
#include "support/run_length_fixtures.h"
#include "support/temp_files.h"

namespace {

using rle_fixtures::kHeight;
using rle_fixtures::kWidth;

// Every pixel, top row first; empty for no picture.
std::vector<COLORREF> Read(const std::vector<std::uint8_t>& file) {
  const std::optional<imageio::Dib24> dib = imageio::ReadBitmapFile(file.data(), file.size());
  std::vector<COLORREF> colors;
  for (int y = dib ? dib->height - 1 : -1; y >= 0; --y) {
    for (int x = 0; x < dib->width; ++x) {
      const std::uint8_t* p = dib->rows.data() + static_cast<std::size_t>(y) * dib->stride + x * 3;
      colors.push_back(RGB(p[2], p[1], p[0]));
    }
  }
  return colors;
}

void SetHeaderField(std::vector<std::uint8_t>& file, std::size_t at, std::uint32_t value) {
  std::memcpy(file.data() + at, &value, 4);
}
constexpr std::size_t kHeightField = 22, kBitCountField = 28, kSizeImageField = 34;

// The pixels the codes skip are black, as in the new bitmap GDI sets them into.
TEST(BitmapFileRunLength, EachFileReadsAsGdiSetsItIntoANewBitmap) {
  for (const std::string& name : rle_fixtures::Names()) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Read(rle_fixtures::File(name)), rle_fixtures::Expected(name, "new"));
  }
}

TEST(BitmapFileRunLength, LoadingAnRle8AndAnRle4FileGivesTheirPictures) {
  InstalledRecordingHost host;
  TempFiles files("bitmap_rle_");
  for (const std::string name : {"rle8_codes", "rle4_codes"}) {
    SCOPED_TRACE(name);
    HBITMAP bitmap = imageio::LoadImage(files.Write(name + ".bmp", rle_fixtures::File(name)).c_str(), {});
    BITMAP description{};
    ASSERT_TRUE(GetObjectA(bitmap, sizeof description, &description));
    EXPECT_EQ(description.bmWidth, kWidth);
    EXPECT_EQ(description.bmHeight, kHeight);
    EXPECT_EQ(BitmapColors(bitmap), rle_fixtures::Expected(name, "new"));
    DeleteObject(bitmap);
  }
}

// A declared image size beyond the file ends the codes where the file ends: the file
// cut short reads as the one whose codes really stop there.
TEST(BitmapFileRunLength, ADeclaredSizeBeyondTheFileReadsOnlyTheFile) {
  for (const std::uint32_t declared : {0x1000u, 0xFFFFFFFFu}) {
    std::vector<std::uint8_t> file = rle_fixtures::File("rle4_truncated");
    SetHeaderField(file, kSizeImageField, declared);
    file.shrink_to_fit();
    EXPECT_EQ(Read(file), rle_fixtures::Expected("rle4_truncated", "new")) << declared;
  }
}

// What SetDIBits refuses gives no picture; a file cut anywhere after its colour table
// still reads, from the codes it keeps, and reads nothing past its end.
TEST(BitmapFileRunLength, RefusedHeadersGiveNothingAndCutFilesWhatTheyKeep) {
  const std::vector<std::uint8_t> good = rle_fixtures::File("rle8_codes");
  const auto changed = [&](std::size_t at, std::uint32_t value) {
    std::vector<std::uint8_t> file = good;
    SetHeaderField(file, at, value);
    return file;
  };
  EXPECT_TRUE(Read(changed(kHeightField, static_cast<std::uint32_t>(-kHeight))).empty());  // top-down
  EXPECT_TRUE(Read(changed(kSizeImageField, 0)).empty());
  EXPECT_TRUE(Read(changed(kBitCountField, 4)).empty());                                // BI_RLE8 at 4 bits
  EXPECT_TRUE(Read(changed(10, static_cast<std::uint32_t>(good.size() + 1))).empty());  // codes past the end

  std::uint32_t codesOffset = 0;
  std::memcpy(&codesOffset, good.data() + 10, 4);
  for (std::size_t size = 0; size < good.size(); ++size) {
    const std::vector<std::uint8_t> cut(good.begin(), good.begin() + size);
    const std::vector<COLORREF> pixels = Read(cut);
    EXPECT_EQ(pixels.empty(), size < codesOffset) << "cut to " << size;
  }
}

}  // namespace
