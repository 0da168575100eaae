// Drags with no tool, where the scenarios cannot look: partial repaints against a whole
// one, the mouse held for a drag, the inserted picture as the source of every resize,
// and an object that goes mid-drag. The dragging rules are in tests/cli/drag_*.ies.
#include <tuple>
#include <utility>
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
  void TearDown() override {
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    HostedTest::TearDown();
  }

  CImageEditWnd& editor() { return *live_.editor; }
  InsertedObjects& objects() { return editor().m_objects; }
  static std::pair<int, int> Size(const CInsertedObject& object) { return {object.width, object.height}; }

  // Every pixel differs from its neighbours, so a picture scaled from a copy would show.
  void InsertIcon(int x, int y, int width, int height) {
    std::vector<COLORREF> colors;
    for (int j = 0; j < height; ++j) {
      for (int i = 0; i < width; ++i)
        colors.push_back(RGB((i * 37) & 0xFF, (j * 53) & 0xFF, ((i + j) * 11) & 0xFF));
    }
    editor().InsertIcon(x, y, live_.files.Write("icon.bmp", BitmapFile(width, height, colors)).c_str());
  }

  void ExpectMoveShowsWholeRepaint(int x, int y) {
    const int presented = host_.presented;
    live_.Mouse(WM_MOUSEMOVE, x, y);
    ASSERT_GT(host_.presented, presented) << "the move at " << x << "," << y << " showed nothing";
    const std::vector<COLORREF> shown = BitmapColors(platform::HostFrame(live_.hostWindow));
    editor().RedrawWindow();
    EXPECT_TRUE(shown == BitmapColors(platform::HostFrame(live_.hostWindow))) << "at " << x << "," << y;
  }

  LiveEditor live_{120, 90};
};

// Objects cross each other and the box, whose dotted band is drawn with not-xor: a
// partial repaint must draw its part of the band. The drag also holds the mouse inside
// the window until its release; a press that starts none takes nothing.
TEST_F(NoToolDragsTest, ADragRepaintsAsAWholeRepaintWouldAndHoldsTheMouse) {
  InsertIcon(10, 10, 30, 20);
  InsertIcon(60, 40, 30, 20);
  editor().SetSelectionBox(40, 30);
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  EXPECT_EQ(GetCapture(), editor().m_hWnd);
  RECT clip{};
  GetClipCursor(&clip);
  POINT origin{0, 0};
  ClientToScreen(editor().m_hWnd, &origin);
  EXPECT_EQ(std::make_tuple(clip.left, clip.top, clip.right, clip.bottom),
            std::make_tuple(origin.x, origin.y, origin.x + 120, origin.y + 90));
  for (int step = 1; step <= 12; ++step) ExpectMoveShowsWholeRepaint(15 + step * 5, 15 + step * 3);
  live_.Mouse(WM_LBUTTONUP, 75, 51);
  EXPECT_EQ(GetCapture(), nullptr);
  const CInsertedObject& moved = objects().Object(0);
  ASSERT_EQ(moved.x, 70);
  live_.Mouse(WM_LBUTTONDOWN, moved.x + 25, moved.y + 15);  // on the grip
  for (const POINT to : {POINT{100, 70}, POINT{110, 85}, POINT{90, 60}})
    ExpectMoveShowsWholeRepaint(to.x, to.y);
  live_.Mouse(WM_LBUTTONUP, 90, 60);
  EXPECT_EQ(moved.width, 25);
  live_.Mouse(WM_LBUTTONDOWN, 60, 45);  // the box, over both objects
  for (int step = 1; step <= 8; ++step) ExpectMoveShowsWholeRepaint(60 - step * 4, 45 - step * 2);
  live_.Mouse(WM_LBUTTONUP, 28, 29);
  EXPECT_EQ(editor().m_selectionBox.WindowRect().left, 8);

  live_.Mouse(WM_LBUTTONDOWN, 115, 5);  // beside everything, and nothing scrolls
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_FALSE(editor().m_noToolDrags.Active());
  live_.Mouse(WM_LBUTTONUP, 115, 5);
}

// Shrinking and growing again gives back the picture as inserted, not a copy of a
// copy; a size whose picture cannot be made is refused and the object stays whole.
TEST_F(NoToolDragsTest, AResizeScalesThePictureAsInserted) {
  InsertIcon(10, 10, 40, 30);
  CInsertedObject& icon = objects().Object(0);
  const std::vector<COLORREF> inserted = BitmapColors(icon.picture.get());
  live_.Mouse(WM_LBUTTONDOWN, 45, 35);  // on the grip
  live_.Mouse(WM_MOUSEMOVE, 21, 21);
  ASSERT_EQ(Size(icon), std::make_pair(16, 16));
  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);
  live_.Mouse(WM_MOUSEMOVE, 30, 25);
  EXPECT_EQ(icon.width, 16) << "the scaled picture could not be made";
  EXPECT_EQ(BitmapColors(icon.picture.get()).size(), 16u * 16u);
  // The refused step's point counts all the same: 24 across and 14 down give 40 x 30.
  live_.Mouse(WM_MOUSEMOVE, 54, 39);
  live_.Mouse(WM_LBUTTONUP, 54, 39);
  EXPECT_EQ(Size(icon), std::make_pair(40, 30));
  EXPECT_EQ(BitmapColors(icon.picture.get()), inserted);
  EXPECT_EQ(BitmapColors(icon.selectedPicture.get()).size(), inserted.size());
}

// What goes mid-drag takes the drag with it. An undo gives back the level before the
// press, with no drag in it; Delete frees the dragged slot, and an object inserted
// there afterwards is not moved; a tool chosen meanwhile ends the drag as its
// release would, and nothing paints with it. Releases that drag nothing record
// nothing.
TEST_F(NoToolDragsTest, NothingDanglesFromADragWhoseObjectOrToolChanges) {
  InsertIcon(10, 10, 30, 20);
  InsertIcon(60, 40, 30, 20);
  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  live_.Mouse(WM_MOUSEMOVE, 25, 20);
  const int index = editor().m_history.index();
  editor().Undo();
  EXPECT_EQ(objects().count(), 1) << "the second insertion is undone";
  EXPECT_EQ(objects().Object(0).x, 10);
  live_.Mouse(WM_MOUSEMOVE, 35, 30);
  EXPECT_EQ(objects().Object(0).x, 10);
  live_.Mouse(WM_LBUTTONUP, 35, 30);
  EXPECT_EQ(std::make_pair(editor().m_history.index(), editor().m_history.count()),
            std::make_pair(index - 1, index + 1))
      << "the redo level stays";

  live_.Mouse(WM_LBUTTONDOWN, 15, 15);
  live_.Mouse(WM_MOUSEMOVE, 20, 20);
  SendMessageA(editor().m_hWnd, WM_KEYDOWN, VK_DELETE, 1);
  ASSERT_EQ(objects().count(), 0);
  EXPECT_EQ(objects().dragged(), -1);
  InsertIcon(50, 50, 30, 20);
  const int levels = editor().m_history.count();
  live_.Mouse(WM_MOUSEMOVE, 40, 40);
  live_.Mouse(WM_LBUTTONUP, 40, 40);
  EXPECT_EQ(std::make_pair(objects().Object(0).x, objects().Object(0).y), std::make_pair(50, 50));
  EXPECT_EQ(editor().m_history.count(), levels);
  EXPECT_EQ(GetCapture(), nullptr);

  // Choosing a tool ends the object's drag where it is, as its release would.
  live_.Mouse(WM_LBUTTONDOWN, 55, 55);
  live_.Mouse(WM_MOUSEMOVE, 60, 58);
  editor().SetPen(3);
  EXPECT_FALSE(editor().m_noToolDrags.Active());
  EXPECT_EQ(objects().dragged(), -1);
  live_.Mouse(WM_MOUSEMOVE, 75, 65);
  live_.Mouse(WM_LBUTTONUP, 75, 65);
  EXPECT_EQ(std::make_pair(objects().Object(0).x, objects().Object(0).y), std::make_pair(55, 53));
  EXPECT_EQ(GetPixel(editor().m_surfaces.drawingLayer.dc(), 75, 65), kDrawingLayerKeyColor);
  EXPECT_EQ(GetCapture(), nullptr);
}

}  // namespace
