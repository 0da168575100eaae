#include "imageio/jpeg_repair.h"

#include <string_view>

#include "platform/text.h"

namespace imageio {
namespace {

constexpr std::size_t kIdentifierOffset = 6;

// The identifier of the first APPn segment runs from offset 6 up to the first zero
// byte; it must be "JFIF" or "EXIF" in any case. Data without the zero byte, or too
// short to hold the identifier, fail the test.
bool HasJfifOrExifIdentifier(const std::uint8_t* data, std::size_t count) {
  for (std::string_view name : {std::string_view("JFIF"), std::string_view("EXIF")}) {
    const std::size_t end = kIdentifierOffset + name.size();
    if (end >= count || data[end] != 0) continue;
    const std::string_view identifier(reinterpret_cast<const char*>(data) + kIdentifierOffset, name.size());
    if (platform::EqualsIgnoringCase(identifier, name)) return true;
  }
  return false;
}

}  // namespace

bool NeedsJpegEndMarker(const std::uint8_t* data, std::size_t count) {
  if (count < 4 || data[0] != 0xFF || data[1] != 0xD8 || data[2] != 0xFF) return false;
  if (data[3] != 0xE0 && data[3] != 0xE1) return false;
  if (!HasJfifOrExifIdentifier(data, count)) return false;
  return !(data[count - 2] == 0xFF && data[count - 1] == 0xD9);
}

std::size_t RepairJpegEndMarker(std::uint8_t* data, std::size_t count) {
  if (!NeedsJpegEndMarker(data, count)) return count;
  data[count] = 0xFF;
  data[count + 1] = 0xD9;
  return count + 2;
}

}  // namespace imageio
