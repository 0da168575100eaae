// The benchmarks' photo-like picture: smooth gradients, texture and noise, the same
// bytes every run, and its JPEG file.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "jpeg_file.h"

// Blue, green, red rows, top-down, packed.
inline std::vector<std::uint8_t> MakePhoto(int width, int height) {
  std::vector<std::uint8_t> bgr(static_cast<std::size_t>(width) * height * 3);
  std::uint32_t state = 1;
  for (int y = 0; y < height; ++y) {
    const double fy = static_cast<double>(y) / height;
    for (int x = 0; x < width; ++x) {
      const double fx = static_cast<double>(x) / width;
      state = state * 214013u + 2531011u;
      const double noise = static_cast<double>((state >> 16) & 31) - 15.5;
      const double texture = 18.0 * std::sin(x * 0.21 + 3.0 * std::sin(y * 0.05)) * std::cos(y * 0.17);
      const double sky = 60.0 + 150.0 * fy + 30.0 * std::sin(fx * 6.0 + fy * 2.0);
      const double hills = 90.0 + 80.0 * std::sin(fx * 9.0) * std::cos(fy * 5.0);
      const double sun = 200.0 * std::exp(-((fx - 0.7) * (fx - 0.7) + (fy - 0.3) * (fy - 0.3)) * 18.0);
      const double channel[3] = {sky + texture * 0.5 + noise, hills + texture + noise,
                                 sun + 40.0 * fx + noise};
      std::uint8_t* p = bgr.data() + (static_cast<std::size_t>(y) * width + x) * 3;
      for (int c = 0; c < 3; ++c) p[c] = static_cast<std::uint8_t>(std::clamp(channel[c], 0.0, 255.0));
    }
  }
  return bgr;
}

// Quality 90, as a camera would save it.
inline bool WritePhotoJpeg(const std::vector<std::uint8_t>& bgr, int width, int height,
                           const std::string& path) {
  std::vector<std::uint8_t> rgb(bgr.size());
  for (std::size_t i = 0; i + 2 < bgr.size(); i += 3) {
    rgb[i] = bgr[i + 2];
    rgb[i + 1] = bgr[i + 1];
    rgb[i + 2] = bgr[i];
  }
  return WriteJpegFile(rgb.data(), width, height, 90, path);
}
