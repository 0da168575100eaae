// The platform's picture loader as the image loader sees it: compressed picture
// data in, an independent 32-bit DIB section at the picture's own size out (owned by
// the caller), or null. Icons, metafiles and anything it cannot decode give null.
// A web build replaces this file with one over the browser's own decoder.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/types.h"

namespace imageio {

HBITMAP DecodePicture(const std::uint8_t* data, std::size_t count);

}  // namespace imageio
