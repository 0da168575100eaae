// The per-user registry: keys named by paths (CLSID\{...}\InprocServer32) with named
// values, kept in a plain text file of our own that people can read:
//
//   ; comment
//   [CLSID\{204FAB7E-2001-4065-AF63-CE06594A96EF}\InprocServer32]
//   @="/home/me/lib/libOstrelImageEditCtrl.so"
//   "ThreadingModel"="Apartment"
//   "Count"=dword:00000001
//
// @ is the key's default value. Inside quotes, a backslash, a quote and each control
// character are written \\, \" and \xHH. Keys and value names compare without regard
// to ASCII case, as the system's registry does; the file lists keys in that order,
// each key's values by name. A key exists when it is listed, holding values or not;
// the keys above it need not be.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

using RegistryValue = std::variant<std::string, std::uint32_t>;

// Orders names without regard to ASCII case.
struct RegistryNameLess {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

struct RegistryReading;

class RegistryFile {
 public:
  using Values = std::map<std::string, RegistryValue, RegistryNameLess>;

  // Reads the text form; anything it does not describe exactly is an error.
  static RegistryReading Read(std::string_view text);
  std::string Text() const;

  // Creates the key when it is not there. A key path is one or more names joined by
  // single backslashes; a name holds no control character, '[' or ']'.
  void CreateKey(std::string_view key);
  // Creates the key as needed; "" names the default value.
  void SetValue(std::string_view key, std::string_view name, RegistryValue value);
  // Removes the key and every key below it; false when there was none.
  bool DeleteTree(std::string_view key);
  // Null when the key is not there.
  const Values* FindKey(std::string_view key) const;
  // The key and those below it, in order; "" names every key.
  std::map<std::string, Values, RegistryNameLess> Tree(std::string_view key) const;

  bool operator==(const RegistryFile&) const = default;

 private:
  std::map<std::string, Values, RegistryNameLess> keys_;
};

struct RegistryReading {
  std::optional<RegistryFile> file;
  std::string error;  // "line N: what is wrong" when there is no file
};

// Whether `key` is a path the file can hold.
bool IsRegistryKeyPath(std::string_view key);
