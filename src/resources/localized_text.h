// Texts shown to the user follow the user's primary language: 0x12 Korean, 0x04
// Chinese, anything else English. Texts are UTF-8, the platform's ANSI code page.
#pragma once

#include "platform/types.h"

inline constexpr WORD kLanguageKorean = 0x12;
inline constexpr WORD kLanguageChinese = 0x04;

struct LocalizedText {
  const char* korean;
  const char* chinese;
  const char* english;

  const char* For(WORD language) const {
    if (language == kLanguageKorean) return korean;
    if (language == kLanguageChinese) return chinese;
    return english;
  }
};

inline constexpr LocalizedText kOutOfMemoryText{"메모리가 부족합니다.", "内存不足.", "Out of Memory."};
