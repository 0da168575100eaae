// What the edit history costs: the peak memory of ten levels of undo after a run of
// edits, and the time of each Undo and Redo, in a 1024 x 768 control that scrolls a
// generated, photo-like 4000 x 3000 JPEG and in a 4100 x 3100 one that shows it
// whole. The control is driven only as a host drives it: methods called by name,
// mouse input at host-window points, timers fired by the host's clock.
//
// Each scenario runs in a fresh child process, so that its peak (VmHWM) is its own:
//   load         the picture loaded, nothing else (what the others are measured by)
//   strokes      eleven pen strokes, each from the top row to the bottom one
//   sprays       ten airbrush sprays, each sweeping the whole picture
//   adjustments  ten brightness levels
// then ten Undo and ten Redo, each timed with the paint that follows it. Ten levels
// are nine steps, so the last Undo and the last Redo find the history's end; they
// are timed all the same, as a person pressing on would meet them. The times are set
// beside a cv::LUT pass over the 24-bit picture measured in the same run.
//
//   history_bench                                 the table
//   history_bench --scenario NAME WIDTH HEIGHT    internal: one scenario in this
//                                                 process; prints its peak, then the
//                                                 undo and the redo times
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "platform/platform.h"

#ifdef IE_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

#include "fresh_process.h"
#include "hosted_control.h"
#include "measure.h"
// After the platform headers: jpeglib defines TRUE and FALSE as macros.
#include "generated_photo.h"

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr int kLevels = 10;

// The peak the history may reach, as a multiple of the loaded picture's, and the
// slowest Undo or Redo, as a multiple of a cv::LUT pass.
constexpr double kPeakTarget = 1.6;
constexpr double kTimeTarget = 2.0;

constexpr const char* kScenarios[] = {"load", "strokes", "sprays", "adjustments"};
struct ControlSize {
  int width;
  int height;
};
constexpr ControlSize kControlSizes[] = {{1024, 768}, {4100, 3100}};

std::string BenchFile(const char* name) { return platform::TempFolder() + "imageedit_history_bench_" + name; }

// Mouse input at points of the picture. While a tool drags, the editor keeps the
// pointer inside the part of the picture it shows, so a point the window does not
// show is first brought into view by the message a scroll bar sends, near the
// window's middle: at the edges a drag scrolls by itself, a pixel a tick, far too
// slowly to cross the picture.
class PictureMouse {
 public:
  explicit PictureMouse(HostedControl& control) : control_(control) {}

  void Press(POINT picture) { Send(WM_LBUTTONDOWN, picture); }
  void Move(POINT picture) { Send(WM_MOUSEMOVE, picture); }
  void Release(POINT picture) {
    Send(WM_LBUTTONUP, picture);
    platform::FlushPaint(control_.host());
  }

 private:
  static constexpr int kEdge = 16;

  void Send(UINT message, POINT picture) {
    const POINT at = HostPoint(picture);
    platform::MouseInput(control_.host(), message, at.x, at.y);
  }

  POINT HostPoint(POINT picture) {
    RECT client{0, 0, 0, 0};
    GetClientRect(control_.editor(), &client);
    POINT point{WindowCoordinate(SB_HORZ, picture.x, client.right, kWidth),
                WindowCoordinate(SB_VERT, picture.y, client.bottom, kHeight)};
    ClientToScreen(control_.editor(), &point);
    return point;
  }

  // A picture wider (taller) than the window scrolls on that axis; a smaller one sits
  // in the middle of it.
  int WindowCoordinate(int bar, int at, int window, int picture) {
    if (picture <= window) return at + (window - picture) / 2;
    const HWND editor = control_.editor();
    const int shown = at - GetScrollPos(editor, bar);
    if (shown >= kEdge && shown < window - kEdge) return shown;
    const int position = std::clamp(at - window / 2, 0, picture - window);
    const UINT message = bar == SB_HORZ ? WM_HSCROLL : WM_VSCROLL;
    // The position travels in the message's high word, as a scroll bar sends it.
    SendMessageA(editor, message, SB_THUMBPOSITION | (static_cast<WPARAM>(position) << 16), 0);
    return at - GetScrollPos(editor, bar);
  }

  HostedControl& control_;
};

// Eleven strokes at different columns, so that the first falls out of the history.
void DrawStrokes(HostedControl& control) {
  PictureMouse mouse(control);
  control.Call("SetPen", 3);
  for (int stroke = 0; stroke <= kLevels; ++stroke) {
    const int x = 150 + stroke * 360;
    mouse.Press({x, 0});
    for (int y = 100; y < kHeight; y += 100) mouse.Move({x, y});
    mouse.Move({x, kHeight - 1});
    mouse.Release({x, kHeight - 1});
  }
}

// The stops of a sweep along one axis: a step apart from `first`, and the last pixel.
std::vector<int> SweepStops(int first, int step, int length) {
  std::vector<int> stops;
  for (int at = first; at < length - 1; at += step) stops.push_back(at);
  stops.push_back(length - 1);
  return stops;
}

// Each spray sweeps the picture row by row, back and forth, a disc's radius apart,
// with the spray timer firing once at every stop before the pointer moves on. The
// disc lies up and to the left of the pointer, so the sweep starts a radius in from
// the picture's top and left edges.
void SprayPicture(HostedControl& control) {
  constexpr int kDiameter = 240;
  constexpr int kRadius = kDiameter / 2;
  constexpr unsigned kSprayTimerMs = 200;
  PictureMouse mouse(control);
  control.Call("SetAirBrush", kDiameter);
  const std::vector<int> columns = SweepStops(kRadius, kRadius, kWidth);
  for (int spray = 0; spray < kLevels; ++spray) {
    // Each spray's rows lie a little higher than the last one's.
    const std::vector<int> rows = SweepStops(kRadius - spray * (kRadius / kLevels), kRadius, kHeight);
    mouse.Press({columns.front(), rows.front()});
    bool forward = true;
    for (const int y : rows) {
      for (std::size_t i = 0; i < columns.size(); ++i) {
        mouse.Move({columns[forward ? i : columns.size() - 1 - i], y});
        platform::AdvanceClock(kSprayTimerMs);
      }
      forward = !forward;
    }
    mouse.Release({forward ? columns.front() : columns.back(), kHeight - 1});
  }
}

void BrightenTenTimes(HostedControl& control) {
  for (int level = 0; level < kLevels; ++level) control.Call("BrightenImage", 110 + level * 10);
}

// The times of ten calls of `method`, each with its paint.
std::vector<double> TimeCalls(HostedControl& control, const char* method) {
  std::vector<double> times;
  for (int i = 0; i < kLevels; ++i) {
    const auto start = Clock::now();
    control.Call(method);
    times.push_back(Milliseconds(Clock::now() - start));
  }
  return times;
}

int RunScenario(const std::string& scenario, int width, int height) {
  HostedControl control(width, height);
  control.Call("SetImage", BenchFile("photo.jpg"));
  if (scenario == "strokes") {
    DrawStrokes(control);
  } else if (scenario == "sprays") {
    SprayPicture(control);
  } else if (scenario == "adjustments") {
    BrightenTenTimes(control);
  } else if (scenario != "load") {
    return 2;
  }
  std::vector<double> undo, redo;
  if (scenario != "load") {
    undo = TimeCalls(control, "Undo");
    redo = TimeCalls(control, "Redo");
  }
  std::printf("%.1f", PeakMegabytes());
  for (const double ms : undo) std::printf(" %.3f", ms);
  for (const double ms : redo) std::printf(" %.3f", ms);
  std::printf("\n");
  return 0;
}

struct ScenarioResult {
  double peakMb = 0;
  std::vector<double> undo;
  std::vector<double> redo;
};

std::optional<ScenarioResult> RunChild(const char* scenario, ControlSize size) {
  const std::optional<std::string> output =
      OutputOfFreshRun({"--scenario", scenario, std::to_string(size.width), std::to_string(size.height)});
  if (!output) return std::nullopt;
  std::istringstream values(*output);
  ScenarioResult result;
  if (!(values >> result.peakMb)) return std::nullopt;
  std::vector<double> times;
  for (double ms; values >> ms;) times.push_back(ms);
  if (times.size() != 2 * kLevels && !times.empty()) return std::nullopt;
  result.undo.assign(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2));
  result.redo.assign(times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
  return result;
}

// The median and the slowest time, then, with a cv::LUT time, each as a multiple of it.
void PrintTimes(const std::vector<double>& times, std::optional<double> lutMs) {
  const double median = Median(times);
  const double slowest = *std::max_element(times.begin(), times.end());
  std::printf("  %8.1f %8.1f", median, slowest);
  if (lutMs) std::printf(" %6.2f %6.2f", median / *lutMs, slowest / *lutMs);
}

std::optional<double> MedianLutMs(const std::vector<std::uint8_t>& photo) {
#ifdef IE_HAVE_OPENCV
  // One thread, as the control works on the host's thread.
  cv::setNumThreads(1);
  const cv::Mat image(kHeight, kWidth, CV_8UC3, const_cast<std::uint8_t*>(photo.data()));
  cv::Mat table(1, 256, CV_8U);
  for (int i = 0; i < 256; ++i) table.at<std::uint8_t>(i) = static_cast<std::uint8_t>(std::min(255, i + 27));
  cv::Mat out;
  std::vector<double> times;
  for (int run = 0; run < 15; ++run) {
    const auto start = Clock::now();
    cv::LUT(image, table, out);
    times.push_back(Milliseconds(Clock::now() - start));
  }
  return Median(times);
#else
  (void)photo;
  return std::nullopt;
#endif
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::string(argv[1]) == "--scenario") {
    return RunScenario(argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
  }
  const std::string jpeg = BenchFile("photo.jpg");
  const std::vector<std::uint8_t> photo = MakePhoto(kWidth, kHeight);
  if (!WritePhotoJpeg(photo, kWidth, kHeight, jpeg)) {
    std::perror(jpeg.c_str());
    return 1;
  }
  const std::optional<double> lutMs = MedianLutMs(photo);

  std::printf("Edit history of a %d x %d JPEG: peak memory (VmHWM) of a fresh process per scenario,\n",
              kWidth, kHeight);
  std::printf("then ten Undo and ten Redo, each with its paint, in ms (median and slowest)");
  if (lutMs) {
    std::printf(",\nand as multiples of a cv::LUT pass over the 24-bit picture: %.2f ms (median)", *lutMs);
  }
  std::printf(".\nTargets: peak <= %.1f x load; Undo and Redo <= %.0f x cv::LUT.\n", kPeakTarget,
              kTimeTarget);
  std::printf("\n%-12s %-12s %8s %7s  %8s %8s", "control", "scenario", "peak MB", "x load", "undo med",
              "max");
  if (lutMs) std::printf(" %6s %6s", "x LUT", "max");
  std::printf("  %8s %8s", "redo med", "max");
  if (lutMs) std::printf(" %6s %6s", "x LUT", "max");
  std::printf("\n");

  bool failed = false;
  for (const ControlSize size : kControlSizes) {
    const std::string control = std::to_string(size.width) + " x " + std::to_string(size.height);
    std::optional<double> loadMb;
    for (const char* scenario : kScenarios) {
      const std::optional<ScenarioResult> result = RunChild(scenario, size);
      std::printf("%-12s %-12s", control.c_str(), scenario);
      if (!result) {
        std::printf(" failed\n");
        failed = true;
        continue;
      }
      if (std::string(scenario) == "load") loadMb = result->peakMb;
      std::printf(" %8.1f", result->peakMb);
      if (loadMb) {
        std::printf(" %7.2f", result->peakMb / *loadMb);
      } else {
        std::printf(" %7s", "-");
      }
      if (!result->undo.empty()) {
        PrintTimes(result->undo, lutMs);
        PrintTimes(result->redo, lutMs);
      }
      std::printf("\n");
      std::fflush(stdout);
    }
  }
  if (!lutMs) std::printf("(built without OpenCV: no cv::LUT columns)\n");
  std::remove(jpeg.c_str());
  return failed ? 1 : 0;
}
