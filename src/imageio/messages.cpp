#include "imageio/messages.h"

#include <cstdio>

namespace imageio {
namespace {

const char* ByLanguage(WORD language, const char* korean, const char* chinese, const char* english) {
  if (language == kLanguageKorean) return korean;
  if (language == kLanguageChinese) return chinese;
  return english;
}

// snprintf into the fixed-size buffer, the way the texts were always bounded.
template <typename... Args>
std::string FormatBounded(const char* format, Args... args) {
  char buffer[kMessageBufferSize];
  std::snprintf(buffer, sizeof buffer, format, args...);
  return buffer;
}

}  // namespace

std::string ReadFailureMessage(WORD language, const std::string& source, DWORD errorCode) {
  const char* format =
      ByLanguage(language, "%s 파일을 읽는 데 실패하였습니다.\n오류 코드는 %d입니다.",
                 "读%s 文件失败.\n错误代码是 “%d”.", "I failed to read %s. An error code is %d.");
  return FormatBounded(format, source.c_str(), static_cast<int>(errorCode));
}

std::string SaveFailureMessage(WORD language, const std::string& path) {
  const char* format = ByLanguage(language, "%s 파일을 저장하는 데 실패하였습니다.", "保存%s 文件失败.",
                                  "I failed to save %s.");
  return FormatBounded(format, path.c_str());
}

std::string SaveOutOfMemoryMessage(WORD language) {
  return ByLanguage(language, "메모리가 부족합니다.", "内存不足.", "Out Of Memory.");
}

}  // namespace imageio
