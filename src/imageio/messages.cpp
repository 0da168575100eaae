#include "imageio/messages.h"

#include <cstdio>
#include <string_view>

#include "resources/localized_text.h"

namespace imageio {
namespace {

constexpr LocalizedText kReadFailure{"%s 파일을 읽는 데 실패하였습니다.\n오류 코드는 %d입니다.",
                                     "读%s 文件失败.\n错误代码是 “%d”.",
                                     "I failed to read %s. An error code is %d."};
constexpr LocalizedText kSaveFailure{"%s 파일을 저장하는 데 실패하였습니다.", "保存%s 文件失败.",
                                     "I failed to save %s."};
constexpr LocalizedText kSaveOutOfMemory{"메모리가 부족합니다.", "内存不足.", "Out Of Memory."};

// The length of `text` without a UTF-8 sequence that a cut left incomplete at its
// end: the last lead byte and the continuation bytes after it go when they are
// fewer than the lead byte announces.
std::size_t CompleteUtf8Length(std::string_view text) {
  std::size_t lead = text.size();
  const auto continuation = [&text](std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
  };
  while (lead > 0 && text.size() - lead < 4 && continuation(lead - 1)) --lead;
  if (lead == 0) return text.size();
  const auto byte = static_cast<unsigned char>(text[--lead]);
  const std::size_t announced = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
  return text.size() - lead < announced ? lead : text.size();
}

// snprintf into the fixed-size buffer, the way the texts were always bounded. A
// text that does not fit is cut at a character boundary, so that the host never
// receives half a character.
template <typename... Args>
std::string FormatBounded(const char* format, Args... args) {
  char buffer[kMessageBufferSize];
  const int length = std::snprintf(buffer, sizeof buffer, format, args...);
  const std::string_view text(buffer);
  if (length < static_cast<int>(sizeof buffer)) return std::string(text);
  return std::string(text.substr(0, CompleteUtf8Length(text)));
}

}  // namespace

std::string ReadFailureMessage(WORD language, const std::string& source, DWORD errorCode) {
  return FormatBounded(kReadFailure.For(language), source.c_str(), static_cast<int>(errorCode));
}

std::string SaveFailureMessage(WORD language, const std::string& path) {
  return FormatBounded(kSaveFailure.For(language), path.c_str());
}

std::string SaveOutOfMemoryMessage(WORD language) { return kSaveOutOfMemory.For(language); }

}  // namespace imageio
