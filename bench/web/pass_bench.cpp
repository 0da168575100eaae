// The adjustment passes alone, as a rebuild runs them: from the rows of one 32-bit
// 4000 x 3000 picture into another's, with no control, repaint or page around them.
// Built natively (bench/) and for Node in the engine's build tree without threads
// (build/wasm/hosts/web/pass-bench.cjs), so that the same passes' times can be set
// side by side, and a pass that is slow in the page can be told from the work the
// page does around it:
//     build/release/bench/pass_bench
//     node build/wasm/hosts/web/pass-bench.cjs
// Each line is the median of the runs after one that warms up, in milliseconds.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <vector>

#include "pixels/pass_plan.h"

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr int kRuns = 7;

// Photo-like rows: smooth gradients with some noise, deterministic.
std::vector<BYTE> MakePicture() {
  std::vector<BYTE> pixels(static_cast<std::size_t>(kWidth) * kHeight * 4);
  std::uint32_t seed = 12345;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      seed = seed * 1664525u + 1013904223u;
      const int noise = static_cast<int>(seed >> 28) - 8;
      BYTE* p = &pixels[(static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)) * 4];
      p[0] = static_cast<BYTE>(std::clamp(x * 255 / kWidth + noise, 0, 255));
      p[1] = static_cast<BYTE>(std::clamp(y * 255 / kHeight + noise, 0, 255));
      p[2] = static_cast<BYTE>(std::clamp((x + y) * 255 / (kWidth + kHeight) - noise, 0, 255));
    }
  }
  return pixels;
}

PixelRows RowsBetween(const std::vector<BYTE>& from, std::vector<BYTE>& to) {
  PixelRows rows;
  rows.width = kWidth;
  rows.bytesPerPixel = 4;
  rows.inPlace = false;
  for (std::size_t y = 0; y < kHeight; ++y) {
    rows.in.push_back(from.data() + y * kWidth * 4);
    rows.out.push_back(to.data() + y * kWidth * 4);
  }
  return rows;
}

double MedianMs(const std::function<void()>& run) {
  run();
  std::vector<double> times;
  for (int i = 0; i < kRuns; ++i) {
    const auto start = std::chrono::steady_clock::now();
    run();
    times.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

struct Case {
  const char* name;
  std::function<void(PassPlan&)> add;
};

}  // namespace

int main() {
  const std::vector<BYTE> picture = MakePicture();
  std::vector<BYTE> surface(picture.size());
  const auto settings = [](auto change) {
    AdjustmentSettings s;
    change(s);
    return s;
  };
  const Case cases[] = {
      {"rows copied, no pass", [](PassPlan&) {}},
      {"brightness", [&](PassPlan& p) { p.AddColors(settings([](auto& s) { s.brightness = 50; })); }},
      {"contrast", [&](PassPlan& p) { p.AddColors(settings([](auto& s) { s.contrast = 50; })); }},
      {"gammas", [&](PassPlan& p) { p.AddColors(settings([](auto& s) { s.redGamma = 1.5; })); }},
      {"hue", [&](PassPlan& p) { p.AddColors(settings([](auto& s) { s.hue = 90.0; })); }},
      {"saturation", [&](PassPlan& p) { p.AddColors(settings([](auto& s) { s.saturation = 1.5; })); }},
      {"sharpen, 1 step", [](PassPlan& p) { p.AddNeighbourhood(NeighbourhoodFilter::Sharpen, 1); }},
      {"smooth, 1 step", [](PassPlan& p) { p.AddNeighbourhood(NeighbourhoodFilter::Smooth, 1); }},
      {"whiten, 1 step", [](PassPlan& p) { p.AddNeighbourhood(NeighbourhoodFilter::Whiten, 1); }},
      {"gray", [](PassPlan& p) { p.AddGray(); }},
      {"invert", [](PassPlan& p) { p.AddInvert(); }},
  };
  std::printf("4000 x 3000, 32-bit rows from one picture into another, median ms\n");
  for (const Case& c : cases) {
    PassPlan plan;
    c.add(plan);
    const double ms = MedianMs([&] {
      PixelRows rows = RowsBetween(picture, surface);
      plan.Run(rows);
    });
    std::printf("  %-24s %8.1f\n", c.name, ms);
  }
  return 0;
}
