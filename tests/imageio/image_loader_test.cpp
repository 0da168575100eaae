#include "imageio/image_loader.h"

#include <gtest/gtest.h>

#include "bmp_builder.h"
#include "imageio/url_download.h"
#include "local_http_server.h"
#include "platform/platform.h"
#include "sample_files.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

namespace {

using imageio::LoadContext;
using imageio::LoadImage;
using imageio_test::ReadSample;
using imageio_test::SamplePath;

// The pixels of a loaded bitmap (0x00RRGGBB, top row first), empty for none.
std::vector<std::uint32_t> Pixels(HBITMAP bitmap, int* width = nullptr, int* height = nullptr) {
  int w = 0, h = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(bitmap, &w, &h);
  if (width) *width = w;
  if (height) *height = h;
  if (!pixels) return {};
  return {pixels, pixels + static_cast<std::size_t>(w) * h};
}

class ImageLoaderTest : public ::testing::Test {
 protected:
  void SetUp() override { baseline_ = platform::LiveGdiObjects().bitmaps; }
  void TearDown() override {
    imageio::SetDownloadLimits({});
    EXPECT_EQ(platform::LiveGdiObjects().bitmaps, baseline_) << "a bitmap leaked";
  }

  // Loads and deletes the result; returns its pixels.
  std::vector<std::uint32_t> LoadPixels(const std::string& source, const LoadContext& context,
                                        int* width = nullptr, int* height = nullptr) {
    HBITMAP bitmap = LoadImage(source.c_str(), context);
    std::vector<std::uint32_t> pixels = Pixels(bitmap, width, height);
    if (bitmap) DeleteObject(bitmap);
    return pixels;
  }

  InstalledRecordingHost host_;
  TempFiles files_{"imageio_test_"};
  int baseline_ = 0;
};

const LoadContext kQuiet{nullptr, false, 0x09};
const LoadContext kVerbose{nullptr, true, 0x09};

TEST_F(ImageLoaderTest, BitmapFileFromAPathBecomesADeviceBitmap) {
  const std::string path =
      files_.Write("pal.bmp", imageio_test::BuildBmp({.width = 2,
                                                      .height = 2,
                                                      .bitCount = 8,
                                                      .colorsUsed = 4,
                                                      .palette = {0, 0xFF0000, 0x00FF00, 0xFF},
                                                      .pixels = {3, 0, 0, 0, /* top */ 1, 2, 0, 0}}));
  HBITMAP bitmap = LoadImage(path.c_str(), kQuiet);
  ASSERT_NE(bitmap, nullptr);
  BITMAP description{};
  ASSERT_TRUE(GetObjectA(bitmap, sizeof description, &description));
  EXPECT_EQ(description.bmBitsPixel, 32) << "the window's colour depth";
  EXPECT_EQ(Pixels(bitmap), (std::vector<std::uint32_t>{0xFF0000, 0x00FF00, 0x0000FF, 0x000000}));
  DeleteObject(bitmap);
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(ImageLoaderTest, CompressedFormatsGoThroughThePictureDecoder) {
  int width = 0, height = 0;
  EXPECT_EQ(LoadPixels(SamplePath("rgba_2x2.png"), kQuiet, &width, &height),
            (std::vector<std::uint32_t>{0xFF0000, 0x00FF00, 0x0000FF, 0x7F7F7F}));
  EXPECT_EQ(LoadPixels(SamplePath("two_frames_3x2.gif"), kQuiet, &width, &height).size(), 6u);
  EXPECT_EQ(LoadPixels(SamplePath("solid_16x8.jpg"), kQuiet, &width, &height).size(), 128u);
  EXPECT_EQ(width, 16);
  EXPECT_EQ(height, 8);
}

TEST_F(ImageLoaderTest, JpegWithoutEndMarkerDecodesAsTheCompleteOne) {
  const std::vector<std::uint32_t> complete = LoadPixels(SamplePath("solid_16x8.jpg"), kQuiet);
  ASSERT_FALSE(complete.empty());
  EXPECT_EQ(LoadPixels(SamplePath("solid_16x8_cut.jpg"), kQuiet), complete);
  // An APP2 segment first: the data are not touched, and still decode.
  EXPECT_EQ(LoadPixels(SamplePath("app2_cut.jpg"), kQuiet).size(), complete.size());
}

TEST_F(ImageLoaderTest, UndecodableDataGiveNullWithoutMessage) {
  EXPECT_TRUE(LoadPixels(SamplePath("icon_16.ico"), kVerbose).empty());
  EXPECT_TRUE(LoadPixels(files_.Write("text.bmp", {'B', 'M', 1, 2, 3}), kVerbose).empty());
  EXPECT_TRUE(LoadPixels(files_.Write("empty.jpg", {}), kVerbose).empty());
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(ImageLoaderTest, MissingFileIsReportedOnlyWhileVerbose) {
  const std::string missing = platform::TempFolder() + "imageio_no_such_file.jpg";
  EXPECT_EQ(LoadImage(missing.c_str(), kQuiet), nullptr);
  EXPECT_TRUE(host_.messages.empty());

  EXPECT_EQ(LoadImage(missing.c_str(), kVerbose), nullptr);
  EXPECT_EQ(LoadImage(missing.c_str(), {nullptr, true, 0x12}), nullptr);
  EXPECT_EQ(LoadImage(missing.c_str(), {nullptr, true, 0x04}), nullptr);
  ASSERT_EQ(host_.messages.size(), 3u);
  EXPECT_EQ(host_.messages[0].text, "I failed to read " + missing + ". An error code is 2.");
  EXPECT_EQ(host_.messages[1].text, missing + " 파일을 읽는 데 실패하였습니다.\n오류 코드는 2입니다.");
  EXPECT_EQ(host_.messages[2].text, "读" + missing + " 文件失败.\n错误代码是 “2”.");
  EXPECT_EQ(host_.messages[0].caption, "Image Edit Control");
  EXPECT_EQ(host_.messages[0].type, MB_OK | MB_ICONHAND);
}

TEST_F(ImageLoaderTest, FileSchemeUrlIsUsedAsAFileNameUnchanged) {
  const std::string url = "file://" + SamplePath("rgba_2x2.png");
  EXPECT_EQ(LoadImage(url.c_str(), kVerbose), nullptr);
  ASSERT_EQ(host_.messages.size(), 1u);
  EXPECT_EQ(host_.messages[0].text, "I failed to read " + url + ". An error code is 2.");
}

TEST_F(ImageLoaderTest, EmptyStringGoesToTheDownloadAndFails) {
  EXPECT_EQ(LoadImage("", kQuiet), nullptr);
  EXPECT_EQ(LoadImage(nullptr, kQuiet), nullptr);
  EXPECT_TRUE(host_.messages.empty());
  EXPECT_EQ(LoadImage("", kVerbose), nullptr);
  ASSERT_EQ(host_.messages.size(), 1u);
  EXPECT_EQ(host_.messages[0].text, "I failed to read . An error code is 12005.");
}

TEST_F(ImageLoaderTest, UrlsAreDownloadedFromTheServer) {
  imageio_test::LocalHttpServer server;
  server.Serve("/pictures/a.png", ReadSample("rgba_2x2.png"));
  server.Serve("/b.gif", ReadSample("two_frames_3x2.gif"));
  server.Redirect("/moved", "/pictures/a.png");
  server.Start();
  const std::vector<std::uint32_t> expected{0xFF0000, 0x00FF00, 0x0000FF, 0x7F7F7F};
  EXPECT_EQ(LoadPixels(server.Url("/pictures/a.png"), kVerbose), expected);
  EXPECT_EQ(LoadPixels(server.Url("/moved"), kVerbose), expected);
  EXPECT_EQ(LoadPixels(server.Url("/b.gif"), kVerbose).size(), 6u);
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(ImageLoaderTest, DownloadFailuresAreReportedWithTheirCode) {
  imageio_test::LocalHttpServer server;
  server.Serve("/big.png", ReadSample("rgba_2x2.png"));
  server.Stall("/stall");
  server.Start();
  imageio::DownloadLimits limits;
  limits.totalTimeoutMs = 1000;
  limits.maxBytes = 40;  // the sample is 80 bytes
  imageio::SetDownloadLimits(limits);

  // A port on which nobody listens: bind one, then close it.
  int refusedPort = 0;
  {
    imageio_test::LocalHttpServer closed;
    refusedPort = std::stoi(closed.Url("").substr(17));
  }
  const std::string refused = "http://127.0.0.1:" + std::to_string(refusedPort) + "/a.png";

  struct Case {
    std::string url;
    const char* code;
  };
  for (const Case& c : {Case{server.Url("/missing.png"), "2"}, Case{refused, "12029"},
                        Case{server.Url("/stall"), "12002"}, Case{server.Url("/big.png"), "223"}}) {
    host_.messages.clear();
    EXPECT_EQ(LoadImage(c.url.c_str(), kVerbose), nullptr) << c.url;
    ASSERT_EQ(host_.messages.size(), 1u) << c.url;
    EXPECT_EQ(host_.messages[0].text, "I failed to read " + c.url + ". An error code is " + c.code + ".");
  }
}

}  // namespace
