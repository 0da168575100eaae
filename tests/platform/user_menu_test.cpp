#include <gtest/gtest.h>

#include "user_test_support.h"

namespace {

using Menus = user_test::HostFixture;

class CommandWnd : public CWnd {
 public:
  BOOL OnCommand(WPARAM wParam, LPARAM) override {
    commands.push_back(LOWORD(wParam));
    return TRUE;
  }
  void OnInitMenuPopup(HMENU popup, UINT, BOOL) override {
    // Brings the items up to date just before they are shown.
    EnableMenuItem(popup, 32769, MF_BYCOMMAND | MF_GRAYED);
  }
  std::vector<UINT> commands;
};

// "Z Order" (a submenu: 32769 "Bring to Front", 32770 "Send to Back", checked), then
// 32768 "Delete", inserted first.
HMENU BuildMenu(HMENU* submenu) {
  HMENU menu = CreatePopupMenu();
  *submenu = CreatePopupMenu();
  char text[] = "Delete";
  MENUITEMINFOA item{sizeof(MENUITEMINFOA), MIIM_ID | MIIM_TYPE | MIIM_STATE, MFT_STRING, 0, 32768};
  item.dwTypeData = text;
  InsertMenuItemA(menu, 0, TRUE, &item);
  text[0] = 'X';  // the menu keeps its own copy of the text
  AppendMenuA(*submenu, MF_STRING, 32769, "Bring to Front");
  AppendMenuA(*submenu, MF_STRING | MF_CHECKED, 32770, "Send to Back");
  MENUITEMINFOA popup{sizeof(MENUITEMINFOA), MIIM_SUBMENU | MIIM_TYPE, MFT_STRING};
  char popupText[] = "Z Order";
  popup.dwTypeData = popupText;
  popup.hSubMenu = *submenu;
  InsertMenuItemA(menu, 0, TRUE, &popup);
  return menu;
}

TEST_F(Menus, ItemsKeepTextIdsStatesAndSubmenus) {
  int before = platform::LiveWindowObjects().menus;
  HMENU submenu = nullptr;
  HMENU menu = BuildMenu(&submenu);
  const std::vector<platform::MenuItem> items = platform::MenuItems(menu);
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0].text, "Z Order");
  EXPECT_EQ(items[0].submenu, submenu);
  EXPECT_EQ(items[1].text, "Delete");
  EXPECT_EQ(items[1].id, 32768u);

  // By command, the submenu's items are found too; the previous state is returned.
  EXPECT_EQ(EnableMenuItem(menu, 32770, MF_BYCOMMAND | MF_GRAYED), MF_ENABLED);
  EXPECT_EQ(EnableMenuItem(menu, 32770, MF_BYCOMMAND | MF_ENABLED), MF_GRAYED);
  EXPECT_EQ(CheckMenuItem(menu, 32770, MF_BYCOMMAND | MF_UNCHECKED), MF_CHECKED);
  EXPECT_FALSE(platform::MenuItems(submenu)[1].checked);
  EXPECT_EQ(EnableMenuItem(menu, 1, MF_BYPOSITION | MF_GRAYED), MF_ENABLED);
  EXPECT_TRUE(platform::MenuItems(menu)[1].grayed);
  EXPECT_EQ(EnableMenuItem(menu, 999, MF_BYCOMMAND), static_cast<UINT>(-1));

  EXPECT_EQ(platform::LiveWindowObjects().menus, before + 2);
  EXPECT_TRUE(DestroyMenu(menu));  // takes the submenu with it
  EXPECT_EQ(platform::LiveWindowObjects().menus, before);
}

TEST_F(Menus, TrackPopupMenuAsksTheHostAndSendsOrReturnsAnEnabledCommand) {
  CommandWnd owner;
  ASSERT_TRUE(owner.CreateInParent(nullptr, "", WS_CHILD, RECT{0, 0, 10, 10}, hostWindow_, 1));
  HMENU submenu = nullptr;
  HMENU menu = BuildMenu(&submenu);
  host_.menuAnswer = 32770;
  EXPECT_TRUE(TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_RIGHTBUTTON, 12, 34, 0, owner.m_hWnd, nullptr));
  EXPECT_EQ(host_.shownMenu, menu);
  EXPECT_EQ(host_.menuX, 12);
  EXPECT_EQ(host_.menuY, 34);
  EXPECT_EQ(TrackPopupMenu(menu, TPM_RETURNCMD, 0, 0, 0, owner.m_hWnd, nullptr), 32770);
  // The owner grayed 32769 on WM_INITMENUPOPUP: choosing it chooses nothing.
  host_.menuAnswer = 32769;
  EXPECT_EQ(TrackPopupMenu(menu, TPM_RETURNCMD, 0, 0, 0, owner.m_hWnd, nullptr), 0);
  host_.menuAnswer = 0;
  EXPECT_TRUE(TrackPopupMenu(menu, 0, 0, 0, 0, owner.m_hWnd, nullptr));
  EXPECT_EQ(owner.commands, (std::vector<UINT>{32770}));
  DestroyMenu(menu);
}

// Loading every editor cursor is the editor's test; here the wait cursor's nesting.
TEST_F(Menus, CursorsLoadFromRegisteredResourcesAndTheWaitCursorNests) {
  platform::RegisterCursorResource(215, platform::CursorArtwork{1, 1, POINT{15, 8}, {0xFF000000u}});
  HCURSOR pan = LoadCursorA(AfxGetInstanceHandle(), MAKEINTRESOURCEA(215));
  ASSERT_NE(pan, nullptr);
  EXPECT_EQ(LoadCursorA(AfxGetInstanceHandle(), MAKEINTRESOURCEA(299)), nullptr);
  SetCursor(pan);
  host_.cursors.clear();
  CWnd wnd;
  wnd.BeginWaitCursor();
  wnd.BeginWaitCursor();
  wnd.EndWaitCursor();
  wnd.EndWaitCursor();
  EXPECT_EQ(host_.cursors, (std::vector<int>{32514, 215}));
  SetCursor(nullptr);
  EXPECT_TRUE(DestroyCursor(pan));
  EXPECT_FALSE(DestroyCursor(LoadCursorA(nullptr, IDC_ARROW)));  // system cursors stay
}

}  // namespace
