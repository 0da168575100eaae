// Inserted objects through the editor: where an insertion lands, how objects are drawn,
// the menu's commands, and failures. The five slots, the menu's texts, deletion's
// levels, undo and redo, measured and hex-encoded texts and scrolling are pinned by
// the objects_* scenarios.
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

  std::string IconFile(int width, int height, const std::vector<COLORREF>& colors) {
    return live_.files.Write("icon.bmp", BitmapFile(width, height, colors));
  }
  std::string IconFile(int width, int height, COLORREF color) {
    return IconFile(width, height, std::vector<COLORREF>(static_cast<std::size_t>(width * height), color));
  }
  void InsertIcon(int x, int y, COLORREF color = kBlue, int width = 4, int height = 3) {
    editor().InsertIcon(x, y, IconFile(width, height, color).c_str());
  }

  // The right button; the menu answered with `command` (0 dismisses it).
  void RightClick(int x, int y, UINT command = 0) {
    host_.menuAnswer = command;
    host_.shownMenu = nullptr;
    live_.Mouse(WM_RBUTTONDOWN, x, y);
    live_.Mouse(WM_RBUTTONUP, x, y);
  }
  COLORREF Shown(int x, int y) { return live_.Shown(x, y); }
  LiveEditor live_{40, 30};
};

// Either coordinate negative centres on both axes in the 40 x 30 buffer; an object
// wider than the buffer gets a negative position.
TEST_F(ObjectsTest, ANegativeCoordinateCentresTheObject) {
  const struct {
    int x, y, width, height;
    POINT placed;
  } cases[] = {
      {-1, 10, 7, 5, {17, 13}}, {10, -1, 7, 5, {17, 13}}, {-5, -5, 51, 7, {-5, 12}}, {0, 0, 7, 5, {0, 0}}};
  for (const auto& c : cases) {
    InsertIcon(c.x, c.y, kBlue, c.width, c.height);
    const CInsertedObject& inserted = object(ZOrder().front());
    EXPECT_EQ(inserted.x, c.placed.x) << c.x << "," << c.y << " " << c.width;
    EXPECT_EQ(inserted.y, c.placed.y) << c.x << "," << c.y << " " << c.width;
  }
}

// Keyed on the stored transparent colour. The frame and grip of a selected object are
// the objects_* scenarios' shots.
TEST_F(ObjectsTest, IconsAreKeyedOnTheStoredTransparentColour) {
  editor().SetTransparency(static_cast<int>(kGreen), 0);
  std::vector<COLORREF> colors(20 * 18, kBlue);  // the key colour in the left column
  for (int y = 0; y < 18; ++y) colors[static_cast<std::size_t>(y * 20)] = kGreen;
  editor().InsertIcon(10, 6, IconFile(20, 18, colors).c_str());
  EXPECT_EQ(Shown(10, 10), kGrey);
  EXPECT_EQ(Shown(11, 10), kBlue);
}

// Each byte is mixed, truncated; pixels of the text colour (black) and of the frame's
// red are not. Only the part under the object changes.
TEST_F(ObjectsTest, BlendingMixesEveryPixelButTextAndFrame) {
  const COLORREF mid = RGB(0x10, 0x21, 0xF0);
  std::vector<COLORREF> colors;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) colors.push_back(x == 0 ? kBlack : x == 1 ? kRed : mid);
  }
  editor().InsertIcon(5, 5, IconFile(20, 20, colors).c_str());
  objects().Object(0).keyColor = kGreen;
  objects().Object(0).transparency = 50;
  // Over grey 0x80: 0x10 gives 0x48, 0x21 gives 0x50 (0x50.8), 0xF0 gives 0xB8.
  EXPECT_EQ(Shown(7, 7), RGB(0x48, 0x50, 0xB8));
  EXPECT_EQ(Shown(5, 7), kBlack);
  EXPECT_EQ(Shown(6, 7), kRed);
  EXPECT_EQ(Shown(4, 7), kGrey);
  EXPECT_EQ(Shown(25, 25), kGrey);

  objects().Object(0).transparency = 80;  // which side weighs what: 0x69 (0x69.8)
  EXPECT_EQ(GetRValue(Shown(7, 7)), 0x69);
  objects().Object(0).transparency = 100;  // keyed, opaque
  EXPECT_EQ(Shown(7, 7), mid);
}

// A balloon picture carries the text; the object takes the stored key and
// transparency, the text colour, and a brush of its own like the text background's.
TEST_F(ObjectsTest, ABalloonWithAPictureTakesTheStoredSettings) {
  editor().SetTransparency(static_cast<int>(kGreen), 40);
  editor().SetTextFont("Arial,,,9,,,123456");
  const int levels = editor().m_history.count();
  editor().InsertBalloonText(3, 4, IconFile(12, 10, kBlue).c_str(), 1, 1, 11, 9, "Hi");
  ASSERT_EQ(objects().count(), 1);
  const CInsertedObject& balloon = object(0);
  EXPECT_EQ(balloon.keyColor, kGreen);
  EXPECT_EQ(balloon.transparency, 40);
  EXPECT_EQ(balloon.textColor, RGB(0x12, 0x34, 0x56));
  LOGBRUSH brush{};
  ASSERT_TRUE(GetObjectA(balloon.backgroundBrush.get(), sizeof brush, &brush));
  EXPECT_EQ(brush.lbColor, kWhite);
  EXPECT_NE(balloon.backgroundBrush.get(), editor().m_textEntry.backgroundBrush());
  // A level without a snapshot: objects alone never copy the picture.
  EXPECT_EQ(editor().m_history.count(), levels + 1);
  EXPECT_FALSE(editor().m_history.HasSnapshot(levels));
}

// Without a picture (none, or one that does not load) the text gets a box in the text
// background, opaque unless the background is transparent.
TEST_F(ObjectsTest, ABalloonWithoutAPictureGetsABoxInTheTextBackground) {
  const struct {
    const char* background;
    const char* picture;
    RECT box;  // start and end corners, either way round
    COLORREF key, shown;
    int transparency;
  } cases[] = {{"FFFFFF", "", {2, 3, 12, 9}, 0x0F0F0F, kWhite, 0},
               {"FFFFFF", "missing.bmp", {12, 9, 2, 3}, 0x0F0F0F, kWhite, 0},
               {"0F0F0F", "", {2, 3, 12, 9}, 0x0F0F0F, kGrey, 0},  // a dark box of the key colour
               {"FF0000", "", {0, 0, 10, 6}, 0x00000F, kRed, 0},
               {"TRANSPARENT", "", {2, 3, 12, 9}, kRed, kGrey, 100}};  // keyed on the background
  for (const auto& c : cases) {
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

// On a red background the frame takes red's complement so that it shows, and keeps it
// when the frame is made again; another background gives red back.
TEST_F(ObjectsTest, ARedBackgroundIsFramedInTheComplement) {
  editor().SetTextBackgroundColor("FF0000");
  editor().InsertBalloonText(10, 10, "", 0, 0, 20, 10, "");
  ASSERT_EQ(objects().count(), 1);
  RightClick(15, 15);
  EXPECT_EQ(Shown(10, 10), 0xFFFF00u);
  EXPECT_EQ(Shown(11, 11), kRed);
  CInsertedObject& balloon = objects().Object(0);
  balloon.RebuildSelectedPicture();
  EXPECT_EQ(balloon.borderColor, ~kRed);
  balloon.backgroundBrush = platform::OwnedBrush(CreateSolidBrush(kBlue));
  balloon.RebuildSelectedPicture();
  EXPECT_EQ(balloon.borderColor, kRed);
}

// Half and half over grey, the white box turns light grey; the glyphs stay blue.
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
  RightClick(17, 17);  // the last pixel inside
  EXPECT_EQ(objects().selected(), 0);
  EXPECT_EQ(host_.shownMenu, editor().m_shell.popupMenu());
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

// Mirroring twice gives both pictures back; Original gives back the size at insertion.
TEST_F(ObjectsTest, MirrorAndOriginal) {
  const std::vector<COLORREF> colors{kRed, kGreen, kBlue, kBlack, kWhite, kGrey};
  editor().InsertIcon(1, 1, IconFile(3, 2, colors).c_str());
  RightClick(2, 2, kObjectReverse);
  const std::vector<COLORREF> mirrored{kBlue, kGreen, kRed, kGrey, kWhite, kBlack};
  EXPECT_EQ(BitmapColors(object(0).picture.get()), mirrored);
  EXPECT_EQ(BitmapColors(object(0).sourcePicture.get()), mirrored);
  RightClick(2, 2, kObjectReverse);
  EXPECT_EQ(BitmapColors(object(0).picture.get()), colors);
  EXPECT_EQ(BitmapColors(object(0).sourcePicture.get()), colors);

  CInsertedObject& icon = objects().Object(0);
  icon.picture = platform::OwnedBitmap(
      static_cast<HBITMAP>(CopyImage(icon.sourcePicture.get(), IMAGE_BITMAP, 20, 16, LR_CREATEDIBSECTION)));
  icon.width = 20;
  icon.height = 16;
  RightClick(2, 2, kObjectOriginal);
  EXPECT_EQ(icon.width, 3);
  EXPECT_EQ(icon.height, 2);
  EXPECT_EQ(BitmapColors(icon.picture.get()), colors);
  EXPECT_EQ(BitmapColors(icon.selectedPicture.get()).size(), 6u);
}

TEST_F(ObjectsTest, ZOrderCommandsMoveTheSelectedObject) {
  // Three objects on one spot, each with a corner of its own to be picked at.
  InsertIcon(0, 0, kRed, 10, 10);    // slot 0, at the back
  InsertIcon(2, 2, kGreen, 10, 10);  // slot 1
  InsertIcon(4, 4, kBlue, 10, 10);   // slot 2, in front
  const struct {
    POINT at;
    UINT command;
    std::vector<int> order;
  } steps[] = {
      {{13, 13}, kObjectAbove, {2, 1, 0}},  // the front one cannot go higher
      {{0, 0}, kObjectBelow, {2, 1, 0}},    // nor the back one lower
      {{13, 13}, kObjectTopmost, {2, 1, 0}},
      {{13, 13}, kObjectBottommost, {1, 0, 2}},
      {{0, 0}, kObjectAbove, {0, 1, 2}},
      {{0, 0}, kObjectBelow, {1, 0, 2}},
      {{13, 13}, kObjectTopmost, {2, 1, 0}},
      {{13, 13}, kObjectZOrder, {2, 1, 0}},  // opens the submenu, does nothing
  };
  for (const auto& step : steps) {
    RightClick(step.at.x, step.at.y, step.command);
    EXPECT_EQ(ZOrder(), step.order) << step.command;
    if (step.command == kObjectBottommost) {
      EXPECT_EQ(Shown(5, 5), kGreen);  // blue went behind
    }
  }
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
  for (POINT p : {POINT{1, 1}, POINT{11, 11}}) {
    RightClick(p.x, p.y);
    editor().DeleteSelectedObject();
  }
  EXPECT_EQ(platform::LiveGdiObjects().total(), before);

  const int withoutEditor = platform::LiveGdiObjects().total();
  {  // an editor with objects everywhere gives everything back when it goes
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

// The object's own pixel reads report running out of memory always, in the object's
// language; the editor's (blending) only while verbose.
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

}  // namespace
