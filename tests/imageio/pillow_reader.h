// Reads a picture file with an independent reader (Pillow, through python3), so that
// tests check what other programs see in the files we write. Tests call
// SKIP_WITHOUT_PILLOW() first; only a missing python3 or Pillow skips them.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace imageio_test {

struct PillowPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, top row first
  std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
};

// Debian's Pillow belongs to the system python; a python3 earlier on PATH may lack it.
inline const char* PythonWithPillow() {
  static const char* found = []() -> const char* {
    for (const char* python : {"/usr/bin/python3", "python3"}) {
      const std::string probe = std::string(python) + " -c 'import PIL' >/dev/null 2>&1";
      if (std::system(probe.c_str()) == 0) return python;
    }
    return nullptr;
  }();
  return found;
}

#define SKIP_WITHOUT_PILLOW()                                                                      \
  do {                                                                                             \
    if (!imageio_test::PythonWithPillow()) GTEST_SKIP() << "python3 with Pillow is not installed"; \
  } while (0)

inline std::optional<PillowPicture> ReadWithPillow(const std::string& path) {
  const std::string command =
      std::string(PythonWithPillow()) +
      " -c 'import sys; from PIL import Image; im = Image.open(sys.argv[1]).convert(\"RGB\"); "
      "print(im.size[0], im.size[1]); "
      "print(\" \".join(\"%02X%02X%02X\" % p for p in im.getdata()))' '" +
      path + "' 2>/dev/null";
  std::FILE* pipe = ::popen(command.c_str(), "r");
  if (!pipe) return std::nullopt;
  PillowPicture picture;
  bool ok = std::fscanf(pipe, "%d %d", &picture.width, &picture.height) == 2;
  unsigned value = 0;
  while (ok && std::fscanf(pipe, "%x", &value) == 1) picture.pixels.push_back(value);
  const int status = ::pclose(pipe);
  if (!ok || status != 0 ||
      picture.pixels.size() != static_cast<std::size_t>(picture.width) * picture.height) {
    return std::nullopt;
  }
  return picture;
}

}  // namespace imageio_test
