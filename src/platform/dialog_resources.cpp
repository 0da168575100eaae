#include "platform/dialog_resources.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "platform/gdi_handles.h"
#include "platform/gdi_text.h"
#include "platform/host.h"
#include "platform/three_d_look.h"

namespace platform {
namespace {

struct ModuleResources {
  std::map<int, DialogTemplate> dialogs;
  std::map<int, std::string> strings;
  std::map<int, std::vector<CursorArtwork>> icons;
  std::map<int, CursorArtwork> bitmaps;
};

ModuleResources& Resources() {
  static ModuleResources resources;
  return resources;
}

// The dialog frame of a modal dialog and its caption bar, as the classic metrics give
// them (SM_CXDLGFRAME, SM_CYCAPTION with its line below).
constexpr int kFrame = 3;
constexpr int kCaption = 19;

using three_d::DrawRaisedButton;
using three_d::Fill;
using three_d::kFace;
constexpr COLORREF kCaptionColor = RGB(0x00, 0x00, 0x80);
constexpr COLORREF kCaptionText = RGB(0xFF, 0xFF, 0xFF);

// A font of the dialog's face at its point size, at the screen's 96 pixels an inch.
OwnedFont DialogFont(const std::string& face, int points, LONG weight = FW_NORMAL) {
  LOGFONTA font{};
  font.lfHeight = -MulDiv(points, 96, 72);
  font.lfWeight = weight;
  font.lfCharSet = DEFAULT_CHARSET;
  std::strncpy(font.lfFaceName, face.c_str(), sizeof(font.lfFaceName) - 1);
  return OwnedFont(CreateFontIndirectA(&font));
}

// Windows' base units of a dialog font: the mean width of the 52 Latin letters,
// rounded, and the font's height.
bool BaseUnits(HFONT font, SIZE* units) {
  const MemoryDC dc(nullptr);
  if (!dc) return false;
  const SelectionGuard selected(dc.get(), font);
  TEXTMETRICA metrics{};
  SIZE letters{};
  static constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  if (!GetTextMetricsA(dc.get(), &metrics) ||
      !GetTextExtentPoint32A(dc.get(), kLetters, static_cast<int>(std::strlen(kLetters)), &letters)) {
    return false;
  }
  *units = SIZE{(letters.cx / 26 + 1) / 2, metrics.tmHeight};
  return units->cx > 0 && units->cy > 0;
}

DialogLayout::ItemKind KindOf(const DialogItemTemplate& item) {
  if (item.className == "button") {
    return (item.style & BS_TYPEMASK) == BS_DEFPUSHBUTTON ? DialogLayout::ItemKind::DefaultButton
                                                          : DialogLayout::ItemKind::Button;
  }
  return (item.style & SS_TYPEMASK) == SS_ICON ? DialogLayout::ItemKind::Icon : DialogLayout::ItemKind::Text;
}

void DrawIconArtwork(HDC dc, int iconId, int size, int x, int y) {
  CursorArtwork artwork;
  if (!GetIconArtwork(iconId, size, &artwork)) return;
  for (int row = 0; row < artwork.height; ++row) {
    for (int column = 0; column < artwork.width; ++column) {
      const std::uint32_t argb = artwork.pixels[static_cast<std::size_t>(row) * artwork.width + column];
      if ((argb >> 24) == 0) continue;
      SetPixel(dc, x + column, y + row, RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF));
    }
  }
}

void DrawText(HDC dc, HFONT font, const std::string& text, RECT rect, UINT format, COLORREF color) {
  const SelectionGuard selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, color);
  DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &rect, format | DT_NOPREFIX);
}

}  // namespace

void RegisterDialogResource(int id, DialogTemplate dialog) { Resources().dialogs[id] = std::move(dialog); }
void RegisterStringResource(int id, std::string text) { Resources().strings[id] = std::move(text); }
void RegisterIconResource(int id, std::vector<CursorArtwork> images) {
  Resources().icons[id] = std::move(images);
}
void RegisterBitmapResource(int id, CursorArtwork picture) { Resources().bitmaps[id] = std::move(picture); }

std::string LoadStringResource(int id) {
  const auto found = Resources().strings.find(id);
  return found == Resources().strings.end() ? std::string() : found->second;
}

bool GetIconArtwork(int id, int size, CursorArtwork* artwork) {
  const auto found = Resources().icons.find(id);
  if (found == Resources().icons.end() || found->second.empty()) return false;
  *artwork = *std::min_element(found->second.begin(), found->second.end(),
                               [size](const CursorArtwork& a, const CursorArtwork& b) {
                                 return std::abs(a.width - size) < std::abs(b.width - size);
                               });
  return true;
}

bool LayOutDialog(int id, const std::string& caption, DialogLayout* layout) {
  const auto found = Resources().dialogs.find(id);
  if (found == Resources().dialogs.end()) return false;
  const DialogTemplate& dialog = found->second;
  const OwnedFont font = DialogFont(dialog.fontFace, dialog.fontPoints);
  SIZE units{};
  if (!font || !BaseUnits(font.get(), &units)) return false;
  const auto x = [&](int dialogUnits) { return MulDiv(dialogUnits, units.cx, 4); };
  const auto y = [&](int dialogUnits) { return MulDiv(dialogUnits, units.cy, 8); };
  DialogLayout laid;
  laid.resourceId = id;
  laid.caption = caption.empty() ? dialog.caption : caption;
  // A property page has no caption or frame of its own: it is shown in a frame
  // captioned with the page's caption, as a property frame with one page shows it.
  laid.framed = (dialog.style & WS_CAPTION) == WS_CAPTION || !caption.empty();
  laid.position = POINT{x(dialog.x), y(dialog.y)};
  laid.client = SIZE{x(dialog.cx), y(dialog.cy)};
  laid.baseUnits = units;
  laid.fontFace = dialog.fontFace;
  laid.fontPoints = dialog.fontPoints;
  for (const DialogItemTemplate& item : dialog.items) {
    DialogLayout::Item placed{item.id, KindOf(item), item.text, item.iconId, {}};
    const int left = x(item.x), top = y(item.y);
    // An icon static takes the size of its icon, whatever its template says.
    CursorArtwork icon;
    if (placed.kind == DialogLayout::ItemKind::Icon && GetIconArtwork(item.iconId, 32, &icon)) {
      placed.rect = RECT{left, top, left + icon.width, top + icon.height};
    } else {
      placed.rect = RECT{left, top, left + x(item.cx), top + y(item.cy)};
    }
    laid.items.push_back(std::move(placed));
  }
  *layout = std::move(laid);
  return true;
}

int ShowDialogResource(int id, const std::string& caption) {
  DialogLayout layout;
  if (!LayOutDialog(id, caption, &layout)) return -1;
  return CurrentHost().ShowDialog(layout);
}

HBITMAP DrawDialogPicture(const DialogLayout& layout) {
  const int frame = layout.framed ? kFrame : 0;
  const int captionBar = layout.framed ? kCaption : 0;
  const int width = layout.client.cx + 2 * frame;
  const int height = layout.client.cy + 2 * frame + captionBar;
  OwnedBitmap picture(CreateBitmap(width, height, 1, 32, nullptr));
  const MemoryDC dc(nullptr);
  const OwnedFont font = DialogFont(layout.fontFace, layout.fontPoints);
  const OwnedFont bold = DialogFont(layout.fontFace, layout.fontPoints, FW_BOLD);
  if (!picture || !dc || !font || !bold) return nullptr;
  const SelectionGuard shown(dc.get(), picture.get());
  Fill(dc.get(), RECT{0, 0, width, height}, kFace);
  if (layout.framed) {
    DrawRaisedButton(dc.get(), RECT{0, 0, width, height});
    Fill(dc.get(), RECT{frame, frame, width - frame, frame + captionBar - 1}, kCaptionColor);
    DrawText(dc.get(), bold.get(), layout.caption,
             RECT{frame + 4, frame, width - frame - 20, frame + captionBar - 1},
             DT_LEFT | DT_VCENTER | DT_SINGLELINE, kCaptionText);
    // The close box of the system menu: a small raised button with its cross.
    const RECT close{width - frame - 18, frame + 2, width - frame - 2, frame + captionBar - 3};
    DrawRaisedButton(dc.get(), close);
    const int cx = (close.left + close.right) / 2 - 1, cy = (close.top + close.bottom) / 2;
    for (int d = -3; d <= 3; ++d) {
      for (int thick = 0; thick < 2; ++thick) {
        SetPixel(dc.get(), cx + d + thick, cy + d, RGB(0, 0, 0));
        SetPixel(dc.get(), cx + d + thick, cy - d, RGB(0, 0, 0));
      }
    }
  }
  const int originX = frame, originY = frame + captionBar;
  for (const DialogLayout::Item& item : layout.items) {
    RECT r{item.rect.left + originX, item.rect.top + originY, item.rect.right + originX,
           item.rect.bottom + originY};
    switch (item.kind) {
      case DialogLayout::ItemKind::Icon:
        DrawIconArtwork(dc.get(), item.iconId, r.right - r.left, r.left, r.top);
        break;
      case DialogLayout::ItemKind::Text:
        DrawText(dc.get(), font.get(), item.text, r, DT_LEFT | DT_WORDBREAK, RGB(0, 0, 0));
        break;
      case DialogLayout::ItemKind::DefaultButton:
      case DialogLayout::ItemKind::Button: {
        // A default push button has a black frame around its raised edge.
        if (item.kind == DialogLayout::ItemKind::DefaultButton) {
          Fill(dc.get(), r, RGB(0, 0, 0));
          r = RECT{r.left + 1, r.top + 1, r.right - 1, r.bottom - 1};
        }
        DrawRaisedButton(dc.get(), r);
        DrawText(dc.get(), font.get(), item.text, r, DT_CENTER | DT_VCENTER | DT_SINGLELINE, RGB(0, 0, 0));
        break;
      }
    }
  }
  return picture.release();
}

}  // namespace platform

HBITMAP LoadBitmapA(HINSTANCE /*instance*/, LPCSTR name) {
  const auto id = static_cast<int>(reinterpret_cast<std::uintptr_t>(name));
  const auto found = platform::Resources().bitmaps.find(id);
  if (found == platform::Resources().bitmaps.end()) return nullptr;
  const platform::CursorArtwork& picture = found->second;
  // Rows of 0x00RRGGBB, as a 32-bit bitmap stores them.
  std::vector<std::uint32_t> rows(picture.pixels.size());
  std::transform(picture.pixels.begin(), picture.pixels.end(), rows.begin(),
                 [](std::uint32_t argb) { return argb & 0xFFFFFF; });
  return CreateBitmap(picture.width, picture.height, 1, 32, rows.data());
}

int LoadStringA(HINSTANCE /*instance*/, UINT id, LPSTR buffer, int size) {
  const auto found = platform::Resources().strings.find(static_cast<int>(id));
  if (buffer == nullptr || size <= 0 || found == platform::Resources().strings.end()) return 0;
  const int length = std::min(static_cast<int>(found->second.size()), size - 1);
  std::memcpy(buffer, found->second.data(), static_cast<std::size_t>(length));
  buffer[length] = '\0';
  return length;
}
