#include "control/module/registry/type_library.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <utility>

#include "control/module/registry/guid_text.h"

namespace {

struct NamedType {
  const char* name;
  ocx::VARTYPE type;
};
constexpr NamedType kTypes[] = {
    {"VOID", ocx::VT_VOID}, {"INT", ocx::VT_INT}, {"I4", ocx::VT_I4}, {"BSTR", ocx::VT_BSTR}};

struct NamedFlag {
  const char* name;
  ocx::WORD flag;
};
constexpr NamedFlag kInterfaceFlags[] = {{"dispatchable", ocx::TYPEFLAG_FDISPATCHABLE},
                                         {"hidden", ocx::TYPEFLAG_FHIDDEN}};
constexpr NamedFlag kClassFlags[] = {{"creatable", ocx::TYPEFLAG_FCANCREATE},
                                     {"control", ocx::TYPEFLAG_FCONTROL}};

class Failure {
 public:
  Failure(int line, std::string message)
      : message_("line " + std::to_string(line) + ": " + std::move(message)) {}
  const std::string& message() const { return message_; }

 private:
  std::string message_;
};

// One line's words, and its quoted text when it ends in one.
struct Words {
  std::vector<std::string_view> words;
  std::optional<std::string_view> text;
};

Words SplitLine(std::string_view line, int number) {
  Words split;
  std::size_t at = 0;
  while (at < line.size()) {
    if (line[at] == ' ') {
      ++at;
      continue;
    }
    if (static_cast<unsigned char>(line[at]) < 0x20 || line[at] == 0x7F) {
      throw Failure(number, "a control character");
    }
    if (line[at] == '"') {
      const std::size_t end = line.find('"', at + 1);
      if (end == std::string_view::npos) throw Failure(number, "a quoted text does not end");
      if (line.find_first_not_of(' ', end + 1) != std::string_view::npos) {
        throw Failure(number, "something follows the quoted text");
      }
      split.text = line.substr(at + 1, end - at - 1);
      for (char c : *split.text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) throw Failure(number, "a control character");
      }
      return split;
    }
    const std::size_t end = std::min(line.find_first_of(" \"", at), line.size());
    split.words.push_back(line.substr(at, end - at));
    at = end;
  }
  return split;
}

// A line's words, checked against the count its kind has.
class Line {
 public:
  Line(Words words, int number) : words_(std::move(words)), number_(number) {}
  int number() const { return number_; }
  std::string_view kind() const { return words_.words[0]; }
  void Expect(std::size_t count, bool text) const {
    if (words_.words.size() != count) {
      throw Failure(number_, std::string(kind()) + " takes " + std::to_string(count - 1) + " words");
    }
    if (words_.text.has_value() != text) {
      throw Failure(number_, std::string(kind()) + (text ? " ends in a quoted text" : " has no quoted text"));
    }
  }
  std::string_view operator[](std::size_t i) const { return words_.words[i]; }
  std::string Text() const { return std::string(*words_.text); }
  Failure Fail(std::string message) const { return Failure(number_, std::move(message)); }

  std::string Name(std::size_t i) const {
    const std::string_view name = words_.words[i];
    for (char c : name) {
      if (!(c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))) {
        throw Fail("'" + std::string(name) + "' is no name");
      }
    }
    return std::string(name);
  }
  ocx::GUID Guid(std::size_t i) const {
    const auto guid = GuidFromText(words_.words[i]);
    if (!guid) throw Fail("'" + std::string(words_.words[i]) + "' is no {GUID}");
    return *guid;
  }
  // A whole number in [low, high], decimal or 0x hexadecimal.
  std::int64_t Number(std::string_view text, std::int64_t low, std::int64_t high) const {
    const bool negative = !text.empty() && text[0] == '-';
    std::string_view digits = negative ? text.substr(1) : text;
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
      digits.remove_prefix(2);
      base = 16;
    }
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
    // Every bound is far inside 63 bits, so a larger magnitude is out of range anyway
    // and must not be negated.
    const bool read = !digits.empty() && error == std::errc() && end == digits.data() + digits.size() &&
                      magnitude <= (std::uint64_t{1} << 62);
    const std::int64_t value = !read      ? 0
                               : negative ? -static_cast<std::int64_t>(magnitude)
                                          : static_cast<std::int64_t>(magnitude);
    if (!read || value < low || value > high) {
      throw Fail("'" + std::string(text) + "' is no number from " + std::to_string(low) + " to " +
                 std::to_string(high));
    }
    return value;
  }
  ocx::VARTYPE Type(std::size_t i, bool result) const {
    for (const NamedType& named : kTypes) {
      if (words_.words[i] == named.name && (result || named.type != ocx::VT_VOID)) return named.type;
    }
    throw Fail("unknown type '" + std::string(words_.words[i]) + "'");
  }
  // Comma-separated flags from `known`; the first must be there.
  template <std::size_t N>
  ocx::WORD Flags(std::size_t i, const NamedFlag (&known)[N]) const {
    ocx::WORD flags = 0;
    std::string_view list = words_.words[i];
    while (true) {
      const std::size_t comma = list.find(',');
      const std::string_view flag = list.substr(0, comma);
      bool found = false;
      for (const NamedFlag& named : known) {
        if (flag == named.name && (flags & named.flag) == 0) {
          flags |= named.flag;
          found = true;
        }
      }
      if (!found) throw Fail("unknown or repeated flag '" + std::string(flag) + "'");
      if (comma == std::string_view::npos) break;
      list.remove_prefix(comma + 1);
    }
    if ((flags & known[0].flag) == 0) throw Fail(std::string("a type here is ") + known[0].name);
    return flags;
  }

 private:
  Words words_;
  int number_;
};

class Reader {
 public:
  TypeLibrary Read(std::string_view text) {
    int number = 0;
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      const std::string_view line = text.substr(0, end);
      text.remove_prefix(std::min(end + 1, text.size()));
      ++number;
      if (line.empty() || line[0] == '#') continue;
      Words words = SplitLine(line, number);
      if (words.words.empty()) {
        if (words.text) throw Failure(number, "a quoted text alone");
        continue;
      }
      ReadLine(Line(std::move(words), number));
    }
    if (!library_) throw Failure(number, "no library");
    if (!classSeen_) throw Failure(number, "no coclass");
    for (const std::string& name : {library_->coclass.defaultInterface, library_->coclass.defaultSource}) {
      if (name.empty()) throw Failure(number, "the coclass has no default interface and source");
    }
    return std::move(*library_);
  }

 private:
  void ReadLine(const Line& line) {
    const std::string_view kind = line.kind();
    if (kind == "library") return ReadLibrary(line);
    if (!library_) throw line.Fail("the library comes first");
    if (kind == "dispinterface") return ReadInterface(line);
    if (kind == "function") return ReadFunction(line);
    if (kind == "param") return ReadParameter(line);
    if (kind == "coclass") return ReadClass(line);
    if (kind == "interface") return ReadClassInterface(line);
    throw line.Fail("unknown line '" + std::string(kind) + "'");
  }

  void ReadLibrary(const Line& line) {
    if (library_) throw line.Fail("a second library");
    line.Expect(5, true);
    TypeLibrary library{};
    library.name = line.Name(1);
    library.libid = line.Guid(2);
    const std::string_view version = line[3];
    const std::size_t dot = version.find('.');
    if (dot == std::string_view::npos) throw line.Fail("a version is MAJOR.MINOR");
    library.major = static_cast<ocx::WORD>(line.Number(version.substr(0, dot), 0, 0xFFFF));
    library.minor = static_cast<ocx::WORD>(line.Number(version.substr(dot + 1), 0, 0xFFFF));
    library.lcid = static_cast<ocx::LCID>(line.Number(line[4], 0, 0xFFFFFFFF));
    library.helpFile = line.Text();
    library_ = std::move(library);
  }

  void ReadInterface(const Line& line) {
    if (classSeen_) throw line.Fail("the coclass comes last");
    line.Expect(4, true);
    InterfaceDescription interface {
      line.Name(1), line.Guid(2), line.Flags(3, kInterfaceFlags), line.Text(), {}
    };
    for (const InterfaceDescription& other : library_->interfaces) {
      if (other.name == interface.name || other.iid == interface.iid) {
        throw line.Fail("a second dispinterface " + interface.name);
      }
    }
    library_->interfaces.push_back(std::move(interface));
  }

  void ReadFunction(const Line& line) {
    if (library_->interfaces.empty() || classSeen_) throw line.Fail("a function belongs to a dispinterface");
    line.Expect(4, true);
    InterfaceDescription& interface = library_->interfaces.back();
    FunctionDescription function{static_cast<ocx::DISPID>(line.Number(line[1], INT32_MIN, INT32_MAX)),
                                 line.Name(2),
                                 line.Type(3, true),
                                 {},
                                 line.Text()};
    for (const FunctionDescription& other : interface.functions) {
      if (other.dispid == function.dispid || other.name == function.name) {
        throw line.Fail(function.name + ": a second function with its name or DISPID");
      }
    }
    interface.functions.push_back(std::move(function));
  }

  void ReadParameter(const Line& line) {
    if (library_->interfaces.empty() || library_->interfaces.back().functions.empty() || classSeen_) {
      throw line.Fail("a param belongs to a function");
    }
    line.Expect(3, false);
    FunctionDescription& function = library_->interfaces.back().functions.back();
    ParameterDescription param{line.Name(2), line.Type(1, false)};
    for (const ParameterDescription& other : function.params) {
      if (other.name == param.name) throw line.Fail(function.name + ": two parameters named " + param.name);
    }
    function.params.push_back(std::move(param));
  }

  void ReadClass(const Line& line) {
    if (classSeen_) throw line.Fail("a second coclass");
    line.Expect(4, true);
    library_->coclass =
        ClassDescription{line.Name(1), line.Guid(2), line.Flags(3, kClassFlags), line.Text(), {}, {}};
    classSeen_ = true;
  }

  void ReadClassInterface(const Line& line) {
    if (!classSeen_) throw line.Fail("an interface line belongs to the coclass");
    line.Expect(3, false);
    const std::string name = line.Name(2);
    bool declared = false;
    for (const InterfaceDescription& interface : library_->interfaces)
      declared = declared || interface.name == name;
    if (!declared) throw line.Fail("no dispinterface is named " + name);
    const std::string_view roles = line[1];
    std::string* slot = roles == "default"          ? &library_->coclass.defaultInterface
                        : roles == "default,source" ? &library_->coclass.defaultSource
                                                    : nullptr;
    if (roles == "member" || roles == "source") return;
    if (slot == nullptr) throw line.Fail("unknown roles '" + std::string(roles) + "'");
    if (!slot->empty()) throw line.Fail("a second " + std::string(roles) + " interface");
    *slot = name;
  }

  std::optional<TypeLibrary> library_;
  bool classSeen_ = false;
};

}  // namespace

const FunctionDescription* InterfaceDescription::FindFunction(ocx::DISPID dispid) const {
  for (const FunctionDescription& function : functions) {
    if (function.dispid == dispid) return &function;
  }
  return nullptr;
}

const InterfaceDescription* TypeLibrary::FindInterface(const ocx::IID& iid) const {
  for (const InterfaceDescription& interface : interfaces) {
    if (interface.iid == iid) return &interface;
  }
  return nullptr;
}

TypeLibraryReading ReadTypeLibrary(std::string_view text) {
  try {
    return {Reader().Read(text), {}};
  } catch (const Failure& failure) {
    return {std::nullopt, failure.message()};
  }
}

const char* TypeLibraryTypeName(ocx::VARTYPE type) {
  for (const NamedType& named : kTypes) {
    if (named.type == type) return named.name;
  }
  return "?";
}

const TypeLibrary* EmbeddedTypeLibrary() {
  static const TypeLibraryReading reading = ReadTypeLibrary(EmbeddedTypeLibraryText());
  return reading.library ? &*reading.library : nullptr;
}
