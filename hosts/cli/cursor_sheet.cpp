#include "cursor_sheet.h"

#include <string>

#include "platform/gdi_handles.h"
#include "resources/cursor_table.h"
#include "resources/module_resources.h"

namespace script {
namespace {

constexpr int kColumns = 4;
constexpr int kTile = 32;
constexpr int kPad = 8;
constexpr int kTick = 5;  // the margin before a tile that holds its hot-spot ticks
constexpr int kDigitScale = 2;
constexpr int kLabelHeight = 5 * kDigitScale;
constexpr int kCellWidth = kPad + 2 * (kTick + kTile) + 2 * (kTick + 2 * kTile) + 3 * 4 + kPad;
constexpr int kCellHeight = kPad + kLabelHeight + 4 + kTick + 2 * kTile + kPad;
constexpr COLORREF kSheet = RGB(200, 200, 200);
constexpr COLORREF kTickColor = RGB(255, 0, 255);

// Digits 0-9 in a 3 x 5 pixel font, one row of three bits per entry, top row first.
constexpr unsigned char kDigits[10][5] = {{7, 5, 5, 5, 7}, {2, 6, 2, 2, 7}, {7, 1, 7, 4, 7}, {7, 1, 3, 1, 7},
                                          {5, 5, 7, 1, 1}, {7, 4, 7, 1, 7}, {7, 4, 7, 5, 7}, {7, 1, 1, 2, 2},
                                          {7, 5, 7, 5, 7}, {7, 5, 7, 1, 7}};

class Sheet {
 public:
  Sheet(int width, int height)
      : dc_(nullptr), bitmap_(CreateBitmap(width, height, 1, 32, nullptr)), shown_(dc_.get(), bitmap_.get()) {
    Box(0, 0, width, height, kSheet);
  }

  void Box(int x, int y, int width, int height, COLORREF color) const {
    const platform::OwnedBrush brush(CreateSolidBrush(color));
    const RECT rect{x, y, x + width, y + height};
    FillRect(dc_.get(), &rect, brush.get());
  }

  void Number(int x, int y, int value) const {
    const std::string digits = std::to_string(value);
    for (char digit : digits) {
      for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < 3; ++column) {
          if ((kDigits[digit - '0'][row] >> (2 - column)) & 1) {
            Box(x + column * kDigitScale, y + row * kDigitScale, kDigitScale, kDigitScale, RGB(0, 0, 0));
          }
        }
      }
      x += 4 * kDigitScale;
    }
  }

  // The picture at `scale` on a checkerboard of `light` and `dark`, with its ticks.
  void Tile(int x, int y, int scale, const platform::CursorArtwork& artwork, COLORREF light,
            COLORREF dark) const {
    const int size = kTile * scale;
    for (int j = 0; j < size; j += 4 * scale) {
      for (int i = 0; i < size; i += 4 * scale) {
        Box(x + i, y + j, 4 * scale, 4 * scale, ((i + j) / (4 * scale)) % 2 ? dark : light);
      }
    }
    for (int j = 0; j < artwork.height; ++j) {
      for (int i = 0; i < artwork.width; ++i) {
        const std::uint32_t pixel = artwork.pixels[static_cast<std::size_t>(j * artwork.width + i)];
        if ((pixel >> 24) == 0) continue;
        Box(x + i * scale, y + j * scale, scale, scale,
            RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF));
      }
    }
    Box(x - kTick, y + artwork.hotSpot.y * scale, kTick - 1, scale, kTickColor);
    Box(x + artwork.hotSpot.x * scale, y - kTick, scale, kTick - 1, kTickColor);
  }

  HBITMAP bitmap() const { return bitmap_.get(); }

 private:
  platform::MemoryDC dc_;
  platform::OwnedBitmap bitmap_;
  platform::SelectionGuard shown_;
};

}  // namespace

PictureResult WriteCursorSheet(const std::string& path) {
  RegisterModuleResources();
  constexpr int rows = (kCursorCount + kColumns - 1) / kColumns;
  const Sheet sheet(kColumns * kCellWidth, rows * kCellHeight);
  for (int index = 0; index < kCursorCount; ++index) {
    const CursorResource& cursor = kCursorTable[index];
    const int left = (index % kColumns) * kCellWidth + kPad;
    const int top = (index / kColumns) * kCellHeight + kPad;
    sheet.Number(left + kTick, top, cursor.resourceId);
    platform::CursorArtwork artwork;
    if (!platform::GetCursorArtwork(cursor.resourceId, &artwork)) continue;
    int x = left + kTick;
    const int y = top + kLabelHeight + 4 + kTick;
    for (int scale : {1, 2}) {
      sheet.Tile(x, y, scale, artwork, RGB(245, 245, 245), RGB(225, 225, 225));
      x += kTile * scale + 4 + kTick;
      sheet.Tile(x, y, scale, artwork, RGB(40, 40, 70), RGB(60, 60, 95));
      x += kTile * scale + 4 + kTick;
    }
  }
  return WritePictureFile(sheet.bitmap(), path);
}

}  // namespace script
