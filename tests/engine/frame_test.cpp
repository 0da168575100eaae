// The decorative frame through the editor: when it shows, where its pixels land, the
// overlay, failed loads, history, saving, drawing over objects and strokes, and the
// transparency and texture settings.
#include <climits>
#include <string>
#include <vector>

#include "imageio/image_loader.h"
#include "test_support.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kGrey = 0x808080;
constexpr COLORREF kKey = RGB(0xFF, 0x00, 0xFF);
constexpr COLORREF kOverlay = RGB(0x20, 0xA0, 0x60);

// Each piece is one colour but for a marker at its left-top pixel: every tile shows.
COLORREF PieceColor(int orientation) { return RGB(20 + 25 * orientation, 200 - 15 * orientation, 0x40); }
COLORREF Marker(int orientation) { return RGB(20 + 25 * orientation, 200 - 15 * orientation, 0x90); }

// A 400 x 300 window showing a grey 200 x 200 picture at (100, 50)-(300, 250).
class FrameTest : public HostedTest {
 protected:
  FrameTest() { live_.Show(200, 200, kGrey); }

  CImageEditWnd& editor() { return *live_.editor; }
  const PictureFrame& frame() { return editor().m_frame; }
  int levels() { return editor().m_history.count(); }

  std::string PieceFile(int orientation, int width, int height) {
    std::vector<COLORREF> colors(static_cast<std::size_t>(width * height), PieceColor(orientation));
    colors[0] = Marker(orientation);
    return live_.files.Write("piece" + std::to_string(orientation) + ".bmp",
                             BitmapFile(width, height, colors));
  }
  // A 6 x 4 overlay whose left column is the key colour.
  std::string OverlayFile() {
    std::vector<COLORREF> colors(24, kOverlay);
    for (int y = 0; y < 4; ++y) colors[static_cast<std::size_t>(y * 6)] = kKey;
    return live_.files.Write("overlay.bmp", BitmapFile(6, 4, colors));
  }
  void SetBorder(int side, int offset) {
    for (int i = 0; i < 8; ++i) editor().SetFrame(i, PieceFile(i, side, side).c_str(), offset, 0);
  }
  COLORREF Shown(int x, int y) { return live_.Shown(x, y); }
  // A whole save read back: width, height and pixels, top row first.
  struct Saved {
    int width, height;
    std::vector<COLORREF> colors;
    COLORREF At(int x, int y) const { return colors[static_cast<std::size_t>(y * width + x)]; }
  };
  Saved Save() {
    const std::string path = live_.files.Write("saved.bmp", {});
    editor().SaveEditedBitmap(path.c_str());
    const platform::OwnedBitmap bitmap(imageio::LoadImage(path.c_str(), {}));
    BITMAP info{};
    GetObjectA(bitmap.get(), sizeof info, &info);
    return Saved{info.bmWidth, info.bmHeight, BitmapColors(bitmap.get())};
  }

  LiveEditor live_{400, 300};
};

// Square pieces of side 10 and offset 3: the top tiles run from x = 103 at y = 43 to
// before 297, the top-left corner at (93, 43), every corner 3 pixels inside the
// picture. Until the eighth piece nothing shows or is recorded.
TEST_F(FrameTest, TheBorderShowsWithItsEighthPieceAndMeetsAtTheCorners) {
  const int before = levels();
  for (int i = 0; i < 7; ++i) {
    editor().SetFrame(i, PieceFile(i, 10, 10).c_str(), 3, 0);
    EXPECT_FALSE(frame().present()) << i;
    EXPECT_EQ(levels(), before) << i;
    EXPECT_EQ(editor().m_tools.mode, ToolMode::None) << i;
  }
  EXPECT_EQ(Shown(103, 43), kWhite);
  editor().SetFrame(7, PieceFile(7, 10, 10).c_str(), 3, 0);
  EXPECT_TRUE(frame().present());
  EXPECT_EQ(levels(), before + 1);
  EXPECT_EQ(editor().m_tools.mode, ToolMode::Frame);
  const struct {
    int x, y;
    COLORREF color;
  } pixels[] = {
      {103, 43, Marker(2)},  {113, 43, Marker(2)},      {293, 43, Marker(2)},     {296, 52, PieceColor(2)},
      {150, 53, kGrey},      {93, 43, Marker(3)},       {102, 52, PieceColor(3)}, {92, 43, kWhite},
      {297, 43, Marker(1)},  {306, 52, PieceColor(1)},  {297, 53, Marker(0)},     {297, 63, Marker(0)},
      {296, 60, kGrey},      {93, 53, Marker(4)},       {103, 247, Marker(6)},    {93, 247, Marker(5)},
      {297, 247, Marker(7)}, {306, 256, PieceColor(7)}, {307, 256, kWhite},
  };
  for (const auto& p : pixels) EXPECT_EQ(Shown(p.x, p.y), p.color) << p.x << "," << p.y;
}

// The overlay shows at once, keyed, at the origin, with whatever border pieces there
// are, the last tile running whole past the edge's end. A border piece set after it
// hides the frame again, unrecorded, until the border is complete.
TEST_F(FrameTest, TheOverlayShowsAtOnceWithTheBorderPiecesThereAre) {
  const int before = levels();
  editor().SetFrame(2, PieceFile(2, 7, 10).c_str(), 0, 0);  // a top edge only
  EXPECT_FALSE(frame().present());
  editor().SetFrame(-1, OverlayFile().c_str(), 5, static_cast<int>(kKey));
  EXPECT_TRUE(frame().present());
  EXPECT_EQ(levels(), before + 1);
  EXPECT_EQ(editor().m_tools.mode, ToolMode::Frame);
  EXPECT_EQ(Shown(0, 0), kWhite);  // the key column
  EXPECT_EQ(Shown(1, 0), kOverlay);
  EXPECT_EQ(Shown(5, 3), kOverlay);
  EXPECT_EQ(Shown(6, 0), kWhite);
  // Tiles every 7 pixels from x = 100 while x < 300: the last, at 296, ends at 303.
  EXPECT_EQ(Shown(296, 40), Marker(2));
  EXPECT_EQ(Shown(302, 49), PieceColor(2));
  EXPECT_EQ(Shown(303, 49), kWhite);

  editor().SetFrame(4, PieceFile(4, 10, 10).c_str(), 0, 0);
  EXPECT_FALSE(frame().present());
  EXPECT_EQ(levels(), before + 1);
}

// The frame's mode paints nothing, yet a press on the picture records a level, as
// every tool's press does, and a press beside it none. Orientations outside -1..8
// change nothing, but typed text goes onto the picture.
TEST_F(FrameTest, APressInTheFramesModeAndOrientationsOutsideTheNinePieces) {
  SetBorder(10, 3);
  ASSERT_EQ(editor().m_tools.mode, ToolMode::Frame);
  const COLORREF shown = Shown(150, 120);
  int before = levels();
  live_.Drag(150, 120, 170, 130);
  EXPECT_EQ(levels(), before + 1);
  EXPECT_EQ(Shown(150, 120), shown);
  live_.Click(20, 20);
  EXPECT_EQ(levels(), before + 1);

  editor().EnterText();
  live_.Drag(150, 100, 250, 150);
  platform::CharInput(live_.hostWindow, 'A');
  before = levels();
  for (int orientation : {9, -2, INT_MIN}) {
    editor().SetFrame(orientation, PieceFile(2, 4, 4).c_str(), 0, 0);
    EXPECT_FALSE(editor().m_textEntry.IsShown());
    EXPECT_TRUE(frame().present()) << orientation;
    EXPECT_EQ(frame().piece(2).width, 10);
    EXPECT_EQ(levels(), before);
  }
}

// A border piece that does not load hides the frame without a level; an overlay
// hides it with one. The loader says why while verbose.
TEST_F(FrameTest, APieceThatDoesNotLoadHidesTheFrame) {
  SetBorder(10, 3);
  editor().EnableVerbose(1);
  live_.files.Name("missing.bmp");
  const std::string missing = live_.files.last();
  const int before = levels();
  editor().SetFrame(2, missing.c_str(), 3, 0);
  EXPECT_FALSE(frame().present());
  EXPECT_EQ(levels(), before);
  EXPECT_EQ(host_.messages.size(), 1u);
  const FramePiece& top = frame().piece(2);
  EXPECT_TRUE(top.bitmap.get() == nullptr && top.width == 0 && top.offset == 0 && top.keyColor == -1);
  EXPECT_EQ(Shown(93, 43), kWhite);

  editor().SetFrame(2, PieceFile(2, 10, 10).c_str(), 3, 0);
  EXPECT_TRUE(frame().present());
  editor().SetFrame(8, missing.c_str(), 0, 0);
  EXPECT_FALSE(frame().present());
  EXPECT_EQ(levels(), before + 2);
}

// Pieces of 20 pixels with offset 0 make a whole save 40 pixels wider and higher;
// otherwise each side reaches out by its piece's size less its offset.
TEST_F(FrameTest, AWholeSaveTakesInTheFrame) {
  SetBorder(20, 0);
  const Saved saved = Save();
  EXPECT_EQ(saved.width, 240);
  EXPECT_EQ(saved.height, 240);
  EXPECT_EQ(saved.At(0, 0), Marker(3));
  EXPECT_EQ(saved.At(20, 20), kGrey);
  EXPECT_EQ(saved.At(239, 239), PieceColor(7));

  editor().SetFrame(kRightEdge, PieceFile(0, 7, 1).c_str(), 2, 0);
  editor().SetFrame(kTopEdge, PieceFile(2, 1, 5).c_str(), 1, 0);
  editor().SetFrame(kLeftEdge, PieceFile(4, 6, 1).c_str(), 3, 0);
  editor().SetFrame(kBottomEdge, PieceFile(6, 1, 4).c_str(), 0, 0);
  const RECT area = frame().Around(RECT{100, 50, 200, 200});  // x, y, width, height
  EXPECT_EQ(area.left, 100 - 3);
  EXPECT_EQ(area.top, 50 - 4);
  EXPECT_EQ(area.right, 200 + 5 + 3);
  EXPECT_EQ(area.bottom, 200 + 4 + 4);
}

// Pieces thrown far off are drawn nowhere, and a save's area beyond int's reach does
// not wrap around: 200 + 10 + 10 less two opposite offsets adding up to -1.
TEST_F(FrameTest, OffsetsAtTheLimitsOfIntAreWorkedOutWithoutWrappingAround) {
  const int offsets[8] = {INT_MIN, INT_MAX, INT_MIN, INT_MAX, INT_MAX, INT_MIN, INT_MAX, INT_MIN};
  for (int i = 0; i < 8; ++i) editor().SetFrame(i, PieceFile(i, 10, 10).c_str(), offsets[i], 0);
  ASSERT_TRUE(frame().present());
  EXPECT_EQ(Shown(95, 45), kWhite);
  const Saved saved = Save();
  EXPECT_EQ(saved.width, 221);
  EXPECT_EQ(saved.height, 221);
}

// Undo to the level before the frame hides it; redo brings copies back. Nothing leaks.
TEST_F(FrameTest, UndoAndRedoTakeTheFrameAwayAndBringItBack) {
  const int before = platform::LiveGdiObjects().total();
  {
    LiveEditor live(400, 300);
    live.Show(200, 200, kGrey);
    for (int i = 0; i < 8; ++i) live->SetFrame(i, PieceFile(i, 10, 10).c_str(), 3, 0);
    const int bitmaps = platform::LiveGdiObjects().bitmaps;
    live->Undo();
    EXPECT_FALSE(live->m_frame.present());
    EXPECT_EQ(live->m_frame.piece(2).bitmap.get(), nullptr);
    EXPECT_EQ(live.Shown(103, 43), kWhite);
    live->Redo();
    EXPECT_TRUE(live->m_frame.present());
    EXPECT_EQ(live.Shown(103, 43), Marker(2));
    EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmaps);
  }
  EXPECT_EQ(platform::LiveGdiObjects().total(), before);
}

// Composed in small parts, the frame (overlay included) comes out as composed whole.
TEST_F(FrameTest, ComposingInPartsGivesTheWholeFrame) {
  SetBorder(10, 3);
  editor().SetFrame(8, OverlayFile().c_str(), 0, static_cast<int>(kKey));
  HDC composition = editor().m_surfaces.composition.dc();
  editor().ComposeView();
  const std::vector<COLORREF> whole = SurfaceColors(composition, 320, 70);
  const RECT all{0, 0, 400, 300};
  FillRect(composition, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  for (int y = 0; y < 70; y += 3) {
    for (int x = 0; x < 320; x += 7) {
      const RECT part{x, y, x + 7, y + 3};
      editor().ComposeView(&part);
    }
  }
  EXPECT_EQ(SurfaceColors(composition, 320, 70), whole);
}

// Both settings need the drawing layer and a percentage of 0 to 100. A white balloon
// inserted at 100 is keyed whole; one at 50 is mixed half and half with the grey.
TEST_F(FrameTest, TransparencyAndTextureTakePercentagesAndBalloonsTakeTheTransparency) {
  {
    CImageEditWnd unmade;
    unmade.SetTexture(50);
    unmade.SetTransparency(0x123456, 50);
    EXPECT_EQ(unmade.State().texture, 0);
    EXPECT_EQ(unmade.State().transparency, 0);
  }
  for (int percent : {101, 100, -1}) {
    editor().SetTexture(percent);
    editor().SetTransparency(percent == 100 ? 0xFFFFFF : 0x123456, percent);
  }
  EXPECT_EQ(editor().State().texture, 100);
  EXPECT_EQ(editor().State().transparentColor, 0xFFFFFFu);
  EXPECT_EQ(editor().State().transparency, 100);

  editor().SetTextFont("Arial,,,12,,,0000FF");
  editor().InsertBalloonText(150, 100, "", 0, 0, 40, 30, "Hi");
  editor().SetTransparency(0, 50);
  editor().InsertBalloonText(200, 100, "", 0, 0, 40, 30, "Hi");
  EXPECT_EQ(Shown(185, 125), kWhite);
  EXPECT_EQ(Shown(235, 125), 0xBFBFBFu);  // trunc(0x80 / 2 + 0xFF / 2)
}

}  // namespace
