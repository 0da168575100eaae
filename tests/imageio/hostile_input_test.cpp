// What a hostile or unlucky environment does to the image files: sources that are
// not picture files, names that another local user could have prepared, a disk that
// fills during a save, texts longer than the message buffer. Each test runs in a
// private temp folder, so that it can tell exactly what reached the disk.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "bmp_builder.h"
#include "imageio/bitmap_file_writer.h"
#include "imageio/image_loader.h"
#include "imageio/messages.h"
#include "imageio/pixel_limits.h"
#include "local_http_server.h"
#include "platform/platform.h"
#include "sample_files.h"
#include "support/recording_host.h"
#include "support/temp_files.h"

namespace {

namespace fs = std::filesystem;

const imageio::LoadContext kVerboseLoad{nullptr, true, 0x09};
const imageio::WriteContext kVerboseSave{nullptr, true, 0x09};

std::vector<std::uint8_t> SmallBitmapFile(int width, int height) {
  return imageio_test::BuildTrueColourBmp(width, height, [](int x, int y) { return 0x102030u * (x + y); });
}

void WriteFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// Every name under the folder, relative to it.
std::set<std::string> FolderContents(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    names.insert(entry.path().lexically_relative(folder).string());
  }
  return names;
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
    if (length == 0 || i + length > text.size()) return false;
    for (std::size_t k = 1; k < length; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    }
    i += length;
  }
  return true;
}

class HostileInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* previous = std::getenv("TMPDIR");
    previousTemp_ = previous ? previous : "";
    char pattern[] = "/tmp/imageio_hostile_XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    folder_ = std::string(pattern) + "/";
    ::setenv("TMPDIR", folder_.c_str(), 1);
  }
  void TearDown() override {
    if (previousTemp_.empty()) {
      ::unsetenv("TMPDIR");
    } else {
      ::setenv("TMPDIR", previousTemp_.c_str(), 1);
    }
    fs::remove_all(folder_);
  }

  // An HBITMAP of the given size, as the editor hands one to the writer.
  static HBITMAP MakeBitmap(int width, int height) {
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    ReleaseDC(nullptr, screen);
    return bitmap;
  }

  InstalledRecordingHost host_;
  std::string folder_;
  std::string previousTemp_;
};

TEST_F(HostileInputTest, OnlyRegularFilesWithinTheSizeLimitAreRead) {
  const std::string pipe = folder_ + "pipe.bmp";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  // A valid bitmap followed by zeros up to one byte beyond the largest picture file
  // (sparse, so it costs no disk): read whole, it would decode.
  const std::string huge = folder_ + "huge.bmp";
  WriteFile(huge, SmallBitmapFile(4, 3));
  fs::resize_file(huge, imageio::kMaxPictureFileBytes + 1);

  struct Case {
    std::string path;
    DWORD code;
  };
  // A regression would block in open or read for ever; the alarm ends the test.
  ::alarm(60);
  for (const Case& c : {Case{pipe, 30}, Case{"/dev/zero", 30}, Case{folder_, 5}, Case{huge, 223}}) {
    host_.messages.clear();
    EXPECT_EQ(imageio::LoadImage(c.path.c_str(), kVerboseLoad), nullptr) << c.path;
    ASSERT_EQ(host_.messages.size(), 1u) << c.path;
    EXPECT_EQ(host_.messages[0].text,
              "I failed to read " + c.path + ". An error code is " + std::to_string(c.code) + ".");
  }
  ::alarm(0);
}

TEST_F(HostileInputTest, ADownloadNeverWritesThroughALinkPlantedInTheTempFolder) {
  imageio_test::LocalHttpServer server;
  server.Serve("/a.png", imageio_test::ReadSample("rgba_2x2.png"));
  server.Start();
  const std::string url = server.Url("/a.png");

  // Another user prepares the shared cache folder with links, under the names an
  // earlier version wrote this URL's download to, pointing at one of our files.
  const std::string victim = folder_ + "victim.txt";
  WriteFile(victim, {'m', 'i', 'n', 'e'});
  const std::string cache = folder_ + "imageedit-cache/";
  ASSERT_EQ(::mkdir(cache.c_str(), 0777), 0);
  std::uint64_t hash = 0xcbf29ce484222325ull;  // FNV-1a of the URL
  for (unsigned char c : url) hash = (hash ^ c) * 0x100000001b3ull;
  char name[32];
  std::snprintf(name, sizeof name, "%016llx.cache", static_cast<unsigned long long>(hash));
  ASSERT_EQ(::symlink(victim.c_str(), (cache + name).c_str()), 0);
  ASSERT_EQ(::symlink(victim.c_str(), (cache + name + ".part").c_str()), 0);
  const std::set<std::string> planted = FolderContents(folder_);

  HBITMAP bitmap = imageio::LoadImage(url.c_str(), kVerboseLoad);
  ASSERT_NE(bitmap, nullptr);
  DeleteObject(bitmap);
  EXPECT_EQ(ReadFileBytes(victim), (std::vector<std::uint8_t>{'m', 'i', 'n', 'e'}));
  EXPECT_EQ(FolderContents(folder_), planted) << "a download left something on disk";
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(HostileInputTest, ASaveThatFailsPartWayLeavesThePreviousFileUntouched) {
  const std::string path = folder_ + "picture.bmp";
  const std::vector<std::uint8_t> previous = SmallBitmapFile(2, 2);
  WriteFile(path, previous);
  HBITMAP bitmap = MakeBitmap(64, 64);  // 12 KiB of rows, beyond the file size limit below

  // A full disk, without root: the child may write no file beyond 4 KiB, and a write
  // past that fails (EFBIG) instead of killing it.
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::signal(SIGXFSZ, SIG_IGN);
    imageio::WriteBitmapFile(path.c_str(), bitmap, kVerboseSave);
    const bool reported =
        host_.messages.size() == 1 && host_.messages[0].text == "I failed to save " + path + ".";
    ::_exit(reported ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the failure was not reported";
  EXPECT_EQ(ReadFileBytes(path), previous);
  EXPECT_EQ(FolderContents(folder_), std::set<std::string>{"picture.bmp"}) << "a partial file stayed";
  DeleteObject(bitmap);
}

TEST_F(HostileInputTest, ASaveReplacesTheFileNamedWithTheRightPermissions) {
  const mode_t previousMask = ::umask(027);
  const std::string victim = folder_ + "victim.txt";
  WriteFile(victim, {'m', 'i', 'n', 'e'});
  struct Case {
    const char* name;
    void (*prepare)(const std::string& path, const std::string& victim);
    mode_t mode;
  };
  const Case cases[] = {
      {"new.bmp", [](const std::string&, const std::string&) {}, 0640},
      {"existing.bmp",
       [](const std::string& path, const std::string&) {
         WriteFile(path, SmallBitmapFile(1, 1));
         ::chmod(path.c_str(), 0604);
       },
       0604},
      // A link under the name is replaced, never written through.
      {"link.bmp",
       [](const std::string& path, const std::string& target) { ::symlink(target.c_str(), path.c_str()); },
       0640},
  };
  HBITMAP bitmap = MakeBitmap(3, 2);
  for (const Case& c : cases) {
    const std::string path = folder_ + c.name;
    c.prepare(path, victim);
    imageio::WriteBitmapFile(path.c_str(), bitmap, kVerboseSave);
    struct stat status {};
    ASSERT_EQ(::lstat(path.c_str(), &status), 0) << c.name;
    EXPECT_TRUE(S_ISREG(status.st_mode)) << c.name;
    EXPECT_EQ(status.st_mode & 07777, c.mode) << c.name;
    EXPECT_EQ(status.st_size, 54 + 12 * 2) << c.name;
  }
  ::umask(previousMask);
  EXPECT_EQ(ReadFileBytes(victim), (std::vector<std::uint8_t>{'m', 'i', 'n', 'e'}));
  EXPECT_EQ(FolderContents(folder_),
            (std::set<std::string>{"victim.txt", "new.bmp", "existing.bmp", "link.bmp"}));
  EXPECT_TRUE(host_.messages.empty());

  // A file made read-only is not replaced, as it would not have been overwritten
  // (root may write any file, so only an unprivileged run sees the refusal).
  if (::geteuid() != 0) {
    const std::string locked = folder_ + "locked.bmp";
    WriteFile(locked, SmallBitmapFile(1, 1));
    ::chmod(locked.c_str(), 0444);
    imageio::WriteBitmapFile(locked.c_str(), bitmap, kVerboseSave);
    EXPECT_EQ(ReadFileBytes(locked), SmallBitmapFile(1, 1));
    ASSERT_EQ(host_.messages.size(), 1u);
    EXPECT_EQ(host_.messages[0].text, "I failed to save " + locked + ".");
  }
  DeleteObject(bitmap);
}

// A path too long for the 1024-byte message buffer is cut at a character boundary
// wherever the cut falls, in every language, so that the host never receives half a
// character; the cut keeps every whole character that fits.
TEST(HostileMessages, ALongPathIsCutAtACharacterBoundary) {
  for (std::size_t shift = 0; shift < 4; ++shift) {
    std::string path(shift, 'x');
    while (path.size() < 2 * imageio::kMessageBufferSize) path += "\xE6\x96\x87\xF0\x9F\x96\xBC\xC3\xA9";
    for (WORD language : {0x09, 0x12, 0x04}) {
      for (const std::string& text :
           {imageio::ReadFailureMessage(language, path, 2), imageio::SaveFailureMessage(language, path)}) {
        EXPECT_TRUE(IsValidUtf8(text)) << shift << " " << language;
        EXPECT_LE(text.size(), imageio::kMessageBufferSize - 1);
        EXPECT_GT(text.size(), imageio::kMessageBufferSize - 1 - 4) << "cut more than one character";
      }
    }
  }
}

}  // namespace
