// A pen stroke as a person draws it: an 800 x 600 control, driven as a host drives
// it (the picture loaded and the pen chosen through the dispatch table, the mouse
// through the platform's input path, each frame presented to the host), draws a
// stroke of 200 mouse moves across a 4000 x 3000 picture at 100 % and across a
// 640 x 480 one. Each move is timed from the mouse message to the presented frame;
// the median and the slowest move are printed against the 2 ms a move may take, so
// that drawing follows the pointer at any picture size.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "imageio/bitmap_file_writer.h"

namespace {

constexpr int kControlWidth = 800;
constexpr int kControlHeight = 600;
constexpr int kMoves = 200;
constexpr double kMoveBudgetMs = 2.0;

// Presents each frame as a page does: the whole frame copied out of the engine.
class PresentingHost : public platform::Host {
 public:
  void PresentFrame(HWND hostWindow) override {
    int width = 0, height = 0;
    const std::uint32_t* pixels = platform::BitmapPixels(platform::HostFrame(hostWindow), &width, &height);
    if (pixels == nullptr) return;
    presented_.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    std::memcpy(presented_.data(), pixels, presented_.size() * sizeof(std::uint32_t));
  }

 private:
  std::vector<std::uint32_t> presented_;
};

// A picture of that size in the temp folder: a smooth gradient, as a bitmap file.
std::string WritePicture(int width, int height) {
  const std::size_t stride = (static_cast<std::size_t>(width) * 3 + 3) & ~std::size_t{3};
  std::vector<std::uint8_t> rows(stride * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint8_t* pixel = &rows[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x) * 3];
      pixel[0] = static_cast<std::uint8_t>(x * 255 / width);
      pixel[1] = static_cast<std::uint8_t>(y * 255 / height);
      pixel[2] = static_cast<std::uint8_t>(128);
    }
  }
  const std::string path = platform::TempFolder() + "imageedit_tools_bench_" + std::to_string(width) + "x" +
                           std::to_string(height) + ".bmp";
  imageio::WriteDib24File(path, width, height, rows.data());
  return path;
}

struct MoveTimes {
  double medianMs = 0;
  double slowestMs = 0;
};
std::map<std::string, MoveTimes>& Results() {
  static std::map<std::string, MoveTimes> results;
  return results;
}

// One iteration is one stroke: a press, 200 moves three pixels apart (a slight
// slope, so that every move draws a new segment), a release.
void BM_PenStroke(benchmark::State& state) {
  const int width = static_cast<int>(state.range(0));
  const int height = static_cast<int>(state.range(1));
  const std::string picture = WritePicture(width, height);
  PresentingHost host;
  platform::SetHost(&host);
  HWND hostWindow = platform::CreateHostWindow(kControlWidth, kControlHeight);
  std::vector<double> moves;
  {
    CImageEditCtrl control;
    control.CreateControl(hostWindow, kControlWidth, kControlHeight);
    const auto call = [&](const char* method, Variant argument) {
      const Variant args[] = {std::move(argument)};
      if (FAILED(Invoke(control, method, args).hr)) state.SkipWithError(method);
    };
    call("SetImage", Variant::String(picture));
    call("SetColor", Variant::String("C03020"));
    call("SetPen", Variant::Int(3));
    platform::FlushPaint(hostWindow);
    const auto input = [&](UINT message, int x, int y) {
      platform::MouseInput(hostWindow, message, x, y);
      platform::FlushPaint(hostWindow);
    };
    int row = 100;
    for (auto _ : state) {
      input(WM_LBUTTONDOWN, 100, row);
      for (int i = 1; i <= kMoves; ++i) {
        const auto start = std::chrono::steady_clock::now();
        input(WM_MOUSEMOVE, 100 + 3 * i, row + i / 8);
        moves.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
      }
      input(WM_LBUTTONUP, 100 + 3 * kMoves, row + kMoves / 8);
      row += 40;
    }
    control.DestroyWindow();
  }
  DestroyWindow(hostWindow);
  platform::SetHost(nullptr);
  std::remove(picture.c_str());

  std::sort(moves.begin(), moves.end());
  const MoveTimes times{moves[moves.size() / 2], moves.back()};
  Results()[std::to_string(width) + " x " + std::to_string(height)] = times;
  state.counters["median_move_ms"] = times.medianMs;
  state.counters["slowest_move_ms"] = times.slowestMs;
}

BENCHMARK(BM_PenStroke)->Args({4000, 3000})->Args({640, 480})->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  std::printf(
      "a pen stroke in an %d x %d control, per mouse move (drawing, repaint, presented frame),\n"
      "against the %.0f ms a move may take:\n",
      kControlWidth, kControlHeight, kMoveBudgetMs);
  for (const auto& [picture, times] : Results()) {
    std::printf("  %-13s median %7.3f ms (%6.1f %%)   slowest %7.3f ms\n", picture.c_str(), times.medianMs,
                times.medianMs / kMoveBudgetMs * 100.0, times.slowestMs);
  }
  benchmark::Shutdown();
  return 0;
}
