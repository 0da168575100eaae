#include "platform/edit_text.h"

#include <algorithm>

namespace platform {
namespace {

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Whether a cut of `text` after `count` units would split a pair that belongs together.
bool SplitsPair(std::u16string_view text, std::size_t count) {
  if (count == 0 || count >= text.size()) return false;
  return (IsHighSurrogate(text[count - 1]) && IsLowSurrogate(text[count])) ||
         (text[count - 1] == u'\r' && text[count] == u'\n');
}

}  // namespace

void EditText::SetText(std::u16string_view text) {
  text_.assign(text);
  anchor_ = caret_ = 0;
}

void EditText::SetLimit(std::size_t limit) { limit_ = limit == 0 ? kLargestLimit : limit; }

void EditText::Select(long long start, long long end) {
  if (start == -1) {
    anchor_ = caret_;
    return;
  }
  const auto place = [this](long long position) {
    return position < 0 ? text_.size() : std::min(static_cast<std::size_t>(position), text_.size());
  };
  anchor_ = place(start);
  caret_ = place(end);
}

bool EditText::ReplaceSelection(std::u16string_view text) {
  const std::size_t start = selectionStart();
  const std::size_t selected = selectionEnd() - start;
  const std::size_t kept = text_.size() - selected;
  const std::size_t room = limit_ > kept ? limit_ - kept : 0;
  std::size_t count = std::min(text.size(), room);
  if (SplitsPair(text, count)) --count;
  text_.replace(start, selected, text.substr(0, count));
  anchor_ = caret_ = start + count;
  return count == text.size();
}

void EditText::DeleteBack() {
  if (anchor_ == caret_) {
    if (caret_ == 0) return;
    const bool pair = caret_ >= 2 && SplitsPair(text_, caret_ - 1);
    anchor_ = caret_ - (pair ? 2 : 1);
  }
  DeleteSelection();
}

std::vector<EditText::Line> EditText::Lines() const {
  std::vector<Line> lines;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text_.size(); ++i) {
    const char16_t unit = text_[i];
    if (unit != u'\r' && unit != u'\n') continue;
    lines.push_back(Line{start, i});
    if (unit == u'\r' && i + 1 < text_.size() && text_[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  lines.push_back(Line{start, text_.size()});
  return lines;
}

std::size_t EditText::LineAt(const std::vector<Line>& lines, std::size_t position) {
  auto after = std::upper_bound(lines.begin(), lines.end(), position,
                                [](std::size_t p, const Line& line) { return p < line.start; });
  return after == lines.begin() ? 0 : static_cast<std::size_t>(after - lines.begin()) - 1;
}

}  // namespace platform
