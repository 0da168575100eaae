#include "imageio/jpeg_repair.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using imageio::NeedsJpegEndMarker;
using imageio::RepairJpegEndMarker;

std::vector<std::uint8_t> Jpeg(std::uint8_t appMarker, const std::string& identifier, bool withEnd) {
  std::vector<std::uint8_t> data = {0xFF, 0xD8, 0xFF, appMarker, 0x00, 0x10};
  for (char c : identifier) data.push_back(static_cast<std::uint8_t>(c));
  data.push_back(0);
  data.insert(data.end(), {0x01, 0x02, 0x03, 0x04});
  if (withEnd) data.insert(data.end(), {0xFF, 0xD9});
  return data;
}

std::size_t Repair(std::vector<std::uint8_t>& data) {
  const std::size_t count = data.size();
  data.resize(count + 2, 0xAA);
  return RepairJpegEndMarker(data.data(), count);
}

TEST(JpegRepair, AppendsTheEndMarkerToCutJfifAndExifData) {
  for (auto [marker, name] :
       {std::pair<std::uint8_t, std::string>{0xE0, "JFIF"}, {0xE1, "Exif"}, {0xE0, "jfif"}}) {
    std::vector<std::uint8_t> data = Jpeg(marker, name, false);
    const std::size_t before = data.size();
    EXPECT_EQ(Repair(data), before + 2) << name;
    EXPECT_EQ(data[before], 0xFF);
    EXPECT_EQ(data[before + 1], 0xD9);
  }
}

TEST(JpegRepair, LeavesCompleteAndOtherDataUnchanged) {
  std::vector<std::uint8_t> icc = Jpeg(0xE2, "ICC_PROFILE", false);  // APP2 first
  for (std::vector<std::uint8_t> data : {Jpeg(0xE0, "JFIF", true), icc, Jpeg(0xE0, "JFXX", false),
                                         Jpeg(0xE0, "JFIFX", false) /* the zero must follow the name */}) {
    const std::size_t before = data.size();
    EXPECT_EQ(Repair(data), before);
    EXPECT_EQ(data[before], 0xAA);
  }
}

TEST(JpegRepair, DataTooShortForTheTestsFailThem) {
  const std::vector<std::uint8_t> full = Jpeg(0xE0, "JFIF", false);
  for (std::size_t count = 0; count <= 10; ++count) {
    EXPECT_FALSE(NeedsJpegEndMarker(full.data(), count)) << count;
  }
  EXPECT_TRUE(NeedsJpegEndMarker(full.data(), 11));
}

}  // namespace
