// The destructive effects through the editor: the quarter turn with the strokes and
// objects over it, and the wiring of the surface effects (their rules are pinned in
// tests/pixels/effects_test.cpp): levels, rebuilds, blend, memory, mapped rows.
#include <algorithm>
#include <climits>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "pixels/pixel_buffer.h"
#include "test_support.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kGrey = 0x808080;
constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kBlue = 0xFF0000;

std::vector<COLORREF> RandomColors(int count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<COLORREF> colors(static_cast<std::size_t>(count));
  for (COLORREF& c : colors) c = random() & 0xFFFFFF;
  return colors;
}

class EffectsTest : public HostedTest {
 protected:
  void TearDown() override {
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    platform::OfferBitmapRows(true);
    HostedTest::TearDown();
  }

  CImageEditWnd& editor() { return *live_.editor; }
  int Levels() { return editor().m_history.count(); }
  RECT Image() { return editor().m_view.imageRect(); }

  std::vector<COLORREF> Picture() { return ImageRectColors(editor()); }
  COLORREF SurfacePixel(int x, int y) { return GetPixel(editor().m_surfaces.imageSurface.dc(), x, y); }
  std::vector<COLORREF> Original() { return BitmapColors(editor().m_surfaces.original.get()); }
  SIZE OriginalSize() { return SIZE{editor().m_view.originalWidth, editor().m_view.originalHeight}; }

  // The painted points of the drawing layer, relative to the image rectangle.
  std::set<std::pair<int, int>> Strokes() {
    const Surface& layer = editor().m_surfaces.drawingLayer;
    const std::vector<COLORREF> colors = BitmapColors(layer.bitmap());
    std::set<std::pair<int, int>> points;
    for (int i = 0; i < static_cast<int>(colors.size()); ++i) {
      if (colors[static_cast<std::size_t>(i)] != kDrawingLayerKeyColor)
        points.emplace(i % layer.width() - Image().left, i / layer.width() - Image().top);
    }
    return points;
  }

  LiveEditor live_{40, 30};
};

// The turn is no history level, so an undo past it keeps the turned original but
// gives back the layout the level recorded: the portrait shows in the landscape
// rectangle until a new width lays it out again.
TEST_F(EffectsTest, AnUndoPastATurnKeepsTheTurnedPictureInTheLevelsRectangle) {
  live_.Show(12, 6, RandomColors(12 * 6, 3));
  editor().FlipImage();
  const RECT landscape = Image();
  editor().RotateImage(90);
  const std::vector<COLORREF> turned = Original();
  ASSERT_EQ(Image().right - Image().left, 6);
  editor().Undo();
  EXPECT_EQ(Original(), turned);
  EXPECT_EQ(Image().right - Image().left, landscape.right - landscape.left);
  EXPECT_EQ(Image().bottom - Image().top, landscape.bottom - landscape.top);
  editor().SetImageWidth(-100);
  EXPECT_EQ(Image().right - Image().left, 6);
  EXPECT_EQ(Image().bottom - Image().top, 12);
}

// A 3 x 2 picture a b c / d e f. Turned by 90 its top row becomes the left column with
// c at the top; by -90 the right column, a at the top. A turn records no level and
// turning back gives the very same pixels; other angles do nothing.
TEST_F(EffectsTest, AQuarterTurnTurnsTheOriginalAndTurnsBackExactly) {
  const COLORREF a = 0x010203, b = 0x040506, c = 0x070809, d = 0x0A0B0C, e = 0x0D0E0F, f = 0x101112;
  live_.Show(3, 2, {a, b, c, d, e, f});
  const int levels = Levels();
  const HBITMAP original = editor().m_surfaces.original.get();
  for (int angle : {45, 180, 0, -180, 270, -270}) {
    editor().RotateImage(angle);
    EXPECT_EQ(editor().m_surfaces.original.get(), original) << angle;
    EXPECT_EQ(Picture(), (std::vector<COLORREF>{a, b, c, d, e, f})) << angle;
    EXPECT_EQ(Levels(), levels) << angle;
  }
  editor().RotateImage(90);
  EXPECT_EQ(OriginalSize().cx, 2);
  EXPECT_EQ(OriginalSize().cy, 3);
  EXPECT_EQ(Original(), (std::vector<COLORREF>{c, f, b, e, a, d}));
  EXPECT_EQ(Picture(), Original());
  EXPECT_EQ(Image().right - Image().left, 2);
  EXPECT_EQ(Levels(), levels);
  editor().RotateImage(-90);
  EXPECT_EQ(Original(), (std::vector<COLORREF>{a, b, c, d, e, f}));
  editor().RotateImage(-90);
  EXPECT_EQ(Original(), (std::vector<COLORREF>{d, a, e, b, f, c}));
}

// A picture whose turned bitmap cannot be made stays as it was, strokes too.
TEST_F(EffectsTest, APictureThatCannotBeTurnedStaysAsItWas) {
  const std::vector<COLORREF> colors = RandomColors(6 * 4, 3);
  live_.Show(6, 4, colors);
  editor().SetPen(1);
  live_.Drag(18, 14, 21, 15);
  const std::set<std::pair<int, int>> strokes = Strokes();
  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  editor().RotateImage(90);
  EXPECT_EQ(OriginalSize().cx, 6);
  EXPECT_EQ(Original(), colors);
  EXPECT_EQ(Picture(), colors);
  EXPECT_EQ(Strokes(), strokes);
}

// A stroke over a feature of the 12 x 8 picture lies over it after a turn; turning
// back restores the layer exactly.
TEST_F(EffectsTest, StrokesTurnWithThePicture) {
  std::vector<COLORREF> colors(12 * 8, kGrey);
  colors[1 * 12 + 2] = kRed;  // the feature, at (2, 1)
  live_.Show(12, 8, colors);
  editor().SetColor("0000FF");
  editor().SetPen(1);
  const RECT image = Image();
  live_.Drag(image.left + 2, image.top + 1, image.left + 9, image.top + 6);
  const std::set<std::pair<int, int>> drawn = Strokes();
  ASSERT_TRUE(drawn.count({2, 1}));

  editor().RotateImage(90);
  // (x, y) of the 12-wide picture is at (y, 11 - x) now.
  EXPECT_EQ(SurfacePixel(Image().left + 1, Image().top + 9), kRed);
  std::set<std::pair<int, int>> turned;
  for (const auto& [x, y] : drawn) turned.emplace(y, 11 - x);
  EXPECT_EQ(Strokes(), turned);

  editor().RotateImage(-90);
  EXPECT_EQ(Strokes(), drawn);
  EXPECT_EQ(Picture(), colors);
}

// Objects keep their size; each centre goes where the turn takes the picture point
// under it. The 20 x 10 picture lies at (10, 10)..(30, 20); turned, at (15, 5)..(25, 25).
TEST_F(EffectsTest, ObjectsFollowThePicturePointUnderTheirCentre) {
  live_.Show(20, 10, kGrey);
  const std::string icon = live_.files.Write("icon.bmp", BitmapFile(4, 3, std::vector<COLORREF>(12, kBlue)));
  editor().InsertIcon(12, 11, icon.c_str());  // centre (14, 12): 0.2 across, 0.2 down
  editor().InsertIcon(0, 0, icon.c_str());    // centre (2, 1), off the picture
  editor().RotateImage(90);
  const CInsertedObject& onPicture = editor().m_objects.Object(0);
  // Turned, the point is 0.2 across and 0.8 down: (17, 21).
  EXPECT_EQ(onPicture.x, 15);
  EXPECT_EQ(onPicture.y, 20);
  EXPECT_EQ(onPicture.width, 4);
  EXPECT_EQ(onPicture.height, 3);
  // The other counts from the left-top corner, which the turn takes to (15, 25).
  const CInsertedObject& offPicture = editor().m_objects.Object(1);
  EXPECT_EQ(offPicture.x, 13);
  EXPECT_EQ(offPicture.y, 24);

  editor().RotateImage(-90);
  EXPECT_EQ(onPicture.x, 12);
  EXPECT_EQ(onPicture.y, 11);
}

// An object may lie as far right as an int reaches; its centre, beyond that, still
// counts from the picture's right edge, also where the picture starts at the
// window's left edge.
TEST_F(EffectsTest, AnObjectAtTheFarEndOfTheWindowFollowsThePicturesEdge) {
  live_.Show(40, 30, kGrey);
  const std::string icon = live_.files.Write("icon.bmp", BitmapFile(4, 3, std::vector<COLORREF>(12, kBlue)));
  editor().InsertIcon(INT_MAX - 1, 6, icon.c_str());  // centre 7/30 down, beyond the right edge
  editor().RotateImage(90);
  // Turned, the right edge is the top: 7/30 across it.
  const CInsertedObject& object = editor().m_objects.Object(0);
  EXPECT_EQ(object.x, Image().left + 7 - 2);
  EXPECT_EQ(object.y, Image().top - 1);
}

// A 36 x 12 picture at (2, 9)..(38, 21) of a 40 x 30 surface: the lines run on below
// it over whatever the surface shows there.
TEST_F(EffectsTest, LinePatternsReachTheBottomOfTheSurface) {
  live_.Show(36, 12, kWhite);
  const std::vector<COLORREF> white = Picture();
  editor().CheckImage();
  EXPECT_EQ(Picture(), white);
  editor().BlockImage();
  EXPECT_EQ(SurfacePixel(31, 29), COLORREF{0xF9F9F9});  // the groove's middle, column L + 29
  EXPECT_EQ(SurfacePixel(31, 8), kWhite);               // not above the picture

  live_.Show(36, 12, 0);
  ASSERT_EQ(Image().top, 9);
  const RECT below{0, 21, 40, 30};
  FillRect(editor().m_surfaces.imageSurface.dc(), &below, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  const int levels = Levels();
  editor().CheckImage();
  EXPECT_EQ(Levels(), levels + 1);
  EXPECT_EQ(SurfacePixel(5, 19), COLORREF{0x333333});   // row T + 10
  EXPECT_EQ(SurfacePixel(5, 29), COLORREF{0x333333});   // row T + 20, below the picture
  EXPECT_EQ(SurfacePixel(12, 28), COLORREF{0x333333});  // column L + 10
  EXPECT_EQ(SurfacePixel(12, 8), kWhite);
}

// A file that cannot be loaded leaves the factor and records a level (the
// effects_surface scenario).
TEST_F(EffectsTest, BlendRecordsItsFactorAndChangesNoPixel) {
  const std::vector<COLORREF> colors = RandomColors(6 * 5, 5);
  live_.Show(6, 5, colors);
  const std::string second =
      live_.files.Write("second.bmp", BitmapFile(2, 2, std::vector<COLORREF>(4, kRed)));
  int levels = Levels();
  editor().BlendImage(second.c_str(), 50);
  EXPECT_EQ(editor().m_settings.blend, 0.5);
  EXPECT_EQ(Levels(), ++levels);
  editor().BlendImage(second.c_str(), 500);
  EXPECT_EQ(editor().m_settings.blend, 2.0);
  EXPECT_EQ(Levels(), ++levels);
  EXPECT_EQ(Picture(), colors);
  // The factor is part of each level.
  editor().Undo();
  EXPECT_EQ(editor().m_settings.blend, 0.5);
}

// Without the emboss's working copy: the message when verbose, the pixels unchanged,
// the level recorded. A surface whose pixels cannot be read stops the effect earlier.
TEST_F(EffectsTest, OutOfMemory) {
  for (const bool mapped : {true, false}) {
    SCOPED_TRACE(mapped ? "mapped rows" : "24-bit buffer");
    platform::OfferBitmapRows(mapped);
    host_.messages.clear();
    // The working copy of 42 x 32 pixels needs more than the surface's 40 x 30 x 3.
    const std::vector<COLORREF> colors = RandomColors(40 * 30, 7);
    LiveEditor small(20, 10);
    small.Show(40, 30, colors);
    small->EnableVerbose(1);
    const int levels = small->m_history.count();
    SetPixelBufferLimit(40 * 30 * 3);
    small->EmbossImage();
    ASSERT_EQ(host_.messages.size(), 1u);
    EXPECT_EQ(host_.messages[0].text, "Out of Memory.");
    EXPECT_EQ(host_.messages[0].type, static_cast<UINT>(MB_ICONHAND));
    EXPECT_EQ(small->m_history.count(), levels + 1);
    EXPECT_EQ(BitmapColors(small->m_surfaces.imageSurface.bitmap()), colors);

    SetPixelBufferLimit(100);
    small->EnableVerbose(0);
    small->FlipImage();
    EXPECT_EQ(small->m_history.count(), levels + 1);
    EXPECT_EQ(BitmapColors(small->m_surfaces.imageSurface.bitmap()), colors);
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
  }
}

// Each effect works on the surface's own rows where the platform maps them and on a
// 24-bit buffer where it does not: the whole surface must come out the same, for
// pictures filling the surface, centred in it and scaled down; each effect alone, then
// all in turn.
TEST_F(EffectsTest, MappedRowsAndTheBufferGiveTheSameSurface) {
  const PictureLayout layouts[] = {{"filling the surface", 75, 67, 40, 30, 0},
                                   {"centred in it", 37, 33, 90, 100, 0},
                                   {"scaled down", 97, 71, 110, 90, -65}};
  using Effect = void (CImageEditWnd::*)();
  const std::pair<const char*, Effect> effects[] = {
      {"FlipImage", &CImageEditWnd::FlipImage},     {"ReverseImage", &CImageEditWnd::ReverseImage},
      {"EmbossImage", &CImageEditWnd::EmbossImage}, {"EqualizeHistogram", &CImageEditWnd::EqualizeHistogram},
      {"CheckImage", &CImageEditWnd::CheckImage},   {"BlockImage", &CImageEditWnd::BlockImage}};
  unsigned seed = 20;
  for (const PictureLayout& layout : layouts) {
    SCOPED_TRACE(layout.what);
    const std::vector<COLORREF> colors = RandomColors(layout.width * layout.height, ++seed);
    // The surface after `run`, then the levels it recorded.
    const auto surfaceAfter = [&](bool mapped, const std::function<void(CImageEditWnd&)>& run) {
      platform::OfferBitmapRows(mapped);
      LiveEditor live(layout.clientWidth, layout.clientHeight);
      live.Show(layout.width, layout.height, colors);
      if (layout.imageWidth != 0) live->SetImageWidth(layout.imageWidth);
      live->BrightenImage(120);
      const int levels = live->m_history.count();
      run(*live.editor);
      std::vector<COLORREF> surface = BitmapColors(live->m_surfaces.imageSurface.bitmap());
      surface.push_back(static_cast<COLORREF>(live->m_history.count() - levels));
      platform::OfferBitmapRows(true);
      return surface;
    };
    const std::vector<COLORREF> untouched = surfaceAfter(true, [](CImageEditWnd&) {});
    for (const auto& [name, effect] : effects) {
      const auto run = [effect = effect](CImageEditWnd& e) { (e.*effect)(); };
      const std::vector<COLORREF> mapped = surfaceAfter(true, run);
      EXPECT_NE(mapped, untouched) << name;
      EXPECT_EQ(mapped.back(), 1u) << name;
      EXPECT_EQ(surfaceAfter(false, run), mapped) << name;
    }
    const auto all = [&](CImageEditWnd& e) {
      for (const auto& [name, effect] : effects) (e.*effect)();
    };
    EXPECT_EQ(surfaceAfter(false, all), surfaceAfter(true, all)) << "all of them";
  }
}

}  // namespace
