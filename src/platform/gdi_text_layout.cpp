#include "platform/gdi_text_layout.h"

#include <algorithm>
#include <utility>

namespace platform::text {
namespace {

constexpr bool IsLineBreak(char32_t c) { return c == U'\r' || c == U'\n'; }

// Han characters, kana and the CJK punctuation around them: text written without
// spaces, which may break between any two of them.
constexpr bool IsCjk(char32_t c) {
  return (c >= 0x2E80 && c <= 0x2FDF) || (c >= 0x3000 && c <= 0x30FF) || (c >= 0x31C0 && c <= 0x31FF) ||
         (c >= 0x3400 && c <= 0x4DBF) || (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFF00 && c <= 0xFFEF) || (c >= 0x20000 && c <= 0x3FFFF);
}

constexpr bool BreaksBetween(char32_t before, char32_t after) {
  return before != U' ' && after != U' ' && (IsCjk(before) || IsCjk(after));
}

}  // namespace

TextLayout::TextLayout(std::u32string_view text, const LayoutRules& rules, Advance advance)
    : rules_(rules), advance_(std::move(advance)) {
  text_.reserve(text.size());
  marked_.reserve(text.size());
  bool mark = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (rules_.prefix && text[i] == U'&' && i + 1 < text.size()) {
      if (text[i + 1] != U'&') {
        mark = true;
        continue;
      }
      ++i;  // "&&": one '&', unmarked
    }
    text_.push_back(text[i]);
    marked_.push_back(mark);
    mark = false;
  }

  if (rules_.singleLine) {
    AddLine(0, text_.size());
    return;
  }
  std::size_t begin = 0;
  for (std::size_t i = 0; i < text_.size();) {
    if (!IsLineBreak(text_[i])) {
      ++i;
      continue;
    }
    LayOutParagraph(begin, i);
    const bool pair = i + 1 < text_.size() && IsLineBreak(text_[i + 1]) && text_[i + 1] != text_[i];
    i += pair ? 2 : 1;
    begin = i;
  }
  if (begin < text_.size() || begin == 0) LayOutParagraph(begin, text_.size());
}

std::int64_t TextLayout::widest() const {
  std::int64_t widest = 0;
  for (const Line& line : lines_) widest = std::max(widest, line.width);
  return widest;
}

std::int64_t TextLayout::Step(char32_t c, std::int64_t x) const {
  if (c == U'\t' && rules_.tabStop > 0) return rules_.tabStop - x % rules_.tabStop;
  return advance_(c);
}

void TextLayout::LayOutParagraph(std::size_t begin, std::size_t end) {
  if (!rules_.wrap) {
    AddLine(begin, end);
    return;
  }
  std::size_t start = begin;
  do {
    std::size_t next = end;
    std::size_t stop = FitLine(start, end, &next);
    while (stop > start && text_[stop - 1] == U' ') --stop;
    AddLine(start, stop);
    // The spaces at a break start no line.
    while (next < end && text_[next] == U' ') ++next;
    start = next;
  } while (start < end);
}

std::size_t TextLayout::FitLine(std::size_t start, std::size_t end, std::size_t* next) const {
  std::int64_t x = 0;
  bool content = false;                       // a character other than a space is on the line
  std::size_t lastBreak = std::string::npos;  // the line may end before this character
  for (std::size_t i = start; i < end; ++i) {
    const char32_t c = text_[i];
    const bool breakBefore = content && (c == U' ' ? text_[i - 1] != U' ' : BreaksBetween(text_[i - 1], c));
    if (breakBefore) lastBreak = i;
    const std::int64_t step = Step(c, x);
    // Spaces never push a line over: they hang past its end.
    if (c != U' ' && content && x + step > rules_.width) {
      if (lastBreak != std::string::npos) {
        *next = lastBreak;
        return lastBreak;
      }
      if (rules_.breakWords) {
        *next = i;
        return i;
      }
      // The word runs on to where the line may break.
      std::size_t j = i + 1;
      while (j < end && text_[j] != U' ' && !BreaksBetween(text_[j - 1], text_[j])) ++j;
      *next = j;
      return j;
    }
    x += step;
    if (c != U' ') content = true;
  }
  *next = end;
  return end;
}

void TextLayout::AddLine(std::size_t begin, std::size_t end) {
  Line line{begin, end, 0, std::string::npos};
  Walk(line, [&](std::size_t i, char32_t, std::int64_t, std::int64_t step) {
    line.width += step;
    if (marked_[i]) line.underlined = i;
  });
  lines_.push_back(line);
}

}  // namespace platform::text
