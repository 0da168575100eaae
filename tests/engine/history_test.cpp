// The edit history where the random sessions of history_sequence_test.cpp do not
// reach: clearing, the tools a move through the history abandons, snapshot failures
// and the graphics objects the levels own.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kGray = 0x808080;

class HistoryTest : public HostedTest {
 protected:
  // A newly made editor showing a plain grey picture; SetImage has committed level 0.
  void Load(int windowWidth, int windowHeight, int pictureWidth, int pictureHeight) {
    live_.reset();
    live_ = std::make_unique<LiveEditor>(windowWidth, windowHeight);
    live_->Show(pictureWidth, pictureHeight, kGray);
    ASSERT_EQ(editor().m_history.count(), 1);
  }
  // BrightenImage commits a level whose stored brightness is `label`.
  void CommitLabelled(int label) { editor().BrightenImage(100 + label); }
  void CommitStrokes() {
    const Surface& layer = editor().m_surfaces.drawingLayer;
    editor().CommitHistoryLevel(layer.dc(), layer.width(), layer.height());
  }
  std::vector<int> LevelLabels() {
    std::vector<int> labels;
    for (int i = 0; i < editor().m_history.count(); ++i)
      labels.push_back(editor().m_history.Level(i).settings.brightness);
    return labels;
  }
  std::vector<COLORREF> DrawingLayer() {
    const Surface& layer = editor().m_surfaces.drawingLayer;
    return SurfaceColors(layer.dc(), layer.width(), layer.height());
  }
  CImageEditWnd& editor() { return *live_->editor; }

  void TearDown() override {
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    live_.reset();
    HostedTest::TearDown();
  }

  std::unique_ptr<LiveEditor> live_;
};

// Moving between snapshots makes bitmaps (the settled copy of the one on show). When
// that fails the level comes back without its drawing layer, as a level whose snapshot
// cannot be read does, the snapshots that can no longer be reached are given up, and
// the history goes on working: later commits, undos and redos restore what is left.
TEST_F(HistoryTest, ASnapshotThatCannotBeBroughtBackLeavesTheLayerAndAWorkingHistory) {
  Load(8, 6, 8, 6);
  const HDC layer = editor().m_surfaces.drawingLayer.dc();
  SetPixel(layer, 1, 1, kRed);
  CommitStrokes();  // level 1
  SetPixel(layer, 2, 2, kRed);
  CommitStrokes();  // level 2
  const std::vector<COLORREF> second = DrawingLayer();
  SetPixel(layer, 3, 3, kRed);
  const std::vector<COLORREF> drawn = DrawingLayer();
  // The stroke drawn since is folded into the snapshot beside level 2 first; the copy
  // that settles it is the first bitmap made, and it fails.
  BitBlt(editor().m_surfaces.snapshotDC.get(), 0, 0, 8, 6, layer, 0, 0, SRCCOPY);
  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  editor().Undo();
  EXPECT_EQ(editor().m_history.index(), 1);
  EXPECT_EQ(DrawingLayer(), drawn);
  EXPECT_FALSE(editor().m_history.HasSnapshot(0));
  EXPECT_FALSE(editor().m_history.HasSnapshot(1));
  EXPECT_TRUE(editor().m_history.HasSnapshot(2));

  editor().Redo();  // level 2 still has the snapshot on show, with the stroke in it
  EXPECT_EQ(DrawingLayer(), drawn);
  SetPixel(layer, 4, 4, kRed);
  CommitStrokes();  // level 3
  const std::vector<COLORREF> third = DrawingLayer();
  editor().Undo();
  EXPECT_EQ(DrawingLayer(), drawn);
  editor().Redo();
  EXPECT_EQ(DrawingLayer(), third);
  EXPECT_NE(second, drawn);
}

// Clear keeps the stored settings for the next rebuild whichever picture it shows; what
// it shows, and the rebuilds of restores, are checked by the random sessions.
TEST_F(HistoryTest, ClearKeepsTheStoredSettings) {
  for (const long bImage : {0L, 1L}) {
    Load(8, 6, 8, 6);
    editor().BrightenImage(150);
    editor().Clear(bImage);
    EXPECT_EQ(editor().m_settings.brightness, 50) << bImage;
  }
}

// A move through the history gives up what the chosen tool cannot finish any more: a
// curve half built starts over, a held capture goes back to plain rectangle
// selection. A tool not chosen keeps what it has.
TEST_F(HistoryTest, UndoAndClearAbandonWhatTheChosenToolCannotFinish) {
  struct Case {
    const char* state;
    std::function<void(LiveEditor&)> setUp;
    ToolMode mode;
    int curveStage;
  };
  const Case cases[] = {
      {"a curve after its first drag",
       [](LiveEditor& live) {
         live->SetShape(2);
         live.Drag(5, 5, 30, 20);
       },
       ToolMode::Shape, 0},
      {"a line while a curve waits for its second drag",
       [](LiveEditor& live) {
         live->SetShape(2);
         live.Drag(5, 5, 30, 20);
         live->SetShape(1);
       },
       ToolMode::Shape, 1},
      {"a held capture",
       [](LiveEditor& live) {
         live->SelectRectangle();
         live.Drag(5, 5, 30, 20);
       },
       ToolMode::RectangleSelection, 0},
  };
  for (const char* operation : {"Undo", "Clear"}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(operation) + " after " + c.state);
      Load(40, 30, 40, 30);
      c.setUp(*live_);
      if (operation[0] == 'U') {
        editor().Undo();
      } else {
        editor().Clear(1);
      }
      EXPECT_EQ(editor().m_tools.mode, c.mode);
      EXPECT_EQ(editor().State().curveStage, c.curveStage);
    }
  }
}

// Text being typed when the history moves is thrown away by an undo, not put on the
// picture; a clear leaves the box open.
TEST_F(HistoryTest, UndoDiscardsTypedTextAndClearLeavesIt) {
  for (const bool undo : {true, false}) {
    SCOPED_TRACE(undo ? "Undo" : "Clear");
    Load(40, 30, 40, 30);
    editor().EnterText();
    live_->Click(10, 10);
    ASSERT_TRUE(editor().m_textEntry.IsShown());
    if (undo) {
      editor().Undo();
    } else {
      editor().Clear(1);
    }
    EXPECT_EQ(editor().m_textEntry.IsShown(), !undo);
  }
}

// Each case: the labelled levels committed after SetImage's (the strokes' level then
// records the last label too), whether only the first snapshot attempt fails (or
// every one, by an impossible size), the labels left and the change in live bitmaps.
struct SnapshotFailureCase {
  int labelledLevels;
  bool onlyFirstFails;
  std::vector<int> levels;
  int bitmapChange;
};

TEST_F(HistoryTest, FailedSnapshotsGiveUpOlderLevelsOneAtATime) {
  const SnapshotFailureCase cases[] = {
      {3, true, {1, 2, 3, 3}, 0},  // level 0 (with its snapshot) makes room, the retry works
      {3, false, {}, -1},          // nothing helps: all four go and nothing is recorded
      // A full history gives up its oldest level (here one without a snapshot) once:
      // that round also retries the snapshot.
      {10, true, {2, 3, 4, 5, 6, 7, 8, 9, 10, 10}, 1},
  };
  for (const SnapshotFailureCase& c : cases) {
    SCOPED_TRACE(c.labelledLevels);
    Load(40, 30, 4, 2);
    for (int label = 1; label <= c.labelledLevels; ++label) CommitLabelled(label);
    const int bitmapsBefore = platform::LiveGdiObjects().bitmaps;
    const Surface& layer = editor().m_surfaces.drawingLayer;
    if (c.onlyFirstFails) {
      platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
      CommitStrokes();
    } else {
      editor().CommitHistoryLevel(layer.dc(), 0, layer.height());
    }
    const EditHistory& history = editor().m_history;
    EXPECT_EQ(LevelLabels(), c.levels);
    EXPECT_EQ(history.index(), history.count() - 1);
    EXPECT_EQ(platform::LiveGdiObjects().bitmaps - bitmapsBefore, c.bitmapChange);
    if (!c.levels.empty()) {
      EXPECT_TRUE(history.HasSnapshot(history.index()));
    }
  }
}

// However many levels have snapshots, the history holds two whole bitmaps: the
// snapshot on show and its settled copy; the other levels keep differences.
TEST_F(HistoryTest, LevelsOwnTheirSnapshotsAndLeaveNothingBehind) {
  const platform::GdiCounts before = platform::LiveGdiObjects();
  Load(40, 30, 4, 2);
  const int withFirstLevel = platform::LiveGdiObjects().bitmaps;
  for (int i = 0; i < 25; ++i) CommitStrokes();
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, withFirstLevel + 1);
  for (int i = 0; i < 3; ++i) editor().Undo();
  CommitLabelled(5);  // three redo levels released, one level without a snapshot
  EXPECT_EQ(editor().m_history.count(), 8);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, withFirstLevel + 1);
  editor().Undo();
  editor().Undo();
  CommitStrokes();
  editor().Clear(1);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, withFirstLevel - 1);
  for (int i = 0; i < 4; ++i) CommitStrokes();
  live_.reset();
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
}

}  // namespace
