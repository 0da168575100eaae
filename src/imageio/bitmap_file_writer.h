// The bitmap file writer: any device bitmap becomes an uncompressed, bottom-up
// Windows bitmap file. Depths of 16 bits and more are written as 24-bit files
// without a colour table; smaller depths round up to 1, 4 or 8 bits with a full
// colour table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/types.h"

namespace imageio {

// The sizes and offsets of a file for a bitmap of the given description.
struct BitmapFileLayout {
  int depth = 0;       // 1, 4, 8 or 24
  int colorCount = 0;  // 2^depth below 24, else 0
  std::uint32_t rowSize = 0;
  std::uint64_t imageSize = 0;
  std::uint32_t pixelOffset = 0;  // 14 + 40 + 4 x colour count
  std::uint64_t fileSize = 0;
};

BitmapFileLayout ComputeBitmapFileLayout(int width, int height, int planes, int bitsPerPixel);

// The path rule: a bare file name (no '/' and no '\\') goes into the temp folder;
// any other path is used as it stands.
std::string ResolveSavePath(const std::string& path);

// What the writer takes from the editor that calls it.
struct WriteContext {
  HWND window = nullptr;  // its DC reads the bitmap's rows
  bool verbose = false;   // show memory and file failures
  WORD userLanguage = 0;
};

// Writes a 24-bit picture (bottom-up rows of blue, green and red bytes, each row
// padded to 4 bytes) to the path as it stands, with no messages; false when the file
// cannot be written completely.
bool WriteDib24File(const std::string& path, int width, int height, const std::uint8_t* rows);

// Writes the bitmap (which stays the caller's) to the path. Nothing is written for
// an empty path, a null or unreadable bitmap or a missing DC. The file is replaced
// all at once: a write that fails part way (a full disk, say) leaves the file that
// was there untouched and no partial file behind, so a user never loses the
// picture they had; the failure is reported as the save message.
void WriteBitmapFile(LPCSTR path, HBITMAP bitmap, const WriteContext& context);

}  // namespace imageio
