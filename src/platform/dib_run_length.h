// The codes of 4- and 8-bit run-length compressed DIBs (BI_RLE4, BI_RLE8), played the
// way GDI plays them, for SetDIBits and the bitmap file reader alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace platform {

// Pixels of one scan line that the codes set, as palette indexes, one a pixel.
struct RunLengthSpan {
  int line = 0;  // counted from the bottom of the picture
  int x = 0;
  const std::uint8_t* indexes = nullptr;
  int count = 0;
};

// Plays the `size` bytes of run-length codes of a bottom-up picture of `width` x
// `height` pixels (both at least 1) with `bitsPerPixel` 4 or 8, handing each span of
// pixels they set to `set`; pixels no span covers keep whatever the target held. GDI
// shows the runs of a line only once a later end of line, delta or end of picture
// closes them: runs still open when the data end, or when an absolute run's data are
// cut short, are dropped. Runs are cut at the right edge and the codes after them on
// that line set nothing; a delta stops at the right edge; an end of line or delta
// above the top line ends the picture. Nothing outside `data[0, size)` is read.
void PlayRunLengthCodes(const std::uint8_t* data, std::size_t size, int bitsPerPixel, int width, int height,
                        const std::function<void(const RunLengthSpan&)>& set);

}  // namespace platform
