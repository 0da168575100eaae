#include "imageio/url_download.h"

#include <curl/curl.h>

#include <memory>
#include <new>

#include "platform/kernel.h"

namespace imageio {
namespace {

constexpr long kMaxRedirects = 10;

DownloadLimits& Limits() {
  static DownloadLimits limits;
  return limits;
}

void InitCurlOnce() {
  static const bool initialised = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  (void)initialised;
}

// The body collects in memory; more than the size limit, or no memory for it, ends
// the transfer.
struct Sink {
  std::vector<std::uint8_t>* body = nullptr;
  std::int64_t maxBytes = 0;
  bool tooLarge = false;
  bool outOfMemory = false;
};

std::size_t WriteBody(char* data, std::size_t size, std::size_t count, void* user) {
  auto* sink = static_cast<Sink*>(user);
  const std::size_t bytes = size * count;
  if (static_cast<std::int64_t>(sink->body->size() + bytes) > sink->maxBytes) {
    sink->tooLarge = true;
    return 0;
  }
  try {
    sink->body->insert(sink->body->end(), data, data + bytes);
  } catch (const std::bad_alloc&) {
    sink->outOfMemory = true;
    return 0;
  }
  return bytes;
}

DWORD LastErrorFor(CURLcode code, long httpStatus, const Sink& sink) {
  if (sink.tooLarge || code == CURLE_FILESIZE_EXCEEDED) return ERROR_FILE_TOO_LARGE;
  if (sink.outOfMemory) return ERROR_NOT_ENOUGH_MEMORY;
  switch (code) {
    case CURLE_HTTP_RETURNED_ERROR:
      return httpStatus == 404 || httpStatus == 410 ? ERROR_FILE_NOT_FOUND : ERROR_INTERNET_INTERNAL_ERROR;
    case CURLE_OPERATION_TIMEDOUT:
      return ERROR_INTERNET_TIMEOUT;
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
      return ERROR_INTERNET_INVALID_URL;
    case CURLE_COULDNT_RESOLVE_HOST:
      return ERROR_INTERNET_NAME_NOT_RESOLVED;
    case CURLE_COULDNT_CONNECT:
      return ERROR_INTERNET_CANNOT_CONNECT;
    default:
      return ERROR_INTERNET_INTERNAL_ERROR;
  }
}

HRESULT Failure(DWORD lastError) {
  SetLastError(lastError);
  return static_cast<HRESULT>(0x80070000u | (lastError & 0xFFFF));
}

using CurlHandle = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

void ApplyOptions(CURL* curl, const std::string& url, Sink* sink, const DownloadLimits& limits) {
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(curl, CURLOPT_MAXREDIRS, kMaxRedirects);
  curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, limits.connectTimeoutMs);
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, limits.totalTimeoutMs);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, limits.lowSpeedBytesPerSecond);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, limits.lowSpeedSeconds);
  curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits.maxBytes));
  curl_easy_setopt(curl, CURLOPT_USERAGENT, "ImageEdit");
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, WriteBody);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, sink);
}

}  // namespace

void SetDownloadLimits(const DownloadLimits& limits) { Limits() = limits; }
DownloadLimits GetDownloadLimits() { return Limits(); }

HRESULT DownloadToMemory(const std::string& url, std::vector<std::uint8_t>* body) {
  InitCurlOnce();
  CurlHandle curl(curl_easy_init(), curl_easy_cleanup);
  if (!curl) return Failure(ERROR_INTERNET_INTERNAL_ERROR);
  body->clear();
  Sink sink;
  sink.body = body;
  sink.maxBytes = Limits().maxBytes;
  ApplyOptions(curl.get(), url, &sink, Limits());
  const CURLcode code = curl_easy_perform(curl.get());
  if (code != CURLE_OK) {
    long status = 0;
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &status);
    body->clear();
    return Failure(LastErrorFor(code, status, sink));
  }
  return S_OK;
}

}  // namespace imageio
