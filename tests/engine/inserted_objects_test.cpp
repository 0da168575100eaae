// Inserted objects through the editor: the five slots and the stacking order, where an
// insertion lands, how objects are drawn (keyed, blended, framed while selected), the
// shortcut menu and its commands, deletion, the history's copies, scrolling, the
// graphics objects they own and what running out of memory does.
#include <algorithm>
#include <string>
#include <vector>

#include "editor/object_commands.h"
#include "test_support.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kGrey = 0x808080;
constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kGreen = 0x00FF00;
constexpr COLORREF kBlue = 0xFF0000;
constexpr COLORREF kBlack = 0x000000;

class ObjectsTest : public HostedTest {
 protected:
  // A grey picture filling the 40 x 30 window.
  ObjectsTest() { live_.Show(40, 30, kGrey); }
  void TearDown() override {
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    SetPixelBufferLimit(kDefaultPixelBufferLimit);
    HostedTest::TearDown();
  }

  CImageEditWnd& editor() { return *live_.editor; }
  InsertedObjects& objects() { return editor().m_objects; }
  const CInsertedObject& object(int slot) { return objects().Object(slot); }
  std::vector<int> ZOrder() {
    const std::span<const int> order = objects().FrontToBack();
    return std::vector<int>(order.begin(), order.end());
  }

  // An icon file of those colours, top row first.
  std::string IconFile(int width, int height, const std::vector<COLORREF>& colors) {
    return live_.files.Write("icon.bmp", BitmapFile(width, height, colors));
  }
  std::string IconFile(int width, int height, COLORREF color) {
    return IconFile(width, height, std::vector<COLORREF>(static_cast<std::size_t>(width * height), color));
  }
  void InsertIcon(int x, int y, COLORREF color = kBlue, int width = 4, int height = 3) {
    editor().InsertIcon(x, y, IconFile(width, height, color).c_str());
  }

  // The right button at a window point, the menu answered with `command` (0 dismisses
  // it).
  void RightClick(int x, int y, UINT command = 0) {
    host_.menuAnswer = command;
    host_.shownMenu = nullptr;
    live_.Mouse(WM_RBUTTONDOWN, x, y);
    live_.Mouse(WM_RBUTTONUP, x, y);
  }

  // What the window shows at a window point (no scrolling in these tests).
  COLORREF Shown(int x, int y) {
    editor().ComposeView();
    return GetPixel(editor().m_surfaces.composition.dc(), x, y);
  }
  LiveEditor live_{40, 30};
};

TEST_F(ObjectsTest, FiveObjectsAtMostAndAFreedSlotIsReusedInFront) {
  for (int i = 0; i < 5; ++i) InsertIcon(i * 6, 0);
  EXPECT_EQ(ZOrder(), (std::vector<int>{4, 3, 2, 1, 0}));
  const int levels = editor().m_history.count();
  InsertIcon(0, 20);  // a sixth: nothing happens, not even a history level
  EXPECT_EQ(objects().count(), 5);
  EXPECT_EQ(editor().m_history.count(), levels);

  RightClick(13, 1);  // slot 2, at (12, 0)
  ASSERT_EQ(objects().selected(), 2);
  editor().DeleteSelectedObject();
  EXPECT_EQ(ZOrder(), (std::vector<int>{4, 3, 1, 0}));
  EXPECT_EQ(object(2).kind(), ObjectKind::Free);
  EXPECT_EQ(objects().selected(), -1);

  InsertIcon(30, 20, kGreen);
  EXPECT_EQ(ZOrder(), (std::vector<int>{2, 4, 3, 1, 0}));
  EXPECT_EQ(object(2).x, 30);
  EXPECT_EQ(object(2).kind(), ObjectKind::Icon);
}

// Either coordinate negative centres on both axes, in the composition buffer (here the
// 40 x 30 window); each half is truncated, so an object wider than the buffer gets a
// negative position.
TEST_F(ObjectsTest, ANegativeCoordinateCentresTheObject) {
  struct Case {
    int x, y, width, height;
    POINT placed;
  };
  const Case cases[] = {
      {-1, 10, 7, 5, {17, 13}},
      {10, -1, 7, 5, {17, 13}},
      {-5, -5, 51, 7, {-5, 12}},
      {0, 0, 7, 5, {0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.width);
    InsertIcon(c.x, c.y, kBlue, c.width, c.height);
    const CInsertedObject& inserted = object(ZOrder().front());
    EXPECT_EQ(inserted.x, c.placed.x);
    EXPECT_EQ(inserted.y, c.placed.y);
    EXPECT_EQ(inserted.width, c.width);
    EXPECT_EQ(inserted.height, c.height);
    RightClick(std::max(0, c.placed.x), c.placed.y);
    editor().DeleteSelectedObject();
  }
}

// An icon is keyed on the stored transparent colour: its pixels of that colour show
// what lies below. Selected, it shows a frame and a white grip; a save shows it plain.
TEST_F(ObjectsTest, IconsAreKeyedAndFramedWhileSelected) {
  editor().SetTransparency(static_cast<int>(kGreen), 0);
  // 20 x 18: green (the key) in the left column, blue elsewhere.
  std::vector<COLORREF> colors(20 * 18, kBlue);
  for (int y = 0; y < 18; ++y) colors[static_cast<std::size_t>(y * 20)] = kGreen;
  editor().InsertIcon(10, 6, IconFile(20, 18, colors).c_str());
  EXPECT_EQ(object(0).keyColor, kGreen);
  EXPECT_EQ(Shown(10, 10), kGrey);  // the key column
  EXPECT_EQ(Shown(11, 10), kBlue);
  EXPECT_EQ(Shown(9, 10), kGrey);

  RightClick(15, 10);
  ASSERT_TRUE(object(0).selected());
  EXPECT_EQ(Shown(10, 6), kRed);   // frame, top-left corner
  EXPECT_EQ(Shown(29, 23), kRed);  // frame, bottom-right corner
  EXPECT_EQ(Shown(12, 12), kBlue);
  // The grip's outline runs from (w - 15, h - 15) to (w - 1, h - 1) of the object.
  EXPECT_EQ(Shown(15, 12), kRed);
  EXPECT_EQ(Shown(20, 9), kRed);
  EXPECT_EQ(Shown(20, 16), kWhite);  // inside the grip

  const std::string saved = live_.files.Write("saved.bmp", {});
  editor().SaveEditedBitmap(saved.c_str());
  editor().SetImage(saved.c_str());  // the saved picture, shown again
  editor().DeleteSelectedObject();
  EXPECT_EQ(Shown(10, 6), kGrey);  // the key column, no frame
  EXPECT_EQ(Shown(29, 23), kBlue);
  EXPECT_EQ(Shown(20, 16), kBlue);
}

// With a transparency of 1 to 99 each byte is mixed, truncated; pixels of the text
// colour and of the frame keep the picture's colour. Only the part under the object
// changes.
TEST_F(ObjectsTest, BlendingMixesEveryPixelButTextAndFrame) {
  // Three columns: the text colour (black), a mid colour and pure red (the frame's).
  const COLORREF mid = RGB(0x10, 0x21, 0xF0);
  std::vector<COLORREF> colors;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) colors.push_back(x == 0 ? kBlack : x == 1 ? kRed : mid);
  }
  editor().InsertIcon(5, 5, IconFile(20, 20, colors).c_str());
  objects().Object(0).keyColor = kGreen;
  objects().Object(0).transparency = 50;
  // Grey 0x80 under: 0x80 * 0.5 + 0x10 * 0.5 = 0x48; 0x21 gives 0x50 (0x50.8
  // truncated); 0xF0 gives 0xB8.
  EXPECT_EQ(Shown(7, 7), RGB(0x48, 0x50, 0xB8));
  EXPECT_EQ(Shown(5, 7), kBlack);
  EXPECT_EQ(Shown(6, 7), kRed);
  EXPECT_EQ(Shown(4, 7), kGrey);
  EXPECT_EQ(Shown(25, 25), kGrey);

  objects().Object(0).transparency = 80;  // 0x80 * 0.8 + 0x10 * 0.2 = 0x69 (0x69.8)
  EXPECT_EQ(GetRValue(Shown(7, 7)), 0x69);
  objects().Object(0).transparency = 100;  // keyed, opaque
  EXPECT_EQ(Shown(7, 7), mid);
}

// The frame takes the complement of red when the object's background is red, so
// that it shows; it stays so when the frame is made again.
TEST_F(ObjectsTest, ARedBackgroundGetsAComplementFrame) {
  InsertIcon(5, 5, kRed, 20, 20);
  CInsertedObject& icon = objects().Object(0);
  EXPECT_EQ(icon.borderColor, kRed);
  icon.backgroundBrush = platform::OwnedBrush(CreateSolidBrush(kRed));
  for (int round = 0; round < 2; ++round) {
    icon.RebuildSelectedPicture();
    EXPECT_EQ(icon.borderColor, ~kRed);
    EXPECT_EQ(BitmapColors(icon.selectedPicture.get())[0], 0xFFFF00u);
  }
  icon.backgroundBrush = platform::OwnedBrush(CreateSolidBrush(kBlue));
  icon.RebuildSelectedPicture();
  EXPECT_EQ(icon.borderColor, kRed);
}

// A balloon picture carries the text; the object is keyed on the stored transparent
// colour and takes the stored transparency, the text colour and a brush of its own
// like the text background's.
TEST_F(ObjectsTest, ABalloonWithAPictureTakesTheStoredSettings) {
  // An out-of-range transparency stores nothing; a valid one stores both values.
  editor().SetTransparency(0x123456, 101);
  EXPECT_EQ(objects().storedTransparentColor, 0u);
  editor().SetTransparency(static_cast<int>(kGreen), 40);
  editor().SetTextFont("Arial,,,9,,,123456");
  const int bitmaps = platform::LiveGdiObjects().bitmaps;
  const int levels = editor().m_history.count();
  editor().InsertBalloonText(3, 4, IconFile(12, 10, kBlue).c_str(), 1, 1, 11, 9, "Hi");
  ASSERT_EQ(ZOrder(), (std::vector<int>{0}));
  const CInsertedObject& balloon = object(0);
  EXPECT_EQ(balloon.kind(), ObjectKind::Balloon);
  EXPECT_EQ(balloon.x, 3);
  EXPECT_EQ(balloon.y, 4);
  EXPECT_EQ(balloon.width, 12);
  EXPECT_EQ(balloon.height, 10);
  EXPECT_EQ(balloon.keyColor, kGreen);
  EXPECT_EQ(balloon.transparency, 40);
  EXPECT_EQ(balloon.textColor, RGB(0x12, 0x34, 0x56));
  LOGBRUSH brush{};
  ASSERT_TRUE(GetObjectA(balloon.backgroundBrush.get(), sizeof brush, &brush));
  EXPECT_EQ(brush.lbColor, kWhite);
  EXPECT_NE(balloon.backgroundBrush.get(), editor().m_textEntry.backgroundBrush());
  EXPECT_TRUE(balloon.resizable);
  // The picture, its source copy and its selected picture, and the new level's copies
  // of the three; the level has no snapshot.
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, bitmaps + 6);
  EXPECT_EQ(editor().m_history.count(), levels + 1);
  EXPECT_FALSE(editor().m_history.Level(levels).snapshot);
}

// Without a picture (none given, or it cannot be loaded) the text gets a box of the
// text box's size in the text background: opaque unless the background is
// transparent.
TEST_F(ObjectsTest, ABalloonWithoutAPictureGetsABoxInTheTextBackground) {
  struct Case {
    const char* background;
    const char* picture;
    RECT box;  // start and end corners, either way round
    COLORREF key;
    COLORREF shown;
    int transparency;
  };
  const Case cases[] = {
      {"FFFFFF", "", {2, 3, 12, 9}, 0x0F0F0F, kWhite, 0},
      {"FFFFFF", "missing.bmp", {12, 9, 2, 3}, 0x0F0F0F, kWhite, 0},
      {"0F0F0F", "", {2, 3, 12, 9}, 0x0F0F0F, kGrey, 0},  // a dark box of the key colour
      {"FF0000", "", {0, 0, 10, 6}, 0x00000F, kRed, 0},
      {"TRANSPARENT", "", {2, 3, 12, 9}, kRed, kGrey, 100},  // keyed on the background
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.background);
    editor().SetTextBackgroundColor(c.background);
    editor().InsertBalloonText(20, 10, c.picture, c.box.left, c.box.top, c.box.right, c.box.bottom, "");
    ASSERT_EQ(objects().count(), 1);
    const CInsertedObject& balloon = object(0);
    EXPECT_EQ(balloon.width, 10);
    EXPECT_EQ(balloon.height, 6);
    EXPECT_EQ(balloon.keyColor, c.key);
    EXPECT_EQ(balloon.transparency, c.transparency);
    EXPECT_EQ(Shown(25, 12), c.shown);
    EXPECT_EQ(Shown(19, 12), kGrey);
    RightClick(25, 12);
    editor().DeleteSelectedObject();
  }
}

TEST_F(ObjectsTest, ABalloonOnARedBackgroundIsFramedInTheComplement) {
  editor().SetTextBackgroundColor("FF0000");
  editor().InsertBalloonText(-1, -1, "", 0, 0, 20, 10, "");
  ASSERT_EQ(objects().count(), 1);
  EXPECT_EQ(object(0).x, 10);  // centred in the 40 x 30 buffer
  EXPECT_EQ(object(0).y, 10);
  RightClick(15, 15);
  EXPECT_EQ(object(0).borderColor, ~kRed);
  EXPECT_EQ(Shown(10, 10), 0xFFFF00u);
  EXPECT_EQ(Shown(11, 11), kRed);
}

// The editor's text font measured on a DC: one line's width of `text` and the height
// of a line.
bool MeasureText(HFONT font, const char* text, SIZE* extent, int* lineHeight) {
  const platform::MemoryDC dc(nullptr);
  const platform::SelectionGuard selected(dc.get(), font);
  TEXTMETRICA metrics{};
  if (!GetTextMetricsA(dc.get(), &metrics) ||
      !GetTextExtentPoint32A(dc.get(), text, static_cast<int>(std::char_traits<char>::length(text)), extent))
    return false;
  *lineHeight = metrics.tmHeight;
  return true;
}

// A hex-encoded text draws exactly what its plain form draws.
TEST_F(ObjectsTest, HexEncodedTextDrawsItsBytes) {
  editor().InsertBalloonText(0, 0, "", 0, 0, 30, 12,
                             "\x01\x01"
                             "abcdefgh"
                             "48656C6C6F");
  editor().InsertBalloonText(0, 14, "", 0, 0, 30, 12, "Hello");
  const std::vector<COLORREF> hex = BitmapColors(object(0).picture.get());
  EXPECT_EQ(hex, BitmapColors(object(1).picture.get()));
  EXPECT_NE(std::count(hex.begin(), hex.end(), kBlack), 0);
}

// A text without a box size gets a box that fits it on one line; one wider than the
// picture allows (its displayed width less 6) wraps at that width and takes as many
// line heights as the width needs.
TEST_F(ObjectsTest, ATextWithoutABoxSizeIsMeasuredAndWrapped) {
  const HFONT font = editor().m_textEntry.font();
  SIZE shortText{};
  SIZE longText{};
  SIZE sample{};
  int lineHeight = 0;
  const char* const wide = "a text that is much wider than the picture is";
  ASSERT_TRUE(MeasureText(font, "Hi", &shortText, &lineHeight));
  ASSERT_TRUE(MeasureText(font, wide, &longText, &lineHeight));
  ASSERT_TRUE(MeasureText(font, "AaB", &sample, &lineHeight));
  const int maxWidth = 40 - 6;
  ASSERT_GT(longText.cx, 2 * maxWidth);

  editor().InsertBalloonText(0, 0, "", 0, 0, 0, 0, "Hi");
  EXPECT_EQ(object(0).width, shortText.cx + 2);
  EXPECT_EQ(object(0).height, lineHeight);
  editor().InsertBalloonText(0, 0, "", 0, 0, 0, 0, wide);
  EXPECT_EQ(object(1).width, maxWidth + 2);
  EXPECT_EQ(object(1).height, (longText.cx + maxWidth - 1) / maxWidth * sample.cy);
}

// Blended half and half with the grey picture, the white box turns light grey while
// the glyphs keep the text colour.
TEST_F(ObjectsTest, ABlendedBalloonKeepsItsTextUnblended) {
  editor().SetTransparency(0, 50);
  editor().SetTextFont("Arial,,,12,,,0000FF");
  editor().InsertBalloonText(0, 0, "", 0, 0, 40, 30, "Hello");
  editor().ComposeView();
  int glyphs = 0;
  for (COLORREF color : SurfaceColors(editor().m_surfaces.composition.dc(), 40, 30)) {
    if (color == kBlue) {
      ++glyphs;
    } else {
      EXPECT_EQ(color, 0xBFBFBFu);  // trunc(0x80 / 2 + 0xFF / 2)
    }
  }
  EXPECT_GT(glyphs, 0);
}

TEST_F(ObjectsTest, TheRightButtonSelectsAndShowsTheMenuOnlyOverAnObject) {
  InsertIcon(10, 10, kBlue, 8, 8);
  RightClick(30, 5);  // nothing there, nothing selected: no menu
  EXPECT_EQ(host_.shownMenu, nullptr);

  RightClick(17, 17);  // the last pixel inside
  EXPECT_EQ(objects().selected(), 0);
  EXPECT_EQ(host_.shownMenu, editor().m_shell.popupMenu());
  POINT screen{17, 17};
  ClientToScreen(editor().m_hWnd, &screen);
  EXPECT_EQ(host_.menuX, screen.x);
  EXPECT_EQ(host_.menuY, screen.y);
  for (const platform::MenuItem& item : platform::MenuItems(editor().m_shell.zOrderMenu()))
    EXPECT_FALSE(item.grayed) << item.text;

  RightClick(18, 18);  // just outside: deselected, no menu
  EXPECT_EQ(objects().selected(), -1);
  EXPECT_FALSE(object(0).selected());
  EXPECT_EQ(host_.shownMenu, nullptr);
  // With nothing selected every item is disabled, and a command does nothing.
  editor().SendMessage(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(editor().m_shell.popupMenu()), 0);
  for (HMENU menu : {editor().m_shell.popupMenu(), editor().m_shell.zOrderMenu()}) {
    for (const platform::MenuItem& item : platform::MenuItems(menu)) EXPECT_TRUE(item.grayed) << item.text;
  }
  const int levels = editor().m_history.count();
  editor().SendMessage(WM_COMMAND, kObjectDelete, 0);
  EXPECT_EQ(objects().count(), 1);
  EXPECT_EQ(editor().m_history.count(), levels);

  editor().EnableShortcutMenu(0);
  RightClick(12, 12);  // no menu, and the right button selects nothing either
  EXPECT_EQ(host_.shownMenu, nullptr);
  EXPECT_EQ(objects().selected(), -1);
}

TEST_F(ObjectsTest, MirrorTwiceGivesThePicturesBack) {
  // 3 x 2: the middle column stays where it is.
  const std::vector<COLORREF> colors{kRed, kGreen, kBlue, kBlack, kWhite, kGrey};
  editor().InsertIcon(1, 1, IconFile(3, 2, colors).c_str());
  RightClick(2, 2, kObjectReverse);
  const std::vector<COLORREF> mirrored{kBlue, kGreen, kRed, kGrey, kWhite, kBlack};
  EXPECT_EQ(BitmapColors(object(0).picture.get()), mirrored);
  EXPECT_EQ(BitmapColors(object(0).sourcePicture.get()), mirrored);
  RightClick(2, 2, kObjectReverse);
  EXPECT_EQ(BitmapColors(object(0).picture.get()), colors);
  EXPECT_EQ(BitmapColors(object(0).sourcePicture.get()), colors);
}

TEST_F(ObjectsTest, OriginalGivesBackTheSizeAtInsertion) {
  InsertIcon(2, 2, kBlue, 6, 4);
  CInsertedObject& icon = objects().Object(0);
  icon.picture = platform::OwnedBitmap(
      static_cast<HBITMAP>(CopyImage(icon.sourcePicture.get(), IMAGE_BITMAP, 20, 16, LR_CREATEDIBSECTION)));
  icon.width = 20;
  icon.height = 16;
  RightClick(3, 3, kObjectOriginal);
  EXPECT_EQ(icon.width, 6);
  EXPECT_EQ(icon.height, 4);
  EXPECT_EQ(BitmapColors(icon.picture.get()), std::vector<COLORREF>(24, kBlue));
  EXPECT_EQ(BitmapColors(icon.selectedPicture.get()).size(), 24u);
}

TEST_F(ObjectsTest, ZOrderCommandsMoveTheSelectedObject) {
  // Three objects on one spot, each with a corner of its own to be picked at.
  InsertIcon(0, 0, kRed, 10, 10);    // slot 0, at the back
  InsertIcon(2, 2, kGreen, 10, 10);  // slot 1
  InsertIcon(4, 4, kBlue, 10, 10);   // slot 2, in front
  ASSERT_EQ(ZOrder(), (std::vector<int>{2, 1, 0}));
  RightClick(13, 13, kObjectAbove);  // the front one cannot go higher
  EXPECT_EQ(ZOrder(), (std::vector<int>{2, 1, 0}));
  RightClick(0, 0, kObjectBelow);  // nor the back one lower
  EXPECT_EQ(ZOrder(), (std::vector<int>{2, 1, 0}));

  RightClick(13, 13, kObjectTopmost);
  EXPECT_EQ(ZOrder(), (std::vector<int>{2, 1, 0}));
  RightClick(13, 13, kObjectBottommost);
  EXPECT_EQ(ZOrder(), (std::vector<int>{1, 0, 2}));
  EXPECT_EQ(Shown(5, 5), kGreen);  // the blue one is behind the others now

  RightClick(0, 0, kObjectAbove);  // slot 0 swaps with the one in front of it
  EXPECT_EQ(ZOrder(), (std::vector<int>{0, 1, 2}));
  RightClick(0, 0, kObjectBelow);
  EXPECT_EQ(ZOrder(), (std::vector<int>{1, 0, 2}));
  RightClick(13, 13, kObjectTopmost);  // the point hits slot 2 only
  EXPECT_EQ(ZOrder(), (std::vector<int>{2, 1, 0}));
  RightClick(13, 13, kObjectZOrder);  // opens the submenu, does nothing
  EXPECT_EQ(ZOrder(), (std::vector<int>{2, 1, 0}));
}

TEST_F(ObjectsTest, TheMenusDeleteRecordsALevelAndTheDeleteKeyDoesNot) {
  InsertIcon(0, 0);
  InsertIcon(10, 10);
  const int levels = editor().m_history.count();
  RightClick(1, 1, kObjectDelete);
  EXPECT_EQ(ZOrder(), (std::vector<int>{1}));
  EXPECT_EQ(editor().m_history.count(), levels + 1);

  RightClick(11, 11);  // menu dismissed, the object stays selected
  editor().SendMessage(WM_KEYDOWN, VK_DELETE, 1);
  EXPECT_EQ(objects().count(), 0);
  EXPECT_EQ(editor().m_history.count(), levels + 1);
  editor().SendMessage(WM_KEYDOWN, VK_DELETE, 1);  // nothing selected
  EXPECT_EQ(editor().m_history.count(), levels + 1);
}

// Each level keeps its own copies of all five slots; undo and redo give back slots,
// order, selection and pictures exactly, also a live slot behind a freed one.
TEST_F(ObjectsTest, UndoAndRedoGiveBackTheObjects) {
  InsertIcon(0, 0, kRed);      // slot 0
  InsertIcon(10, 10, kGreen);  // slot 1
  RightClick(1, 1, kObjectDelete);
  InsertIcon(20, 20, kBlue);  // slot 0 again, in front
  ASSERT_EQ(ZOrder(), (std::vector<int>{0, 1}));

  editor().Undo();  // the level of the deletion: slot 1 alone
  EXPECT_EQ(ZOrder(), (std::vector<int>{1}));
  EXPECT_EQ(object(0).kind(), ObjectKind::Free);
  EXPECT_EQ(object(1).x, 10);
  EXPECT_EQ(BitmapColors(object(1).picture.get()), std::vector<COLORREF>(12, kGreen));
  EXPECT_EQ(Shown(1, 1), kGrey);
  EXPECT_EQ(Shown(11, 11), kGreen);

  editor().Undo();  // both, as inserted
  EXPECT_EQ(ZOrder(), (std::vector<int>{1, 0}));
  EXPECT_EQ(BitmapColors(object(0).picture.get()), std::vector<COLORREF>(12, kRed));
  EXPECT_EQ(objects().selected(), -1);

  editor().Redo();
  editor().Redo();
  EXPECT_EQ(ZOrder(), (std::vector<int>{0, 1}));
  EXPECT_EQ(object(0).x, 20);
  EXPECT_EQ(BitmapColors(object(0).picture.get()), std::vector<COLORREF>(12, kBlue));
  EXPECT_EQ(BitmapColors(object(0).sourcePicture.get()), std::vector<COLORREF>(12, kBlue));
  EXPECT_EQ(Shown(21, 21), kBlue);
  // The live objects own their copies: changing them leaves the level alone.
  const HistoryLevel& level = editor().m_history.Level(editor().m_history.index());
  EXPECT_NE(level.objects.Object(0).picture.get(), object(0).picture.get());
}

// Objects keep window coordinates: a scroll moves them by what it really moved.
TEST_F(ObjectsTest, ScrollingMovesObjectsByTheDistanceScrolled) {
  live_.Show(500, 30, kGrey);  // a horizontal scroll bar; a line is 10 pixels
  InsertIcon(20, 0);
  editor().OnHScroll(SB_THUMBPOSITION, 3, nullptr);
  EXPECT_EQ(object(0).x, 17);
  editor().OnHScroll(SB_LINEUP, 0, nullptr);  // from 3 by -10: ends at 0
  EXPECT_EQ(editor().m_view.hScrollPos(), 0);
  EXPECT_EQ(object(0).x, 20);
  editor().OnHScroll(SB_LINEDOWN, 0, nullptr);
  EXPECT_EQ(object(0).x, 10);
  EXPECT_EQ(object(0).y, 0);
  // Drawn at its window position plus the scroll position: on the same spot of the
  // picture.
  EXPECT_EQ(Shown(20, 0), kBlue);
  EXPECT_EQ(Shown(19, 0), kGrey);
}

TEST_F(ObjectsTest, NoGraphicsObjectOutlivesItsObject) {
  editor().Clear(0);  // no level holds a snapshot
  const int before = platform::LiveGdiObjects().total();
  InsertIcon(0, 0);
  objects().Object(0).backgroundBrush = platform::OwnedBrush(CreateSolidBrush(kRed));
  InsertIcon(10, 10);
  RightClick(1, 1, kObjectReverse);
  RightClick(1, 1, kObjectDelete);
  editor().Undo();
  editor().Redo();
  editor().Undo();
  editor().Clear(0);  // the history goes: only the live objects keep pictures
  RightClick(1, 1);
  editor().DeleteSelectedObject();
  RightClick(11, 11);
  editor().DeleteSelectedObject();
  EXPECT_EQ(platform::LiveGdiObjects().total(), before);

  // An editor with objects everywhere gives everything back when it goes.
  const int withoutEditor = platform::LiveGdiObjects().total();
  {
    LiveEditor other(40, 30);
    other.Show(40, 30, kGrey);
    for (int i = 0; i < 3; ++i) other->InsertIcon(i, i, IconFile(4, 4, kBlue).c_str());
    other->m_objects.Select(1);
    other->Undo();
  }
  EXPECT_EQ(platform::LiveGdiObjects().total(), withoutEditor);
}

// A copy that cannot be made stays null: the object is still inserted, and what is
// missing is not drawn. A picture that cannot be had inserts nothing.
TEST_F(ObjectsTest, FailedCreationsLeaveHandlesNull) {
  const std::string icon = IconFile(4, 3, kBlue);
  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);  // the loaded picture
  editor().InsertIcon(0, 0, icon.c_str());
  EXPECT_EQ(objects().count(), 0);

  platform::FailNthCreation(platform::GdiKind::Bitmap, 2);  // the source copy
  editor().InsertIcon(0, 0, icon.c_str());
  ASSERT_EQ(objects().count(), 1);
  EXPECT_FALSE(object(0).sourcePicture);
  EXPECT_TRUE(object(0).selectedPicture);
  RightClick(1, 1, kObjectOriginal);  // nothing to go back to
  EXPECT_EQ(object(0).width, 4);

  platform::FailNthCreation(platform::GdiKind::Bitmap, 1);  // the next frame
  objects().Object(0).RebuildSelectedPicture();
  EXPECT_FALSE(object(0).selectedPicture);
  EXPECT_EQ(Shown(1, 1), kGrey);  // selected, and nothing to show for it
}

// The object's own pixel reads report running out of memory whatever the verbose
// flag, in the language the object was made with; the editor's (blending) only while
// verbose.
TEST_F(ObjectsTest, OutOfMemoryInPixelReads) {
  InsertIcon(0, 0, kBlue, 20, 20);
  objects().Object(0).language = kLanguageKorean;
  SetPixelBufferLimit(16);
  RightClick(1, 1, kObjectReverse);
  ASSERT_EQ(host_.messages.size(), 2u);  // the picture and its source
  EXPECT_EQ(host_.messages[0].text, "메모리가 부족합니다.");
  EXPECT_EQ(host_.messages[0].type, static_cast<UINT>(MB_ICONHAND | MB_OK));

  objects().Object(0).transparency = 50;
  objects().Select(-1);
  EXPECT_EQ(Shown(1, 1), kGrey);  // no pixels, nothing drawn
  EXPECT_EQ(host_.messages.size(), 2u);
  editor().EnableVerbose(1);
  Shown(1, 1);
  ASSERT_EQ(host_.messages.size(), 3u);
  EXPECT_EQ(host_.messages[2].text, "Out of Memory.");
}

struct MenuLanguageCase {
  LANGID language;
  std::vector<std::string> menu;
  std::vector<std::string> zOrder;
};

TEST(ObjectMenuTexts, FollowTheUserLanguage) {
  InstalledRecordingHost host;
  const MenuLanguageCase cases[] = {
      {0x0409, {"Reverse", "Z Order", "Original", "Delete"}, {"Topmost", "Above", "Below", "Bottommost"}},
      {0x0412,
       {"좌우 전환", "순서 정렬", "원래 크기", "삭제"},
       {"제일위로", "한단계위", "한단계아래", "제일아래"}},
      {0x0804,
       {"左右翻转", "叠放次序", "原始大小", "删除"},
       {"置于顶层", "上移一层", "下移一层", "置于底层"}},
  };
  for (const MenuLanguageCase& c : cases) {
    platform::SetUserDefaultLangID(c.language);
    const CImageEditWnd editor;
    std::vector<std::string> menu;
    std::vector<UINT> ids;
    for (const platform::MenuItem& item : platform::MenuItems(editor.m_shell.popupMenu())) {
      menu.push_back(item.text);
      ids.push_back(item.id);
    }
    std::vector<std::string> zOrder;
    for (const platform::MenuItem& item : platform::MenuItems(editor.m_shell.zOrderMenu())) {
      zOrder.push_back(item.text);
      ids.push_back(item.id);
    }
    EXPECT_EQ(menu, c.menu);
    EXPECT_EQ(zOrder, c.zOrder);
    EXPECT_EQ(ids, (std::vector<UINT>{0x8000, 0x8001, 0x8002, 0x8003, 0x8004, 0x8005, 0x8006, 0x8007}));
    EXPECT_EQ(platform::MenuItems(editor.m_shell.popupMenu())[1].submenu, editor.m_shell.zOrderMenu());
  }
  platform::SetUserDefaultLangID(0x0409);
}

}  // namespace
