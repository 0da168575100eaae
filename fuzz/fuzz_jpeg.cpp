// JPEG data as the loader hands them on: end-marker repair, then the decoder.
#include <vector>

#include "fuzz_decode.h"
#include "imageio/jpeg_repair.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> block(data, data + size);
  block.resize(size + 2);
  const std::size_t count = imageio::RepairJpegEndMarker(block.data(), size);
  DecodeIntoScratch(block.data(), count, imageio::DecodeJpeg);
  return 0;
}
