#include <tuple>

#include "resources/cursor_table.h"
#include "test_support.h"

namespace {

class EditorLifecycleTest : public HostedTest {};

struct FontCase {
  LANGID language;
  BYTE charSet;
  const char* face;
};

TEST_F(EditorLifecycleTest, DefaultFontFollowsTheUserLanguage) {
  for (const FontCase& c : {FontCase{0x0412, 129, "굴림체"}, FontCase{0x0804, 134, "宋体"},
                            FontCase{0x0409, 0, "Arial"}, FontCase{0x0411, 0, "Arial"}}) {
    platform::SetUserDefaultLangID(c.language);
    CImageEditWnd editor;
    const LOGFONTA& font = editor.m_textEntry.fontDescription();
    EXPECT_EQ(font.lfCharSet, c.charSet) << std::hex << c.language;
    EXPECT_STREQ(font.lfFaceName, c.face);
    EXPECT_EQ(font.lfHeight, -12);  // 9 points at 96 pixels an inch
    EXPECT_NE(editor.m_textEntry.font(), nullptr);
  }
}

// Without a window the editor holds its shell resources and nothing else, and gives
// every one of them back; a missing image library only leaves the entry null.
TEST_F(EditorLifecycleTest, AnUncreatedEditorAcquiresAndReleasesOnlyItsShellResources) {
  const platform::GdiCounts gdiBefore = platform::LiveGdiObjects();
  const platform::WindowCounts userBefore = platform::LiveWindowObjects();
  const int modulesBefore = platform::LiveModules();
  for (bool library : {true, false}) {
    platform::SetModuleAvailable("MSIMG32.DLL", library);
    CImageEditWnd editor;
    EXPECT_NE(editor.m_textEntry.backgroundBrush(), nullptr);
    for (const CursorResource& cursor : kCursorTable)
      EXPECT_NE(editor.m_shell.Cursor(cursor.resourceId), nullptr);
    EXPECT_EQ(editor.m_shell.transparentBlt() != nullptr, library);
    EXPECT_EQ(editor.m_surfaces.composition.dc(), nullptr);
  }
  EXPECT_EQ(platform::LiveGdiObjects().total(), gdiBefore.total());
  EXPECT_EQ(platform::LiveWindowObjects().menus, userBefore.menus);
  EXPECT_EQ(platform::LiveWindowObjects().cursors, userBefore.cursors);
  EXPECT_EQ(platform::LiveModules(), modulesBefore);
}

TEST_F(EditorLifecycleTest, WindowCreationMakesPlaceholderSurfacesUntilTheFirstPositiveSize) {
  const platform::GdiCounts before = platform::LiveGdiObjects();
  HWND host = platform::CreateHostWindow(40, 30);
  {
    CImageEditWnd editor;
    EditorSurfaces& surfaces = editor.m_surfaces;
    // Created with an empty rectangle: no positive size has arrived yet.
    ASSERT_TRUE(editor.CreateInParent(nullptr, "Image Edit", WS_CHILD, RECT{0, 0, 0, 0}, host, 1));
    for (Surface* surface : {&surfaces.composition, &surfaces.drawingLayer, &surfaces.imageSurface}) {
      BITMAP info{};
      ASSERT_EQ(GetObjectA(surface->bitmap(), sizeof info, &info), static_cast<int>(sizeof info));
      EXPECT_EQ(info.bmWidth, 1);
      EXPECT_EQ(info.bmBitsPixel, 32);  // colour, so later surfaces made against it are colour too
      EXPECT_EQ(GetCurrentObject(surface->dc(), OBJ_BITMAP), surface->bitmap());
    }
    EXPECT_EQ(GetStretchBltMode(surfaces.imageSurface.dc()), HALFTONE);
    EXPECT_TRUE(IsWindow(editor.m_textEntry.box()));

    // Only the first positive size sizes the surfaces.
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(0, 50));
    EXPECT_TRUE(surfaces.sizePending);
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(30, 20));
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(80, 60));
    EXPECT_FALSE(surfaces.sizePending);
    for (Surface* surface : {&surfaces.composition, &surfaces.drawingLayer, &surfaces.imageSurface}) {
      EXPECT_EQ(surface->width(), 30);
      EXPECT_EQ(surface->height(), 20);
    }
    EXPECT_EQ(GetPixel(surfaces.composition.dc(), 29, 19), 0xFFFFFFu);
    EXPECT_EQ(GetPixel(surfaces.drawingLayer.dc(), 0, 0), kDrawingLayerKeyColor);
    EXPECT_EQ(GetPixel(surfaces.imageSurface.dc(), 15, 10), 0xFFFFFFu);
  }
  DestroyWindow(host);
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
}

TEST_F(EditorLifecycleTest, FailedSurfaceBitmapAtWindowCreationIsSkippedAndLeaksNothing) {
  const platform::GdiCounts before = platform::LiveGdiObjects();
  HWND host = platform::CreateHostWindow(40, 30);
  {
    CImageEditWnd editor;
    // The second bitmap made in window creation is the drawing layer's 1 x 1.
    platform::FailNthCreation(platform::GdiKind::Bitmap, 2);
    ASSERT_TRUE(editor.CreateInParent(nullptr, "Image Edit", WS_CHILD, RECT{0, 0, 0, 0}, host, 1));
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    EXPECT_NE(editor.m_surfaces.drawingLayer.dc(), nullptr);
    EXPECT_EQ(editor.m_surfaces.drawingLayer.bitmap(), nullptr);
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(40, 30));
    EXPECT_EQ(editor.m_surfaces.drawingLayer.width(), 40);
  }
  DestroyWindow(host);
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
}

// The airbrush held still and a drag at the edge of a picture that scrolls both run a
// timer; closing the window stops both.
TEST_F(EditorLifecycleTest, CloseStopsRunningTimersAndClosesTheWindow) {
  LiveEditor live(40, 30);
  live.Show(80, 60, 0xFFFFFF);
  const int timersBefore = platform::LiveWindowObjects().timers;
  RECT unclipped{};
  GetClipCursor(&unclipped);
  live->SetAirBrush(10);
  live.Mouse(WM_LBUTTONDOWN, 10, 10);
  live.Mouse(WM_MOUSEMOVE, 2, 10);
  ASSERT_EQ(platform::LiveWindowObjects().timers, timersBefore + 2);
  live->SendMessage(WM_CLOSE);
  EXPECT_EQ(platform::LiveWindowObjects().timers, timersBefore);
  EXPECT_FALSE(IsWindow(live->m_hWnd));  // the default handling destroys it
  // The drag the close cut short no longer holds the pointer.
  RECT clip{};
  GetClipCursor(&clip);
  EXPECT_EQ(std::tie(clip.left, clip.top, clip.right, clip.bottom),
            std::tie(unclipped.left, unclipped.top, unclipped.right, unclipped.bottom));
}

}  // namespace
