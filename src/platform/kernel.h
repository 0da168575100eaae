// Kernel services: user language and keyboard layout (set by the host), code-page
// conversion, the temp folder, the last-error code, run-time module lookup and the
// shared pseudo-random generator.
#pragma once

#include <string>
#include <string_view>

#include "platform/types.h"

using WCHAR = char16_t;
using HKL = std::uintptr_t;

// The platform's ANSI code page is UTF-8.
inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;

// Last-error codes set by the calls below.
// System error codes, as GetLastError reports them.
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_INVALID_DATA = 13;
inline constexpr DWORD ERROR_READ_FAULT = 30;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_FILE_TOO_LARGE = 223;
inline constexpr DWORD ERROR_INTERNET_TIMEOUT = 12002;
inline constexpr DWORD ERROR_INTERNET_INTERNAL_ERROR = 12004;
inline constexpr DWORD ERROR_INTERNET_INVALID_URL = 12005;
inline constexpr DWORD ERROR_INTERNET_NAME_NOT_RESOLVED = 12007;
inline constexpr DWORD ERROR_INTERNET_CANNOT_CONNECT = 12029;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;

// MultiByteToWideChar: fail on invalid input instead of replacing it with U+FFFD.
inline constexpr DWORD MB_ERR_INVALID_CHARS = 0x0008;

LANGID GetUserDefaultLangID();
HKL GetKeyboardLayout(DWORD threadId);
UINT GetACP();

// Windows semantics: a source length of -1 includes the terminating zero; a
// destination size of 0 returns the size needed; 0 on failure (last error set).
// Code pages 0/65001 (UTF-8), 949, 936, 950 and 932 are supported. Invalid input
// becomes U+FFFD (or fails with MB_ERR_INVALID_CHARS); characters a code page
// cannot hold become the default character ('?' unless given) and set
// *usedDefault. For UTF-8 the default character arguments must be null.
int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLength, WCHAR* dest,
                        int destSize);
int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* src, int srcLength, char* dest, int destSize,
                        const char* defaultChar, BOOL* usedDefault);
// The same conversions in the ANSI code page, for text that crosses between a narrow
// program and a wide interface (the control module's strings).
std::string NarrowFromWide(const WCHAR* text, UINT length);
std::u16string WideFromNarrow(std::string_view text);

// Compares two strings regardless of the case of ASCII letters: below, at or above 0
// as `a` sorts before, with or after `b`.
int lstrcmpiA(LPCSTR a, LPCSTR b);

DWORD GetLastError();
void SetLastError(DWORD code);
void Sleep(DWORD milliseconds);

// Modules the engine looks up at run time ("MSIMG32.DLL" with "TransparentBlt").
HMODULE LoadLibraryA(LPCSTR name);
FARPROC GetProcAddress(HMODULE module, LPCSTR name);
BOOL FreeLibrary(HMODULE module);

namespace platform {

// Host settings, read by the engine through the calls above.
void SetUserDefaultLangID(LANGID language);
void SetKeyboardLayout(HKL layout);
// Makes a run-time module unavailable to LoadLibraryA (tests of fallback paths).
void SetModuleAvailable(const std::string& name, bool available);
int LiveModules();

// The folder that stands in for the Windows directory's Temp folder: TMPDIR, else
// /tmp, always ending in '/'.
std::string TempFolder();

// The C library's rand as every host shares it: state starts at 1,
// state = state * 214013 + 2531011, result (state >> 16) & 0x7FFF.
int Rand();
void SeedRand(unsigned seed);

}  // namespace platform
