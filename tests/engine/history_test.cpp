// The edit history through the control: commits, trimming, undo and redo with their
// restores, clearing, snapshot failures and the graphics objects the levels own.
#include <memory>
#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "imageio/bmp_builder.h"
#include "support/temp_files.h"
#include "test_support.h"

namespace {

constexpr COLORREF kKey = kDrawingLayerKeyColor;
constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kGray = 0x808080;

// A picture of one colour, written as a 24-bit bitmap file.
std::vector<std::uint8_t> PlainPicture(int width, int height, COLORREF color) {
  return imageio_test::BuildTrueColourBmp(width, height, [color](int, int) {
    return static_cast<std::uint32_t>(GetRValue(color) << 16 | GetGValue(color) << 8 | GetBValue(color));
  });
}

class HistoryTest : public ::testing::Test {
 protected:
  void TearDown() override {
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    control_.reset();
    if (hostWindow_ != nullptr) DestroyWindow(hostWindow_);
  }
  // A newly activated control showing a plain picture; SetImage has committed level 0.
  void Load(int windowWidth, int windowHeight, int pictureWidth, int pictureHeight) {
    control_ = std::make_unique<CImageEditCtrl>();
    if (hostWindow_ != nullptr) DestroyWindow(hostWindow_);
    hostWindow_ = platform::CreateHostWindow(windowWidth, windowHeight);
    ASSERT_TRUE(control_->CreateControl(hostWindow_, windowWidth, windowHeight));
    const std::string path = files_.Write("p.bmp", PlainPicture(pictureWidth, pictureHeight, kGray));
    Call("SetImage", {Variant::String(path)});
    ASSERT_EQ(editor().m_history.count, 1);
  }
  void Call(std::string_view name, std::vector<Variant> args = {}) {
    ASSERT_EQ(Invoke(*control_, name, args).hr, S_OK) << name;
  }
  // BrightenImage commits a level whose stored brightness is `label`.
  void CommitLabelled(int label) { Call("BrightenImage", {Variant::Int(100 + label)}); }
  void CommitStrokes() {
    const Surface& layer = editor().m_surfaces.drawingLayer;
    editor().CommitHistoryLevel(layer.dc(), layer.width(), layer.height());
  }
  std::vector<int> LevelLabels() {
    std::vector<int> labels;
    for (int i = 0; i < editor().m_history.count; ++i)
      labels.push_back(editor().m_history.levels[i].settings.brightness);
    return labels;
  }
  std::vector<COLORREF> DrawingLayer() {
    const Surface& layer = editor().m_surfaces.drawingLayer;
    return SurfaceColors(layer.dc(), layer.width(), layer.height());
  }
  CImageEditWnd& editor() { return control_->m_editor; }

  InstalledRecordingHost host_;
  TempFiles files_{"history_"};
  HWND hostWindow_ = nullptr;
  std::unique_ptr<CImageEditCtrl> control_ = std::make_unique<CImageEditCtrl>();
};

// Steps: C commits the next label (1, 2, ...), U undoes, R redoes. SetImage's level
// carries label 0.
struct SequenceCase {
  const char* steps;
  std::vector<int> levels;
  int index;
};

TEST_F(HistoryTest, SequencesOfCommitsUndosAndRedos) {
  const SequenceCase cases[] = {
      {"CCCCCCCCCCC", {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, 9},            // eleven commits: the first two gone
      {"CCCCCCCCCCCUUUUUUUUUU", {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, 0},  // ten undos: the tenth does nothing
      {"CCCUUC", {0, 1, 4}, 2},                                        // two redo levels discarded
      {"CCCUUCR", {0, 1, 4}, 2},                                       // and Redo then does nothing
      {"CCCCCCCCCUUUUUC", {0, 1, 2, 3, 4, 10}, 5},  // full history, index 4: nothing dropped
      {"U", {0}, 0},                                // Undo at the first level
      {"CCR", {0, 1, 2}, 2},                        // Redo at the last level
      {"CCUURR", {0, 1, 2}, 2},
      {"CCUUR", {0, 1, 2}, 1},
  };
  for (const SequenceCase& c : cases) {
    SCOPED_TRACE(c.steps);
    Load(40, 30, 4, 2);
    int label = 0;
    for (const char* step = c.steps; *step != '\0'; ++step) {
      if (*step == 'C') CommitLabelled(++label);
      if (*step == 'U') Call("Undo");
      if (*step == 'R') Call("Redo");
    }
    EXPECT_EQ(LevelLabels(), c.levels);
    EXPECT_EQ(editor().m_history.index, c.index);
    // The level on screen is the current one: its settings are the live ones.
    EXPECT_EQ(editor().m_settings.brightness, c.levels[static_cast<size_t>(c.index)]);
  }
}

TEST_F(HistoryTest, StrokesComeBackFromSnapshotsAndLevelsWithoutOneLeaveTheLayerAlone) {
  Load(8, 6, 8, 6);
  const std::vector<COLORREF> clean = DrawingLayer();
  ASSERT_EQ(clean, std::vector<COLORREF>(48, kKey));
  std::vector<COLORREF> stroked = clean;
  SetPixel(editor().m_surfaces.drawingLayer.dc(), 2, 1, kRed);
  stroked[1 * 8 + 2] = kRed;
  CommitStrokes();    // level 1: the stroke
  CommitLabelled(7);  // level 2: a setting, no snapshot
  std::vector<COLORREF> later = stroked;
  later[4 * 8 + 5] = kRed;

  SetPixel(editor().m_surfaces.drawingLayer.dc(), 5, 4, kRed);  // never committed
  Call("Undo");                                                 // to level 1
  EXPECT_EQ(DrawingLayer(), stroked);
  SetPixel(editor().m_surfaces.drawingLayer.dc(), 5, 4, kRed);
  Call("Redo");  // to level 2: settings only, the layer stays as it is on screen
  EXPECT_EQ(editor().m_settings.brightness, 7);
  EXPECT_EQ(DrawingLayer(), later);
  Call("Undo");
  Call("Undo");  // to level 0: the layer as loaded
  EXPECT_EQ(DrawingLayer(), clean);
  EXPECT_EQ(editor().m_settings.brightness, 0);
}

TEST_F(HistoryTest, PlacementAndScrollPositionsComeBack) {
  Load(40, 30, 60, 40);  // larger than the view: both bars
  ASSERT_TRUE(editor().m_view.hScrollShown && editor().m_view.vScrollShown);
  editor().OnHScroll(SB_THUMBPOSITION, 10, nullptr);
  editor().OnVScroll(SB_THUMBPOSITION, 5, nullptr);
  CommitStrokes();  // level 1 at (10, 5)
  editor().OnHScroll(SB_THUMBPOSITION, 15, nullptr);
  editor().OnVScroll(SB_THUMBPOSITION, 8, nullptr);
  CommitStrokes();  // level 2 at (15, 8)
  const RECT rect = editor().m_view.imageRect;
  editor().m_view.imageRect = RECT{1, 2, 3, 4};  // a later move that no level recorded

  Call("Undo");
  EXPECT_EQ(editor().m_view.hScrollPos, 10);
  EXPECT_EQ(editor().m_view.vScrollPos, 5);
  EXPECT_EQ(editor().m_view.imageRect.left, rect.left);
  EXPECT_EQ(editor().m_view.imageRect.top, rect.top);
  EXPECT_EQ(editor().m_view.imageRect.right, rect.left + 60);
  EXPECT_EQ(editor().m_view.imageRect.bottom, rect.top + 40);
  Call("Undo");
  EXPECT_EQ(editor().m_view.hScrollPos, 0);
  EXPECT_EQ(editor().m_view.vScrollPos, 0);
  Call("Redo");
  Call("Redo");
  EXPECT_EQ(editor().m_view.hScrollPos, 15);
  EXPECT_EQ(editor().m_view.vScrollPos, 8);
}

TEST_F(HistoryTest, RestoresRebuildTheImageAndClearShowsThePlainOriginalOnlyForZero) {
  struct Case {
    long bImage;
    bool plainOriginal;
  };
  for (const Case c : {Case{0, true}, Case{1, false}}) {
    SCOPED_TRACE(c.bImage);
    Load(8, 6, 8, 6);
    SetPixel(editor().m_surfaces.drawingLayer.dc(), 3, 3, kRed);
    CommitStrokes();
    Call("BrightenImage", {Variant::Int(150)});
    const COLORREF brightened = GetPixel(editor().m_surfaces.imageSurface.dc(), 0, 0);
    ASSERT_NE(brightened, kGray);
    // Restores rebuild the image surface from the original with the level's settings.
    Call("Undo");
    EXPECT_EQ(GetPixel(editor().m_surfaces.imageSurface.dc(), 0, 0), kGray);
    Call("Redo");
    EXPECT_EQ(GetPixel(editor().m_surfaces.imageSurface.dc(), 0, 0), brightened);

    Call("Clear", {Variant::Int(static_cast<int>(c.bImage))});
    EXPECT_EQ(editor().m_history.count, 0);
    EXPECT_EQ(editor().m_history.index, -1);
    EXPECT_EQ(DrawingLayer(), std::vector<COLORREF>(48, kKey));
    const COLORREF shown = GetPixel(editor().m_surfaces.imageSurface.dc(), 0, 0);
    EXPECT_EQ(shown, c.plainOriginal ? kGray : brightened);
    EXPECT_EQ(editor().m_settings.brightness, 50);  // stored for the next rebuild

    Call("Undo");
    Call("Redo");
    EXPECT_EQ(editor().m_history.index, -1);
    EXPECT_EQ(GetPixel(editor().m_surfaces.imageSurface.dc(), 0, 0), shown);
  }
}

TEST_F(HistoryTest, UndoAndClearAbandonUnfinishedToolsAndUndoDiscardsTypedText) {
  struct Case {
    int toolMode, shapeStyle, curveStage;
    int expectedToolMode, expectedCurveStage;
  };
  const Case cases[] = {
      {10, 2, 2, 10, 0},  // a curve being built starts over
      {10, 1, 2, 10, 2},  // other shapes keep their stage
      {14, 0, 1, 12, 1},  // a held rectangle becomes plain rectangle selection
      {6, 2, 3, 6, 3},
  };
  Load(40, 30, 4, 2);
  for (const char* operation : {"Undo", "Clear"}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(operation) + " mode " + std::to_string(c.toolMode));
      editor().m_tools.mode = static_cast<ToolMode>(c.toolMode);
      editor().m_tools.shapeStyle = static_cast<ShapeStyle>(c.shapeStyle);
      editor().m_tools.stroke.curveStage = c.curveStage;
      editor().m_textEdit.ShowWindow(SW_SHOWNORMAL);
      Call(operation, operation[0] == 'C' ? std::vector<Variant>{Variant::Int(1)} : std::vector<Variant>{});
      EXPECT_EQ(static_cast<int>(editor().m_tools.mode), c.expectedToolMode);
      EXPECT_EQ(editor().m_tools.stroke.curveStage, c.expectedCurveStage);
      // Clear leaves the text entry alone.
      EXPECT_EQ(editor().m_textEdit.IsWindowVisible() == TRUE, operation[0] == 'C');
    }
  }
}

// Each case: the labelled levels committed after SetImage's, whether only the first
// snapshot attempt fails (or every one, by an impossible size), the labels left and
// the change in live bitmaps.
struct SnapshotFailureCase {
  int laterLevels;
  bool onlyFirstFails;
  std::vector<int> levels;
  int bitmapChange;
};

TEST_F(HistoryTest, FailedSnapshotsGiveUpOlderLevelsOneAtATime) {
  const SnapshotFailureCase cases[] = {
      {2, true, {1, 2, 3}, 0},  // level 0 (with its snapshot) makes room, the retry works
      {2, false, {}, -1},       // nothing helps: all three go and nothing is recorded
      // A full history gives up level 0 once: that round also retries the snapshot.
      {9, true, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 0},
  };
  for (const SnapshotFailureCase& c : cases) {
    SCOPED_TRACE(c.laterLevels);
    Load(40, 30, 4, 2);
    for (int label = 1; label <= c.laterLevels; ++label) CommitLabelled(label);
    editor().m_settings.brightness = c.laterLevels + 1;
    const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;
    const Surface& layer = editor().m_surfaces.drawingLayer;
    if (c.onlyFirstFails) {
      platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
      CommitStrokes();
    } else {
      editor().CommitHistoryLevel(layer.dc(), 0, layer.height());
    }
    EXPECT_EQ(LevelLabels(), c.levels);
    EXPECT_EQ(editor().m_history.index, editor().m_history.count - 1);
    EXPECT_EQ(platform::LiveGdiObjects().bitmaps - bitmapsBefore, c.bitmapChange);
    if (!c.levels.empty()) {
      EXPECT_TRUE(editor().m_history.levels[editor().m_history.index].snapshot);
    }
  }
}

TEST_F(HistoryTest, LevelsOwnTheirSnapshotsAndLeaveNothingBehind) {
  control_.reset();
  const platform::GdiCounts before = platform::LiveGdiObjects();
  Load(40, 30, 4, 2);
  const int withFirstLevel = platform::LiveGdiObjects().bitmaps;
  for (int i = 0; i < 25; ++i) CommitStrokes();
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, withFirstLevel + 9);  // ten levels, ten snapshots
  for (int i = 0; i < 3; ++i) Call("Undo");
  CommitLabelled(5);  // three redo levels released, one level without a snapshot
  EXPECT_EQ(editor().m_history.count, 8);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, withFirstLevel + 6);
  Call("Undo");
  Call("Undo");
  CommitStrokes();
  Call("Clear", {Variant::Int(1)});
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, withFirstLevel - 1);
  for (int i = 0; i < 4; ++i) CommitStrokes();
  control_.reset();
  DestroyWindow(hostWindow_);
  hostWindow_ = nullptr;
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
}

}  // namespace
