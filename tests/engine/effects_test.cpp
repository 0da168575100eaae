// The destructive effects through the editor: the quarter turn of the original with
// the strokes and objects over it, the effects on what the image surface shows (and
// gone again at the next rebuild), their history levels, the blend factor, and what
// running out of memory does.
#include <algorithm>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "pixels/pixel_buffer.h"
#include "test_support.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kBlack = 0x000000;
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

  // The image rectangle of the image surface, top row first.
  std::vector<COLORREF> Picture() {
    const RECT r = Image();
    std::vector<COLORREF> colors;
    for (int y = r.top; y < r.bottom; ++y) {
      for (int x = r.left; x < r.right; ++x)
        colors.push_back(GetPixel(editor().m_surfaces.imageSurface.dc(), x, y));
    }
    return colors;
  }
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
// c at the top; by -90 the right column, a at the top. Each turn sets the layout anew
// at 100 %, records no level, and turning back gives the very same pixels.
TEST_F(EffectsTest, AQuarterTurnTurnsTheOriginalAndTurnsBackExactly) {
  const COLORREF a = 0x010203, b = 0x040506, c = 0x070809, d = 0x0A0B0C, e = 0x0D0E0F, f = 0x101112;
  live_.Show(3, 2, {a, b, c, d, e, f});
  const int levels = Levels();
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

  // A larger random picture: there and back by every byte.
  const std::vector<COLORREF> random = RandomColors(37 * 23, 1);
  live_.Show(37, 23, random);
  editor().RotateImage(90);
  EXPECT_NE(Original(), random);
  editor().RotateImage(-90);
  EXPECT_EQ(Original(), random);
  EXPECT_EQ(Picture(), random);
}

TEST_F(EffectsTest, OtherAnglesDoNothing) {
  live_.Show(5, 3, RandomColors(15, 2));
  HBITMAP original = editor().m_surfaces.original.get();
  const std::vector<COLORREF> picture = Picture();
  const int levels = Levels();
  for (int angle : {45, 180, 0, -180, 270, -270}) {
    editor().RotateImage(angle);
    EXPECT_EQ(editor().m_surfaces.original.get(), original) << angle;
    EXPECT_EQ(OriginalSize().cx, 5);
    EXPECT_EQ(Picture(), picture);
    EXPECT_EQ(Levels(), levels);
  }
}

// A picture that cannot be turned (its new bitmap cannot be made) stays as it was, and
// so do the strokes over it; the layout is still set anew.
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

// Strokes turn with the picture: a stroke drawn over a feature of the picture lies over
// the same feature after a turn, and turning back restores the layer over the picture
// exactly. The picture is 12 x 8, centred in the 40 x 30 window.
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

// Objects stay upright and keep their size; each centre goes where the turn takes the
// picture point under it. The 20 x 10 picture lies at (10, 10)..(30, 20) of the
// window; turned, the 10 x 20 one at (15, 5)..(25, 25).
TEST_F(EffectsTest, ObjectsFollowThePicturePointUnderTheirCentre) {
  live_.Show(20, 10, kGrey);
  const std::string icon = live_.files.Write("icon.bmp", BitmapFile(4, 3, std::vector<COLORREF>(12, kBlue)));
  editor().InsertIcon(12, 11, icon.c_str());  // centre (14, 12): 0.2 across, 0.2 down
  editor().InsertIcon(0, 0, icon.c_str());    // centre (2, 1), off the picture
  editor().RotateImage(90);
  const CInsertedObject& onPicture = editor().m_objects.Object(0);
  // Turned counter-clockwise the point is 0.2 across and 0.8 down: (17, 21).
  EXPECT_EQ(onPicture.x, 15);
  EXPECT_EQ(onPicture.y, 20);
  EXPECT_EQ(onPicture.width, 4);
  EXPECT_EQ(onPicture.height, 3);
  // The other counts from the picture's left-top corner, which the turn takes to the
  // left-bottom one: (15, 25).
  const CInsertedObject& offPicture = editor().m_objects.Object(1);
  EXPECT_EQ(offPicture.x, 13);
  EXPECT_EQ(offPicture.y, 24);

  editor().RotateImage(-90);
  EXPECT_EQ(onPicture.x, 12);
  EXPECT_EQ(onPicture.y, 11);
}

// A flip moves the image rectangle's rows: the middle row of an odd height stays,
// twice gives the picture back, and each call records a level.
TEST_F(EffectsTest, FlipTurnsTheRowsOverAndTwiceRestores) {
  const std::vector<COLORREF> colors = RandomColors(4 * 5, 4);
  live_.Show(4, 5, colors);
  const int levels = Levels();
  editor().FlipImage();
  std::vector<COLORREF> flipped;
  for (int y = 4; y >= 0; --y)
    flipped.insert(flipped.end(), colors.begin() + y * 4, colors.begin() + y * 4 + 4);
  EXPECT_EQ(Picture(), flipped);
  EXPECT_EQ(Levels(), levels + 1);
  editor().FlipImage();
  EXPECT_EQ(Picture(), colors);
  EXPECT_EQ(Levels(), levels + 2);
}

TEST_F(EffectsTest, ReverseMirrorsEachRow) {
  live_.Show(3, 2, {1, 2, 3, 4, 5, 6});
  editor().ReverseImage();
  EXPECT_EQ(Picture(), (std::vector<COLORREF>{3, 2, 1, 6, 5, 4}));
}

// The effects change only what the surface shows: the next rebuild (an adjustment, or
// an undo) starts again from the original.
TEST_F(EffectsTest, AnAdjustmentOrUndoAfterAnEffectShowsThePictureWithoutIt) {
  const std::vector<COLORREF> colors = {0x101010, 0x202020, 0x303030, 0x404040};
  live_.Show(2, 2, colors);
  editor().FlipImage();
  editor().BrightenImage(150);  // + 127
  EXPECT_EQ(Picture(), (std::vector<COLORREF>{0x8F8F8F, 0x9F9F9F, 0xAFAFAF, 0xBFBFBF}));
  editor().EmbossImage();
  editor().Undo();
  EXPECT_EQ(Picture(), (std::vector<COLORREF>{0x8F8F8F, 0x9F9F9F, 0xAFAFAF, 0xBFBFBF}));
}

TEST_F(EffectsTest, EmbossAndEqualiseOnUniformPictures) {
  live_.Show(10, 10, 0x405060);
  editor().EmbossImage();
  EXPECT_EQ(Picture(), std::vector<COLORREF>(100, 0x808080));
  editor().EqualizeHistogram();  // N = 100: 100 * (255.0 / 100) is just below 255
  EXPECT_EQ(Picture(), std::vector<COLORREF>(100, 0xFEFEFE));
  live_.Show(8, 8, 0x405060);
  editor().EqualizeHistogram();
  EXPECT_EQ(Picture(), std::vector<COLORREF>(64, 0xFFFFFF));
}

// A 36 x 12 picture at (2, 9)..(38, 21) of a 40 x 30 surface: the lines are laid out
// from its left and top edges and run on below it to the bottom of the surface.
TEST_F(EffectsTest, CheckLinesReachTheBottomOfTheSurface) {
  live_.Show(36, 12, kWhite);
  const std::vector<COLORREF> white = Picture();
  editor().CheckImage();
  EXPECT_EQ(Picture(), white);

  live_.Show(36, 12, kBlack);
  ASSERT_EQ(Image().left, 2);
  ASSERT_EQ(Image().top, 9);
  // Whatever the surface shows below the picture is lined too.
  const RECT below{0, 21, 40, 30};
  FillRect(editor().m_surfaces.imageSurface.dc(), &below, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  const int levels = Levels();
  editor().CheckImage();
  EXPECT_EQ(Levels(), levels + 1);
  constexpr COLORREF kLine = 0x333333;     // 51
  EXPECT_EQ(SurfacePixel(5, 19), kLine);   // row T + 10
  EXPECT_EQ(SurfacePixel(5, 29), kLine);   // row T + 20, below the picture
  EXPECT_EQ(SurfacePixel(2, 19), kBlack);  // the column L + 0 is left out
  EXPECT_EQ(SurfacePixel(12, 9), kLine);   // column L + 10 from the top edge
  EXPECT_EQ(SurfacePixel(12, 8), kWhite);  // not above it
  EXPECT_EQ(SurfacePixel(12, 28), kLine);
  EXPECT_EQ(SurfacePixel(13, 28), kBlack);
}

// Grooves 30 pixels apart: the outer lines of black become 60, the middle 20; of white
// 238 and 249. The white margin below the picture is grooved as well.
TEST_F(EffectsTest, BlockGroovesOnBlackAndOnWhite) {
  LiveEditor wide(80, 70);
  using Values = std::tuple<COLORREF, COLORREF, COLORREF>;
  for (const auto& [field, light, middle] :
       {Values{kBlack, 0x3C3C3C, 0x141414}, Values{kWhite, 0xEEEEEE, 0xF9F9F9}}) {
    wide.Show(70, 40, field);
    const RECT image = wide->m_view.imageRect();  // (5, 15)..(75, 55)
    ASSERT_EQ(image.top, 15);
    wide->BlockImage();
    HDC surface = wide->m_surfaces.imageSurface.dc();
    EXPECT_EQ(GetPixel(surface, 10, 43), light);  // rows T + 28 .. T + 30
    EXPECT_EQ(GetPixel(surface, 10, 44), middle);
    EXPECT_EQ(GetPixel(surface, 10, 45), light);
    EXPECT_EQ(GetPixel(surface, 10, 42), field);
    EXPECT_EQ(GetPixel(surface, 33, 30), light);  // columns L + 28 .. L + 30
    EXPECT_EQ(GetPixel(surface, 34, 30), middle);
    EXPECT_EQ(GetPixel(surface, 35, 30), light);
    EXPECT_EQ(GetPixel(surface, 34, 65), COLORREF{0xF9F9F9});  // below the picture, on white
    EXPECT_EQ(GetPixel(surface, 34, 10), kWhite);              // above it
  }
}

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
  // A file that cannot be loaded leaves the factor, but the level is recorded.
  editor().BlendImage((platform::TempFolder() + "imageedit_effects_test_missing.bmp").c_str(), 30);
  EXPECT_EQ(editor().m_settings.blend, 2.0);
  EXPECT_EQ(Levels(), ++levels);
  EXPECT_EQ(Picture(), colors);
  // The factor is part of each level.
  editor().Undo();
  editor().Undo();
  EXPECT_EQ(editor().m_settings.blend, 0.5);
}

TEST_F(EffectsTest, WaterDropRecordsALevelAndNothingElse) {
  const std::vector<COLORREF> colors = RandomColors(5 * 5, 6);
  live_.Show(5, 5, colors);
  const int levels = Levels();
  editor().WaterDropImage();
  EXPECT_EQ(Levels(), levels + 1);
  EXPECT_EQ(Picture(), colors);
}

// The emboss's working copy cannot be had: the message when verbose, the pixels
// written back unchanged and the level recorded all the same. A surface whose pixels
// cannot be read at all stops the effect before any of that.
TEST_F(EffectsTest, OutOfMemory) {
  // Alike whether the effect works on the surface's own rows or on a buffer of them.
  for (const bool mapped : {true, false}) {
    SCOPED_TRACE(mapped ? "mapped rows" : "24-bit buffer");
    platform::OfferBitmapRows(mapped);
    host_.messages.clear();
    // A picture larger than the window fills its surface, so its working copy of 42 x
    // 32 pixels needs more than the 40 x 30 x 3 bytes of the surface's buffer.
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

// Each effect changes the image surface's own rows where the platform maps them and
// goes through a 24-bit buffer of the surface where it does not: the whole surface
// must come out the same either way. Pictures filling the surface, centred in a
// larger one (white around them, the lines running on below), shown scaled down, and
// adjusted first; each effect on its own and then all of them one after another.
TEST_F(EffectsTest, MappedRowsAndTheBufferGiveTheSameSurface) {
  struct Layout {
    const char* what;
    int width, height, clientWidth, clientHeight;
    int imageWidth;  // SetImageWidth's argument; 0 leaves it at 100 %
  };
  const Layout layouts[] = {{"filling the surface", 75, 67, 40, 30, 0},
                            {"centred in it", 37, 33, 90, 100, 0},
                            {"scaled down", 97, 71, 110, 90, -65}};
  using Effect = void (CImageEditWnd::*)();
  const std::pair<const char*, Effect> effects[] = {
      {"FlipImage", &CImageEditWnd::FlipImage},     {"ReverseImage", &CImageEditWnd::ReverseImage},
      {"EmbossImage", &CImageEditWnd::EmbossImage}, {"EqualizeHistogram", &CImageEditWnd::EqualizeHistogram},
      {"CheckImage", &CImageEditWnd::CheckImage},   {"BlockImage", &CImageEditWnd::BlockImage}};
  unsigned seed = 20;
  for (const Layout& layout : layouts) {
    SCOPED_TRACE(layout.what);
    const std::vector<COLORREF> colors = RandomColors(layout.width * layout.height, ++seed);
    // The surface after `run`, and the levels it recorded, the rows mapped or not.
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
