// What an edit control holds apart from how it looks: its text in UTF-16 units, the
// selection (an anchor and the caret, which is its moving end) and the limit on what
// a person may type or paste.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class EditText {
 public:
  // What an edit control lets a person enter until told otherwise.
  static constexpr std::size_t kDefaultLimit = 30000;
  // A limit of 0 means as much as the control can hold.
  static constexpr std::size_t kLargestLimit = 0x7FFFFFFE;

  const std::u16string& text() const { return text_; }
  std::size_t caret() const { return caret_; }
  std::size_t selectionStart() const { return std::min(anchor_, caret_); }
  std::size_t selectionEnd() const { return std::max(anchor_, caret_); }

  // The whole text, limit or not (as a program may set it); the caret goes to the
  // start.
  void SetText(std::u16string_view text);
  void SetLimit(std::size_t limit);

  // Selects from `start` (the anchor) to `end` (the caret), in either order. A
  // negative end, or one past the text, is the text's end; a start of -1 keeps only
  // the caret, deselecting.
  void Select(long long start, long long end);
  // Replaces the selection with as much of `text` as the limit leaves room for,
  // never splitting a surrogate pair or a line break; the caret follows the inserted
  // text. False when some of it did not fit.
  bool ReplaceSelection(std::u16string_view text);
  void DeleteSelection() { ReplaceSelection({}); }
  // Backspace: the selection if there is one, else what the caret follows: a line
  // break ("\r\n") or a surrogate pair goes as a whole.
  void DeleteBack();

  // A line: the units from `start` to `end`, without the break after it. Lines end at
  // "\r\n", or at a "\r" or "\n" on its own; there is always at least one.
  struct Line {
    std::size_t start = 0;
    std::size_t end = 0;
  };
  std::vector<Line> Lines() const;
  // The line holding the position: the last whose start is at or before it.
  static std::size_t LineAt(const std::vector<Line>& lines, std::size_t position);

 private:
  std::u16string text_;
  std::size_t anchor_ = 0;
  std::size_t caret_ = 0;
  std::size_t limit_ = kDefaultLimit;
};

}  // namespace platform
