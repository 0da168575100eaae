// The built-in class "EDIT": a multi-line edit control holding UTF-16 text.
//
// What it does, as the system's control does with the styles the engine gives it
// (ES_MULTILINE, ES_AUTOVSCROLL, ES_AUTOHSCROLL, ES_WANTRETURN, no scroll bars):
// - Typed characters (WM_CHAR) replace the selection at the caret; Backspace deletes
//   backwards, a line break as a whole; Return (or a typed "\n") inserts "\r\n", in a
//   multi-line control only. Other control characters are ignored: the clipboard
//   shortcuts are not offered.
// - Lines are never wrapped: with ES_AUTOHSCROLL a long line runs on past the right
//   edge and the view scrolls sideways to the caret. Whoever draws the text elsewhere
//   wraps it to its own width.
// - The view scrolls, by whole lines and by pixels sideways, to keep the caret in
//   sight when text is typed or replaced and on EM_SCROLLCARET.
// - It paints a white background and its text in black in its font (the DC's default
//   font until WM_SETFONT gives one), from the client area's top-left corner with no
//   margins, so that text drawn there later at the control's place lines up with it.
//   While it has the focus a one-pixel caret shows where the next character goes;
//   it does not blink. A selection is not highlighted: nothing a person does here
//   makes one that lasts.
// - A left press (a double one too: it selects no word) takes the focus and puts the
//   caret at the nearest character boundary. Keys (arrows, Delete, Home, End) are not handled: the control
//   the engine lives in keeps them for the editor.
// - What a person types or pastes (EM_REPLACESEL) is held to the text limit, 30000
//   units unless EM_LIMITTEXT sets another; WM_SETTEXT is not.
// It sends its parent no notifications.
#include <algorithm>
#include <climits>

#include "platform/edit_text.h"
#include "platform/gdi.h"
#include "platform/gdi_handles.h"
#include "platform/gdi_text.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

namespace {

constexpr COLORREF kTextColor = RGB(0, 0, 0);

struct EditState : platform::window::ClassData {
  platform::EditText content;
  HFONT font = nullptr;
  std::size_t firstLine = 0;  // the topmost line shown
  int scrollX = 0;            // pixels of every line hidden at the left
  bool followCaret = false;   // scroll the caret into sight when next drawn
};

EditState* StateOf(HWND hwnd) {
  platform::window::Window* window = platform::window::Find(hwnd);
  return window == nullptr ? nullptr : dynamic_cast<EditState*>(window->classData.get());
}

bool IsMultiline(HWND hwnd) {
  platform::window::Window* window = platform::window::Find(hwnd);
  return window != nullptr && (window->style & ES_MULTILINE) != 0;
}

// A DC that measures and draws in the control's font for as long as it lives.
class FontDC {
 public:
  FontDC(HDC dc, HFONT font)
      : dc_(dc), font_(font != nullptr ? platform::SelectionGuard(dc, font) : platform::SelectionGuard()) {
    TEXTMETRICA metrics{};
    if (GetTextMetricsA(dc, &metrics)) lineHeight_ = std::max<int>(metrics.tmHeight, 1);
  }
  int lineHeight() const { return lineHeight_; }
  // The width of `count` units from `text`.
  int Width(const char16_t* text, std::size_t count) const {
    SIZE size{};
    if (count == 0 ||
        !GetTextExtentPoint32W(dc_, text, static_cast<int>(std::min<std::size_t>(count, INT_MAX)), &size)) {
      return 0;
    }
    return size.cx;
  }

 private:
  HDC dc_;
  platform::SelectionGuard font_;
  int lineHeight_ = 1;
};

// The caret's place in the text: its line and how far into the line it is, in pixels.
struct CaretPlace {
  std::size_t line = 0;
  int x = 0;
};

CaretPlace PlaceOfCaret(const FontDC& dc, const platform::EditText& content,
                        const std::vector<platform::EditText::Line>& lines) {
  const std::size_t line = platform::EditText::LineAt(lines, content.caret());
  const std::size_t start = lines[line].start;
  const std::size_t inLine = std::min(content.caret(), lines[line].end) - start;
  return CaretPlace{line, dc.Width(content.text().data() + start, inLine)};
}

// Scrolls as little as keeps the caret's line and column inside the client area.
void ScrollToCaret(EditState& state, const CaretPlace& caret, const RECT& client, int lineHeight) {
  const std::size_t visibleLines =
      std::max<std::size_t>(static_cast<std::size_t>(client.bottom / lineHeight), 1);
  if (caret.line < state.firstLine) state.firstLine = caret.line;
  if (caret.line >= state.firstLine + visibleLines) state.firstLine = caret.line - visibleLines + 1;
  if (caret.x < state.scrollX) state.scrollX = caret.x;
  if (client.right > 0 && caret.x >= state.scrollX + client.right) state.scrollX = caret.x - client.right + 1;
}

void Paint(HWND hwnd, EditState& state) {
  PAINTSTRUCT paint{};
  HDC hdc = BeginPaint(hwnd, &paint);
  if (hdc == nullptr) return;
  RECT client{};
  GetClientRect(hwnd, &client);
  FillRect(hdc, &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const FontDC dc(hdc, state.font);
  const int lineHeight = dc.lineHeight();
  const auto lines = state.content.Lines();
  const CaretPlace caret = PlaceOfCaret(dc, state.content, lines);
  if (state.followCaret) ScrollToCaret(state, caret, client, lineHeight);
  state.followCaret = false;
  state.firstLine = std::min(state.firstLine, lines.size() - 1);

  SetTextColor(hdc, kTextColor);
  SetBkMode(hdc, TRANSPARENT);
  const std::u16string& text = state.content.text();
  for (std::size_t i = state.firstLine; i < lines.size(); ++i) {
    const int y = static_cast<int>(i - state.firstLine) * lineHeight;
    if (y >= client.bottom) break;
    const std::size_t count = lines[i].end - lines[i].start;
    if (count > 0) {
      TextOutW(hdc, -state.scrollX, y, text.data() + lines[i].start,
               static_cast<int>(std::min<std::size_t>(count, INT_MAX)));
    }
  }
  if (GetFocus() == hwnd && caret.line >= state.firstLine) {
    const int x = caret.x - state.scrollX;
    const int y = static_cast<int>(caret.line - state.firstLine) * lineHeight;
    const RECT bar{x, y, x + 1, y + lineHeight};
    FillRect(hdc, &bar, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  }
  EndPaint(hwnd, &paint);
}

// The character boundary of the line nearest to `x` pixels into it.
std::size_t NearestBoundary(const FontDC& dc, std::u16string_view line, int x) {
  // The widths of the line's prefixes grow with their length: find the last one that
  // ends at or before x, then take whichever of it and the next boundary is nearer.
  std::size_t low = 0;
  std::size_t high = line.size();
  while (low < high) {
    const std::size_t middle = low + (high - low + 1) / 2;
    if (dc.Width(line.data(), middle) <= x) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  std::size_t next = low + 1;
  if (next < line.size() && line[next - 1] >= 0xD800 && line[next - 1] <= 0xDBFF) ++next;
  if (next <= line.size() && dc.Width(line.data(), next) - x < x - dc.Width(line.data(), low)) return next;
  return low;
}

void PlaceCaretAt(HWND hwnd, EditState& state, POINT point) {
  platform::MemoryDC measuring(nullptr);
  if (!measuring) return;
  const FontDC dc(measuring.get(), state.font);
  const auto lines = state.content.Lines();
  const long long row = point.y < 0 ? -1 : point.y / dc.lineHeight();
  const auto line = static_cast<std::size_t>(std::clamp<long long>(
      static_cast<long long>(state.firstLine) + row, 0, static_cast<long long>(lines.size()) - 1));
  const std::u16string_view text(state.content.text());
  const std::size_t start = lines[line].start;
  const std::size_t offset =
      NearestBoundary(dc, text.substr(start, lines[line].end - start), std::max(point.x + state.scrollX, 0));
  const auto position = static_cast<long long>(start + offset);
  state.content.Select(position, position);
  InvalidateRect(hwnd, nullptr, TRUE);
}

// After a change of the text: redraw, with the caret in sight.
void Changed(HWND hwnd, EditState& state) {
  state.followCaret = true;
  InvalidateRect(hwnd, nullptr, TRUE);
}

void TypeCharacter(HWND hwnd, EditState& state, WPARAM character) {
  switch (character) {
    case 0x08:
      state.content.DeleteBack();
      break;
    case u'\r':
    case u'\n':
      if (!IsMultiline(hwnd)) return;
      state.content.ReplaceSelection(u"\r\n");
      break;
    case u'\t':
      if (!IsMultiline(hwnd)) return;
      state.content.ReplaceSelection(u"\t");
      break;
    default: {
      if (character < 0x20 || character == 0x7F || character > 0xFFFF) return;
      const auto unit = static_cast<char16_t>(character);
      state.content.ReplaceSelection(std::u16string_view(&unit, 1));
      break;
    }
  }
  Changed(hwnd, state);
}

LRESULT MakeSelectionResult(const platform::EditText& content, WPARAM startOut, LPARAM endOut) {
  const auto start = static_cast<DWORD>(std::min<std::size_t>(content.selectionStart(), 0xFFFFFFFF));
  const auto end = static_cast<DWORD>(std::min<std::size_t>(content.selectionEnd(), 0xFFFFFFFF));
  if (startOut != 0) *reinterpret_cast<DWORD*>(startOut) = start;
  if (endOut != 0) *reinterpret_cast<DWORD*>(endOut) = end;
  // Positions beyond a word read as -1 in the result.
  const auto word = [](DWORD value) { return value > 0xFFFF ? 0xFFFFu : value; };
  return static_cast<LRESULT>(word(start) | (word(end) << 16));
}

const WCHAR* TextParameter(LPARAM lParam) {
  return lParam == 0 ? u"" : reinterpret_cast<const WCHAR*>(lParam);
}

LRESULT EditWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CREATE) {
    platform::window::Window* window = platform::window::Find(hwnd);
    if (window == nullptr) return -1;
    auto state = std::make_unique<EditState>();
    state->content.SetText(window->title);
    window->classData = std::move(state);
    return 0;
  }
  EditState* state = StateOf(hwnd);
  if (state == nullptr) return DefWindowProcA(hwnd, message, wParam, lParam);
  switch (message) {
    case WM_CHAR:
      TypeCharacter(hwnd, *state, wParam);
      return 0;
    case WM_SETTEXT:
      state->content.SetText(TextParameter(lParam));
      state->firstLine = 0;
      state->scrollX = 0;
      InvalidateRect(hwnd, nullptr, TRUE);
      return TRUE;
    case WM_GETTEXT:
      return platform::user::CopyTextOut(state->content.text(), wParam, lParam);
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(state->content.text().size());
    case EM_GETSEL:
      return MakeSelectionResult(state->content, wParam, lParam);
    case EM_SETSEL:
      state->content.Select(static_cast<int>(wParam), static_cast<int>(lParam));
      InvalidateRect(hwnd, nullptr, TRUE);
      return 0;
    case EM_SCROLLCARET:
      Changed(hwnd, *state);
      return TRUE;
    case EM_REPLACESEL:
      state->content.ReplaceSelection(TextParameter(lParam));
      Changed(hwnd, *state);
      return 0;
    case EM_LIMITTEXT:
      state->content.SetLimit(static_cast<std::size_t>(wParam));
      return 0;
    case WM_CLEAR:
      state->content.DeleteSelection();
      Changed(hwnd, *state);
      return 0;
    case WM_SETFONT:
      state->font = reinterpret_cast<HFONT>(wParam);
      state->followCaret = true;
      if (lParam != 0) InvalidateRect(hwnd, nullptr, TRUE);
      return 0;
    case WM_GETFONT:
      return reinterpret_cast<LRESULT>(state->font);
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      InvalidateRect(hwnd, nullptr, TRUE);
      return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      SetFocus(hwnd);
      // The focus change is heard by other windows first; this one may be gone.
      if (EditState* focused = StateOf(hwnd)) {
        PlaceCaretAt(hwnd, *focused, POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      }
      return 0;
    case WM_ERASEBKGND:
      return 1;  // the paint fills the background
    case WM_PAINT:
      Paint(hwnd, *state);
      return 0;
    default:
      return DefWindowProcA(hwnd, message, wParam, lParam);
  }
}

}  // namespace

namespace platform::user {

window::WindowClass EditClass() {
  return window::WindowClass{"EDIT", CS_DBLCLKS, &EditWindowProc, LoadCursorA(nullptr, IDC_ARROW), nullptr};
}

}  // namespace platform::user
