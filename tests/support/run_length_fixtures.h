// The run-length compressed bitmap files of tests/data/rle and the pictures Windows'
// SetDIBits made of them (make_rle.py there says how): each 16 x 8, bottom-up.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/types.h"
#include "support/temp_files.h"

namespace rle_fixtures {

inline constexpr int kWidth = 16;
inline constexpr int kHeight = 8;
// What the target held where the codes set nothing, in the "filled" pictures.
inline constexpr COLORREF kFill = RGB(0x12, 0x34, 0x56);

inline const std::vector<std::string>& Names() {
  static const std::vector<std::string> names = {
      "rle8_codes",      "rle4_codes",     "rle8_no_end",          "rle8_overrun",
      "rle8_delta_past", "rle4_truncated", "rle8_truncated_delta", "rle8_declared_short"};
  return names;
}

// The compressed file NAME.bmp.
inline std::vector<std::uint8_t> File(const std::string& name) {
  return ReadFileBytes(std::string(IE_TEST_DATA) + "/rle/" + name + ".bmp");
}

// What GDI made of NAME.bmp, read from NAME.KIND.bmp ("filled": set into a bitmap
// filled with kFill; "new": into a new bitmap), every pixel, top row first.
inline std::vector<COLORREF> Expected(const std::string& name, const std::string& kind) {
  const std::vector<std::uint8_t> file =
      ReadFileBytes(std::string(IE_TEST_DATA) + "/rle/" + name + "." + kind + ".bmp");
  constexpr std::size_t kOffset = 54, kStride = (kWidth * 3 + 3) & ~3;
  std::vector<COLORREF> colors;
  if (file.size() < kOffset + kStride * kHeight) return colors;
  for (int y = kHeight - 1; y >= 0; --y) {
    for (int x = 0; x < kWidth; ++x) {
      const std::uint8_t* p = file.data() + kOffset + y * kStride + x * 3;
      colors.push_back(RGB(p[2], p[1], p[0]));
    }
  }
  return colors;
}

}  // namespace rle_fixtures
