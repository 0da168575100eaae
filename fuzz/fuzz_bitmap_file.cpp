// Bitmap files: header checks and every depth's row conversion.
#include "imageio/bitmap_file_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const auto dib = imageio::ReadBitmapFile(data, size)) {
    volatile std::uint8_t sink = dib->rows.empty() ? 0 : dib->rows.back();
    (void)sink;
  }
  return 0;
}
