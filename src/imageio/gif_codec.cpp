// GIF through giflib: the first image of the file is drawn onto the logical screen,
// which starts white; its transparent colour (from the graphics control extension
// before it) leaves the white showing. Later frames are never read.
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "imageio/picture_codecs.h"
#include "imageio/pixel_limits.h"

namespace imageio {
namespace {

struct MemoryReader {
  const std::uint8_t* data;
  std::size_t remaining;
};

int ReadFromMemory(GifFileType* gif, GifByteType* out, int wanted) {
  auto* reader = static_cast<MemoryReader*>(gif->UserData);
  const std::size_t n = std::min(reader->remaining, static_cast<std::size_t>(std::max(wanted, 0)));
  std::memcpy(out, reader->data, n);
  reader->data += n;
  reader->remaining -= n;
  return static_cast<int>(n);
}

constexpr int kNoTransparency = -1;

// The transparent index of a graphics control extension, or kNoTransparency.
int TransparentIndex(int code, const GifByteType* block) {
  if (code != GRAPHICS_EXT_FUNC_CODE || !block || block[0] < 4 || !(block[1] & 0x01)) return kNoTransparency;
  return block[4];
}

// Reads the current image's rows (interlaced or not) onto the canvas.
bool DrawImage(GifFileType* gif, int transparent, std::uint32_t* canvas, int canvasWidth, int canvasHeight) {
  const GifImageDesc& desc = gif->Image;
  const ColorMapObject* colors = desc.ColorMap ? desc.ColorMap : gif->SColorMap;
  if (!colors || desc.Width <= 0 || desc.Height <= 0) return false;
  std::vector<GifPixelType> line(static_cast<std::size_t>(desc.Width));
  auto drawRow = [&](int y) {
    if (DGifGetLine(gif, line.data(), desc.Width) != GIF_OK) return false;
    const int canvasY = desc.Top + y;
    if (canvasY < 0 || canvasY >= canvasHeight) return true;
    for (int x = 0; x < desc.Width; ++x) {
      const int canvasX = desc.Left + x;
      const int index = line[static_cast<std::size_t>(x)];
      if (canvasX >= canvasWidth || index == transparent || index >= colors->ColorCount) continue;
      const GifColorType& c = colors->Colors[index];
      canvas[static_cast<std::size_t>(canvasY) * canvasWidth + canvasX] =
          (static_cast<std::uint32_t>(c.Red) << 16) | (c.Green << 8) | c.Blue;
    }
    return true;
  };
  if (!desc.Interlace) {
    for (int y = 0; y < desc.Height; ++y) {
      if (!drawRow(y)) return false;
    }
    return true;
  }
  static constexpr int kPassStart[] = {0, 4, 2, 1};
  static constexpr int kPassStep[] = {8, 8, 4, 2};
  for (int pass = 0; pass < 4; ++pass) {
    for (int y = kPassStart[pass]; y < desc.Height; y += kPassStep[pass]) {
      if (!drawRow(y)) return false;
    }
  }
  return true;
}

bool DrawFirstImage(GifFileType* gif, std::uint32_t* canvas) {
  int transparent = kNoTransparency;
  for (;;) {
    GifRecordType record;
    if (DGifGetRecordType(gif, &record) != GIF_OK) return false;
    if (record == IMAGE_DESC_RECORD_TYPE) {
      if (DGifGetImageDesc(gif) != GIF_OK) return false;
      return DrawImage(gif, transparent, canvas, gif->SWidth, gif->SHeight);
    }
    if (record == TERMINATE_RECORD_TYPE) return false;
    if (record == EXTENSION_RECORD_TYPE) {
      int code = 0;
      GifByteType* block = nullptr;
      if (DGifGetExtension(gif, &code, &block) != GIF_OK) return false;
      if (TransparentIndex(code, block) != kNoTransparency) transparent = TransparentIndex(code, block);
      while (block) {
        if (DGifGetExtensionNext(gif, &block) != GIF_OK) return false;
      }
    }
  }
}

}  // namespace

bool DecodeGif(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate) {
  MemoryReader reader{data, count};
  int error = 0;
  GifFileType* gif = DGifOpen(&reader, ReadFromMemory, &error);
  if (!gif) return false;
  bool decoded = false;
  const int width = gif->SWidth;
  const int height = gif->SHeight;
  std::uint32_t* canvas = PictureSizeAcceptable(width, height) ? allocate(width, height) : nullptr;
  if (canvas) {
    std::fill_n(canvas, static_cast<std::size_t>(width) * height, 0x00FFFFFFu);
    decoded = DrawFirstImage(gif, canvas);
  }
  DGifCloseFile(gif, &error);
  return decoded;
}

}  // namespace imageio
