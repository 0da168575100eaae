// The text box: its edit control, when it counts as shown, what it gives up as the
// typed text, and that it leaves nothing behind. How it looks on the host is the
// text_typing scenario's shot.
#include <string>
#include <tuple>

#include "test_support.h"

namespace {

class TextEditWndTest : public HostedTest {
 protected:
  TextEditWndTest() { live_.Show(120, 90, RGB(0, 0, 255)); }

  TextEntry& Entry() { return live_->m_textEntry; }
  HWND Edit() { return Entry().editWindow(); }
  CTextEditWnd& Box() { return *static_cast<CTextEditWnd*>(WindowObject(Entry().box())); }
  std::u16string EditText() {
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(Edit())) + 1, u'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(Edit(), text.data(), static_cast<int>(text.size()))));
    return text;
  }
  LiveEditor live_{120, 90};
};

TEST_F(TextEditWndTest, TheEditControlFillsTheBoxInsideItsFrame) {
  ASSERT_NE(Edit(), nullptr);
  EXPECT_EQ(GetDlgItem(Entry().box(), 1), Edit());
  EXPECT_FALSE(Entry().IsShown());
  EXPECT_FALSE(IsWindowVisible(Entry().box()));

  Entry().Open(RECT{10, 20, 60, 50});
  EXPECT_TRUE(Entry().IsShown());
  EXPECT_EQ(GetFocus(), Edit());
  RECT edit = Entry().TypedTextRect();  // inside the 4-pixel frame
  EXPECT_EQ(std::tie(edit.left, edit.top, edit.right, edit.bottom), std::make_tuple(14, 24, 56, 46));
  EXPECT_EQ(SendMessageA(Edit(), WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(Entry().font()));
  MoveWindow(Entry().box(), 0, 0, 30, 15, TRUE);
  edit = Entry().TypedTextRect();
  EXPECT_EQ(edit.right - edit.left, 22);
  EXPECT_EQ(edit.bottom - edit.top, 7);
}

TEST_F(TextEditWndTest, TextIsGivenOnlyWhileShownAndClearingEmptiesTheEditControl) {
  CTextEditWnd& box = Box();
  SetWindowTextW(Edit(), u"typed\r\n\U0001F600");
  EXPECT_EQ(box.GetText(), u"");  // hidden
  box.Show(true);
  EXPECT_TRUE(box.IsShown());
  EXPECT_TRUE(IsWindowVisible(box.m_hWnd));
  EXPECT_EQ(box.GetText(), u"typed\r\n\U0001F600");
  box.ClearText();
  EXPECT_EQ(EditText(), u"");
  EXPECT_EQ(box.GetText(), u"");
  box.Show(false);
  EXPECT_FALSE(box.IsShown());
  EXPECT_FALSE(IsWindowVisible(box.m_hWnd));

  // Without its edit control the box never counts as shown and stays hidden.
  ASSERT_TRUE(DestroyWindow(Edit()));
  box.Show(true);
  EXPECT_FALSE(box.IsShown());
  EXPECT_FALSE(IsWindowVisible(box.m_hWnd));
  box.ClearText();
  EXPECT_EQ(box.GetText(), u"");
}

// Typed through the platform as a host types, closed by choosing another tool.
TEST_F(TextEditWndTest, WhatIsTypedIsTheBoxsTextUntilTextEntryCloses) {
  live_->EnterText();
  live_.Drag(10, 10, 70, 50);
  ASSERT_TRUE(Entry().IsShown());
  for (char32_t c : std::u32string_view(U"Hi\n\U0001F600")) platform::CharInput(live_.hostWindow, c);
  platform::KeyInput(live_.hostWindow, WM_KEYDOWN, VK_BACK);
  platform::KeyInput(live_.hostWindow, WM_KEYDOWN, VK_BACK);
  platform::CharInput(live_.hostWindow, '!');
  EXPECT_EQ(Entry().TypedText(), u"Hi!");
  live_->SetPen(2);
  EXPECT_FALSE(Entry().IsShown());
  EXPECT_EQ(Entry().TypedText(), u"");
  EXPECT_EQ(EditText(), u"");
}

TEST_F(TextEditWndTest, NothingIsLeftBehindWhenTheEditorGoes) {
  const platform::WindowCounts windows = platform::LiveWindowObjects();
  const platform::GdiCounts gdi = platform::LiveGdiObjects();
  {
    LiveEditor other(80, 60);
    other.Show(80, 60, RGB(255, 255, 255));
    other->EnterText();
    other.Drag(5, 5, 60, 40);
    platform::CharInput(other.hostWindow, 'x');
    platform::FlushPaint(other.hostWindow);
    ASSERT_TRUE(other->m_textEntry.IsShown());
  }
  EXPECT_EQ(platform::LiveWindowObjects().windows, windows.windows);
  EXPECT_EQ(platform::LiveGdiObjects().total(), gdi.total());

  // A box whose window went with its parent still goes quietly.
  HWND host = platform::CreateHostWindow(50, 50);
  {
    CTextEditWnd box;
    ASSERT_TRUE(
        box.CreateInParent(nullptr, "Text Edit", WS_CHILD | WS_THICKFRAME, RECT{0, 0, 0, 0}, host, 1));
    ASSERT_NE(box.EditWindow(), nullptr);
    DestroyWindow(host);
  }
  EXPECT_EQ(platform::LiveWindowObjects().windows, windows.windows);
}

}  // namespace
