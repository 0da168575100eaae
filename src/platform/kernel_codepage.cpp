// Code-page conversion with the Windows calling conventions. UTF-8 (the ANSI code
// page) is converted here; the East Asian code pages go through iconv.
#include <iconv.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/kernel.h"

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// The iconv name of a supported East Asian code page; null for UTF-8 and for code
// pages that are not supported (told apart by IsUtf8). A web page's C library (musl)
// knows 936 and 932 only by their standard names and uses those tables: they read
// every character of KS X 1001 and GB 2312 as glibc does, but musl also reads the
// user-defined areas (as private-use characters) that glibc refuses, and its Shift_JIS
// differs from code page 932 in a few symbols.
const char* IconvName(UINT codePage) {
#ifdef __EMSCRIPTEN__
  constexpr const char* kChinese = "GBK";
  constexpr const char* kJapanese = "SHIFT_JIS";
#else
  constexpr const char* kChinese = "CP936";
  constexpr const char* kJapanese = "CP932";
#endif
  switch (codePage) {
    case 949:
      return "CP949";
    case 936:
      return kChinese;
    case 950:
      return "CP950";
    case 932:
      return kJapanese;
    default:
      return nullptr;
  }
}

bool IsUtf8(UINT codePage) { return codePage == CP_ACP || codePage == CP_UTF8; }

bool IsSupported(UINT codePage) { return IsUtf8(codePage) || IconvName(codePage) != nullptr; }

void AppendCodePoint(std::u16string& out, char32_t c) {
  if (c < 0x10000) {
    out.push_back(static_cast<char16_t>(c));
  } else {
    c -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
  }
}

// Length of the well-formed UTF-8 sequence at `s` (at most `left` bytes), with its
// code point; 0 when the sequence is malformed, overlong, a surrogate or too large.
std::size_t Utf8Sequence(const unsigned char* s, std::size_t left, char32_t* c) {
  std::size_t length = s[0] < 0x80 ? 1 : s[0] >= 0xF0 ? 4 : s[0] >= 0xE0 ? 3 : s[0] >= 0xC0 ? 2 : 0;
  if (length == 0 || length > left || s[0] > 0xF4) return 0;
  char32_t value = length == 1 ? s[0] : s[0] & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((s[i] & 0xC0) != 0x80) return 0;
    value = (value << 6) | (s[i] & 0x3F);
  }
  static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (value < kSmallest[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
  *c = value;
  return length;
}

// Each byte that starts no valid sequence becomes one U+FFFD.
bool DecodeUtf8(const char* src, std::size_t length, bool strict, std::u16string& out) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(src);
  for (std::size_t i = 0; i < length;) {
    char32_t c = 0;
    std::size_t n = Utf8Sequence(bytes + i, length - i, &c);
    if (n == 0) {
      if (strict) return false;
      out.push_back(kReplacement);
      ++i;
    } else {
      AppendCodePoint(out, c);
      i += n;
    }
  }
  return true;
}

void EncodeUtf8(const WCHAR* src, std::size_t length, std::string& out) {
  for (std::size_t i = 0; i < length; ++i) {
    char32_t c = src[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < length && src[i + 1] >= 0xDC00 && src[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (src[++i] - 0xDC00);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = kReplacement;  // an unpaired surrogate
    }
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
}

// One iconv conversion descriptor, closed on every path.
class Converter {
 public:
  Converter(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
  ~Converter() {
    if (ok()) iconv_close(cd_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  bool ok() const { return cd_ != reinterpret_cast<iconv_t>(-1); }
  // Back to the initial shift state, for input unrelated to the last.
  void Reset() { iconv(cd_, nullptr, nullptr, nullptr, nullptr); }

  // Converts as much as possible into `out`; false when it stopped at input it
  // cannot convert (errno tells why), true when all input was used.
  bool Run(const char*& in, std::size_t& inLeft, std::string& out) {
    char buffer[256];
    while (inLeft > 0) {
      char* next = buffer;
      std::size_t outLeft = sizeof buffer;
      std::size_t result = iconv(cd_, const_cast<char**>(&in), &inLeft, &next, &outLeft);
      int error = errno;
      out.append(buffer, static_cast<std::size_t>(next - buffer));
      if (result == static_cast<std::size_t>(-1) && error != E2BIG) return false;
    }
    return true;
  }

 private:
  iconv_t cd_;
};

std::u16string FromUtf16Le(const std::string& bytes) {
  std::u16string out;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    out.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                        (static_cast<unsigned char>(bytes[i + 1]) << 8)));
  }
  return out;
}

std::string ToUtf16Le(const WCHAR* src, std::size_t length) {
  std::string bytes;
  for (std::size_t i = 0; i < length; ++i) {
    bytes.push_back(static_cast<char>(src[i] & 0xFF));
    bytes.push_back(static_cast<char>(src[i] >> 8));
  }
  return bytes;
}

// A byte that starts no character of the code page becomes one U+FFFD.
bool DecodeIconv(const char* charset, const char* src, std::size_t length, bool strict, std::u16string& out) {
  Converter converter("UTF-16LE", charset);
  if (!converter.ok()) return false;
  std::string bytes;
  const char* in = src;
  std::size_t inLeft = length;
  while (!converter.Run(in, inLeft, bytes)) {
    if (strict) return false;
    bytes.append("\xFD\xFF", 2);
    ++in;
    --inLeft;
  }
  out = FromUtf16Le(bytes);
  return true;
}

// The encoding of a code page read off its decoding: each single byte and each pair
// of a lead byte and a trail byte that decodes to one character gives that character
// its bytes (the lowest code wins where two decode alike). For C libraries whose
// iconv decodes the East Asian code pages but cannot encode them (a web page's).
class DecodedEncodingTable {
 public:
  explicit DecodedEncodingTable(const char* charset) {
    Converter converter("UTF-16LE", charset);
    if (!converter.ok()) return;
    for (unsigned code = 0x01; code <= 0xFF; ++code) Learn(converter, code, 1);
    for (unsigned lead = 0x81; lead <= 0xFE; ++lead) {
      for (unsigned trail = 0x40; trail <= 0xFE; ++trail) Learn(converter, lead << 8 | trail, 2);
    }
  }
  bool empty() const { return codes_.empty(); }
  // The bytes of one UTF-16 unit; none when the code page cannot hold it.
  std::optional<std::uint16_t> Code(char16_t unit) const {
    const auto found = codes_.find(unit);
    if (found == codes_.end()) return std::nullopt;
    return found->second;
  }

 private:
  void Learn(Converter& converter, unsigned code, std::size_t length) {
    const char bytes[2] = {static_cast<char>(length == 2 ? code >> 8 : code), static_cast<char>(code & 0xFF)};
    const char* in = length == 2 ? bytes : bytes + 1;
    std::size_t inLeft = length;
    std::string out;
    converter.Reset();
    if (!converter.Run(in, inLeft, out) || out.size() != 2) return;
    const auto unit =
        static_cast<char16_t>(static_cast<unsigned char>(out[0]) | (static_cast<unsigned char>(out[1]) << 8));
    if (unit != kReplacement) codes_.emplace(unit, static_cast<std::uint16_t>(code));
  }

  std::unordered_map<char16_t, std::uint16_t> codes_;
};

bool EncodeByTable(const char* charset, const WCHAR* src, std::size_t length, char defaultChar,
                   bool* usedDefault, std::string& out) {
  static std::map<std::string, DecodedEncodingTable> tables;
  const DecodedEncodingTable& table = tables.try_emplace(charset, charset).first->second;
  if (table.empty()) return false;
  for (std::size_t i = 0; i < length; ++i) {
    if (src[i] == 0) {
      out.push_back('\0');
      continue;
    }
    const auto code = table.Code(src[i]);
    const bool pair = src[i] >= 0xD800 && src[i] <= 0xDBFF && i + 1 < length && src[i + 1] >= 0xDC00 &&
                      src[i + 1] <= 0xDFFF;
    if (!code) {
      out.push_back(defaultChar);
      *usedDefault = true;
      if (pair) ++i;
    } else if (*code > 0xFF) {
      out.push_back(static_cast<char>(*code >> 8));
      out.push_back(static_cast<char>(*code & 0xFF));
    } else {
      out.push_back(static_cast<char>(*code));
    }
  }
  return true;
}

// A character the code page cannot hold (or an unpaired surrogate) becomes the
// default character.
bool EncodeIconv(const char* charset, const WCHAR* src, std::size_t length, char defaultChar,
                 bool* usedDefault, std::string& out) {
  Converter converter(charset, "UTF-16LE");
  if (!converter.ok()) return EncodeByTable(charset, src, length, defaultChar, usedDefault, out);
  std::string units = ToUtf16Le(src, length);
  const char* in = units.data();
  std::size_t inLeft = units.size();
  while (!converter.Run(in, inLeft, out)) {
    out.push_back(defaultChar);
    *usedDefault = true;
    auto unit = [&](std::size_t at) {
      return static_cast<char16_t>(static_cast<unsigned char>(in[at]) |
                                   (static_cast<unsigned char>(in[at + 1]) << 8));
    };
    bool pair =
        inLeft >= 4 && unit(0) >= 0xD800 && unit(0) <= 0xDBFF && unit(2) >= 0xDC00 && unit(2) <= 0xDFFF;
    std::size_t skip = std::min<std::size_t>(pair ? 4 : 2, inLeft);
    in += skip;
    inLeft -= skip;
  }
  return true;
}

// Windows result rules: size 0 asks for the length; a short buffer fails.
template <typename Char>
int CopyOut(const std::basic_string<Char>& converted, Char* dest, int destSize) {
  if (converted.size() > static_cast<std::size_t>(INT_MAX)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  int needed = static_cast<int>(converted.size());
  if (destSize == 0) return needed;
  if (needed > destSize) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  std::copy(converted.begin(), converted.end(), dest);
  return needed;
}

bool ValidArguments(UINT codePage, const void* src, int srcLength, const void* dest, int destSize) {
  bool valid = IsSupported(codePage) && src != nullptr && srcLength != 0 && srcLength >= -1 &&
               destSize >= 0 && (destSize == 0 || dest != nullptr);
  if (!valid) SetLastError(ERROR_INVALID_PARAMETER);
  return valid;
}

std::size_t WideLength(const WCHAR* s) {
  std::size_t n = 0;
  while (s[n] != 0) ++n;
  return n;
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLength, WCHAR* dest,
                        int destSize) {
  if (!ValidArguments(codePage, src, srcLength, dest, destSize)) return 0;
  std::size_t length = srcLength == -1 ? std::strlen(src) + 1 : static_cast<std::size_t>(srcLength);
  bool strict = (flags & MB_ERR_INVALID_CHARS) != 0;
  std::u16string converted;
  bool ok = IsUtf8(codePage) ? DecodeUtf8(src, length, strict, converted)
                             : DecodeIconv(IconvName(codePage), src, length, strict, converted);
  if (!ok) {
    SetLastError(ERROR_NO_UNICODE_TRANSLATION);
    return 0;
  }
  return CopyOut(converted, dest, destSize);
}

int WideCharToMultiByte(UINT codePage, DWORD /*flags*/, const WCHAR* src, int srcLength, char* dest,
                        int destSize, const char* defaultChar, BOOL* usedDefault) {
  if (!ValidArguments(codePage, src, srcLength, dest, destSize)) return 0;
  if (IsUtf8(codePage) && (defaultChar != nullptr || usedDefault != nullptr)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  std::size_t length = srcLength == -1 ? WideLength(src) + 1 : static_cast<std::size_t>(srcLength);
  std::string converted;
  bool defaulted = false;
  if (IsUtf8(codePage)) {
    EncodeUtf8(src, length, converted);
  } else if (!EncodeIconv(IconvName(codePage), src, length, defaultChar != nullptr ? *defaultChar : '?',
                          &defaulted, converted)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  if (usedDefault != nullptr) *usedDefault = defaulted ? TRUE : FALSE;
  return CopyOut(converted, dest, destSize);
}

std::string NarrowFromWide(const WCHAR* text, UINT length) {
  if (length == 0) return std::string();
  const int wideLength = static_cast<int>(length);
  const int size = WideCharToMultiByte(CP_ACP, 0, text, wideLength, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, text, wideLength, narrow.data(), size, nullptr, nullptr);
  return narrow;
}

std::u16string WideFromNarrow(std::string_view text) {
  if (text.empty()) return std::u16string();
  const int narrowLength = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), narrowLength, nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(size), u'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), narrowLength, wide.data(), size);
  return wide;
}
