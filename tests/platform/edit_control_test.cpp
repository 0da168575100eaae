// The edit control: its text and selection apart from any window, then the window
// class "EDIT" as a host and the engine reach it.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/edit_text.h"
#include "platform/gdi_handles.h"
#include "user_test_support.h"

namespace {

using platform::EditText;
using namespace user_test;

platform::OwnedFont Arial16() {
  LOGFONTA description{};
  description.lfHeight = -16;
  std::strcpy(description.lfFaceName, "Arial");
  return platform::OwnedFont(CreateFontIndirectA(&description));
}

std::u16string TypedInto(EditText& content, std::u16string_view keys) {
  for (char16_t key : keys) {
    if (key == u'\b') {
      content.DeleteBack();
    } else {
      content.ReplaceSelection(std::u16string_view(&key, 1));
    }
  }
  return content.text();
}

TEST(EditText, BackspaceTakesALineBreakOrASurrogatePairAsOneCharacter) {
  EditText content;
  EXPECT_EQ(TypedInto(content, u"ab\r\nc\b\b"), u"ab");
  EXPECT_EQ(TypedInto(content, u"\U0001F600x\b\b"), u"ab");
  EXPECT_EQ(content.caret(), 2u);
  EXPECT_EQ(TypedInto(content, u"\b\b\b"), u"");
  // Only a "\r\n" pair goes whole: a lone "\n" or a lone surrogate goes by itself.
  content.SetText(u"a\n\r\n\xD800");
  content.Select(-2, -2);
  EXPECT_EQ(TypedInto(content, u"\b"), u"a\n\r\n");
  EXPECT_EQ(TypedInto(content, u"\b\b"), u"a");
}

TEST(EditText, SelectionFollowsTheEditMessagesRules) {
  EditText content;
  content.SetText(u"hello");
  EXPECT_EQ(content.caret(), 0u);
  content.Select(0, -1);  // everything
  EXPECT_EQ(content.selectionStart(), 0u);
  EXPECT_EQ(content.selectionEnd(), 5u);
  content.Select(4, 1);  // the caret is the second end, in either order
  EXPECT_EQ(content.caret(), 1u);
  EXPECT_EQ(content.selectionStart(), 1u);
  EXPECT_EQ(content.selectionEnd(), 4u);
  content.Select(-1, 3);  // deselects, the caret stays
  EXPECT_EQ(content.selectionStart(), 1u);
  EXPECT_EQ(content.selectionEnd(), 1u);
  content.Select(2, 99);  // past the end: the end
  EXPECT_EQ(content.caret(), 5u);
  content.Select(-7, 3);  // another negative start reads as the end too
  EXPECT_EQ(content.selectionStart(), 3u);
  EXPECT_EQ(content.selectionEnd(), 5u);
  content.DeleteSelection();
  EXPECT_EQ(content.text(), u"hel");
  EXPECT_EQ(content.caret(), 3u);
}

TEST(EditText, TheLimitHoldsWhatIsTypedOrPastedWithoutSplittingPairs) {
  EditText content;
  content.SetLimit(4);
  EXPECT_FALSE(content.ReplaceSelection(u"abcdef"));
  EXPECT_EQ(content.text(), u"abcd");
  EXPECT_FALSE(content.ReplaceSelection(u"x"));
  content.Select(1, 3);  // a selection makes room for what replaces it
  EXPECT_FALSE(content.ReplaceSelection(u"\r\n\U0001F600"));
  EXPECT_EQ(content.text(), u"a\r\nd");
  content.SetLimit(5);
  EXPECT_FALSE(content.ReplaceSelection(u"\U0001F600"));  // one unit of room: half a pair is refused
  EXPECT_EQ(content.text(), u"a\r\nd");
  // A program may set more than the limit; typing then only takes away.
  content.SetText(u"123456");
  content.Select(6, 6);
  EXPECT_FALSE(content.ReplaceSelection(u"7"));
  content.DeleteBack();
  EXPECT_EQ(content.text(), u"12345");
  content.SetLimit(0);  // as much as it can hold
  EXPECT_TRUE(content.ReplaceSelection(std::u16string(40000, u'z')));
  EXPECT_EQ(content.text().size(), 40005u);
}

TEST(EditText, LinesEndAtEachKindOfBreak) {
  EditText content;
  content.SetText(u"ab\r\ncd\ne\rf\r\n");
  const auto lines = content.Lines();
  std::vector<std::pair<std::size_t, std::size_t>> found;
  for (const auto& line : lines) found.emplace_back(line.start, line.end);
  EXPECT_EQ(found,
            (std::vector<std::pair<std::size_t, std::size_t>>{{0, 2}, {4, 6}, {7, 8}, {9, 10}, {12, 12}}));
  EXPECT_EQ(EditText::LineAt(lines, 0), 0u);
  EXPECT_EQ(EditText::LineAt(lines, 3), 0u);  // between "\r" and "\n"
  EXPECT_EQ(EditText::LineAt(lines, 4), 1u);
  EXPECT_EQ(EditText::LineAt(lines, 12), 4u);
  content.SetText(u"");
  EXPECT_EQ(content.Lines().size(), 1u);
}

// An edit control as the engine makes it, in a framed parent on the host.
class EditControl : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    ASSERT_TRUE(box_.CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE | WS_THICKFRAME, RECT{10, 10, 90, 60},
                                    hostWindow_, 1));
    edit_ = CreateWindowExW(0, u"EDIT", nullptr, kStyle, 0, 0, 72, 42, box_.m_hWnd,
                            reinterpret_cast<HMENU>(1), AfxGetInstanceHandle(), nullptr);
    ASSERT_NE(edit_, nullptr);
    SetFocus(edit_);
  }
  std::u16string Text() {
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(edit_)) + 1, u'?');
    text.resize(static_cast<std::size_t>(GetWindowTextW(edit_, text.data(), static_cast<int>(text.size()))));
    return text;
  }
  void Type(std::u32string_view text) {
    for (char32_t c : text) platform::CharInput(hostWindow_, static_cast<unsigned>(c));
  }
  std::pair<DWORD, DWORD> Selection() {
    DWORD start = 99, end = 99;
    const LRESULT both =
        SendMessageW(edit_, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(both, static_cast<LRESULT>(start | end << 16));
    return {start, end};
  }

  static constexpr DWORD kStyle =
      WS_CHILD | WS_VISIBLE | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_WANTRETURN;
  CWnd box_;
  HWND edit_ = nullptr;
};

TEST_F(EditControl, IsMadeOnlyOfAKnownClassUnderALiveParent) {
  EXPECT_EQ(GetDlgItem(box_.m_hWnd, 1), edit_);
  HWND titled = CreateWindowExW(0, u"edit", u"ti\U0001F600tle", kStyle, 0, 0, 5, 5, box_.m_hWnd, nullptr,
                                nullptr, nullptr);  // class names ignore case
  EXPECT_NE(titled, nullptr);
  EXPECT_EQ(GetWindowTextLengthW(titled), 7);
  const int windows = platform::LiveWindowObjects().windows;
  EXPECT_EQ(
      CreateWindowExW(0, u"NoSuchClass", nullptr, kStyle, 0, 0, 5, 5, box_.m_hWnd, nullptr, nullptr, nullptr),
      nullptr);
  EXPECT_EQ(CreateWindowExW(0, u"EDIT", nullptr, kStyle, 0, 0, 5, 5, nullptr, nullptr, nullptr, nullptr),
            nullptr);
  EXPECT_EQ(platform::LiveWindowObjects().windows, windows);
  WNDCLASSA again{};
  again.lpszClassName = "Edit";
  EXPECT_FALSE(RegisterClassA(&again));  // taken
}

TEST_F(EditControl, TypedCharactersGoInAtTheCaretAndBackspaceAndReturnWork) {
  Type(U"ab\U0001F600c");
  EXPECT_EQ(Text(), u"ab\U0001F600c");
  // The keys that type control characters do so; the arrows and Delete type nothing
  // (the engine's control keeps them for the editor) and so do NUL and the other
  // control characters.
  platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_BACK);
  platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_BACK);
  platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_RETURN);
  platform::KeyInput(hostWindow_, WM_KEYUP, VK_RETURN);
  for (int key : {VK_LEFT, VK_HOME, VK_DELETE}) platform::KeyInput(hostWindow_, WM_KEYDOWN, key);
  Type(U"\n\x01\x7F");
  platform::CharInput(hostWindow_, 0);
  platform::CharInput(hostWindow_, 0x110000);
  EXPECT_EQ(Text(), u"ab\r\n\r\n");
  EXPECT_EQ(Selection(), std::make_pair(DWORD{6}, DWORD{6}));
  platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_BACK);
  EXPECT_EQ(Text(), u"ab\r\n");

  // A single-line control takes no line breaks.
  HWND single =
      CreateWindowExW(0, u"EDIT", nullptr, WS_CHILD, 0, 0, 5, 5, box_.m_hWnd, nullptr, nullptr, nullptr);
  SetFocus(single);
  Type(U"a\nb\tc");
  EXPECT_EQ(GetWindowTextLengthW(single), 3);
}

TEST_F(EditControl, SelectionClearAndReplaceAsAHostAndTheEngineUseThem) {
  Type(U"hello world");
  SendMessageW(edit_, EM_SETSEL, 11, 6);  // the rules are EditText's; this is the wiring
  EXPECT_EQ(Selection(), std::make_pair(DWORD{6}, DWORD{11}));
  SendMessageW(edit_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(u"there"));
  EXPECT_EQ(Text(), u"hello there");
  SendMessageW(edit_, EM_SETSEL, 0, 6);
  SendMessageW(edit_, WM_CLEAR, 0, 0);
  EXPECT_EQ(Text(), u"there");
  // The framework's shorthands send the same.
  CEdit edit;
  ASSERT_TRUE(edit.Attach(edit_));
  EXPECT_FALSE(edit.Attach(edit_));
  edit.SetSel(0, -1);
  edit.Clear();
  EXPECT_EQ(edit.Detach(), edit_);
  EXPECT_EQ(Text(), u"");
  EXPECT_EQ(Selection(), std::make_pair(DWORD{0}, DWORD{0}));
  // A null replacement is an empty one.
  Type(U"x");
  SendMessageW(edit_, EM_SETSEL, 0, -1);
  SendMessageW(edit_, EM_REPLACESEL, FALSE, 0);
  EXPECT_EQ(Text(), u"");
}

TEST_F(EditControl, WindowTextComesInWhateverBufferTheCallerHas) {
  ASSERT_TRUE(SetWindowTextW(edit_, u"abc\U0001F600"));
  EXPECT_EQ(Selection(), std::make_pair(DWORD{0}, DWORD{0}));  // the caret goes to the start
  WCHAR buffer[8] = {u'#', u'#', u'#', u'#'};
  EXPECT_EQ(GetWindowTextW(edit_, buffer, 3), 2);
  EXPECT_EQ(std::u16string(buffer, 4), std::u16string(u"ab\0#", 4));
  EXPECT_EQ(GetWindowTextW(edit_, buffer, 1), 0);
  EXPECT_EQ(buffer[0], 0);
  buffer[0] = u'#';
  EXPECT_EQ(GetWindowTextW(edit_, buffer, 0), 0);  // nothing written at all
  EXPECT_EQ(buffer[0], u'#');
  EXPECT_EQ(GetWindowTextW(edit_, nullptr, 8), 0);
  EXPECT_EQ(GetWindowTextW(nullptr, buffer, 8), 0);
  EXPECT_EQ(GetWindowTextLengthW(nullptr), 0);

  // ANSI callers meet UTF-8, cut only between whole characters.
  char narrow[16];
  EXPECT_EQ(SendMessageA(edit_, WM_GETTEXTLENGTH, 0, 0), 7);
  EXPECT_EQ(SendMessageA(edit_, WM_GETTEXT, 6, reinterpret_cast<LPARAM>(narrow)), 3);
  EXPECT_STREQ(narrow, "abc");
  EXPECT_EQ(SendMessageA(edit_, WM_GETTEXT, sizeof narrow, reinterpret_cast<LPARAM>(narrow)), 7);
  EXPECT_STREQ(narrow, "abc\xF0\x9F\x98\x80");
  SendMessageA(edit_, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("\xEA\xB0\x80!"));
  EXPECT_EQ(Text(), u"\xAC00!");
  SendMessageA(edit_, EM_REPLACESEL, 0, reinterpret_cast<LPARAM>("\xFF"));  // not UTF-8
  EXPECT_EQ(Text(), u"\xFFFD\xAC00!");

  SetWindowTextW(box_.m_hWnd, u"Box");  // an ordinary window's text is its title
  EXPECT_EQ(SendMessageA(box_.m_hWnd, WM_GETTEXT, sizeof narrow, reinterpret_cast<LPARAM>(narrow)), 3);
  EXPECT_STREQ(narrow, "Box");
  SetWindowTextW(box_.m_hWnd, nullptr);
  EXPECT_EQ(GetWindowTextLengthW(box_.m_hWnd), 0);
}

TEST_F(EditControl, APasteIsHeldToTheLimitButSettingTheTextIsNot) {
  const std::u16string huge(100000, u'w');
  SendMessageW(edit_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(huge.c_str()));
  EXPECT_EQ(GetWindowTextLengthW(edit_), 30000);
  Type(U"more");
  EXPECT_EQ(GetWindowTextLengthW(edit_), 30000);
  // EM_GETSEL reports positions past 65535 in full through its pointers only.
  SendMessageW(edit_, EM_LIMITTEXT, 0, 0);
  SendMessageW(edit_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(huge.c_str()));
  DWORD start = 0, end = 0;
  EXPECT_EQ(SendMessageW(edit_, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end)),
            static_cast<LRESULT>(0xFFFFFFFF));
  EXPECT_EQ(start, 130000u);
  EXPECT_EQ(end, 130000u);
  SendMessageW(edit_, EM_LIMITTEXT, 5, 0);
  SetWindowTextW(edit_, huge.c_str());
  EXPECT_EQ(GetWindowTextLengthW(edit_), 100000);
  // Embedded NULs end what a message's text is.
  SetWindowTextW(edit_, u"ab\0cd");
  EXPECT_EQ(Text(), u"ab");
}

// Black text in the control's font and, while focused, a one-pixel caret a line high
// where the next character goes; the view follows the caret sideways and down.
TEST_F(EditControl, PaintsItsTextAndACaretWhereTheNextCharacterGoes) {
  platform::OwnedFont font = Arial16();
  ASSERT_TRUE(font);
  SendMessageW(edit_, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
  platform::MemoryDC measuring(nullptr);
  platform::SelectionGuard inFont(measuring.get(), font.get());
  TEXTMETRICA metrics{};
  ASSERT_TRUE(GetTextMetricsA(measuring.get(), &metrics));
  const int line = metrics.tmHeight;
  SIZE typed{};
  ASSERT_TRUE(GetTextExtentPoint32W(measuring.get(), u"Hi", 2, &typed));
  constexpr int kLeft = 14, kTop = 14;  // the edit control's client area on the host
  constexpr std::uint32_t kBlack = 0;
  const auto caretAt = [&](int x, int y) {
    for (int row = y; row < y + line; ++row) EXPECT_EQ(FramePixel(x, row), kBlack) << x << "," << row;
  };

  Type(U"Hi");
  platform::FlushPaint(hostWindow_);
  int ink = 0;
  for (int y = kTop; y < kTop + line; ++y) {
    for (int x = kLeft; x < kLeft + typed.cx; ++x) ink += FramePixel(x, y) == kBlack ? 1 : 0;
  }
  EXPECT_GT(ink, 10);
  EXPECT_EQ(FramePixel(kLeft + typed.cx + 1, kTop + line / 2), kWhite);
  caretAt(kLeft + typed.cx, kTop);
  EXPECT_EQ(FramePixel(kLeft + typed.cx, kTop + line), kWhite);
  SetFocus(box_.m_hWnd);
  platform::FlushPaint(hostWindow_);
  EXPECT_EQ(FramePixel(kLeft + typed.cx, kTop), kWhite);

  // Past the right edge the caret stays on the last column; a new line brings the
  // view back to the left, and lines below the box scroll it down.
  SetFocus(edit_);
  Type(U" there, a line much longer than the box");
  platform::FlushPaint(hostWindow_);
  caretAt(kLeft + 72 - 1, kTop);
  Type(U"\n\n\n");
  platform::FlushPaint(hostWindow_);
  const int lastRow = 42 / line - 1;
  caretAt(kLeft, kTop + lastRow * line);
  EXPECT_EQ(FramePixel(kLeft + 72 - 1, kTop + line / 2), kWhite);
}

// A press takes the focus and puts the caret at the nearest boundary on the line
// under it (the last when below the text).
TEST_F(EditControl, APressPutsTheCaretAtTheNearestBoundary) {
  platform::OwnedFont font = Arial16();
  SendMessageW(edit_, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), FALSE);
  SetWindowTextW(edit_, u"Hello\r\nab");
  platform::MemoryDC measuring(nullptr);
  platform::SelectionGuard inFont(measuring.get(), font.get());
  SIZE he{}, hel{};
  ASSERT_TRUE(GetTextExtentPoint32W(measuring.get(), u"He", 2, &he) &&
              GetTextExtentPoint32W(measuring.get(), u"Hel", 3, &hel));
  SetFocus(nullptr);
  const auto pressAt = [&](int x, int y) {
    platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, 14 + x, 14 + y);
    platform::MouseInput(hostWindow_, WM_LBUTTONUP, 14 + x, 14 + y);
    return Selection().second;
  };
  EXPECT_EQ(pressAt(he.cx + 1, 2), 2u);  // just after "He"
  EXPECT_EQ(GetFocus(), edit_);
  EXPECT_EQ(pressAt(hel.cx - 1, 2), 3u);  // just before the end of "Hel"
  EXPECT_EQ(pressAt(0, 2), 0u);
  EXPECT_EQ(pressAt(70, 2), 5u);   // past the end of the line
  EXPECT_EQ(pressAt(1, 40), 7u);   // below the text: the last line, at "a"
  EXPECT_EQ(pressAt(70, 40), 9u);  // and at its end
}

TEST_F(EditControl, KeepsTheFontItIsGivenAndGoesWithItsParent) {
  EXPECT_EQ(SendMessageW(edit_, WM_GETFONT, 0, 0), 0);
  const platform::OwnedFont font = Arial16();
  SendMessageW(edit_, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
  EXPECT_EQ(SendMessageW(edit_, WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(font.get()));
  Type(U"text");
  platform::FlushPaint(hostWindow_);
  const int windows = platform::LiveWindowObjects().windows, gdi = platform::LiveGdiObjects().total();
  box_.DestroyWindow();
  EXPECT_FALSE(IsWindow(edit_));
  EXPECT_EQ(platform::LiveWindowObjects().windows, windows - 2);
  EXPECT_EQ(platform::LiveGdiObjects().total(), gdi);  // the font stays the caller's
}

}  // namespace
