#include "imageio/url_download.h"

#include <curl/curl.h>
#include <sys/stat.h>

#include <cstdio>
#include <memory>

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

// The body goes to the cache file; more than the size limit ends the transfer.
struct Sink {
  std::FILE* file = nullptr;
  std::int64_t written = 0;
  std::int64_t maxBytes = 0;
  bool tooLarge = false;
};

std::size_t WriteBody(char* data, std::size_t size, std::size_t count, void* user) {
  auto* sink = static_cast<Sink*>(user);
  const std::size_t bytes = size * count;
  if (sink->written + static_cast<std::int64_t>(bytes) > sink->maxBytes) {
    sink->tooLarge = true;
    return 0;
  }
  sink->written += static_cast<std::int64_t>(bytes);
  return std::fwrite(data, 1, bytes, sink->file);
}

DWORD LastErrorFor(CURLcode code, long httpStatus, bool tooLarge) {
  if (tooLarge || code == CURLE_FILESIZE_EXCEEDED) return ERROR_FILE_TOO_LARGE;
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

// The cache file's name: a hash of the URL, so that the same URL reuses its file.
std::string CacheFileName(const std::string& url) {
  std::uint64_t hash = 0xcbf29ce484222325ull;  // FNV-1a
  for (unsigned char c : url) hash = (hash ^ c) * 0x100000001b3ull;
  char name[32];
  std::snprintf(name, sizeof name, "%016llx.cache", static_cast<unsigned long long>(hash));
  return DownloadCacheFolder() + name;
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

std::string DownloadCacheFolder() { return platform::TempFolder() + "imageedit-cache/"; }

HRESULT DownloadToCacheFile(const std::string& url, std::string* localName) {
  InitCurlOnce();
  CurlHandle curl(curl_easy_init(), curl_easy_cleanup);
  if (!curl) return Failure(ERROR_INTERNET_INTERNAL_ERROR);
  ::mkdir(DownloadCacheFolder().c_str(), 0700);
  const std::string target = CacheFileName(url);
  const std::string partial = target + ".part";
  Sink sink;
  sink.maxBytes = Limits().maxBytes;
  sink.file = std::fopen(partial.c_str(), "wb");
  if (!sink.file) return Failure(ERROR_INTERNET_INTERNAL_ERROR);
  ApplyOptions(curl.get(), url, &sink, Limits());
  const CURLcode code = curl_easy_perform(curl.get());
  const bool closed = std::fclose(sink.file) == 0;
  long status = 0;
  curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &status);
  if (code != CURLE_OK || !closed || std::rename(partial.c_str(), target.c_str()) != 0) {
    std::remove(partial.c_str());
    return Failure(code == CURLE_OK ? ERROR_INTERNET_INTERNAL_ERROR
                                    : LastErrorFor(code, status, sink.tooLarge));
  }
  *localName = target;
  return S_OK;
}

}  // namespace imageio
