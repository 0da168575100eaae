// Drags with no tool, where the scenarios cannot look: a drag repaints only what it
// changed, yet the window shows exactly what a whole repaint would; the mouse is held
// inside the window for a drag and not for a press that starts none; a resize always
// scales the picture the object was inserted with; and an object that goes mid-drag
// (deleted, or taken back by the history) ends its drag. The dragging rules
// themselves are in tests/cli/drag_*.ies.
#include <cstdint>
#include <vector>

#include "test_support.h"

namespace {

class NoToolDragsTest : public HostedTest {
 protected:
  // A picture with a pattern of its own at every pixel, filling the window.
  NoToolDragsTest() {
    std::vector<COLORREF> colors;
    for (int y = 0; y < 90; ++y) {
      for (int x = 0; x < 120; ++x) colors.push_back(RGB(x * 2, y * 2, (x * y) & 0xFF));
    }
    live_.Show(120, 90, colors);
  }

  CImageEditWnd& editor() { return *live_.editor; }
  InsertedObjects& objects() { return editor().m_objects; }

  // An icon whose every pixel differs from its neighbours, so that a picture scaled
  // from anything but its source would show.
  void InsertIcon(int x, int y, int width, int height) {
    std::vector<COLORREF> colors;
    for (int j = 0; j < height; ++j) {
      for (int i = 0; i < width; ++i)
        colors.push_back(RGB((i * 37) & 0xFF, (j * 53) & 0xFF, ((i + j) * 11) & 0xFF));
    }
    editor().InsertIcon(x, y, live_.files.Write("icon.bmp", BitmapFile(width, height, colors)).c_str());
  }

  // What the host window shows now.
  std::vector<std::uint32_t> Frame() {
    int width = 0;
    int height = 0;
    const std::uint32_t* pixels =
        platform::BitmapPixels(platform::HostFrame(live_.hostWindow), &width, &height);
    return std::vector<std::uint32_t>(pixels, pixels + static_cast<std::ptrdiff_t>(width) * height);
  }
  // The move's own repaint against a repaint of the whole window.
  void ExpectMoveShowsWholeRepaint(int x, int y) {
    const int presented = host_.presented;
    live_.Mouse(WM_MOUSEMOVE, x, y);
    ASSERT_GT(host_.presented, presented) << "the move at " << x << "," << y << " showed nothing";
    const std::vector<std::uint32_t> shown = Frame();
    editor().RedrawWindow();
    EXPECT_TRUE(shown == Frame()) << "after the move to " << x << "," << y;
  }

  void TearDown() override {
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    HostedTest::TearDown();
  }

  LiveEditor live_{120, 90};
};

// Objects cross each other and the selection box, whose dotted band is drawn with
// not-xor on the window: a repaint of a part must draw the part of the band in it.
TEST_F(NoToolDragsTest, ADragRepaintsWhatItChangedAsAWholeRepaintWould) {
  InsertIcon(10, 10, 30, 20);
  InsertIcon(60, 40, 30, 20);
  editor().SetSelectionBox(40, 30);
  // A move across the other object and the box, then a resize over them.
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  for (int step = 1; step <= 12; ++step) ExpectMoveShowsWholeRepaint(15 + step * 5, 15 + step * 3);
  live_.Mouse(WM_LBUTTONUP, 75, 51);
  const CInsertedObject& moved = objects().Object(0);
  ASSERT_EQ(moved.x, 70);
  live_.Mouse(WM_LBUTTONDOWN, moved.x + 25, moved.y + 15);  // on the grip
  for (const POINT to : {POINT{100, 70}, POINT{110, 85}, POINT{90, 60}})
    ExpectMoveShowsWholeRepaint(to.x, to.y);
  live_.Mouse(WM_LBUTTONUP, 90, 60);
  EXPECT_EQ(moved.width, 25);
  // The box, over both objects.
  live_.Mouse(WM_LBUTTONDOWN, 60, 45);
  for (int step = 1; step <= 8; ++step) ExpectMoveShowsWholeRepaint(60 - step * 4, 45 - step * 2);
  live_.Mouse(WM_LBUTTONUP, 28, 29);
  EXPECT_EQ(editor().m_selectionBox.WindowRect().left, 8);
}

// A drag holds the mouse inside the window until its release; a press that starts
// none takes nothing.
TEST_F(NoToolDragsTest, ADragHoldsTheMouseInsideTheWindow) {
  InsertIcon(10, 10, 30, 20);
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  EXPECT_EQ(GetCapture(), editor().m_hWnd);
  RECT clip{};
  GetClipCursor(&clip);
  POINT origin{0, 0};
  ClientToScreen(editor().m_hWnd, &origin);
  EXPECT_EQ(clip.left, origin.x);
  EXPECT_EQ(clip.top, origin.y);
  EXPECT_EQ(clip.right, origin.x + 120);
  EXPECT_EQ(clip.bottom, origin.y + 90);
  live_.Mouse(WM_LBUTTONUP, 15, 15);
  EXPECT_EQ(GetCapture(), nullptr);
  ASSERT_EQ(objects().selected(), 0);

  live_.Mouse(WM_LBUTTONDOWN, 100, 80);  // beside it, and nothing scrolls
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(objects().selected(), -1);
  EXPECT_FALSE(editor().m_noToolDrags.Active());
  live_.Mouse(WM_LBUTTONUP, 100, 80);
}

// Shrinking and growing again gives back the picture as inserted, not a copy of a
// copy; a size whose picture cannot be made is refused and the object stays whole.
TEST_F(NoToolDragsTest, AResizeScalesThePictureAsInserted) {
  InsertIcon(10, 10, 40, 30);
  CInsertedObject& icon = objects().Object(0);
  const std::vector<COLORREF> inserted = BitmapColors(icon.picture.get());
  live_.Mouse(WM_LBUTTONDOWN, 45, 35);  // on the grip
  live_.Mouse(WM_MOUSEMOVE, 21, 21);
  ASSERT_EQ(icon.width, 16);
  ASSERT_EQ(icon.height, 16);
  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  live_.Mouse(WM_MOUSEMOVE, 30, 25);
  EXPECT_EQ(icon.width, 16) << "the scaled picture could not be made";
  EXPECT_EQ(BitmapColors(icon.picture.get()).size(), 16u * 16u);
  // The refused step's point is the last one all the same: from there, 24 across and
  // 14 down give back 40 x 30.
  live_.Mouse(WM_MOUSEMOVE, 54, 39);
  live_.Mouse(WM_LBUTTONUP, 54, 39);
  EXPECT_EQ(icon.width, 40);
  EXPECT_EQ(icon.height, 30);
  EXPECT_EQ(BitmapColors(icon.picture.get()), inserted);
  EXPECT_EQ(BitmapColors(icon.selectedPicture.get()).size(), inserted.size());
}

// The Delete key mid-drag frees the dragged slot: the drag goes on with nothing, and
// an object inserted into that slot afterwards is not moved by it.
TEST_F(NoToolDragsTest, DeletingTheDraggedObjectEndsItsDrag) {
  InsertIcon(10, 10, 30, 20);
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  live_.Mouse(WM_MOUSEMOVE, 20, 20);
  SendMessageA(editor().m_hWnd, WM_KEYDOWN, VK_DELETE, 1);
  ASSERT_EQ(objects().count(), 0);
  EXPECT_EQ(objects().dragged(), -1);
  InsertIcon(50, 50, 30, 20);
  const int levels = editor().m_history.count();
  live_.Mouse(WM_MOUSEMOVE, 40, 40);
  live_.Mouse(WM_LBUTTONUP, 40, 40);
  EXPECT_EQ(objects().Object(0).x, 50);
  EXPECT_EQ(objects().Object(0).y, 50);
  EXPECT_EQ(editor().m_history.count(), levels) << "nothing was dragged";
  EXPECT_EQ(GetCapture(), nullptr);
}

// An undo mid-drag gives back the level before the press, with no drag in it: the
// object returns to where it was and stays there until the release, which records
// nothing.
TEST_F(NoToolDragsTest, AnUndoMidDragTakesTheDragBack) {
  InsertIcon(10, 10, 30, 20);
  InsertIcon(60, 40, 30, 20);
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  live_.Mouse(WM_MOUSEMOVE, 25, 20);
  const int index = editor().m_history.index();
  editor().Undo();
  EXPECT_EQ(editor().m_history.index(), index - 1);
  EXPECT_EQ(objects().count(), 1) << "the second insertion is undone";
  EXPECT_EQ(objects().Object(0).x, 10);
  live_.Mouse(WM_MOUSEMOVE, 35, 30);
  EXPECT_EQ(objects().Object(0).x, 10);
  live_.Mouse(WM_LBUTTONUP, 35, 30);
  EXPECT_EQ(editor().m_history.index(), index - 1);
  EXPECT_EQ(editor().m_history.count(), index + 1) << "the redo level stays";
}

// A drag begun with no tool runs to its release whatever is chosen meanwhile, and the
// tool chosen does not paint with it.
TEST_F(NoToolDragsTest, ADragOutlivesAToolChosenMidway) {
  InsertIcon(10, 10, 30, 20);
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  editor().SetPen(3);
  live_.Mouse(WM_MOUSEMOVE, 35, 25);
  live_.Mouse(WM_LBUTTONUP, 35, 25);
  EXPECT_EQ(objects().Object(0).x, 30);
  EXPECT_FALSE(editor().m_noToolDrags.Active());
  EXPECT_EQ(GetPixel(editor().m_surfaces.drawingLayer.dc(), 35, 25), kDrawingLayerKeyColor);
  EXPECT_EQ(GetCapture(), nullptr);
}

}  // namespace
