#include "imageio/image_loader.h"

#include <gtest/gtest.h>

#include "bmp_builder.h"
#include "imageio/url_download.h"
#include "local_http_server.h"
#include "platform/platform.h"
#include "resources/module_resources.h"
#include "sample_files.h"
#include "support/bitmap_colors.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

namespace {

using imageio::LoadContext;
using imageio::LoadImage;
using imageio_test::ReadSample;
using Colors = std::vector<COLORREF>;

const LoadContext kQuiet{nullptr, false, 0x09};
const LoadContext kVerbose{nullptr, true, 0x09};

class ImageLoaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RegisterModuleResources();  // message boxes are captioned with one of its strings
    baseline_ = platform::LiveGdiObjects().bitmaps;
  }
  void TearDown() override {
    imageio::SetDownloadLimits({});
    EXPECT_EQ(platform::LiveGdiObjects().bitmaps, baseline_) << "a bitmap leaked";
  }

  // Loads and deletes the result; returns its pixels (none for no bitmap).
  Colors Load(const std::string& source, const LoadContext& context = kQuiet, BITMAP* description = nullptr) {
    HBITMAP bitmap = LoadImage(source.c_str(), context);
    if (bitmap && description) GetObjectA(bitmap, sizeof *description, description);
    Colors colors = BitmapColors(bitmap);
    if (bitmap) DeleteObject(bitmap);
    return colors;
  }
  // Expects one verbose failure message for `source`, with that error code.
  void ExpectReadFailure(const std::string& source, const char* code) {
    host_.messages.clear();
    EXPECT_TRUE(Load(source, kVerbose).empty()) << source;
    ASSERT_EQ(host_.messages.size(), 1u) << source;
    EXPECT_EQ(host_.messages[0].text, "I failed to read " + source + ". An error code is " + code + ".");
  }

  InstalledRecordingHost host_;
  TempFiles files_{"imageio_test_"};
  int baseline_ = 0;
};

// Each format's pixels, the cut JPEG, icons and URLs of the file scheme are the
// scenario tests/cli/pictures.ies; here what it cannot make or see.
TEST_F(ImageLoaderTest, ABitmapFileBecomesADeviceBitmapAndDamagedDataNothing) {
  const std::string path =
      files_.Write("pal.bmp", imageio_test::BuildBmp({.width = 2,
                                                      .height = 2,
                                                      .bitCount = 8,
                                                      .colorsUsed = 4,
                                                      .palette = {0, 0xFF0000, 0x00FF00, 0xFF},
                                                      .pixels = {3, 0, 0, 0, /* top */ 1, 2, 0, 0}}));
  BITMAP description{};
  EXPECT_EQ(Load(path, kQuiet, &description), (Colors{RGB(255, 0, 0), RGB(0, 255, 0), RGB(0, 0, 255), 0}));
  EXPECT_EQ(description.bmBitsPixel, 32) << "the window's colour depth";
  const std::string damaged = files_.Write("text.bmp", {'B', 'M', 1, 2, 3});
  EXPECT_TRUE(Load(damaged, kVerbose).empty());
  EXPECT_TRUE(Load(files_.Write("empty.jpg", {}), kVerbose).empty());
  EXPECT_TRUE(host_.messages.empty());
  // The host still hears what became of each, a damaged picture as invalid data.
  ASSERT_EQ(host_.pictures.size(), 3u);
  EXPECT_EQ(host_.pictures[0], (RecordingHost::PictureOutcome{path, 0, ""}));
  EXPECT_EQ(host_.pictures[1], (RecordingHost::PictureOutcome{
                                   damaged, 13, "I failed to read " + damaged + ". An error code is 13."}));
  EXPECT_EQ(host_.pictures[2].error, 13u);
}

// The texts in each language are scenarios (tests/cli/messages_*.ies).
TEST_F(ImageLoaderTest, AMissingFileIsReportedOnlyWhileVerbose) {
  const std::string missing = platform::TempFolder() + "imageio_no_such_file.jpg";
  EXPECT_EQ(LoadImage(missing.c_str(), kQuiet), nullptr);
  EXPECT_EQ(LoadImage(nullptr, kQuiet), nullptr);
  EXPECT_EQ(LoadImage("", kQuiet), nullptr);
  EXPECT_TRUE(host_.messages.empty());
  // Heard by the host though the person is not told, with the text they would read.
  ASSERT_EQ(host_.pictures.size(), 3u);
  EXPECT_EQ(host_.pictures[0], (RecordingHost::PictureOutcome{
                                   missing, 2, "I failed to read " + missing + ". An error code is 2."}));
  EXPECT_NE(host_.pictures[2].error, 0u) << "the empty string is refused";
  ExpectReadFailure(missing, "2");
  EXPECT_EQ(host_.messages[0].caption, "Image Edit Control");
  EXPECT_EQ(host_.messages[0].type, MB_OK | MB_ICONHAND);
}

TEST_F(ImageLoaderTest, UrlsAreDownloadedAndFailuresReportedWithTheirCode) {
  imageio_test::LocalHttpServer server;
  server.Serve("/pictures/a.png", ReadSample("rgba_2x2.png"));
  server.Redirect("/moved", "/pictures/a.png");
  server.Stall("/stall");
  server.Start();
  const Colors png = Load(imageio_test::SamplePath("rgba_2x2.png"));
  EXPECT_EQ(Load(server.Url("/pictures/a.png"), kVerbose), png);
  EXPECT_EQ(Load(server.Url("/moved"), kVerbose), png);
  EXPECT_TRUE(host_.messages.empty());

  imageio::DownloadLimits limits;
  limits.totalTimeoutMs = 1000;
  limits.maxBytes = 40;  // the PNG sample is 80 bytes
  imageio::SetDownloadLimits(limits);
  // A port on which nobody listens: bind one, then close it.
  int refusedPort = 0;
  {
    imageio_test::LocalHttpServer closed;
    refusedPort = std::stoi(closed.Url("").substr(17));
  }
  ExpectReadFailure(server.Url("/missing.png"), "2");
  ExpectReadFailure("http://127.0.0.1:" + std::to_string(refusedPort) + "/a.png", "12029");
  ExpectReadFailure(server.Url("/stall"), "12002");
  ExpectReadFailure(server.Url("/pictures/a.png"), "223");
}

}  // namespace
