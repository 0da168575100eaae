// URL download into memory: the body is handed to the loader as a file's contents
// would be. Nothing touches the disk, so no file in a shared folder, whose name
// another local user could have prepared (a link to one of our files, say), is ever
// written through. http and https only, redirects followed (at most 10, to http and
// https only).
//
// A server cannot hang or exhaust the control: every download is bounded by the
// limits below (defaults: connecting 10 s, the whole transfer 60 s, a transfer
// slower than 1 byte a second for 15 s is dropped, and at most 64 MiB of body).
// Tests lower them to finish quickly.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/types.h"

namespace imageio {

struct DownloadLimits {
  long connectTimeoutMs = 10'000;
  long totalTimeoutMs = 60'000;
  long lowSpeedBytesPerSecond = 1;
  long lowSpeedSeconds = 15;
  std::int64_t maxBytes = std::int64_t{64} << 20;
};

void SetDownloadLimits(const DownloadLimits& limits);
DownloadLimits GetDownloadLimits();

// Fetches the URL's body. S_OK with the body, or a negative result with the
// last-error code set to what went wrong (2 not found, 12002 timeout, 12005 invalid
// URL, 12007 name not resolved, 12029 cannot connect, 223 larger than the size
// limit, 8 no memory for the body, 12004 anything else).
HRESULT DownloadToMemory(const std::string& url, std::vector<std::uint8_t>* body);

}  // namespace imageio
