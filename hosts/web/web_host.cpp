#include "web_host.h"

#include <emscripten/val.h>
#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace web {

using emscripten::val;

namespace {

// A menu as the page shows it: its items in order, each {text, id, grayed, checked,
// separator, submenu (the submenu's items, or null)}; `choices` collects the commands
// a person can pick (enabled items that open no submenu).
val DescribeMenu(HMENU menu, std::vector<UINT>* choices) {
  val items = val::array();
  for (const platform::MenuItem& item : platform::MenuItems(menu)) {
    val described = val::object();
    described.set("text", item.text);
    described.set("id", item.id);
    described.set("grayed", item.grayed);
    described.set("checked", item.checked);
    described.set("separator", item.separator);
    described.set("submenu", item.submenu == nullptr ? val::null() : DescribeMenu(item.submenu, choices));
    if (!item.separator && !item.grayed && item.submenu == nullptr) choices->push_back(item.id);
    items.call<void>("push", described);
  }
  return items;
}

// The longest start of a UTF-8 `text` that fits a face name, cut between characters.
std::size_t FaceNameLength(const std::string& text) {
  std::size_t length = std::min<std::size_t>(text.size(), LF_FACESIZE - 1);
  while (length > 0 && length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
    --length;
  return length;
}

// 0x00RRGGBB words from `from` become the canvas's R, G, B, A bytes in `to` (an
// opaque pixel, read as a little-endian word, is 0xFFBBGGRR); whether any differed
// from what `to` held.
bool ConvertToCanvas(const std::uint32_t* from, std::uint32_t* to, int count) {
  std::uint32_t changed = 0;
  int x = 0;
#ifdef __wasm_simd128__
  // Four at a time: a pan converts the whole frame at every move.
  v128_t differs = wasm_i32x4_splat(0);
  const v128_t opaque = wasm_i32x4_splat(static_cast<std::int32_t>(0xFF000000u));
  for (; x + 4 <= count; x += 4) {
    const v128_t p = wasm_v128_load(from + x);
    const v128_t q =
        wasm_v128_or(wasm_i8x16_shuffle(p, p, 2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15), opaque);
    differs = wasm_v128_or(differs, wasm_v128_xor(q, wasm_v128_load(to + x)));
    wasm_v128_store(to + x, q);
  }
  changed = wasm_v128_any_true(differs) ? 1 : 0;
#endif
  for (; x < count; ++x) {
    const std::uint32_t p = from[x];
    const std::uint32_t q = 0xFF000000u | ((p & 0xFFu) << 16) | (p & 0xFF00u) | ((p >> 16) & 0xFFu);
    changed |= q ^ to[x];
    to[x] = q;
  }
  return changed != 0;
}

}  // namespace

void WebHost::ForgetAnswers() {
  colorAnswers_.clear();
  fontAnswers_.clear();
}

UINT WebHost::TakeMenuChoice(UINT id) {
  const bool offered = std::find(menuChoices_.begin(), menuChoices_.end(), id) != menuChoices_.end();
  menuChoices_.clear();
  return offered ? id : 0;
}

void WebHost::PresentPendingFrame() {
  HWND hostWindow = pendingFrame_;
  pendingFrame_ = nullptr;
  int width = 0;
  int height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(platform::HostFrame(hostWindow), &width, &height);
  if (pixels == nullptr) return;
  // The last frame presented is kept in the canvas's bytes, so that only what differs
  // from it goes to the canvas: a drag changes a band of the frame, and putting the
  // whole of it on the canvas costs more than painting it. Outside what was drawn on
  // since then the kept copy is still the frame, so only that part is converted and
  // compared.
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  const bool fresh = width != rgbaWidth_ || rgba_.size() != count;
  RECT drawn = platform::TakeHostFrameDrawn(hostWindow);
  if (fresh) drawn = RECT{0, 0, width, height};
  const int left = std::clamp(static_cast<int>(drawn.left), 0, width);
  const int right = std::clamp(static_cast<int>(drawn.right), left, width);
  rgba_.resize(count);
  rgbaWidth_ = width;
  int top = height;
  int bottom = 0;
  for (int y = std::clamp(static_cast<int>(drawn.top), 0, height),
           end = std::clamp(static_cast<int>(drawn.bottom), 0, height);
       y < end; ++y) {
    const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + left;
    const bool changed = ConvertToCanvas(pixels + first, rgba_.data() + first, right - left);
    if (changed || fresh) {
      top = std::min(top, y);
      bottom = y + 1;
    }
  }
  if (top >= bottom || left >= right) return;
  page_.call<void>("presentFrame", reinterpret_cast<std::uintptr_t>(rgba_.data()), width, height, left, top,
                   right, bottom);
}

void WebHost::ShowCursor(int resourceId) { page_.call<void>("showCursor", resourceId); }

// The engine waits for a choice here, which a page cannot do: the menu is shown, this
// answers "dismissed", and the person's pick arrives later through TakeMenuChoice.
// The owner's update handlers have run before this call, so the grayed items are
// those of this moment.
UINT WebHost::ShowPopupMenu(HMENU menu, int x, int y) {
  menuChoices_.clear();
  page_.call<void>("showPopupMenu", DescribeMenu(menu, &menuChoices_), x, y);
  return 0;
}

int WebHost::ShowMessageBox(const std::string& text, const std::string& caption, UINT type) {
  page_.call<void>("showMessageBox", text, caption, type);
  return IDOK;
}

bool WebHost::ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) {
  if (colorAnswers_.empty()) {
    val custom = val::array();
    for (COLORREF entry : customColors) custom.call<void>("push", entry);
    page_.call<void>("askColor", color, custom);
    return false;
  }
  const ColorAnswer answer = colorAnswers_.front();
  colorAnswers_.pop_front();
  // Custom colours a person added stay added, even when the dialog is cancelled.
  std::copy(answer.customColors.begin(), answer.customColors.end(), customColors.begin());
  if (!answer.color) return false;
  color = *answer.color;
  return true;
}

bool WebHost::ChooseFont(LOGFONTA& font, COLORREF& color) {
  if (fontAnswers_.empty()) {
    val start = val::object();
    start.set("face", std::string(font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE)));
    // Points at the screen's 96 pixels an inch, whether the height is the characters'
    // (negative) or the cells' (positive).
    start.set("points", MulDiv(font.lfHeight < 0 ? -font.lfHeight : font.lfHeight, 72, 96));
    start.set("bold", font.lfWeight >= FW_BOLD);
    start.set("italic", font.lfItalic != 0);
    start.set("underline", font.lfUnderline != 0);
    start.set("strikeOut", font.lfStrikeOut != 0);
    start.set("color", color);
    page_.call<void>("askFont", start);
    return false;
  }
  const FontAnswer answer = fontAnswers_.front();
  fontAnswers_.pop_front();
  // The dialog edits the description it was given: only what a person picks in it
  // changes (face, size, weight and effects).
  std::memset(font.lfFaceName, 0, sizeof font.lfFaceName);
  std::memcpy(font.lfFaceName, answer.face.data(), FaceNameLength(answer.face));
  font.lfHeight = -MulDiv(answer.points, 96, 72);
  font.lfWeight = answer.bold ? FW_BOLD : FW_NORMAL;
  font.lfItalic = answer.italic ? 1 : 0;
  font.lfUnderline = answer.underline ? 1 : 0;
  font.lfStrikeOut = answer.strikeOut ? 1 : 0;
  color = answer.color;
  return true;
}

val ArtworkToScript(const platform::CursorArtwork& artwork) {
  std::vector<std::uint8_t> rgba;
  rgba.reserve(artwork.pixels.size() * 4);
  for (std::uint32_t p : artwork.pixels) {
    rgba.insert(rgba.end(), {static_cast<std::uint8_t>(p >> 16), static_cast<std::uint8_t>(p >> 8),
                             static_cast<std::uint8_t>(p), static_cast<std::uint8_t>(p >> 24)});
  }
  val picture = val::object();
  picture.set("width", artwork.width);
  picture.set("height", artwork.height);
  picture.set("hotX", artwork.hotSpot.x);
  picture.set("hotY", artwork.hotSpot.y);
  // A copy: the view onto this function's vector would not outlive it.
  const val view(emscripten::typed_memory_view(rgba.size(), rgba.data()));
  picture.set("rgba", val::global("Uint8ClampedArray").new_(view));
  return picture;
}

// The page shows the dialog as it is laid out, its icons' pictures included; the call
// returns at once and the page's dialog stays until the person closes it, as with a
// message box.
int WebHost::ShowDialog(const platform::DialogLayout& dialog) {
  static constexpr const char* kKinds[] = {"icon", "text", "button", "default"};
  val items = val::array();
  for (const platform::DialogLayout::Item& item : dialog.items) {
    val placed = val::object();
    placed.set("kind", kKinds[static_cast<int>(item.kind)]);
    placed.set("id", item.id);
    placed.set("text", item.text);
    placed.set("left", item.rect.left);
    placed.set("top", item.rect.top);
    placed.set("width", item.rect.right - item.rect.left);
    placed.set("height", item.rect.bottom - item.rect.top);
    platform::CursorArtwork icon;
    if (item.kind == platform::DialogLayout::ItemKind::Icon &&
        platform::GetIconArtwork(item.iconId, item.rect.right - item.rect.left, &icon)) {
      placed.set("picture", ArtworkToScript(icon));
    }
    items.call<void>("push", placed);
  }
  val layout = val::object();
  layout.set("resourceId", dialog.resourceId);
  layout.set("caption", dialog.caption);
  layout.set("width", dialog.client.cx);
  layout.set("height", dialog.client.cy);
  layout.set("fontFace", dialog.fontFace);
  layout.set("fontPixels", MulDiv(dialog.fontPoints, 96, 72));
  layout.set("items", items);
  page_.call<void>("showDialog", layout);
  return IDOK;
}

void WebHost::PictureRead(const std::string& source, DWORD error, const std::string& message) {
  page_.call<void>("pictureRead", source, error, message);
}

}  // namespace web
