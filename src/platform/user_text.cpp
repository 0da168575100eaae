// Window text: the title of an ordinary window, the content of an edit control. Window
// procedures see UTF-16 only; ANSI callers meet UTF-8 (the ANSI code page) and are
// converted here.
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

namespace {

// The window's whole text through its procedure.
std::u16string WideTextOf(HWND hwnd) {
  const auto length =
      static_cast<std::size_t>(std::max<LRESULT>(SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0), 0));
  std::vector<WCHAR> buffer(length + 1);
  const LRESULT copied =
      SendMessageW(hwnd, WM_GETTEXT, buffer.size(), reinterpret_cast<LPARAM>(buffer.data()));
  return std::u16string(buffer.data(), static_cast<std::size_t>(std::clamp<LRESULT>(copied, 0, length)));
}

// WM_GETTEXT for an ANSI caller: as many whole characters as fit in `size` - 1 bytes,
// and the terminating zero.
LRESULT CopyUtf8Out(const std::string& text, WPARAM size, LPARAM buffer) {
  if (size == 0 || buffer == 0) return 0;
  std::size_t count = std::min<std::size_t>(text.size(), size - 1);
  // A character cut in two would leave half a sequence: stop before it.
  if (count < text.size()) {
    while (count > 0 && (static_cast<unsigned char>(text[count]) & 0xC0) == 0x80) --count;
  }
  char* out = reinterpret_cast<char*>(buffer);
  std::memcpy(out, text.data(), count);
  out[count] = 0;
  return static_cast<LRESULT>(count);
}

}  // namespace

namespace platform::user {

std::u16string WideFromUtf8(std::string_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(std::min<std::size_t>(text.size(), 0x7FFFFFFF));
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(std::max(needed, 0)), u'\0');
  if (needed > 0) MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string Utf8FromWide(std::u16string_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(std::min<std::size_t>(text.size(), 0x7FFFFFFF));
  const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(std::max(needed, 0)), '\0');
  if (needed > 0)
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

LRESULT CopyTextOut(std::u16string_view text, WPARAM size, LPARAM buffer) {
  if (size == 0 || buffer == 0) return 0;
  const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
  WCHAR* out = reinterpret_cast<WCHAR*>(buffer);
  std::copy_n(text.data(), count, out);
  out[count] = 0;
  return static_cast<LRESULT>(count);
}

LRESULT DefaultTextMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  window::Window* window = window::Find(hwnd);
  if (window == nullptr) return 0;
  switch (message) {
    case WM_SETTEXT:
      window->title = lParam == 0 ? u"" : reinterpret_cast<const WCHAR*>(lParam);
      return TRUE;
    case WM_GETTEXT:
      return CopyTextOut(window->title, wParam, lParam);
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(window->title.size());
    default:
      return 0;
  }
}

}  // namespace platform::user

LRESULT SendMessageA(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SETTEXT:
    case EM_REPLACESEL: {
      if (lParam == 0) break;
      const std::u16string wide = platform::user::WideFromUtf8(reinterpret_cast<const char*>(lParam));
      return SendMessageW(hwnd, message, wParam, reinterpret_cast<LPARAM>(wide.c_str()));
    }
    case WM_GETTEXT:
      if (!IsWindow(hwnd)) return 0;
      return CopyUtf8Out(platform::user::Utf8FromWide(WideTextOf(hwnd)), wParam, lParam);
    case WM_GETTEXTLENGTH:
      if (!IsWindow(hwnd)) return 0;
      return static_cast<LRESULT>(platform::user::Utf8FromWide(WideTextOf(hwnd)).size());
    default:
      break;
  }
  return SendMessageW(hwnd, message, wParam, lParam);
}

int GetWindowTextW(HWND hwnd, WCHAR* text, int size) {
  if (text == nullptr || size <= 0) return 0;
  text[0] = 0;
  return static_cast<int>(
      SendMessageW(hwnd, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(text)));
}

int GetWindowTextLengthW(HWND hwnd) { return static_cast<int>(SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0)); }

BOOL SetWindowTextW(HWND hwnd, const WCHAR* text) {
  return SendMessageW(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) ? TRUE : FALSE;
}
