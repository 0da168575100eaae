// Dialog resources: laid out from dialog units in their font's base units, shown
// through the host, and drawn as the dialog window shows.
#include "platform/dialog_resources.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/gdi_handles.h"
#include "support/bitmap_colors.h"
#include "support/recording_host.h"

namespace {

constexpr int kDialog = 7001;
constexpr int kIcon = 7002;

// A 4 x 4 icon, red with a transparent corner.
platform::CursorArtwork RedIcon(int size) {
  platform::CursorArtwork icon{size, size, POINT{0, 0}, std::vector<std::uint32_t>(size * size, 0xFFFF0000)};
  icon.pixels[0] = 0;
  return icon;
}

class DialogResourcesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SETFONT;
    DialogTemplate dialog{"Test", kStyle, "MS Sans Serif", 8, 10, 20, 100, 40, {}};
    dialog.items = {
        {-1, "static", "", kIcon, WS_CHILD | WS_VISIBLE | SS_ICON, 4, 4, 20, 20},
        {-1, "static", "Hello", 0, WS_CHILD | WS_VISIBLE | SS_LEFT, 40, 4, 40, 8},
        {IDOK, "button", "OK", 0, WS_CHILD | WS_VISIBLE | BS_DEFPUSHBUTTON, 60, 20, 32, 14},
        {IDCANCEL, "button", "Cancel", 0, WS_CHILD | WS_VISIBLE, 20, 20, 32, 14},
    };
    platform::RegisterDialogResource(kDialog, dialog);
    platform::RegisterIconResource(kIcon, {RedIcon(32), RedIcon(16)});
  }

  InstalledRecordingHost host_;
};

TEST_F(DialogResourcesTest, DialogUnitsBecomePixelsOfTheFontsBaseUnits) {
  platform::DialogLayout layout;
  ASSERT_TRUE(platform::LayOutDialog(kDialog, "", &layout));
  // The dialog's own font, not the system font's 8 x 16 cell: about 6 x 13 for an
  // 8-point face.
  const SIZE units = layout.baseUnits;
  EXPECT_NEAR(units.cx, 6, 1);
  EXPECT_NEAR(units.cy, 12.5, 1.5);
  const auto x = [&](int dialogUnits) { return dialogUnits * units.cx / 4; };
  const auto y = [&](int dialogUnits) { return dialogUnits * units.cy / 8; };
  EXPECT_EQ(layout.caption, "Test");
  EXPECT_TRUE(layout.framed);
  EXPECT_NEAR(layout.client.cx, x(100), 1);
  EXPECT_NEAR(layout.client.cy, y(40), 1);
  EXPECT_NEAR(layout.position.y, y(20), 1);
  ASSERT_EQ(layout.items.size(), 4u);
  // An icon static takes its icon's size; the others their template's.
  using Kind = platform::DialogLayout::ItemKind;
  EXPECT_EQ(layout.items[0].kind, Kind::Icon);
  EXPECT_EQ(layout.items[0].rect.right - layout.items[0].rect.left, 32);
  EXPECT_EQ(layout.items[0].rect.bottom - layout.items[0].rect.top, 32);
  EXPECT_EQ(layout.items[1].kind, Kind::Text);
  EXPECT_NEAR(layout.items[1].rect.left, x(40), 1);
  EXPECT_NEAR(layout.items[1].rect.right - layout.items[1].rect.left, x(40), 1);
  EXPECT_EQ(layout.items[2].kind, Kind::DefaultButton);
  EXPECT_NEAR(layout.items[2].rect.bottom - layout.items[2].rect.top, y(14), 1);
  EXPECT_EQ(layout.items[3].kind, Kind::Button);
}

TEST_F(DialogResourcesTest, TheHostShowsTheLayoutAndAPageIsFramedUnderItsCaption) {
  DialogTemplate page{"", WS_CHILD | DS_SETFONT, "MS Sans Serif", 8, 0, 0, 50, 20, {}};
  platform::RegisterDialogResource(kDialog + 10, page);
  EXPECT_EQ(platform::ShowDialogResource(kDialog), IDOK);
  EXPECT_EQ(platform::ShowDialogResource(kDialog + 10, "General"), IDOK);
  EXPECT_EQ(platform::ShowDialogResource(kDialog + 99), -1);
  ASSERT_EQ(host_.dialogs.size(), 2u);
  EXPECT_EQ(host_.dialogs[0].resourceId, kDialog);
  EXPECT_EQ(host_.dialogs[1].caption, "General");
  EXPECT_TRUE(host_.dialogs[1].framed);
  platform::DialogLayout unframed;
  ASSERT_TRUE(platform::LayOutDialog(kDialog + 10, "", &unframed));
  EXPECT_FALSE(unframed.framed);
}

TEST_F(DialogResourcesTest, ThePictureShowsTheFrameCaptionIconTextAndDefaultButton) {
  platform::DialogLayout layout;
  ASSERT_TRUE(platform::LayOutDialog(kDialog, "", &layout));
  const platform::OwnedBitmap picture(platform::DrawDialogPicture(layout));
  ASSERT_TRUE(picture);
  BITMAP info{};
  GetObjectA(picture.get(), sizeof info, &info);
  // A three-pixel frame all round and a 19-pixel caption bar.
  ASSERT_EQ(info.bmWidth, layout.client.cx + 6);
  ASSERT_EQ(info.bmHeight, layout.client.cy + 6 + 19);
  const std::vector<COLORREF> pixels = BitmapColors(picture.get());
  const auto at = [&](int x, int y) { return pixels[static_cast<std::size_t>(y) * info.bmWidth + x]; };
  const auto client = [&](int x, int y) { return at(x + 3, y + 3 + 19); };
  EXPECT_EQ(at(info.bmWidth - 25, 4), RGB(0, 0, 0x80)) << "caption bar, left of the close box";
  EXPECT_EQ(at(info.bmWidth - 1, info.bmHeight - 1), RGB(0x69, 0x69, 0x69)) << "frame's shadow";
  const RECT icon = layout.items[0].rect;
  EXPECT_EQ(client(icon.left + 5, icon.top + 5), RGB(0xFF, 0, 0)) << "icon";
  EXPECT_EQ(client(icon.left, icon.top), RGB(0xF0, 0xF0, 0xF0)) << "the icon's transparent corner";
  const RECT text = layout.items[1].rect;
  int inked = 0;
  for (int y = text.top; y < text.bottom; ++y) {
    for (int x = text.left; x < text.right; ++x) inked += client(x, y) == RGB(0, 0, 0);
  }
  EXPECT_GT(inked, 10) << "the text is drawn in black";
  const RECT ok = layout.items[2].rect, cancel = layout.items[3].rect;
  EXPECT_EQ(client(ok.left, ok.top + 5), RGB(0, 0, 0)) << "a default button's black frame";
  EXPECT_NE(client(cancel.left, cancel.top + 5), RGB(0, 0, 0));
}

TEST(BitmapResources, LoadBitmapMakesANewOpaqueBitmapOfTheRegisteredPicture) {
  platform::RegisterBitmapResource(7005, RedIcon(4));
  const platform::OwnedBitmap first(LoadBitmapA(nullptr, MAKEINTRESOURCEA(7005)));
  const platform::OwnedBitmap second(LoadBitmapA(nullptr, MAKEINTRESOURCEA(7005)));
  ASSERT_TRUE(first && second);
  EXPECT_NE(first.get(), second.get());
  const std::vector<COLORREF> pixels = BitmapColors(first.get());
  ASSERT_EQ(pixels.size(), 16u);
  EXPECT_EQ(pixels[0], RGB(0, 0, 0));  // transparent in the picture: black, as alpha is ignored
  EXPECT_EQ(pixels[15], RGB(0xFF, 0, 0));
  EXPECT_EQ(LoadBitmapA(nullptr, MAKEINTRESOURCEA(7006)), nullptr);
}

TEST(StringResources, LoadStringCopiesCutsAndTerminates) {
  platform::RegisterStringResource(7003, "Image Edit Control");
  char buffer[8];
  std::fill(std::begin(buffer), std::end(buffer), 'x');
  EXPECT_EQ(LoadStringA(nullptr, 7003, buffer, sizeof buffer), 7);
  EXPECT_STREQ(buffer, "Image E");
  EXPECT_EQ(LoadStringA(nullptr, 7004, buffer, sizeof buffer), 0);
  EXPECT_EQ(LoadStringA(nullptr, 7003, buffer, 0), 0);
  EXPECT_EQ(platform::LoadStringResource(7003), "Image Edit Control");
}

}  // namespace
