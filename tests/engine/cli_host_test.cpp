// The script's side of the host interface: what it prints for menus, dialogs, message
// boxes and cursors, and how queued answers are used.
#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "script_host.h"

namespace script {
namespace {

class CliHostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    menu_ = CreatePopupMenu();
    AppendMenuA(menu_, MF_STRING, 101, "Delete");
    AppendMenuA(menu_, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(menu_, MF_STRING | MF_GRAYED, 102, "Restore \"size\"");
  }
  void TearDown() override { DestroyMenu(menu_); }

  std::ostringstream out_;
  ScriptHost host_{out_, false};
  HMENU menu_ = nullptr;
};

// Answers are used in order; one that is not an enabled item chooses nothing.
TEST_F(CliHostTest, MenuListsItemsAndUsesAnswersInOrder) {
  for (std::optional<UINT> answer : {std::optional<UINT>{101}, {}, {102}}) host_.QueueMenuAnswer(answer);
  EXPECT_EQ(host_.ShowPopupMenu(menu_, 10, 20), 101u);
  EXPECT_EQ(host_.ShowPopupMenu(menu_, 1, 2), 0u);
  EXPECT_EQ(host_.ShowPopupMenu(menu_, 3, 4), 0u);
  EXPECT_EQ(host_.ShowPopupMenu(menu_, 5, 6), 0u);
  const std::string items = "  item 101 \"Delete\"\n  ----\n  item 102 \"Restore \\\"size\\\"\" grayed\n";
  EXPECT_EQ(out_.str(), "menu shown at 10 20\n" + items + "menu chose 101\n" +    //
                            "menu shown at 1 2\n" + items + "menu cancelled\n" +  //
                            "menu shown at 3 4\n" + items +
                            "menu cancelled (102 is not an enabled item)\n" +  //
                            "menu shown at 5 6\n" + items + "menu cancelled (no answer queued)\n");
}

TEST_F(CliHostTest, ColourDialogTakesItsAnswerOrKeepsTheColourAndShowsTheCustomColours) {
  COLORREF custom[16] = {};
  host_.QueueColorAnswer(RGB(0x12, 0x34, 0x56), 3);
  COLORREF color = 0xABCDEF;
  EXPECT_TRUE(host_.ChooseColor(color, custom));
  EXPECT_EQ(color, RGB(0x12, 0x34, 0x56));
  EXPECT_EQ(custom[3], RGB(0x12, 0x34, 0x56));
  color = 0xABCDEF;
  EXPECT_FALSE(host_.ChooseColor(color, custom));
  EXPECT_EQ(color, 0xABCDEFu);
  EXPECT_EQ(out_.str(),
            "color dialog shown\ncolor dialog chose 123456 (custom 3)\n"
            "color dialog shown\n  custom 3 123456\ncolor dialog cancelled (no answer queued)\n");
}

TEST_F(CliHostTest, FontDialogChangesOnlyWhatItsUserPicks) {
  host_.QueueFontAnswer(ParseFontAnswer("Batang,Italic,Bold,12,,Underline,00FF00"));
  host_.QueueFontAnswer(std::nullopt);
  LOGFONTA font{};
  font.lfHeight = -13;
  font.lfCharSet = 129;
  font.lfStrikeOut = 1;
  COLORREF color = 0;
  EXPECT_TRUE(host_.ChooseFont(font, color));
  // 12 points at 96 pixels an inch; strike-out off; the character set untouched.
  EXPECT_STREQ(font.lfFaceName, "Batang");
  EXPECT_EQ(std::tuple(font.lfHeight, font.lfWeight, font.lfItalic, font.lfUnderline, font.lfStrikeOut,
                       font.lfCharSet),
            std::tuple(-16, 700, 1, 1, 0, 129));
  EXPECT_EQ(color, RGB(0, 0xFF, 0));

  const LOGFONTA before = font;
  EXPECT_FALSE(host_.ChooseFont(font, color));
  EXPECT_EQ(font.lfHeight, before.lfHeight);
  EXPECT_STREQ(font.lfFaceName, "Batang");
  EXPECT_EQ(out_.str(),
            "font dialog shown\nfont dialog chose \"Batang\" 12\nfont dialog shown\nfont dialog cancelled\n");
}

// Cursor lines, only with --trace and only on a change, are the scenario
// tests/cli/cursor_trace.ies.
TEST_F(CliHostTest, MessageBoxesAreQuotedAsScriptsQuote) {
  EXPECT_EQ(host_.ShowMessageBox("I failed to read \"a\".\nCode 2", "Image Edit Control", MB_OK), IDOK);
  EXPECT_EQ(out_.str(), "messagebox \"I failed to read \\\"a\\\".\\nCode 2\"\n");
}

}  // namespace
}  // namespace script
