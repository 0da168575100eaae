#include "imageio/jpeg_repair.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::uint8_t> Jpeg(std::uint8_t appMarker, const std::string& identifier, bool withEnd) {
  std::vector<std::uint8_t> data = {0xFF, 0xD8, 0xFF, appMarker, 0x00, 0x10};
  for (char c : identifier) data.push_back(static_cast<std::uint8_t>(c));
  data.insert(data.end(), {0, 0x01, 0x02, 0x03, 0x04});
  if (withEnd) data.insert(data.end(), {0xFF, 0xD9});
  return data;
}

TEST(JpegRepair, OnlyCutJfifAndExifDataGetTheEndMarker) {
  struct Case {
    const char* what;
    std::vector<std::uint8_t> data;
    bool repaired;
  };
  for (const Case& c :
       {Case{"cut JFIF", Jpeg(0xE0, "JFIF", false), true}, Case{"cut Exif", Jpeg(0xE1, "Exif", false), true},
        Case{"any case", Jpeg(0xE0, "jfif", false), true}, Case{"complete", Jpeg(0xE0, "JFIF", true), false},
        Case{"APP2 first", Jpeg(0xE2, "ICC_PROFILE", false), false},
        Case{"another identifier", Jpeg(0xE0, "JFXX", false), false},
        Case{"the zero must follow the name", Jpeg(0xE0, "JFIFX", false), false}}) {
    SCOPED_TRACE(c.what);
    std::vector<std::uint8_t> data = c.data;
    const std::size_t count = data.size();
    data.resize(count + 2, 0xAA);
    EXPECT_EQ(imageio::RepairJpegEndMarker(data.data(), count), c.repaired ? count + 2 : count);
    EXPECT_EQ(data[count], c.repaired ? 0xFF : 0xAA);
    EXPECT_EQ(data[count + 1], c.repaired ? 0xD9 : 0xAA);
  }
  // Data too short to hold the identifier and its zero fail the test.
  const std::vector<std::uint8_t> full = Jpeg(0xE0, "JFIF", false);
  for (std::size_t count = 0; count <= 10; ++count) {
    EXPECT_FALSE(imageio::NeedsJpegEndMarker(full.data(), count)) << count;
  }
  EXPECT_TRUE(imageio::NeedsJpegEndMarker(full.data(), 11));
}

}  // namespace
