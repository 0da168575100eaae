// Loading a 4000 x 3000 JPEG and PNG through the image loader against the bare
// library decode of the same file, and writing a 4000 x 3000 bitmap file. The
// pictures are generated at start-up into the temp folder. At the end the loader's
// overhead over the bare decode is printed for each format.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "imageio/bitmap_file_writer.h"
#include "imageio/image_loader.h"
#include "platform/platform.h"

// After the platform headers: jpeglib defines TRUE and FALSE as macros.
#include "jpeg_file.h"
#include <png.h>

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

std::string BenchFile(const char* name) { return platform::TempFolder() + "imageedit_bench_" + name; }

// A photo-like picture: smooth gradients with a little noise, RGB rows.
std::vector<std::uint8_t> MakePicture() {
  std::vector<std::uint8_t> rgb(static_cast<std::size_t>(kWidth) * kHeight * 3);
  unsigned state = 12345;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      state = state * 214013u + 2531011u;
      const int noise = static_cast<int>((state >> 16) & 15);
      std::uint8_t* p = rgb.data() + (static_cast<std::size_t>(y) * kWidth + x) * 3;
      p[0] = static_cast<std::uint8_t>((x * 255 / kWidth + noise) & 0xFF);
      p[1] = static_cast<std::uint8_t>((y * 255 / kHeight + noise) & 0xFF);
      p[2] = static_cast<std::uint8_t>(((x + y) / 30 + noise) & 0xFF);
    }
  }
  return rgb;
}

void WritePng(const std::vector<std::uint8_t>& rgb, const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = kWidth;
  image.height = kHeight;
  image.format = PNG_FORMAT_RGB;
  png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr);
}

std::vector<std::uint8_t> ReadFile(const std::string& path) {
  std::vector<std::uint8_t> data;
  if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
    std::fseek(file, 0, SEEK_END);
    data.resize(static_cast<std::size_t>(std::ftell(file)));
    std::fseek(file, 0, SEEK_SET);
    data.resize(std::fread(data.data(), 1, data.size(), file));
    std::fclose(file);
  }
  return data;
}

// The bare decodes: read the file, decode with the library into new, uninitialised
// 32-bit storage (the least work any decoder of a new picture can do).
using Storage = std::unique_ptr<std::uint8_t[]>;

Storage BareJpeg(const std::string& path) {
  const std::vector<std::uint8_t> data = ReadFile(path);
  jpeg_decompress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, data.data(), static_cast<unsigned long>(data.size()));
  jpeg_read_header(&info, TRUE);
  info.out_color_space = JCS_EXT_BGRX;
  jpeg_start_decompress(&info);
  Storage out(new std::uint8_t[static_cast<std::size_t>(info.output_width) * info.output_height * 4]);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = out.get() + static_cast<std::size_t>(info.output_scanline) * info.output_width * 4;
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  return out;
}

Storage BarePng(const std::string& path) {
  const std::vector<std::uint8_t> data = ReadFile(path);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  png_image_begin_read_from_memory(&image, data.data(), data.size());
  image.format = PNG_FORMAT_BGRA;
  Storage out(new std::uint8_t[PNG_IMAGE_SIZE(image)]);
  png_image_finish_read(&image, nullptr, out.get(), 0, nullptr);
  return out;
}

void LoadThroughLoader(benchmark::State& state, const char* name) {
  const std::string path = BenchFile(name);
  for (auto _ : state) {
    HBITMAP bitmap = imageio::LoadImage(path.c_str(), {});
    if (!bitmap) state.SkipWithError("the loader failed");
    benchmark::DoNotOptimize(bitmap);
    DeleteObject(bitmap);
  }
}

void BM_LoadJpeg(benchmark::State& state) { LoadThroughLoader(state, "photo.jpg"); }
void BM_BareJpeg(benchmark::State& state) {
  for (auto _ : state) {
    Storage pixels = BareJpeg(BenchFile("photo.jpg"));
    benchmark::DoNotOptimize(pixels.get());
  }
}
void BM_LoadPng(benchmark::State& state) { LoadThroughLoader(state, "photo.png"); }
void BM_BarePng(benchmark::State& state) {
  for (auto _ : state) {
    Storage pixels = BarePng(BenchFile("photo.png"));
    benchmark::DoNotOptimize(pixels.get());
  }
}
void BM_WriteBitmapFile(benchmark::State& state) {
  HBITMAP bitmap = imageio::LoadImage(BenchFile("photo.png").c_str(), {});
  const std::string path = BenchFile("written.bmp");
  for (auto _ : state) imageio::WriteBitmapFile(path.c_str(), bitmap, {});
  DeleteObject(bitmap);
  state.SetBytesProcessed(state.iterations() * (54 + static_cast<std::int64_t>(kWidth) * 3 * kHeight));
  std::remove(path.c_str());
}

BENCHMARK(BM_BareJpeg)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_LoadJpeg)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_BarePng)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_LoadPng)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_WriteBitmapFile)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Remembers each benchmark's time per iteration for the ratios printed at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      times_[run.benchmark_name()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
    ConsoleReporter::ReportRuns(runs);
  }
  // Wall-clock and CPU time both: on a busy machine the CPU time is the steadier.
  void PrintRatios() const {
    for (const char* format : {"Jpeg", "Png"}) {
      const Times ours = Find(std::string("BM_Load") + format);
      const Times bare = Find(std::string("BM_Bare") + format);
      if (ours.real > 0 && bare.real > 0 && ours.cpu > 0 && bare.cpu > 0) {
        std::printf(
            "%s: loader %.1f ms (cpu %.1f), bare decode %.1f ms (cpu %.1f), overhead %+.1f %% (cpu %+.1f "
            "%%)\n",
            format, ours.real, ours.cpu, bare.real, bare.cpu, (ours.real / bare.real - 1.0) * 100.0,
            (ours.cpu / bare.cpu - 1.0) * 100.0);
      }
    }
  }

 private:
  struct Times {
    double real = 0;
    double cpu = 0;
  };
  Times Find(const std::string& name) const {
    for (const auto& [key, value] : times_) {
      if (key.rfind(name, 0) == 0) return value;
    }
    return {};
  }
  std::map<std::string, Times> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::vector<std::uint8_t> picture = MakePicture();
  WriteJpegFile(picture.data(), kWidth, kHeight, 90, BenchFile("photo.jpg"));
  WritePng(picture, BenchFile("photo.png"));
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  std::remove(BenchFile("photo.jpg").c_str());
  std::remove(BenchFile("photo.png").c_str());
  benchmark::Shutdown();
  return 0;
}
