// Bitmap files of 24 bits a pixel go into their bitmap straight from the file's rows;
// other depths through the reader's unpacked rows. Either way the loaded bitmap must
// hold the pixels the reader reads, top-down and bottom-up, at widths with and
// without row padding.
#include <gtest/gtest.h>

#include <random>

#include "bmp_builder.h"
#include "imageio/bitmap_file_reader.h"
#include "imageio/image_loader.h"
#include "platform/platform.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

namespace {

TEST(BitmapFileTransfer, LoadedBitmapsHoldThePixelsTheReaderReads) {
  InstalledRecordingHost host;
  TempFiles files("bitmap_transfer_");
  std::mt19937 random(21);
  for (const int bitCount : {24, 32}) {
    for (const int width : {1, 3, 4, 5}) {
      for (const bool topDown : {false, true}) {
        SCOPED_TRACE(testing::Message()
                     << bitCount << " bits, " << width << " wide" << (topDown ? ", top-down" : ""));
        imageio_test::BmpLayout layout;
        layout.width = width;
        layout.height = topDown ? -3 : 3;
        layout.bitCount = static_cast<std::uint16_t>(bitCount);
        layout.pixels.resize(static_cast<std::size_t>(platform::DibRowStride(width, bitCount)) * 3);
        for (std::uint8_t& b : layout.pixels) b = static_cast<std::uint8_t>(random());
        const std::vector<std::uint8_t> file = imageio_test::BuildBmp(layout);
        const std::optional<imageio::Dib24> dib = imageio::ReadBitmapFile(file.data(), file.size());
        ASSERT_TRUE(dib);

        HBITMAP bitmap = imageio::LoadImage(files.Write("picture.bmp", file).c_str(), {});
        int w = 0, h = 0;
        const std::uint32_t* pixels = platform::BitmapPixels(bitmap, &w, &h);
        ASSERT_NE(pixels, nullptr);
        ASSERT_EQ(w, width);
        ASSERT_EQ(h, 3);
        for (int y = 0; y < 3; ++y) {
          for (int x = 0; x < width; ++x) {
            const std::uint8_t* p = dib->rows.data() + static_cast<std::size_t>(2 - y) * dib->stride + x * 3;
            EXPECT_EQ(pixels[y * width + x], static_cast<std::uint32_t>(p[0] | p[1] << 8 | p[2] << 16))
                << x << "," << y;
          }
        }
        DeleteObject(bitmap);
      }
    }
  }
}

}  // namespace
