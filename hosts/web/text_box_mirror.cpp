#include "text_box_mirror.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/font_catalogue.h"
#include "platform/font_instance.h"

namespace web {

using emscripten::val;

namespace {

constexpr UINT kUtf8 = 65001;

std::string Utf8(const std::u16string& text) {
  if (text.empty()) return std::string();
  const int size =
      WideCharToMultiByte(kUtf8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<std::size_t>(std::max(size, 0)), '\0');
  WideCharToMultiByte(kUtf8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr,
                      nullptr);
  return out;
}

std::u16string WindowText(HWND window) {
  const int length = GetWindowTextLengthW(window);
  if (length <= 0) return std::u16string();
  std::u16string text(static_cast<std::size_t>(length) + 1, u'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), length + 1)));
  return text;
}

// A browser's text field holds line breaks as "\n"; an edit control holds "\r\n".
std::string WithEditLineBreaks(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) out += '\r';
    out += text[i];
  }
  return out;
}

// The files that draw the font's face, then the Hangul and Han characters it may
// lack, as the engine finds them; each once.
val FontFiles(const LOGFONTA& font) {
  const platform::fonts::FontRequest request = platform::fonts::RequestFor(font);
  platform::fonts::FontCatalogue& fonts = platform::fonts::InstalledFonts();
  const auto covering = [&](char32_t c) {
    platform::fonts::FontRequest fallback = request;
    fallback.language = platform::fonts::FallbackLanguage(request, c);
    return fonts.FindCovering(fallback, c);
  };
  std::vector<platform::fonts::FontFile> found;
  for (const auto& file : {fonts.Find(request), covering(U'\uAC00'), covering(U'\u4E00')}) {
    // A page font is one face of one file: a collection's later faces cannot be.
    if (file && file->index == 0 && std::find(found.begin(), found.end(), *file) == found.end())
      found.push_back(*file);
  }
  val files = val::array();
  for (const platform::fonts::FontFile& file : found) {
    val described = val::object();
    described.set("path", file.path);
    described.set("bold", file.bold);
    described.set("italic", file.italic);
    files.call<void>("push", described);
  }
  return files;
}

}  // namespace

bool TextBoxMirror::Look::operator==(const Look& other) const {
  return edit == other.edit && rect.left == other.rect.left && rect.top == other.rect.top &&
         rect.right == other.rect.right && rect.bottom == other.rect.bottom &&
         lineHeight == other.lineHeight && fontHeight == other.fontHeight &&
         std::memcmp(&font, &other.font, sizeof font) == 0;
}

TextBoxMirror::Look TextBoxMirror::Find(HWND editor) {
  Look look;
  HWND focus = GetFocus();
  if (focus == nullptr || editor == nullptr || GetParent(GetParent(focus)) != editor ||
      !IsWindowVisible(focus))
    return look;
  look.edit = focus;
  // The client area in host-window pixels: the root window's coordinates.
  RECT client{};
  GetClientRect(focus, &client);
  POINT origin{0, 0};
  ClientToScreen(focus, &origin);
  look.rect = RECT{origin.x, origin.y, origin.x + client.right, origin.y + client.bottom};
  HFONT font = reinterpret_cast<HFONT>(SendMessageA(focus, WM_GETFONT, 0, 0));
  if (font == nullptr || GetObjectA(font, sizeof look.font, &look.font) == 0) look.font = LOGFONTA{};
  // The edit control's lines are a font cell high, as measured on its own DC.
  TEXTMETRICA metrics{};
  bool measured = false;
  if (HDC dc = GetDC(focus)) {
    HGDIOBJ previous = font != nullptr ? SelectObject(dc, font) : nullptr;
    measured = GetTextMetricsA(dc, &metrics) != 0;
    if (previous != nullptr) SelectObject(dc, previous);
    ReleaseDC(focus, dc);
  }
  look.lineHeight = measured ? metrics.tmHeight : 0;
  // A negative height is the characters' (the em), a positive one the cells'.
  const LONG height = look.font.lfHeight;
  look.fontHeight = height < 0 ? -height : measured ? metrics.tmHeight - metrics.tmInternalLeading : height;
  return look;
}

val TextBoxMirror::Describe(const Look& look) const {
  val box = val::object();
  box.set("left", look.rect.left);
  box.set("top", look.rect.top);
  box.set("width", look.rect.right - look.rect.left);
  box.set("height", look.rect.bottom - look.rect.top);
  box.set("text", Utf8(WindowText(look.edit)));
  // The face, weight and slant as the engine reads them from the font.
  const platform::fonts::FontRequest request = platform::fonts::RequestFor(look.font);
  box.set("face", request.face);
  box.set("fontHeight", look.fontHeight);
  box.set("lineHeight", look.lineHeight);
  box.set("bold", request.bold);
  box.set("italic", request.italic);
  box.set("underline", look.font.lfUnderline != 0);
  box.set("strikeOut", look.font.lfStrikeOut != 0);
  box.set("fontFiles", FontFiles(look.font));
  return box;
}

void TextBoxMirror::Update(HWND editor) {
  const Look look = Find(editor);
  if (look == shown_) return;
  shown_ = look;
  page_.call<void>("textBoxChanged", look.edit == nullptr ? val::null() : Describe(look));
}

bool TextBoxMirror::SetText(const std::string& text) {
  if (shown_.edit == nullptr || !IsWindow(shown_.edit)) return false;
  // The A call takes UTF-8, the platform's ANSI code page.
  SendMessageA(shown_.edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(WithEditLineBreaks(text).c_str()));
  return true;
}

}  // namespace web
