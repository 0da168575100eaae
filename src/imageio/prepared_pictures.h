// The web build's pictures: the page cannot block a call while the browser fetches
// and decodes, so it does both first and leaves the results here under the exact
// string the caller passed, then calls the loading method, whose loader finds them
// through the web picture source (picture_source_web.cpp), then forgets them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/types.h"

namespace imageio {

// Storage for the fetched file's `count` bytes, for the page to fill; null when there
// is no memory for it.
std::uint8_t* PreparePictureBytes(const std::string& source, std::size_t count);
// The filled bytes as the loader reads them (JPEG data without an end marker get
// one), for the page to decode with the browser: their new count.
std::size_t RepairPreparedBytes(const std::string& source);
// Storage for what the browser decoded from those bytes: width x height pixels of
// red, green, blue and alpha (not premultiplied), top-down rows; null when there is no
// memory for it or the picture is beyond the pixel limit (it is then not decoded).
std::uint8_t* PreparePicturePixels(const std::string& source, int width, int height);
// The fetch failed with this error code (the codes a failed download leaves).
void PreparePictureFailure(const std::string& source, DWORD error);
// Drops every prepared picture.
void ForgetPreparedPictures();

}  // namespace imageio
