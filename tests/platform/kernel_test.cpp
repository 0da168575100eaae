#include "platform/kernel.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/gdi.h"

namespace {

std::u16string ToWide(UINT codePage, const std::string& text, DWORD flags = 0) {
  int needed = MultiByteToWideChar(codePage, flags, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(needed), u'\0');
  if (needed > 0) {
    EXPECT_EQ(
        MultiByteToWideChar(codePage, flags, text.data(), static_cast<int>(text.size()), wide.data(), needed),
        needed);
  }
  return wide;
}

std::string ToNarrow(UINT codePage, const std::u16string& wide, BOOL* usedDefault = nullptr) {
  int needed = WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0,
                                   nullptr, usedDefault);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  if (needed > 0) {
    EXPECT_EQ(WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), narrow.data(),
                                  needed, nullptr, usedDefault),
              needed);
  }
  return narrow;
}

TEST(CodePages, KoreanChineseAndJapaneseTextsRoundTripThroughTheirCodePages) {
  // Each Hangul syllable takes two bytes in code page 949, each Hanzi two in 936.
  EXPECT_EQ(ToNarrow(949, u"메모리가 부족합니다."),
            "\xB8\xDE\xB8\xF0\xB8\xAE\xB0\xA1 \xBA\xCE\xC1\xB7\xC7\xD5\xB4\xCF\xB4\xD9.");
  EXPECT_EQ(ToNarrow(936, u"内存不足."), "\xC4\xDA\xB4\xE6\xB2\xBB\xD7\xE3.");
  for (const auto& [codePage, text] : {std::pair<UINT, std::u16string>{949, u"메모리가 부족합니다."},
                                       {936, u"内存不足."},
                                       {950, u"記憶體不足"},
                                       {932, u"メモリ"}}) {
    EXPECT_EQ(ToWide(codePage, ToNarrow(codePage, text)), text) << codePage;
  }
}

TEST(CodePages, MinusOneLengthCountsTheTerminatorAndShortBuffersFail) {
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, nullptr, 0), 4);
  WCHAR buffer[4] = {u'x', u'x', u'x', u'x'};
  SetLastError(0);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, buffer, 3), 0);
  EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, buffer, 4), 4);
  EXPECT_EQ(buffer[3], u'\0');

  char narrow[3];
  EXPECT_EQ(WideCharToMultiByte(949, 0, u"가", -1, nullptr, 0, nullptr, nullptr), 3);
  EXPECT_EQ(WideCharToMultiByte(949, 0, u"가", -1, narrow, 2, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);

  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", 0, buffer, 4), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, buffer, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, nullptr, 3, buffer, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", 3, nullptr, 4), 0);
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"a", 1, narrow, 3, "?", nullptr), 0);
}

TEST(CodePages, InvalidInputIsReplacedOrRefused) {
  // A lone continuation byte and a truncated sequence in UTF-8.
  EXPECT_EQ(ToWide(CP_UTF8, "a\x80z\xE6\x96"), u"a\uFFFDz\uFFFD\uFFFD");
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\x80", 2, nullptr, 0), 0);
  EXPECT_EQ(GetLastError(), ERROR_NO_UNICODE_TRANSLATION);
  // An overlong encoding of '/' and an encoded surrogate are not characters.
  EXPECT_EQ(ToWide(CP_UTF8, "\xC0\xAF"), u"\uFFFD\uFFFD");
  EXPECT_EQ(ToWide(CP_UTF8, "\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
  // A lead byte of code page 949 at the very end has no trail.
  EXPECT_EQ(ToWide(949, "A\xB8"), u"A\uFFFD");

  // A character code page 949 cannot hold, and an unpaired surrogate.
  BOOL usedDefault = FALSE;
  EXPECT_EQ(ToNarrow(949, u"a\u0E01b", &usedDefault), "a?b");
  EXPECT_TRUE(usedDefault);
  EXPECT_EQ(ToNarrow(936, std::u16string{u'x', char16_t(0xD800)}, &usedDefault), "x?");
  EXPECT_EQ(ToNarrow(CP_UTF8, std::u16string{char16_t(0xDC00)}), "\xEF\xBF\xBD");
  usedDefault = TRUE;
  ToNarrow(949, u"plain", &usedDefault);
  EXPECT_FALSE(usedDefault);
}

TEST(KernelServices, RandFollowsTheClassicGenerator) {
  platform::SeedRand(1);
  EXPECT_EQ(platform::Rand(), 41);
  EXPECT_EQ(platform::Rand(), 18467);
}

TEST(KernelServices, TempFolderComesFromTmpdirAndEndsInASlash) {
  const char* saved = std::getenv("TMPDIR");
  const std::string restore = saved == nullptr ? "" : saved;
  for (const char* tmpdir : {"/var/scratch", "/var/scratch/"}) {
    setenv("TMPDIR", tmpdir, 1);
    EXPECT_EQ(platform::TempFolder(), "/var/scratch/");
  }
  unsetenv("TMPDIR");
  EXPECT_EQ(platform::TempFolder(), "/tmp/");
  if (saved != nullptr) setenv("TMPDIR", restore.c_str(), 1);
}

}  // namespace
