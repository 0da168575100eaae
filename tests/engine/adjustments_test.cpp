// The ten adjustment setters: the stored values, the rebuilt picture, when nothing
// happens, the order of a filter being set, and a working copy that runs out of
// memory. The flag arguments as a host passes them are the control's tests.
#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "pixels/pixel_buffer.h"
#include "pixels/reference_passes.h"
#include "test_support.h"

namespace {

// A pixel as its bytes in buffer order: blue, green, red.
using Bytes = std::array<BYTE, 3>;
COLORREF ColorOf(Bytes b) { return RGB(b[2], b[1], b[0]); }

// The resource id the host sees for the wait cursor.
constexpr int kWaitCursorId = 32514;

class AdjustmentsTest : public HostedTest {
 protected:
  void TearDown() override {
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
    live_.reset();
    HostedTest::TearDown();
  }

  // A new editor of that size showing a picture of the given pixels (top row first)
  // at 100 %.
  void Load(int width, int height, const std::vector<Bytes>& pixels, int clientWidth = 40,
            int clientHeight = 30) {
    live_.reset();
    live_ = std::make_unique<LiveEditor>(clientWidth, clientHeight);
    live_->Show(width, height, Colors(pixels));
    ASSERT_EQ(editor().m_view.displayedWidth(), width);
  }

  CImageEditWnd& editor() { return *live_->editor; }
  HDC ImageSurface() { return editor().m_surfaces.imageSurface.dc(); }

  std::vector<COLORREF> Picture() { return ImageRectColors(editor()); }
  static std::vector<COLORREF> Colors(const std::vector<Bytes>& pixels) {
    std::vector<COLORREF> colors;
    for (const Bytes& b : pixels) colors.push_back(ColorOf(b));
    return colors;
  }

  std::unique_ptr<LiveEditor> live_;
};

std::vector<Bytes> Uniform(Bytes value) { return std::vector<Bytes>(9, value); }

std::vector<Bytes> Spike(Bytes centre) {
  std::vector<Bytes> pixels = Uniform({0, 0, 0});
  pixels[4] = centre;
  return pixels;
}

// The filter being set runs in the setter's own rebuild, which only the setter's
// picture shows. The colour setters' pictures are RebuildsGiveThePlainPassesBytes'.
TEST_F(AdjustmentsTest, EachFilterSetterRebuildsThePictureFromTheOriginal) {
  struct Case {
    EditorCall call;
    std::vector<Bytes> in;
    std::vector<Bytes> out;
  };
  const Case cases[] = {{EDITOR_CALL(GrayImage(true)), Uniform({10, 20, 30}), Uniform({21, 21, 21})},
                        {EDITOR_CALL(SharpenImage(-3)), Spike({100, 100, 100}), Spike({100, 100, 100})},
                        {EDITOR_CALL(WhitenImage(1)), Uniform({0, 128, 255}), Uniform({25, 198, 255})}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.call.what);
    Load(3, 3, c.in);
    const int levels = editor().m_history.count();
    c.call.run(editor());
    EXPECT_EQ(Picture(), Colors(c.out));
    EXPECT_EQ(editor().m_history.count(), levels + 1);
    // The picture inside a larger surface: the white around it is left alone.
    EXPECT_EQ(GetPixel(ImageSurface(), 0, 0), RGB(255, 255, 255));
    EXPECT_EQ(GetPixel(ImageSurface(), editor().m_view.imageRect().right, editor().m_view.imageRect().bottom),
              RGB(255, 255, 255));
  }
}

TEST_F(AdjustmentsTest, SettersStoreTheMappedValue) {
  Load(1, 1, {{1, 2, 3}});
  const AdjustmentSettings& s = editor().m_settings;
  editor().BrightenImage(150);
  EXPECT_EQ(s.brightness, 50);
  editor().ContrastImage(-7);
  EXPECT_EQ(s.contrast, -100);
  editor().HueImage(250);
  EXPECT_EQ(s.hue, 360.0);
  editor().SaturateImage(150);
  EXPECT_EQ(s.saturation, 1.5);
  editor().CorrectGamma(80, 0, 300);
  EXPECT_EQ(s.redGamma, 1.9960000000000002);
  EXPECT_EQ(s.greenGamma, 0.004);
  EXPECT_EQ(s.blueGamma, 4.984);
  editor().SharpenImage(-3);
  editor().SmoothImage(1000);
  editor().WhitenImage(7);
  EXPECT_EQ(s.sharpenSteps, -3);
  EXPECT_EQ(s.smoothSteps, 1000);
  EXPECT_EQ(s.whitenSteps, 7);
  editor().GrayImage(true);
  editor().InvertImage(true);
  EXPECT_TRUE(s.gray);
  EXPECT_TRUE(s.invert);
}

TEST_F(AdjustmentsTest, AnUnchangedValueNeitherRebuildsNorCommits) {
  const EditorCall neutral[] = {
      EDITOR_CALL(BrightenImage(100)), EDITOR_CALL(ContrastImage(100)),       EDITOR_CALL(HueImage(0)),
      EDITOR_CALL(SaturateImage(100)), EDITOR_CALL(CorrectGamma(40, 40, 40)), EDITOR_CALL(GrayImage(false)),
      EDITOR_CALL(InvertImage(false)), EDITOR_CALL(SharpenImage(0)),          EDITOR_CALL(SmoothImage(0)),
      EDITOR_CALL(WhitenImage(0))};
  Load(3, 3, Uniform({50, 60, 70}));
  const RECT& r = editor().m_view.imageRect();
  // A mark on the surface that any rebuild would paint over.
  SetPixel(ImageSurface(), r.left, r.top, RGB(1, 2, 3));
  const int levels = editor().m_history.count();
  const std::size_t cursors = host_.cursors.size();
  for (const EditorCall& call : neutral) {
    SCOPED_TRACE(call.what);
    call.run(editor());
    EXPECT_EQ(GetPixel(ImageSurface(), r.left, r.top), RGB(1, 2, 3));
    EXPECT_EQ(editor().m_history.count(), levels);
    EXPECT_EQ(host_.cursors.size(), cursors);
  }
  // Only all three gammas equal stop CorrectGamma.
  editor().CorrectGamma(40, 40, 41);
  EXPECT_EQ(editor().m_history.count(), levels + 1);
  EXPECT_NE(GetPixel(ImageSurface(), r.left, r.top), RGB(1, 2, 3));
}

TEST_F(AdjustmentsTest, WithoutPixelsOrSurfaceTheSettingStaysAsItWas) {
  // No image surface: an editor whose window was never made.
  CImageEditWnd bare;
  bare.BrightenImage(150);
  bare.SharpenImage(2);
  EXPECT_EQ(bare.m_settings.brightness, 0);
  EXPECT_EQ(bare.m_settings.sharpenSteps, 0);
  EXPECT_EQ(bare.m_history.count(), 0);

  // The surface's pixels cannot be read: nothing is stored or committed, and the
  // wait cursor is put back.
  Load(3, 3, Uniform({50, 60, 70}));
  const int levels = editor().m_history.count();
  const auto waitsBefore = std::count(host_.cursors.begin(), host_.cursors.end(), kWaitCursorId);
  SetPixelBufferLimit(16);
  editor().BrightenImage(150);
  editor().GrayImage(true);
  EXPECT_EQ(editor().m_settings.brightness, 0);
  EXPECT_FALSE(editor().m_settings.gray);
  EXPECT_EQ(editor().m_history.count(), levels);
  ASSERT_EQ(std::count(host_.cursors.begin(), host_.cursors.end(), kWaitCursorId), 2 + waitsBefore);
  EXPECT_NE(host_.cursors.back(), kWaitCursorId);
}

// When the image surface's new bitmap cannot be made, the surface keeps its older,
// larger bitmap under the new extent. A picture that fills that extent one to one is
// then still adjusted in the bitmap the surface really has, never through a buffer
// of the original's size written into it.
TEST_F(AdjustmentsTest, AnImageSurfaceThatKeptAnOlderBitmapIsAdjustedInThatBitmap) {
  const COLORREF kept = RGB(200, 200, 200);
  for (int failing = 1; failing <= 8; ++failing) {
    live_ = std::make_unique<LiveEditor>(4, 4);
    live_->Show(12, 6, kept);
    platform::FailNthCreation(platform::GdiKind::Bitmap, failing);
    live_->Show(4, 4, RGB(10, 20, 30));
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    BITMAP bitmap{};
    GetObjectA(editor().m_surfaces.imageSurface.bitmap(), sizeof bitmap, &bitmap);
    if (bitmap.bmWidth != 12 || editor().m_surfaces.imageSurface.width() != 4) continue;

    editor().InvertImage(true);
    EXPECT_EQ(Picture(), std::vector<COLORREF>(16, RGB(245, 235, 225))) << "failing bitmap " << failing;
    EXPECT_EQ(GetPixel(ImageSurface(), 11, 5), kept);
    return;
  }
  FAIL() << "no failed creation left the image surface with its older bitmap";
}

TEST_F(AdjustmentsTest, TheFilterBeingSetRunsLastUntilTheNextRebuild) {
  Load(3, 3, Uniform({1, 0, 0}));
  editor().GrayImage(true);
  editor().InvertImage(true);
  EXPECT_EQ(Picture(), Colors(Uniform({255, 255, 255})));  // invert(gray(x))
  editor().RunAdjustedRebuild();
  EXPECT_EQ(Picture(), Colors(Uniform({254, 254, 254})));  // gray(invert(x))
  // Setting the image width rebuilds the same way.
  editor().SharpenImage(0);
  editor().SetImageWidth(-100);
  EXPECT_EQ(Picture(), Colors(Uniform({254, 254, 254})));
}

TEST_F(AdjustmentsTest, AWorkingCopyOutOfMemorySkipsItsFilterButKeepsTheSetting) {
  for (bool verbose : {false, true}) {
    SCOPED_TRACE(verbose ? "verbose" : "quiet");
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
    host_.messages.clear();
    // A picture larger than the client fills its surface, so its working copy of
    // 42 x 32 pixels needs more than the 120 x 30 bytes of the surface's buffer.
    std::vector<Bytes> pixels(40 * 30, Bytes{0, 0, 0});
    pixels[40 * 15 + 20] = {100, 100, 100};
    Load(40, 30, pixels, 20, 10);
    editor().EnableVerbose(verbose ? 1 : 0);
    ASSERT_EQ(editor().m_view.imageRect().right, editor().m_surfaces.imageSurface.width());
    const int levels = editor().m_history.count();
    SetPixelBufferLimit(40 * 30 * 3);

    editor().SharpenImage(1);
    EXPECT_EQ(editor().m_settings.sharpenSteps, 1);
    EXPECT_EQ(editor().m_history.count(), levels + 1);
    EXPECT_EQ(Picture(), Colors(pixels));
    // Whiten, sharpen and smooth of the pass ask even at 0 steps, then the sharpen
    // being set asks once more.
    const std::size_t expected = verbose ? 4 : 0;
    ASSERT_EQ(host_.messages.size(), expected);
    if (verbose) {
      EXPECT_EQ(host_.messages[0].text, "Out of Memory.");
    }
  }
}

}  // namespace

// Rebuilds go from the original's rows straight into the image surface's (at 1:1) or
// work on the surface's own rows in place (scaled, or centred in a larger surface),
// two threads each taking half the rows on a picture this large; none of it may
// change a byte. A random picture against the plain passes after setters of every
// kind, the filter being set running last, then after an undo and a redo.
TEST_F(AdjustmentsTest, RebuildsGiveThePlainPassesBytes) {
  const PictureLayout layouts[] = {{"filling the surface", 520, 520, 40, 30, 0},
                                   {"centred in it", 33, 131, 90, 200, 0},
                                   {"scaled down", 300, 200, 400, 300, -70}};
  for (const PictureLayout& layout : layouts) {
    SCOPED_TRACE(layout.what);
    std::mt19937 random(17);
    std::vector<Bytes> pixels(static_cast<std::size_t>(layout.width * layout.height));
    for (Bytes& b : pixels)
      b = {static_cast<BYTE>(random()), static_cast<BYTE>(random()), static_cast<BYTE>(random())};
    Load(layout.width, layout.height, pixels, layout.clientWidth, layout.clientHeight);
    if (layout.imageWidth != 0) editor().SetImageWidth(layout.imageWidth);
    // The picture as the rebuild refills it, before any pass.
    const std::vector<COLORREF> refilled = Picture();
    for (const EditorCall& call :
         {EDITOR_CALL(BrightenImage(130)), EDITOR_CALL(ContrastImage(70)), EDITOR_CALL(GrayImage(true)),
          EDITOR_CALL(CorrectGamma(60, 30, 45)), EDITOR_CALL(HueImage(40)), EDITOR_CALL(SaturateImage(150)),
          EDITOR_CALL(WhitenImage(1)), EDITOR_CALL(SmoothImage(1)), EDITOR_CALL(InvertImage(true)),
          EDITOR_CALL(SharpenImage(2))})
      call.run(editor());

    // The plain passes on the refilled picture, with `last` (when set) run after them.
    const auto expected = [&](AdjustmentSettings settings, int lastSharpen) {
      const RECT& r = editor().m_view.imageRect();
      const int width = r.right - r.left;
      const int height = r.bottom - r.top;
      PixelBuffer buffer(width, height);
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          const COLORREF c = refilled[static_cast<std::size_t>(y * width + x)];
          BYTE* p = buffer.data() + static_cast<std::size_t>(height - 1 - y) * buffer.stride() + x * 3;
          p[0] = GetBValue(c), p[1] = GetGValue(c), p[2] = GetRValue(c);
        }
      }
      reference::AdjustPixels(buffer.Whole(), settings);
      reference::SharpenPixels(buffer.Whole(), lastSharpen);
      std::vector<COLORREF> colors;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          const BYTE* p = buffer.data() + static_cast<std::size_t>(height - 1 - y) * buffer.stride() + x * 3;
          colors.push_back(RGB(p[2], p[1], p[0]));
        }
      }
      return colors;
    };
    AdjustmentSettings settings = editor().m_settings;
    settings.sharpenSteps = 0;
    ASSERT_EQ(Picture(), expected(settings, 2)) << "after the setters";
    editor().Undo();
    ASSERT_EQ(Picture(), expected(editor().m_settings, 0)) << "after an undo";
    editor().Redo();
    ASSERT_EQ(Picture(), expected(editor().m_settings, 0)) << "after a redo";
  }
}
