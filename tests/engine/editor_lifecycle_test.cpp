#include <cstring>

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
    EXPECT_EQ(editor.m_userLanguage, c.language & 0x3FF);
    EXPECT_EQ(editor.m_textFontDescription.lfCharSet, c.charSet) << std::hex << c.language;
    EXPECT_STREQ(editor.m_textFontDescription.lfFaceName, c.face);
    EXPECT_EQ(editor.m_textFontDescription.lfHeight, -12);  // 9 points at 96 pixels an inch
    EXPECT_NE(editor.m_textFont, nullptr);
  }
}

TEST_F(EditorLifecycleTest, ConstructionAcquiresShellResourcesWithoutAWindow) {
  CImageEditWnd editor;
  EXPECT_FALSE(editor.m_windowCreated);
  EXPECT_TRUE(editor.m_surfacesPending);
  EXPECT_NE(editor.m_textBackgroundBrush, nullptr);
  EXPECT_NE(editor.m_popupMenu, nullptr);
  EXPECT_TRUE(editor.m_shortcutMenuEnabled);
  for (HCURSOR cursor : editor.m_cursors) EXPECT_NE(cursor, nullptr);
  EXPECT_NE(editor.m_transparentBlt, nullptr);
  EXPECT_EQ(editor.m_composition.dc, nullptr);
}

TEST_F(EditorLifecycleTest, MissingImageLibraryLeavesTheTransparentBlitEntryNull) {
  platform::SetModuleAvailable("MSIMG32.DLL", false);
  CImageEditWnd editor;
  EXPECT_EQ(editor.m_imageLibrary, nullptr);
  EXPECT_EQ(editor.m_transparentBlt, nullptr);
}

TEST_F(EditorLifecycleTest, DestroyingAnUncreatedEditorReleasesEverything) {
  const platform::GdiCounts gdiBefore = platform::LiveGdiObjects();
  const platform::WindowCounts userBefore = platform::LiveWindowObjects();
  const int modulesBefore = platform::LiveModules();
  { CImageEditWnd editor; }
  EXPECT_EQ(platform::LiveGdiObjects().total(), gdiBefore.total());
  EXPECT_EQ(platform::LiveWindowObjects().menus, userBefore.menus);
  EXPECT_EQ(platform::LiveWindowObjects().cursors, userBefore.cursors);
  EXPECT_EQ(platform::LiveModules(), modulesBefore);
}

TEST_F(EditorLifecycleTest, WindowCreationMakesPlaceholderSurfacesUntilTheFirstPositiveSize) {
  HWND host = platform::CreateHostWindow(40, 30);
  {
    CImageEditWnd editor;
    // Created with an empty rectangle: no positive size has arrived yet.
    ASSERT_TRUE(editor.CreateInParent(nullptr, "Image Edit", 0x40000120, RECT{0, 0, 0, 0}, host, 1));
    for (Surface* surface : {&editor.m_composition, &editor.m_drawingLayer, &editor.m_imageSurface}) {
      ASSERT_NE(surface->dc, nullptr);
      BITMAP info{};
      ASSERT_EQ(GetObjectA(surface->bitmap, sizeof info, &info), static_cast<int>(sizeof info));
      EXPECT_EQ(info.bmWidth, 1);
      EXPECT_EQ(info.bmBitsPixel, 32);  // colour, so later surfaces made against it are colour too
    }
    EXPECT_EQ(GetStretchBltMode(editor.m_imageSurface.dc), HALFTONE);
    EXPECT_NE(editor.m_snapshotDC, nullptr);
    EXPECT_TRUE(editor.m_surfacesPending);
    ASSERT_TRUE(IsWindow(editor.m_textEdit.m_hWnd));
    EXPECT_FALSE(IsWindowVisible(editor.m_textEdit.m_hWnd));
    EXPECT_EQ(GetParent(editor.m_textEdit.m_hWnd), editor.m_hWnd);

    // Only the first positive size sizes the surfaces.
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(0, 50));
    EXPECT_TRUE(editor.m_surfacesPending);
    EXPECT_EQ(editor.m_composition.width(), 0);

    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(30, 20));
    EXPECT_FALSE(editor.m_surfacesPending);
    for (Surface* surface : {&editor.m_composition, &editor.m_drawingLayer, &editor.m_imageSurface}) {
      EXPECT_EQ(surface->width(), 30);
      EXPECT_EQ(surface->height(), 20);
    }
    EXPECT_EQ(GetPixel(editor.m_composition.dc, 29, 19), 0xFFFFFFu);
    EXPECT_EQ(GetPixel(editor.m_drawingLayer.dc, 0, 0), kDrawingLayerKeyColor);
    EXPECT_EQ(GetPixel(editor.m_imageSurface.dc, 15, 10), 0xFFFFFFu);

    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(80, 60));
    EXPECT_EQ(editor.m_composition.width(), 30);
    EXPECT_EQ(editor.m_imageSurface.height(), 20);
  }
  DestroyWindow(host);
}

TEST_F(EditorLifecycleTest, ALiveEditorLeavesNoGraphicsObjectBehind) {
  const platform::GdiCounts before = platform::LiveGdiObjects();
  const platform::WindowCounts userBefore = platform::LiveWindowObjects();
  {
    LiveEditor live(64, 48);
    EXPECT_GT(platform::LiveGdiObjects().total(), before.total());
  }
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
  EXPECT_EQ(platform::LiveWindowObjects().windows, userBefore.windows);
}

TEST_F(EditorLifecycleTest, FailedSurfaceBitmapAtWindowCreationIsSkippedAndLeaksNothing) {
  const platform::GdiCounts before = platform::LiveGdiObjects();
  HWND host = platform::CreateHostWindow(40, 30);
  {
    CImageEditWnd editor;
    // The second bitmap made in window creation is the drawing layer's 1 x 1.
    platform::FailNthCreation(platform::GdiKind::Bitmap, 2);
    ASSERT_TRUE(editor.CreateInParent(nullptr, "Image Edit", 0x40000120, RECT{0, 0, 0, 0}, host, 1));
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    EXPECT_NE(editor.m_composition.bitmap, nullptr);
    EXPECT_NE(editor.m_drawingLayer.dc, nullptr);
    EXPECT_EQ(editor.m_drawingLayer.bitmap, nullptr);
    EXPECT_EQ(editor.m_drawingLayer.previousBitmap, nullptr);
    EXPECT_NE(editor.m_imageSurface.bitmap, nullptr);
    editor.SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(40, 30));
    EXPECT_EQ(editor.m_imageSurface.width(), 40);
    EXPECT_EQ(editor.m_drawingLayer.width(), 40);
  }
  DestroyWindow(host);
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
}

TEST_F(EditorLifecycleTest, FlagsAreSetOnlyByOne) {
  CImageEditWnd editor;
  for (long value : {1L, 2L, 1L, -1L, 1L, 0L}) {
    editor.EnableVerbose(value);
    editor.EnableShortcutMenu(value);
    EXPECT_EQ(editor.m_verbose, value == 1) << value;
    EXPECT_EQ(editor.m_shortcutMenuEnabled, value == 1) << value;
  }
}

TEST_F(EditorLifecycleTest, CloseStopsRunningTimersAndClosesTheWindow) {
  LiveEditor live(20, 20);
  live->m_sprayTimerId = live->SetTimer(kSprayTimerId, 200, nullptr);
  live->m_autoScrollTimerId = live->SetTimer(kAutoScrollTimerId, 50, nullptr);
  const int timersBefore = platform::LiveWindowObjects().timers;
  ASSERT_GE(timersBefore, 2);
  live->SendMessage(WM_CLOSE);
  EXPECT_EQ(platform::LiveWindowObjects().timers, timersBefore - 2);
  // The default handling of a close destroys the window.
  EXPECT_FALSE(IsWindow(live->m_hWnd));
  // A second editor without timers closes the same way.
  LiveEditor idle(20, 20);
  HWND idleWindow = idle->m_hWnd;
  idle->SendMessage(WM_CLOSE);
  EXPECT_FALSE(IsWindow(idleWindow));
}

}  // namespace
