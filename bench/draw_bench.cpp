// The drawing primitives as the tools use them on a 4000 x 3000 drawing layer: one
// stroke segment per mouse move (a 9-pixel round pen, a 9-pixel square brush, the
// one-pixel pen), a dot, a shape preview, the rubber band, a bounded flood fill. The
// baseline is a copy of the whole surface, the most a repaint of it costs; at the end
// each per-move figure is printed as a share of the 2 ms a move may take for drawing
// and repainting together.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include "platform/gdi_draw.h"
#include "platform/gdi_handles.h"

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr double kMoveBudgetMs = 2.0;

// A drawing layer: a memory DC holding a 4000 x 3000 colour bitmap.
class Layer {
 public:
  Layer() : dc_(nullptr), bitmap_(CreateBitmap(kWidth, kHeight, 1, 32, nullptr)), shown_(dc_.get(), bitmap_.get()) {
    const platform::OwnedBrush key(CreateSolidBrush(RGB(0x13, 0x43, 0x0B)));
    const RECT all{0, 0, kWidth, kHeight};
    FillRect(dc_.get(), &all, key.get());
  }
  HDC dc() const { return dc_.get(); }

 private:
  platform::MemoryDC dc_;
  platform::OwnedBitmap bitmap_;
  platform::SelectionGuard shown_;
};

// Selects a pen for the benchmark's lifetime.
class PenScope {
 public:
  PenScope(HDC dc, DWORD style, DWORD width) : pen_(MakePen(style, width)), selected_(dc, pen_.get()) {}

 private:
  static HPEN MakePen(DWORD style, DWORD width) {
    const LOGBRUSH solid{BS_SOLID, RGB(200, 30, 30), 0};
    return ExtCreatePen(style, width, &solid, 0, nullptr);
  }

  platform::OwnedPen pen_;
  platform::SelectionGuard selected_;
};

// A mouse drag: segments of about 12 pixels wandering over the layer.
void Strokes(benchmark::State& state, DWORD style, DWORD width) {
  Layer layer;
  PenScope pen(layer.dc(), style, width);
  int x = 100, y = 100, dx = 11, dy = 5;
  MoveToEx(layer.dc(), x, y, nullptr);
  for (auto _ : state) {
    x += dx;
    y += dy;
    if (x < 50 || x > kWidth - 50) dx = -dx;
    if (y < 50 || y > kHeight - 50) dy = -dy;
    LineTo(layer.dc(), x, y);
  }
}

void BM_SurfaceCopy(benchmark::State& state) {
  Layer from, to;
  for (auto _ : state) BitBlt(to.dc(), 0, 0, kWidth, kHeight, from.dc(), 0, 0, SRCCOPY);
}
void BM_RoundPen9Segment(benchmark::State& state) { Strokes(state, PS_GEOMETRIC, 9); }
void BM_SquareBrush9Segment(benchmark::State& state) { Strokes(state, PS_GEOMETRIC | PS_ENDCAP_SQUARE, 9); }
void BM_CosmeticSegment(benchmark::State& state) { Strokes(state, PS_COSMETIC, 1); }
void BM_RoundPen9Dot(benchmark::State& state) {
  Layer layer;
  PenScope pen(layer.dc(), PS_GEOMETRIC, 9);
  for (auto _ : state) {
    MoveToEx(layer.dc(), 500, 500, nullptr);
    LineTo(layer.dc(), 501, 500);
  }
}
void BM_EllipsePreview9(benchmark::State& state) {
  Layer layer;
  PenScope pen(layer.dc(), PS_GEOMETRIC, 9);
  SelectObject(layer.dc(), GetStockObject(NULL_BRUSH));
  for (auto _ : state) Ellipse(layer.dc(), 1000, 800, 1800, 1400);
}
void BM_RubberBand(benchmark::State& state) {
  Layer layer;
  PenScope pen(layer.dc(), PS_COSMETIC | PS_DOT, 1);
  SelectObject(layer.dc(), GetStockObject(NULL_BRUSH));
  SetROP2(layer.dc(), R2_NOTXORPEN);
  for (auto _ : state) {
    Rectangle(layer.dc(), 300, 200, 1300, 1000);  // erase the old band
    Rectangle(layer.dc(), 300, 200, 1301, 1001);  // draw the new one
  }
}
void BM_FloodFill200(benchmark::State& state) {
  Layer layer;
  PenScope pen(layer.dc(), PS_GEOMETRIC, 3);
  const platform::OwnedBrush red(CreateSolidBrush(RGB(255, 0, 0)));
  const platform::OwnedBrush blue(CreateSolidBrush(RGB(0, 0, 255)));
  const platform::SelectionGuard brush(layer.dc(), GetStockObject(WHITE_BRUSH));
  Rectangle(layer.dc(), 100, 100, 300, 300);
  bool toggle = false;
  for (auto _ : state) {
    SelectObject(layer.dc(), toggle ? red.get() : blue.get());
    const COLORREF inside = GetPixel(layer.dc(), 200, 200);
    ExtFloodFill(layer.dc(), 200, 200, inside, FLOODFILLSURFACE);
    toggle = !toggle;
  }
}

BENCHMARK(BM_SurfaceCopy)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RoundPen9Segment)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SquareBrush9Segment)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CosmeticSegment)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RoundPen9Dot)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EllipsePreview9)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RubberBand)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FloodFill200)->Unit(benchmark::kMicrosecond);

// Remembers each benchmark's CPU time per iteration, in milliseconds.
class BudgetReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      milliseconds_[run.benchmark_name()] =
          run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1000.0;
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void PrintBudget() const {
    std::printf("share of the %.0f ms a mouse move may take (drawing only):\n", kMoveBudgetMs);
    for (const auto& [name, ms] : milliseconds_) {
      std::printf("  %-26s %8.4f ms  %6.2f %%\n", name.c_str(), ms, ms / kMoveBudgetMs * 100.0);
    }
  }

 private:
  std::map<std::string, double> milliseconds_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BudgetReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintBudget();
  benchmark::Shutdown();
  return 0;
}
