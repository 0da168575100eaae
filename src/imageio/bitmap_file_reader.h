// Windows bitmap files read by our own code. Every header field is checked against
// the file's data before a byte of pixel data is touched, so a truncated or lying
// file gives no picture rather than a read outside the data.
//
// Accepted: core (12-byte) and info headers of 40, 52, 56, 108 and 124 bytes; 1, 4
// and 8 bits a pixel with a colour table (biClrUsed entries, or all 2^n when it is
// 0); 16 and 32 bits as BI_RGB (5-5-5 and x-8-8-8) or BI_BITFIELDS; 24 bits; bottom-up
// and top-down (negative height) rows; 4- and 8-bit run-length compression (BI_RLE4,
// BI_RLE8), bottom-up only, played as SetDIBits plays it into a new bitmap: pixels
// the codes skip are black, and codes are read up to the declared image size or the
// end of the file, whichever comes first. Refused: embedded JPEG/PNG compression,
// other depths, a colour table or pixel rows that end beyond the data, and pictures
// above the pixel limit. A palette index beyond the table is black.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace imageio {

// A picture as a packed 24-bit DIB: rows bottom-up, 3 bytes a pixel (blue, green,
// red), each row padded to a multiple of 4 bytes.
struct Dib24 {
  int width = 0;
  int height = 0;
  int stride = 0;
  std::vector<std::uint8_t> rows;
};

// True when the data start with the bitmap-file signature "BM".
bool IsBitmapFile(const std::uint8_t* data, std::size_t count);

// Decodes a whole bitmap file, or nothing when it is malformed or unsupported.
std::optional<Dib24> ReadBitmapFile(const std::uint8_t* data, std::size_t count);

// The rows of a file whose pixels already are a packed 24-bit DIB (24 bits a pixel,
// uncompressed), checked as ReadBitmapFile checks them, so that they can be
// transferred as they lie in the file; nothing for any other file. `height` is
// negative for top-down rows, as a DIB header gives it.
struct PackedRows {
  int width = 0;
  int height = 0;
  const std::uint8_t* rows = nullptr;
};
std::optional<PackedRows> PackedDib24Rows(const std::uint8_t* data, std::size_t count);

}  // namespace imageio
