// The control as a host drives it, timed against the closest work OpenCV does on the
// same picture in the same run. A 1024 x 768 control in a host window is called
// through the dispatch interface by name, and every call is followed by the paint a
// message loop would run, as in the script host. The picture is a generated,
// photo-like 4000 x 3000 one (smooth gradients, texture and noise), saved as a JPEG of
// quality 90 and as a 24-bit bitmap file into the temp folder.
//
// For each operation the bench prints our median, the OpenCV median, their ratio and
// our median as a multiple of a memcpy of the picture's 24-bit pixels. Peak memory
// (VmHWM) of each memory scenario is measured in a fresh child process.
//
// A save replaces its file atomically and syncs it (and its folder) to the disk, which
// cv::imwrite does not: the time spent in fsync is measured on its own (this program
// defines fsync, so the engine's calls come here) and the save is compared without it.
//
//   control_bench [RUNS]             the table (RUNS timed runs each, default 7)
//   control_bench --memory SCENARIO  internal: one memory scenario in this process
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "imageio/bitmap_file_writer.h"
#include "pixels/convolve.h"
#include "pixels/equalize.h"
#include "pixels/line_patterns.h"
#include "pixels/mirror.h"
#include "pixels/pixel_buffer.h"
#include "pixels/rotate.h"
#include "platform/platform.h"

#ifdef IE_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "fresh_process.h"
#include "hosted_control.h"
#include "measure.h"
// After the platform headers: jpeglib defines TRUE and FALSE as macros.
#include "generated_photo.h"

namespace {

// Milliseconds spent in fsync since the last reset.
double g_fsyncMs = 0;

}  // namespace

extern "C" int fsync(int fd) {
  const auto start = std::chrono::steady_clock::now();
  const auto result = static_cast<int>(syscall(SYS_fsync, fd));
  g_fsyncMs += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  return result;
}

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr int kControlWidth = 1024;
constexpr int kControlHeight = 768;

std::string BenchFile(const char* name) { return platform::TempFolder() + "imageedit_control_bench_" + name; }

void WriteJpeg(const std::vector<std::uint8_t>& bgr, const std::string& path) {
  if (!WritePhotoJpeg(bgr, kWidth, kHeight, path)) {
    std::perror(path.c_str());
    std::exit(1);
  }
}

void WriteBitmap(const std::vector<std::uint8_t>& bgr, const std::string& path) {
  // The file's rows run bottom-up; a row of 4000 pixels needs no padding.
  static_assert(kWidth * 3 % 4 == 0);
  const std::size_t row = static_cast<std::size_t>(kWidth) * 3;
  std::vector<std::uint8_t> rows(bgr.size());
  for (std::size_t y = 0; y < kHeight; ++y) {
    std::memcpy(rows.data() + (kHeight - 1 - y) * row, bgr.data() + y * row, row);
  }
  if (!imageio::WriteDib24File(path, kWidth, kHeight, rows.data())) {
    std::perror(path.c_str());
    std::exit(1);
  }
}

// A small picture of blue and yellow stripes on the key colour white.
void WriteSmallPicture(const std::string& path, int width, int height) {
  const std::size_t row = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
  std::vector<std::uint8_t> rows(row * static_cast<std::size_t>(height), 0xFF);
  for (int y = height / 4; y < height * 3 / 4; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint8_t* pixel = rows.data() + static_cast<std::size_t>(y) * row + static_cast<std::size_t>(x) * 3;
      const bool blue = (x / 8) % 2 == 0;
      pixel[0] = blue ? 0xC0 : 0x00;
      pixel[1] = blue ? 0x40 : 0xD0;
      pixel[2] = blue ? 0x20 : 0xF0;
    }
  }
  if (!imageio::WriteDib24File(path, width, height, rows.data())) {
    std::perror(path.c_str());
    std::exit(1);
  }
}

// The median of `runs` timings of `timed`, each after an untimed `prepare`.
double MedianOf(int runs, const std::function<void()>& prepare, const std::function<void()>& timed) {
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    if (prepare) prepare();
    const auto start = Clock::now();
    timed();
    times.push_back(Milliseconds(Clock::now() - start));
  }
  return Median(times);
}

struct Row {
  std::string operation;
  double ours;
  std::optional<double> peer;
  std::string peerName;
};

void PrintTable(const std::vector<Row>& rows, double memcpyMs) {
  std::printf("\n%-36s %10s %10s %7s %9s  %s\n", "operation", "ours ms", "peer ms", "ratio", "x memcpy",
              "peer");
  for (const Row& row : rows) {
    std::printf("%-36s %10.1f ", row.operation.c_str(), row.ours);
    if (row.peer) {
      std::printf("%10.1f %7.2f ", *row.peer, row.ours / *row.peer);
    } else {
      std::printf("%10s %7s ", "-", "-");
    }
    std::printf("%9.1f  %s\n", row.ours / memcpyMs, row.peerName.c_str());
  }
  std::printf("(memcpy of the 24-bit picture, %.0f MB: %.2f ms)\n", kWidth * 3.0 * kHeight / 1e6, memcpyMs);
}

// One memory scenario in this process; prints its peak.
int RunMemoryScenario(const std::string& scenario) {
  const std::string jpeg = BenchFile("photo.jpg");
  HostedControl control(kControlWidth, kControlHeight);
  if (scenario == "one-picture") {
    control.Call("SetImage", jpeg);
  } else if (scenario == "history") {
    // Twelve loads: ten levels of history, each with a snapshot of a drawing layer
    // that holds nothing.
    for (int i = 0; i < 12; ++i) control.Call("SetImage", jpeg);
  } else if (scenario == "adjusted-history") {
    control.Call("SetImage", jpeg);
    for (int i = 0; i < 10; ++i) control.Call("BrightenImage", 110 + i);
    control.Call("Undo");
  } else {
    return 2;
  }
  std::printf("%.1f\n", PeakMegabytes());
  return 0;
}

std::optional<double> ChildPeak(const char* scenario) {
  const std::optional<std::string> output = OutputOfFreshRun({"--memory", scenario});
  if (!output || output->empty()) return std::nullopt;
  return std::atof(output->c_str());
}

// The destructive effects on the picture at 100 %: each control call (the surface's
// pixels read, the effect, written back, the repaint and a history level; for the
// quarter turn the original turned and the layout set anew), then the pixel routine
// alone on a 24-bit buffer of the picture, each against OpenCV's nearest operation
// (none for the line patterns, which lighten a tenth or a fifth of the pixels).
void AddEffectRows(HostedControl& control, const std::vector<std::uint8_t>& photo, int runs,
                   std::vector<Row>& rows) {
  const auto none = std::vector<Variant>{};
  const auto call = [&](const char* name) {
    return MedianOf(runs, nullptr, [&] { control.Call(name, none); });
  };
  PixelBuffer pixels(kWidth, kHeight);
  PixelBuffer turned(kHeight, kWidth);
  if (!pixels || !turned) {
    std::fprintf(stderr, "control_bench: no memory for the effects' buffers\n");
    std::exit(1);
  }
  for (int y = 0; y < kHeight; ++y) {
    std::memcpy(pixels.data() + static_cast<std::size_t>(kHeight - 1 - y) * pixels.stride(),
                photo.data() + static_cast<std::size_t>(y) * kWidth * 3,
                static_cast<std::size_t>(kWidth) * 3);
  }
  const auto routine = [&](const std::function<void()>& work) { return MedianOf(runs, nullptr, work); };
  const RECT whole{0, 0, kWidth, kHeight};
  struct Effect {
    const char* call;
    double callMs;
    const char* routineName;
    double routineMs;
    const char* peerName;
  };
  const Effect effects[] = {
      {"FlipImage", call("FlipImage"), "  FlipRows (pixels)", routine([&] { FlipRows(pixels.Whole()); }),
       "cv::flip vertical"},
      {"ReverseImage", call("ReverseImage"), "  MirrorRows (pixels)",
       routine([&] { MirrorRows(pixels.Whole()); }), "cv::flip horizontal"},
      // Each timed turn by 90 follows an untimed one by -90, so it ends as it started.
      {"RotateImage(90)",
       MedianOf(
           runs, [&] { control.Call("RotateImage", -90); }, [&] { control.Call("RotateImage", 90); }),
       "  RotateQuarter (pixels)", routine([&] { RotateQuarter(pixels.Whole(), 90, turned.Whole()); }),
       "cv::rotate"},
      {"EmbossImage", call("EmbossImage"), "  ConvolvePixels 3x3 (pixels)",
       routine([&] { EmbossPixels(pixels.Whole()); }), "cv::filter2D 3x3 emboss"},
      {"EqualizeHistogram", call("EqualizeHistogram"), "  EqualizePixels (pixels)",
       routine([&] { EqualizePixels(pixels.Whole()); }), "cv::equalizeHist x3"},
      {"CheckImage", call("CheckImage"), "  DrawCheckLines (pixels)",
       routine([&] { DrawCheckLines(pixels.Whole(), whole); }), ""},
      {"BlockImage", call("BlockImage"), "  DrawBlockGrooves (pixels)",
       routine([&] { DrawBlockGrooves(pixels.Whole(), whole); }), ""},
  };

  std::optional<double> peers[std::size(effects)];
#ifdef IE_HAVE_OPENCV
  cv::setNumThreads(1);
  const cv::Mat image(kHeight, kWidth, CV_8UC3, const_cast<std::uint8_t*>(photo.data()));
  cv::Mat out;
  const cv::Mat emboss = (cv::Mat_<float>(3, 3) << 0, -1, -1, 1, 0, -1, 1, 1, 0);
  peers[0] = routine([&] { cv::flip(image, out, 0); });
  peers[1] = routine([&] { cv::flip(image, out, 1); });
  peers[2] = routine([&] { cv::rotate(image, out, cv::ROTATE_90_COUNTERCLOCKWISE); });
  peers[3] =
      routine([&] { cv::filter2D(image, out, -1, emboss, cv::Point(-1, -1), 128, cv::BORDER_REPLICATE); });
  peers[4] = routine([&] {
    std::vector<cv::Mat> channels;
    cv::split(image, channels);
    for (cv::Mat& channel : channels) cv::equalizeHist(channel, channel);
    cv::merge(channels, out);
  });
#endif
  for (std::size_t i = 0; i < std::size(effects); ++i) {
    const Effect& e = effects[i];
    rows.push_back({e.call, e.callMs, peers[i], e.peerName});
    rows.push_back({e.routineName, e.routineMs, peers[i], e.peerName});
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::string(argv[1]) == "--memory") return RunMemoryScenario(argv[2]);
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;

  const std::vector<std::uint8_t> photo = MakePhoto(kWidth, kHeight);
  const std::string jpeg = BenchFile("photo.jpg");
  const std::string bmp = BenchFile("photo.bmp");
  const std::string saved = BenchFile("saved.bmp");
  WriteJpeg(photo, jpeg);
  WriteBitmap(photo, bmp);

  std::vector<std::uint8_t> copy(photo.size());
  const double memcpyMs =
      MedianOf(runs * 3, nullptr, [&] { std::memcpy(copy.data(), photo.data(), photo.size()); });

  std::vector<Row> rows;
  HostedControl control(kControlWidth, kControlHeight);
  const auto ours = [&](const std::function<void()>& prepare, const std::function<void()>& timed) {
    return MedianOf(runs, prepare, timed);
  };

  rows.push_back(
      {"SetImage (JPEG)", ours(nullptr, [&] { control.Call("SetImage", jpeg); }), {}, "cv::imread JPEG"});
  rows.push_back({"SetImage (24-bit bitmap file)",
                  ours(nullptr, [&] { control.Call("SetImage", bmp); }),
                  {},
                  "cv::imread BMP"});

  // Each setter is timed from the neutral setting to another value, so that it runs
  // its own pass alone.
  const auto setter = [&](const char* name, int neutral, int value) {
    const double median = ours([&] { control.Call(name, neutral); }, [&] { control.Call(name, value); });
    control.Call(name, neutral);
    return median;
  };
  rows.push_back({"BrightenImage(150)", setter("BrightenImage", 100, 150), {}, "cv::LUT"});
  rows.push_back({"ContrastImage(150)", setter("ContrastImage", 100, 150), {}, "cv::LUT"});
  rows.push_back({"CorrectGamma(60, 50, 30)",
                  ours(
                      [&] {
                        control.Call("CorrectGamma", {Variant::Int(40), Variant::Int(40), Variant::Int(40)});
                      },
                      [&] {
                        control.Call("CorrectGamma", {Variant::Int(60), Variant::Int(50), Variant::Int(30)});
                      }),
                  {},
                  "cv::LUT"});
  control.Call("CorrectGamma", {Variant::Int(40), Variant::Int(40), Variant::Int(40)});
  rows.push_back({"WhitenImage(1)", setter("WhitenImage", 0, 1), {}, "cv::LUT"});
  rows.push_back({"SharpenImage(1)", setter("SharpenImage", 0, 1), {}, "cv::filter2D 3x3"});
  rows.push_back({"SmoothImage(1)", setter("SmoothImage", 0, 1), {}, "cv::filter2D 3x3"});
  rows.push_back({"HueImage(50)", setter("HueImage", 0, 50), {}, "cv::transform (double)"});
  rows.push_back({"SaturateImage(150)", setter("SaturateImage", 100, 150), {}, "cv::transform (double)"});

  // Undo and redo of a brightness level: each restore runs the adjusted rebuild. Back
  // to another brightness level, and back to the picture as loaded (whose level also
  // brings back the drawing layer and the scroll position).
  const auto undoRedo = [&](const std::string& undoName, const std::string& redoName) {
    std::vector<double> undo, redo;
    for (int i = 0; i < runs; ++i) {
      auto start = Clock::now();
      control.Call("Undo");
      undo.push_back(Milliseconds(Clock::now() - start));
      start = Clock::now();
      control.Call("Redo");
      redo.push_back(Milliseconds(Clock::now() - start));
    }
    rows.push_back({undoName, Median(undo), {}, "cv::LUT"});
    rows.push_back({redoName, Median(redo), {}, "cv::LUT"});
  };
  control.Call("BrightenImage", 120);
  control.Call("BrightenImage", 150);
  undoRedo("Undo (brightness to brightness)", "Redo (brightness to brightness)");
  control.Call("SetImage", jpeg);
  control.Call("BrightenImage", 150);
  undoRedo("Undo (brightness to as loaded)", "Redo (as loaded to brightness)");

  control.Call("BrightenImage", 100);
  // Each save's time without what its syncs took, and the syncs alone.
  std::vector<double> saves, syncs;
  for (int i = 0; i < runs; ++i) {
    g_fsyncMs = 0;
    const auto start = Clock::now();
    control.Call("SaveEditedBitmap", saved);
    const double total = Milliseconds(Clock::now() - start);
    saves.push_back(total - g_fsyncMs);
    syncs.push_back(g_fsyncMs);
  }
  rows.push_back({"SaveEditedBitmap (without fsync)", Median(saves), {}, "cv::imwrite BMP"});
  rows.push_back({"  its fsync of file and folder", Median(syncs), {}, ""});
  AddEffectRows(control, photo, runs, rows);
  rows.push_back(
      {"repaint (scroll by one line)", ours(nullptr, [&] { control.Scroll(SB_LINEDOWN); }), {}, ""});

  // Text and objects, each measured against BrightenImage above: typed text is
  // stamped when the box closes (here by choosing the pen), and every object is drawn
  // again at each repaint.
  const std::string icon = BenchFile("icon.bmp");
  const std::string balloon = BenchFile("balloon.bmp");
  WriteSmallPicture(icon, 64, 64);
  WriteSmallPicture(balloon, 240, 120);
  const auto none = std::vector<Variant>{};
  rows.push_back({"commit of a typed 200 x 100 text box",
                  ours(
                      [&] {
                        control.Call("EnterText", none);
                        control.Drag(100, 100, 300, 200);
                        control.Type("The quick brown fox jumps over the lazy dog, and again, and again.");
                      },
                      [&] { control.Call("SetPen", 3); }),
                  {},
                  ""});
  const auto insert = [&](const char* name, std::vector<Variant> args) {
    // Each insertion is undone before the next, so that a slot is always free.
    return ours([&] { control.Call("Undo", none); }, [&] { control.Call(name, args); });
  };
  const auto balloonArgs = [](const std::string& path) {
    return std::vector<Variant>{Variant::Int(200),     Variant::Int(150),
                                Variant::String(path), Variant::Int(20),
                                Variant::Int(20),      Variant::Int(220),
                                Variant::Int(100),     Variant::String("A balloon with a few words in it")};
  };
  rows.push_back({"InsertBalloonText (picture)", insert("InsertBalloonText", balloonArgs(balloon)), {}, ""});
  rows.push_back({"InsertBalloonText (plain box)", insert("InsertBalloonText", balloonArgs("")), {}, ""});
  rows.push_back({"InsertIcon",
                  insert("InsertIcon", {Variant::Int(300), Variant::Int(300), Variant::String(icon)}),
                  {},
                  ""});
  for (int i = 0; i < 5; ++i) {
    control.Call("InsertIcon", {Variant::Int(100 + 120 * i), Variant::Int(200), Variant::String(icon)});
  }
  rows.push_back({"repaint with five objects (scroll)",
                  ours([&] { control.Scroll(SB_LINEUP); }, [&] { control.Scroll(SB_LINEDOWN); }),
                  {},
                  ""});
  // A frame of 16-pixel pieces reaching 8 pixels over the picture: a repaint draws
  // only the tiles the window shows, and setting a piece repaints and records a level.
  const std::string piece = BenchFile("piece.bmp");
  WriteSmallPicture(piece, 16, 16);
  const auto setFrame = [&](int orientation) {
    control.Call("SetFrame",
                 {Variant::Int(orientation), Variant::String(piece), Variant::Int(8), Variant::Int(0)});
  };
  for (int orientation = 0; orientation < 8; ++orientation) setFrame(orientation);
  rows.push_back({"repaint with objects and a frame",
                  ours([&] { control.Scroll(SB_LINEUP); }, [&] { control.Scroll(SB_LINEDOWN); }),
                  {},
                  ""});
  rows.push_back({"SetFrame (one piece)", ours(nullptr, [&] { setFrame(2); }), {}, ""});

#ifdef IE_HAVE_OPENCV
  cv::setNumThreads(1);
  const cv::Mat image(kHeight, kWidth, CV_8UC3, const_cast<std::uint8_t*>(photo.data()));
  cv::Mat out;
  cv::Mat table(1, 256, CV_8U);
  for (int i = 0; i < 256; ++i) table.at<std::uint8_t>(i) = static_cast<std::uint8_t>(std::min(255, i + 127));
  const cv::Mat box = cv::Mat::ones(3, 3, CV_32F) / 9.0f;
  const cv::Mat matrix = (cv::Mat_<double>(3, 4) << 0.8, 0.1, 0.1, 2, 0.1, 0.8, 0.1, 2, 0.1, 0.1, 0.8, 2);
  const auto peer = [&](const std::function<void()>& work) { return MedianOf(runs, nullptr, work); };
  const double read = peer([&] { out = cv::imread(jpeg); });
  const double readBmp = peer([&] { out = cv::imread(bmp); });
  const double lut = peer([&] { cv::LUT(image, table, out); });
  const double filter = peer([&] { cv::filter2D(image, out, -1, box); });
  const double transform = peer([&] { cv::transform(image, out, matrix); });
  const double write = peer([&] { cv::imwrite(BenchFile("opencv.bmp"), image); });
  for (Row& row : rows) {
    if (row.peerName == "cv::imread JPEG") row.peer = read;
    if (row.peerName == "cv::imread BMP") row.peer = readBmp;
    if (row.peerName == "cv::LUT") row.peer = lut;
    if (row.peerName == "cv::filter2D 3x3") row.peer = filter;
    if (row.peerName == "cv::transform (double)") row.peer = transform;
    if (row.peerName == "cv::imwrite BMP") row.peer = write;
  }
#else
  for (Row& row : rows) row.peerName.clear();
  std::printf("(built without OpenCV: no peer columns)\n");
#endif
  PrintTable(rows, memcpyMs);
  const auto brighten = std::find_if(rows.begin(), rows.end(),
                                     [](const Row& row) { return row.operation == "BrightenImage(150)"; });
  std::printf("\ntext and objects against BrightenImage(150) (%.1f ms): each must be below 1\n",
              brighten->ours);
  for (const Row& row : rows) {
    const bool textOrObject = row.operation.find("text box") != std::string::npos ||
                              row.operation.rfind("Insert", 0) == 0 ||
                              row.operation.find("objects") != std::string::npos;
    if (textOrObject) std::printf("  %-36s %5.2f\n", row.operation.c_str(), row.ours / brighten->ours);
  }
  std::printf(
      "(a save writes a new file, syncs it and its folder to the disk and renames it over the old one;\n"
      " cv::imwrite only writes: the save's ratio leaves out the time in fsync, shown on its own)\n");

  std::printf("\npeak memory (VmHWM of a fresh process)\n");
  for (const char* scenario : {"one-picture", "history", "adjusted-history"}) {
    const std::optional<double> peak = ChildPeak(scenario);
    if (peak) {
      std::printf("  %-18s %7.1f MB\n", scenario, *peak);
    } else {
      std::printf("  %-18s failed\n", scenario);
    }
  }
  std::remove(saved.c_str());
  std::remove(icon.c_str());
  std::remove(balloon.c_str());
  std::remove(piece.c_str());
  std::remove(BenchFile("opencv.bmp").c_str());
  return 0;
}
