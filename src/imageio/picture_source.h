// The loader's two platform services, chosen when the program is built: where the
// bytes of a path or URL come from, and how pictures other than bitmap files decode.
//   picture_source_native.cpp: the file system, libcurl downloads and the codecs
//     (libjpeg-turbo, libpng, giflib);
//   picture_source_web.cpp: the pictures the page fetched with the browser and decoded
//     with the browser's own decoders before it called the loading method.
// The loader's flow (path or URL, JPEG repair, our own bitmap reader, the read-failure
// message) is the same on both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/types.h"

namespace imageio {

// Room after a file's data for an appended JPEG end marker.
inline constexpr std::size_t kSpareBytes = 2;

// The whole data of one file or download: `count` bytes, then kSpareBytes of room.
struct PictureBytes {
  std::vector<std::uint8_t> data;
  std::size_t count = 0;

  // Makes room for `bytes` bytes and the spare ones, keeping what is there; false,
  // with the last error set, when the memory cannot be had.
  bool Allocate(std::size_t bytes);
};

// ---- the seam: one definition per platform ----

// Fetches a URL's data into memory (never through a file another user could have
// prepared). False, with the last error set to what went wrong, when it cannot be had.
bool FetchUrl(const std::string& url, PictureBytes* bytes);
// Reads a whole file. False, with the last error set, when it cannot be opened or
// its contents do not read.
bool ReadPictureFile(const std::string& name, PictureBytes* bytes);
// Data read from `name` (the caller's string) that are not a bitmap file, as an independent 32-bit DIB
// section at the picture's own size (owned by the caller); null for icons, metafiles
// and anything that cannot be decoded.
HBITMAP DecodePicture(const std::string& name, const std::uint8_t* data, std::size_t count);

// ---- shared by both definitions ----

// Reads a file of the local file system (an in-memory one on the web). Only a regular
// file within the largest picture file's size is read (pixel_limits.h), and opening it
// never waits: a named pipe without a writer, a device or a folder is refused before
// a byte is read, and a larger file is refused unread (ERROR_FILE_TOO_LARGE).
bool ReadLocalFile(const std::string& name, PictureBytes* bytes);
// A 32-bit top-down DIB section for a decoded picture, and its pixels (0x00RRGGBB,
// rows of exactly `width` words); null when it cannot be made.
HBITMAP NewPictureSection(int width, int height, std::uint32_t** pixels);

}  // namespace imageio
