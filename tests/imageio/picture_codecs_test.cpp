#include "imageio/picture_codecs.h"

#include <gtest/gtest.h>

#include "sample_files.h"

namespace {

using imageio::DecodePicturePixels;
using imageio::DetectPictureFormat;
using imageio::PictureFormat;
using imageio_test::ReadSample;

// A decoded picture: 0x00RRGGBB pixels, top row first; no pixels when refused.
struct Decoded {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

Decoded Decode(const std::vector<std::uint8_t>& data) {
  Decoded result;
  const bool ok = DecodePicturePixels(data.data(), data.size(), [&result](int w, int h) {
    result.width = w;
    result.height = h;
    result.pixels.assign(static_cast<std::size_t>(w) * h, 0xDEADBEEF);
    return result.pixels.data();
  });
  if (!ok) result.pixels.clear();
  return result;
}

// What each format decodes to is the scenario tests/cli/pictures.ies.
TEST(PictureCodecs, IconsMetafilesUnknownDataAndRefusedAllocationsAreNotDecoded) {
  const std::vector<std::uint8_t> icon = ReadSample("icon_16.ico");
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
  for (const char* name : {"rgba_2x2.png", "two_frames_3x2.gif", "solid_16x8.jpg"}) {
    const std::vector<std::uint8_t> data = ReadSample(name);
    EXPECT_FALSE(DecodePicturePixels(data.data(), data.size(), [](int, int) { return nullptr; })) << name;
  }
}

// Every prefix and a few flipped bytes of each sample: decoded or refused, never a
// read outside the data (the sanitizer build checks). A prefix holds the whole header,
// so what it decodes has the picture's size.
TEST(PictureCodecs, DamagedDataNeverReadsOutOfBounds) {
  for (const char* name : {"rgba_2x2.png", "two_frames_3x2.gif", "solid_16x8.jpg"}) {
    const std::vector<std::uint8_t> data = ReadSample(name);
    const Decoded whole = Decode(data);
    for (std::size_t size = 0; size < data.size(); ++size) {
      const Decoded decoded = Decode({data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size)});
      if (!decoded.pixels.empty()) {
        EXPECT_EQ(decoded.width, whole.width) << name << " cut to " << size;
        EXPECT_EQ(decoded.height, whole.height) << name << " cut to " << size;
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
