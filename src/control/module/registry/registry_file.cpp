#include "control/module/registry/registry_file.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

bool SameName(std::string_view a, std::string_view b) {
  return !RegistryNameLess()(a, b) && !RegistryNameLess()(b, a);
}

// Whether `key` lies somewhere under `root`.
bool IsBelow(std::string_view key, std::string_view root) {
  return key.size() > root.size() && key[root.size()] == '\\' && SameName(key.substr(0, root.size()), root);
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '\\' || c == '"') {
      quoted += '\\';
      quoted += c;
    } else if (IsControl(c)) {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(c));
      quoted += escape;
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

class Failure : public std::runtime_error {
 public:
  Failure(int line, const std::string& message)
      : std::runtime_error("line " + std::to_string(line) + ": " + message) {}
};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Reads the quoted text at line[at] and moves `at` past it.
std::string Unquote(std::string_view line, std::size_t& at, int number) {
  if (at >= line.size() || line[at] != '"') throw Failure(number, "expected '\"'");
  std::string text;
  for (++at; at < line.size(); ++at) {
    const char c = line[at];
    if (c == '"') {
      ++at;
      return text;
    }
    if (c != '\\') {
      text += c;
      continue;
    }
    if (++at >= line.size()) break;
    if (line[at] == '\\' || line[at] == '"') {
      text += line[at];
    } else if (line[at] == 'x' && at + 2 < line.size() && HexDigit(line[at + 1]) >= 0 &&
               HexDigit(line[at + 2]) >= 0) {
      text += static_cast<char>(HexDigit(line[at + 1]) * 16 + HexDigit(line[at + 2]));
      at += 2;
    } else {
      throw Failure(number, "unknown escape; write \\\\, \\\" or \\xHH");
    }
  }
  throw Failure(number, "a quoted text does not end");
}

RegistryValue ReadValue(std::string_view text, int number) {
  if (!text.empty() && text[0] == '"') {
    std::size_t at = 0;
    std::string value = Unquote(text, at, number);
    if (at != text.size()) throw Failure(number, "something follows the quoted text");
    return value;
  }
  constexpr std::string_view kDword = "dword:";
  if (text.substr(0, kDword.size()) == kDword && text.size() == kDword.size() + 8) {
    std::uint32_t value = 0;
    for (char c : text.substr(kDword.size())) {
      const int digit = HexDigit(c);
      if (digit < 0) throw Failure(number, "a dword is eight hexadecimal digits");
      value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return value;
  }
  throw Failure(number, "a value is \"text\" or dword:XXXXXXXX");
}

}  // namespace

bool RegistryNameLess::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return Lower(x) < Lower(y); });
}

bool IsRegistryKeyPath(std::string_view key) {
  if (key.empty() || key.front() == '\\' || key.back() == '\\' ||
      key.find("\\\\") != std::string_view::npos) {
    return false;
  }
  return std::none_of(key.begin(), key.end(), [](char c) { return IsControl(c) || c == '[' || c == ']'; });
}

void RegistryFile::CreateKey(std::string_view key) {
  if (!IsRegistryKeyPath(key)) throw std::invalid_argument("not a registry key path");
  keys_.try_emplace(std::string(key));
}

void RegistryFile::SetValue(std::string_view key, std::string_view name, RegistryValue value) {
  CreateKey(key);
  Values& values = keys_.find(key)->second;
  values.insert_or_assign(std::string(name), std::move(value));
}

bool RegistryFile::DeleteTree(std::string_view key) {
  bool found = false;
  for (auto it = keys_.lower_bound(key); it != keys_.end();) {
    if (SameName(it->first, key) || IsBelow(it->first, key)) {
      it = keys_.erase(it);
      found = true;
    } else if (RegistryNameLess()(key, it->first.substr(0, key.size()))) {
      break;  // past every key that starts with `key`
    } else {
      ++it;
    }
  }
  return found;
}

const RegistryFile::Values* RegistryFile::FindKey(std::string_view key) const {
  const auto it = keys_.find(key);
  return it == keys_.end() ? nullptr : &it->second;
}

std::map<std::string, RegistryFile::Values, RegistryNameLess> RegistryFile::Tree(std::string_view key) const {
  std::map<std::string, Values, RegistryNameLess> tree;
  for (const auto& [path, values] : keys_) {
    if (key.empty() || SameName(path, key) || IsBelow(path, key)) tree.emplace(path, values);
  }
  return tree;
}

std::string RegistryFile::Text() const {
  std::string text =
      "; The per-user registry of Ostrel controls: each key in brackets, then its values.\n"
      "; @ is the key's default value.\n";
  for (const auto& [key, values] : keys_) {
    text += "\n[" + key + "]\n";
    for (const auto& [name, value] : values) {
      text += name.empty() ? "@" : Quoted(name);
      text += '=';
      if (const auto* string = std::get_if<std::string>(&value)) {
        text += Quoted(*string);
      } else {
        char dword[16];
        std::snprintf(dword, sizeof dword, "dword:%08X",
                      static_cast<unsigned>(std::get<std::uint32_t>(value)));
        text += dword;
      }
      text += '\n';
    }
  }
  return text;
}

RegistryReading RegistryFile::Read(std::string_view text) {
  RegistryFile file;
  Values* current = nullptr;
  int number = 0;
  try {
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      const std::string_view line = text.substr(0, end);
      text.remove_prefix(std::min(end + 1, text.size()));
      ++number;
      if (line.empty() || line[0] == ';') continue;
      if (line[0] == '[') {
        if (line.back() != ']') throw Failure(number, "a key's line ends in ']'");
        const std::string_view key = line.substr(1, line.size() - 2);
        if (!IsRegistryKeyPath(key)) throw Failure(number, "'" + std::string(key) + "' is no key path");
        const auto [it, added] = file.keys_.try_emplace(std::string(key));
        if (!added) throw Failure(number, "the key " + std::string(key) + " is listed twice");
        current = &it->second;
        continue;
      }
      if (current == nullptr) throw Failure(number, "a value before the first key");
      std::size_t at = 1;
      std::string name;
      if (line[0] != '@') {
        at = 0;
        name = Unquote(line, at, number);
        if (name.empty()) throw Failure(number, "the default value's name is @");
      }
      if (at >= line.size() || line[at] != '=') throw Failure(number, "expected '=' after the value's name");
      RegistryValue value = ReadValue(line.substr(at + 1), number);
      if (!current->emplace(std::move(name), std::move(value)).second) {
        throw Failure(number, "a value is given twice");
      }
    }
  } catch (const Failure& failure) {
    return {std::nullopt, failure.what()};
  }
  return {std::move(file), {}};
}
