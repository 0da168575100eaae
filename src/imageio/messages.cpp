#include "imageio/messages.h"

#include <cstdio>

#include "resources/localized_text.h"

namespace imageio {
namespace {

constexpr LocalizedText kReadFailure{"%s 파일을 읽는 데 실패하였습니다.\n오류 코드는 %d입니다.",
                                     "读%s 文件失败.\n错误代码是 “%d”.",
                                     "I failed to read %s. An error code is %d."};
constexpr LocalizedText kSaveFailure{"%s 파일을 저장하는 데 실패하였습니다.", "保存%s 文件失败.",
                                     "I failed to save %s."};
constexpr LocalizedText kSaveOutOfMemory{"메모리가 부족합니다.", "内存不足.", "Out Of Memory."};

// snprintf into the fixed-size buffer, the way the texts were always bounded.
template <typename... Args>
std::string FormatBounded(const char* format, Args... args) {
  char buffer[kMessageBufferSize];
  std::snprintf(buffer, sizeof buffer, format, args...);
  return buffer;
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
