// The texts the image files show the user, in the user's language: primary
// language 0x12 Korean, 0x04 Chinese, anything else English. Every text is
// formatted into a buffer of 1024 characters, so a long path is cut short rather
// than written past the buffer.
#pragma once

#include <string>

#include "platform/types.h"

namespace imageio {

inline constexpr std::size_t kMessageBufferSize = 1024;

// A picture could not be fetched or read: the caller's string and the last error.
std::string ReadFailureMessage(WORD language, const std::string& source, DWORD errorCode);
// A bitmap file could not be created or written: the full path after the path rule.
std::string SaveFailureMessage(WORD language, const std::string& path);
// No memory for the header or the pixel rows of a file being saved.
std::string SaveOutOfMemoryMessage(WORD language);

}  // namespace imageio
