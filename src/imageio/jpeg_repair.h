// JPEG data cut off before its end-of-image marker (as some cameras and servers
// deliver it) are repaired by appending the marker, so that the decoder sees a
// complete stream. Only JFIF and EXIF files (an APP0 or APP1 segment first) are
// touched; any other data pass unchanged.
#pragma once

#include <cstddef>
#include <cstdint>

namespace imageio {

// True when the first `count` bytes are JPEG data of the kind above whose last two
// bytes are not the end marker 0xFF 0xD9.
bool NeedsJpegEndMarker(const std::uint8_t* data, std::size_t count);

// Appends the end marker when it is needed; `data` must have room for two more
// bytes after `count`. Returns the new byte count.
std::size_t RepairJpegEndMarker(std::uint8_t* data, std::size_t count);

}  // namespace imageio
