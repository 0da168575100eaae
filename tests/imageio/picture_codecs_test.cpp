#include "imageio/picture_codecs.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "sample_files.h"

namespace {

using imageio::DecodePicturePixels;
using imageio::DetectPictureFormat;
using imageio::PictureFormat;
using imageio_test::ReadSample;

// A decoded picture in plain storage.
struct Decoded {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
  bool ok = false;
  std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
};

Decoded Decode(const std::vector<std::uint8_t>& data) {
  Decoded result;
  result.ok = DecodePicturePixels(data.data(), data.size(), [&result](int w, int h) {
    result.width = w;
    result.height = h;
    result.pixels.assign(static_cast<std::size_t>(w) * h, 0xDEADBEEF);
    return result.pixels.data();
  });
  return result;
}

void ExpectNear(std::uint32_t pixel, int red, int green, int blue, int tolerance) {
  EXPECT_EQ(pixel >> 24, 0u) << "the top byte stays zero";
  EXPECT_NEAR(static_cast<int>((pixel >> 16) & 0xFF), red, tolerance);
  EXPECT_NEAR(static_cast<int>((pixel >> 8) & 0xFF), green, tolerance);
  EXPECT_NEAR(static_cast<int>(pixel & 0xFF), blue, tolerance);
}

TEST(PictureCodecs, PngWithAlphaIsLaidOverWhite) {
  const Decoded png = Decode(ReadSample("rgba_2x2.png"));
  ASSERT_TRUE(png.ok);
  ASSERT_EQ(png.width, 2);
  ASSERT_EQ(png.height, 2);
  EXPECT_EQ(png.at(0, 0), 0xFF0000u);
  EXPECT_EQ(png.at(1, 0), 0x00FF00u);
  EXPECT_EQ(png.at(0, 1), 0x0000FFu);
  EXPECT_EQ(png.at(1, 1), 0x7F7F7Fu);  // black at 128/255 over white: (255 x 127 + 127) / 255
}

TEST(PictureCodecs, SixteenBitGreyPngBecomesEightBitRgb) {
  const Decoded png = Decode(ReadSample("grey16_1x1.png"));
  ASSERT_TRUE(png.ok);
  ExpectNear(png.at(0, 0), 0x80, 0x80, 0x80, 1);
}

TEST(PictureCodecs, GifGivesItsFirstFrameWithTransparencyOverWhite) {
  const Decoded gif = Decode(ReadSample("two_frames_3x2.gif"));
  ASSERT_TRUE(gif.ok);
  ASSERT_EQ(gif.width, 3);
  ASSERT_EQ(gif.height, 2);
  const std::uint32_t expected[2][3] = {{0xFF0000, 0x00FF00, 0xFFFFFF}, {0xFFFFFF, 0x00FF00, 0xFF0000}};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) EXPECT_EQ(gif.at(x, y), expected[y][x]) << x << "," << y;
  }
}

TEST(PictureCodecs, JpegDecodesWithAndWithoutItsEndMarker) {
  for (const char* name : {"solid_16x8.jpg", "solid_16x8_cut.jpg"}) {
    const Decoded jpeg = Decode(ReadSample(name));
    ASSERT_TRUE(jpeg.ok) << name;
    ASSERT_EQ(jpeg.width, 16);
    ASSERT_EQ(jpeg.height, 8);
    for (std::uint32_t pixel : jpeg.pixels) ExpectNear(pixel, 200, 100, 50, 3);
  }
}

TEST(PictureCodecs, IconsMetafilesAndUnknownDataAreNotDecoded) {
  const std::vector<std::uint8_t> icon = ReadSample("icon_16.ico");
  EXPECT_EQ(DetectPictureFormat(icon.data(), icon.size()), PictureFormat::Icon);
  const std::vector<std::uint8_t> wmf = {0xD7, 0xCD, 0xC6, 0x9A, 0, 0};
  EXPECT_EQ(DetectPictureFormat(wmf.data(), wmf.size()), PictureFormat::Metafile);
  for (const auto& data :
       {icon, wmf, std::vector<std::uint8_t>{'h', 'e', 'l', 'l', 'o'}, std::vector<std::uint8_t>{}}) {
    bool asked = false;
    EXPECT_FALSE(DecodePicturePixels(data.data(), data.size(), [&asked](int, int) {
      asked = true;
      return nullptr;
    }));
    EXPECT_FALSE(asked);
  }
}

TEST(PictureCodecs, ARefusedAllocationFailsTheDecode) {
  for (const char* name : {"rgba_2x2.png", "two_frames_3x2.gif", "solid_16x8.jpg"}) {
    const std::vector<std::uint8_t> data = ReadSample(name);
    EXPECT_FALSE(DecodePicturePixels(data.data(), data.size(), [](int, int) { return nullptr; })) << name;
  }
}

// Every prefix and a few flipped bytes of each sample: decoded or refused, never a
// read outside the data (the sanitizer build checks).
TEST(PictureCodecs, DamagedDataNeverReadsOutOfBounds) {
  for (const char* name : {"rgba_2x2.png", "two_frames_3x2.gif", "solid_16x8.jpg"}) {
    const std::vector<std::uint8_t> data = ReadSample(name);
    for (std::size_t size = 0; size < data.size(); ++size) {
      const std::vector<std::uint8_t> prefix(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
      const Decoded decoded = Decode(prefix);
      if (decoded.ok) {
        EXPECT_EQ(decoded.pixels.size(), static_cast<std::size_t>(decoded.width) * decoded.height);
      }
    }
    for (std::size_t at = 0; at < data.size(); at += 7) {
      std::vector<std::uint8_t> flipped = data;
      flipped[at] ^= 0x5A;
      Decode(flipped);
    }
  }
}

}  // namespace
