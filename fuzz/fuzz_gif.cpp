#include "fuzz_decode.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  DecodeIntoScratch(data, size, imageio::DecodeGif);
  return 0;
}
