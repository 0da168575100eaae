// How DrawText lays text out in lines, apart from fonts and pixels: a character's
// advance comes from the caller. Checked against an independent GDI (Wine's) where
// the documentation leaves room, and decided here where the two disagree:
// - Line breaks are "\r\n", "\n\r", "\n" and "\r" (a pair of unlike ones is one break;
//   "\r\r" is two). A break at the very end starts no line: "ab\n" is one line, "\n"
//   one empty line. With DT_SINGLELINE they are characters like any other.
// - '&' marks the next character to be underlined and is not drawn; "&&" draws one
//   '&'; a '&' at the end is drawn. A line underlines only its last marked character.
// - Wrapping (DT_WORDBREAK with a width of 0 or more) breaks lines at spaces, and
//   between two characters where either is a Han character or kana (that text writes
//   no spaces). The run of spaces at a break belongs to neither line: it is not drawn,
//   not measured and does not start the next line. Spaces at the end of any wrapped
//   line do not count either. (Wine keeps the spaces that fit and gives the rest lines
//   of their own.)
// - A word too long for a line starts a line of its own and runs past its end; with
//   DT_EDITCONTROL it is broken inside, after at least one character a line. A
//   rectangle narrower than nothing (right < left) wraps nothing, as in Wine.
// - Leading spaces of a paragraph are kept and measured.
// - DT_EXPANDTABS: a tab moves to the next multiple of the tab stop (eight average
//   character widths); without it a tab is a character like any other.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::text {

struct LayoutRules {
  bool wrap = false;         // break lines that are wider than `width`
  std::int64_t width = 0;    // pixels
  bool breakWords = false;   // DT_EDITCONTROL: break a word longer than a line inside it
  bool singleLine = false;   // DT_SINGLELINE: line breaks are characters
  bool prefix = false;       // '&' marks the next character (DT_NOPREFIX clears it)
  std::int64_t tabStop = 0;  // DT_EXPANDTABS: tab stops this far apart; 0: tabs are characters
};

class TextLayout {
 public:
  struct Line {
    std::size_t begin = 0;  // characters [begin, end) of text()
    std::size_t end = 0;
    std::int64_t width = 0;                      // pixels
    std::size_t underlined = std::string::npos;  // the character a '&' marks, or npos
  };
  // The pixels a character advances (tabs aside).
  using Advance = std::function<int(char32_t)>;

  TextLayout(std::u32string_view text, const LayoutRules& rules, Advance advance);

  // The text as drawn: '&' marks taken out.
  const std::u32string& text() const { return text_; }
  const std::vector<Line>& lines() const { return lines_; }
  std::int64_t widest() const;

  // Calls visit(index, character, x, advance) for every character of the line, x
  // from the line's start.
  template <typename Visit>
  void Walk(const Line& line, Visit&& visit) const {
    std::int64_t x = 0;
    for (std::size_t i = line.begin; i < line.end; ++i) {
      const std::int64_t step = Step(text_[i], x);
      visit(i, text_[i], x, step);
      x += step;
    }
  }

 private:
  std::int64_t Step(char32_t c, std::int64_t x) const;
  void LayOutParagraph(std::size_t begin, std::size_t end);
  // Where a line starting at `start` ends, and where the next one starts.
  std::size_t FitLine(std::size_t start, std::size_t end, std::size_t* next) const;
  void AddLine(std::size_t begin, std::size_t end);

  std::u32string text_;
  std::vector<bool> marked_;  // per character of text_: a '&' precedes it
  LayoutRules rules_;
  Advance advance_;
  std::vector<Line> lines_;
};

}  // namespace platform::text
