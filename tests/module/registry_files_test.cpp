// The readers of the files that registration writes and hosts read back: the
// registry file and the type library's text form. Both are outside data to a host,
// so each refuses what it does not describe exactly, saying on which line.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "control/module/registry/guid_text.h"
#include "control/module/registry/registry_file.h"
#include "control/module/registry/type_library.h"

namespace {

TEST(RegistryFile, WhatIsWrittenReadsBackTheSame) {
  RegistryFile registry;
  registry.SetValue("Software\\Ostrel", "", "default");
  // Every character a path or a name may hold must survive the quotes.
  registry.SetValue("Software\\Ostrel", "Path", "C:\\dir\\\"quoted\" tab\there\nnew line \x7F é");
  registry.SetValue("Software\\Ostrel", "Odd \"name\" \\ =", std::uint32_t{0xDEADBEEF});
  registry.CreateKey("Software\\Ostrel\\Empty");
  registry.SetValue("A\\B", "x", "1");
  const std::string text = registry.Text();
  const RegistryReading reading = RegistryFile::Read(text);
  ASSERT_TRUE(reading.file) << reading.error;
  EXPECT_EQ(*reading.file, registry);
  EXPECT_EQ(reading.file->Text(), text);
  EXPECT_NE(text.find("\"Odd \\\"name\\\" \\\\ =\"=dword:DEADBEEF\n"), std::string::npos) << text;
  EXPECT_NE(text.find("tab\\x09here\\x0Anew line \\x7F é"), std::string::npos) << text;
  // Keys come in order whatever the order they were made in; a key's default value
  // comes first.
  EXPECT_LT(text.find("[A\\B]"), text.find("[Software\\Ostrel]"));
  EXPECT_LT(text.find("@=\"default\""), text.find("\"Odd"));
}

TEST(RegistryFile, KeysAndNamesIgnoreCaseAndATreeIsOnlyItsOwnKeys) {
  RegistryFile registry;
  registry.SetValue("CLSID\\{AB}", "ThreadingModel", "Apartment");
  registry.SetValue("clsid\\{ab}", "threadingmodel", "Both");
  ASSERT_NE(registry.FindKey("Clsid\\{Ab}"), nullptr);
  EXPECT_EQ(registry.FindKey("Clsid\\{Ab}")->size(), 1u);
  EXPECT_EQ(std::get<std::string>(registry.FindKey("CLSID\\{AB}")->at("THREADINGMODEL")), "Both");

  for (const char* key : {"CLSID\\{AB}\\Sub", "CLSID\\{AB}\\Sub\\Deeper", "CLSID\\{AB}.old", "CLSID\\{AB}-x",
                          "CLSID\\{ABC}", "CLSID\\{A}", "CLSID"}) {
    registry.CreateKey(key);
  }
  EXPECT_EQ(registry.Tree("clsid\\{ab}").size(), 3u);
  EXPECT_TRUE(registry.DeleteTree("clsid\\{ab}"));
  EXPECT_FALSE(registry.DeleteTree("CLSID\\{AB}"));
  std::vector<std::string> left;
  for (const auto& [key, values] : registry.Tree("")) left.push_back(key);
  // In the order of the names' lower-case letters: '}' comes after 'c'.
  EXPECT_EQ(left, (std::vector<std::string>{"CLSID", "CLSID\\{ABC}", "CLSID\\{AB}-x", "CLSID\\{AB}.old",
                                            "CLSID\\{A}"}));
  EXPECT_THROW(registry.CreateKey("A\\\\B"), std::invalid_argument);
  EXPECT_THROW(registry.CreateKey("\\A"), std::invalid_argument);
  EXPECT_THROW(registry.CreateKey("A[1]"), std::invalid_argument);
}

TEST(RegistryFile, MalformedFilesAreRefusedAtTheirLine) {
  const std::vector<std::tuple<std::string, std::string>> cases = {
      {"@=\"a\"\n", "line 1: a value before the first key"},
      {"[A]\n[A]\n", "line 2: the key A is listed twice"},
      {"[A]\n[a]\n", "line 2: the key a is listed twice"},
      {"; c\n[A\n", "line 2: a key's line ends in ']'"},
      {"[A\\]\n", "line 1: 'A\\' is no key path"},
      {"[]\n", "line 1: '' is no key path"},
      {"[A\tB]\n", "line 1: 'A\tB' is no key path"},
      {"[A]\n@=\"a\"\n@=\"b\"\n", "line 3: a value is given twice"},
      {"[A]\n\"N\"=\"a\"\n\"n\"=\"b\"\n", "line 3: a value is given twice"},
      {"[A]\n@=\"unended\n", "line 2: a quoted text does not end"},
      {"[A]\n@=\"ends in a backslash\\\n", "line 2: a quoted text does not end"},
      {"[A]\n@=\"\\q\"\n", "line 2: unknown escape"},
      {"[A]\n@=\"\\x4\"\n", "line 2: unknown escape"},
      {"[A]\n@=\"a\" x\n", "line 2: something follows the quoted text"},
      {"[A]\n@=dword:1234567\n", "line 2: a value is \"text\" or dword:XXXXXXXX"},
      {"[A]\n@=dword:1234567G\n", "line 2: a dword is eight hexadecimal digits"},
      {"[A]\n@=42\n", "line 2: a value is \"text\" or dword:XXXXXXXX"},
      {"[A]\n\"\"=\"a\"\n", "line 2: the default value's name is @"},
      {"[A]\nName=\"a\"\n", "line 2: expected '\"'"},
      {"[A]\n\"Name\" = \"a\"\n", "line 2: expected '=' after the value's name"},
      {"[A]\r\n", "line 1: a key's line ends in ']'"},
  };
  for (const auto& [text, message] : cases) {
    const RegistryReading reading = RegistryFile::Read(text);
    EXPECT_FALSE(reading.file) << text;
    EXPECT_EQ(reading.error.substr(0, message.size()), message) << text;
  }
  EXPECT_TRUE(RegistryFile::Read("").file);
  EXPECT_TRUE(RegistryFile::Read("; only a comment\n\n[A]").file);
}

constexpr const char* kLibrary =
    "# comment\n"
    "library L {00000000-0000-0000-0000-00000000000A} 2.3 0x0409 \"L.hlp\"\n"
    "dispinterface _DM {00000000-0000-0000-0000-00000000000b} dispatchable,hidden \"Methods\"\n"
    "function 1 SetImage VOID \"Loads\"\n"
    "param BSTR lpszFilePath\n"
    "function -552 AboutBox VOID \"About\"\n"
    "function 23 ScaleImage I4 \"Scales\"\n"
    "param INT nScaleFactor\n"
    "dispinterface _DE {00000000-0000-0000-0000-00000000000C} dispatchable \"Events\"\n"
    "function 1 ColorSelected VOID \"Picked\"\n"
    "param BSTR lpszColor\n"
    "coclass C {00000000-0000-0000-0000-00000000000D} creatable,control \"Control\"\n"
    "interface default _DM\n"
    "interface default,source _DE\n";

TEST(TypeLibraryText, ReadsEveryPart) {
  const TypeLibraryReading reading = ReadTypeLibrary(kLibrary);
  ASSERT_TRUE(reading.library) << reading.error;
  const TypeLibrary& library = *reading.library;
  EXPECT_EQ(library.name, "L");
  EXPECT_EQ(GuidText(library.libid), "{00000000-0000-0000-0000-00000000000A}");
  EXPECT_EQ(library.major, 2);
  EXPECT_EQ(library.minor, 3);
  EXPECT_EQ(library.lcid, 0x409u);
  EXPECT_EQ(library.helpFile, "L.hlp");
  ASSERT_EQ(library.interfaces.size(), 2u);
  const InterfaceDescription& methods = library.interfaces[0];
  EXPECT_EQ(GuidText(methods.iid), "{00000000-0000-0000-0000-00000000000B}");
  EXPECT_EQ(methods.flags, ocx::TYPEFLAG_FDISPATCHABLE | ocx::TYPEFLAG_FHIDDEN);
  ASSERT_EQ(methods.functions.size(), 3u);
  EXPECT_EQ(methods.functions[1].dispid, -552);
  EXPECT_TRUE(methods.functions[1].params.empty());
  EXPECT_EQ(methods.functions[2].result, ocx::VT_I4);
  EXPECT_EQ(methods.functions[2].params.at(0).type, ocx::VT_INT);
  EXPECT_EQ(methods.FindFunction(23), &methods.functions[2]);
  EXPECT_EQ(methods.FindFunction(2), nullptr);
  EXPECT_EQ(library.interfaces[1].flags, ocx::TYPEFLAG_FDISPATCHABLE);
  EXPECT_EQ(library.coclass.flags, ocx::TYPEFLAG_FCANCREATE | ocx::TYPEFLAG_FCONTROL);
  EXPECT_EQ(library.coclass.defaultInterface, "_DM");
  EXPECT_EQ(library.coclass.defaultSource, "_DE");
}

// Each case replaces one line of the valid library (by its first words) or adds one.
TEST(TypeLibraryText, MalformedTextIsRefusedAtItsLine) {
  const auto replaced = [](const std::string& from, const std::string& to) {
    std::string text = kLibrary;
    const std::size_t at = text.find(from);
    return text.replace(at, text.find('\n', at) - at, to);
  };
  const std::vector<std::tuple<std::string, std::string>> cases = {
      {replaced("library", "library L {00000000-0000-0000-0000-00000000000A} 2 0x0409 \"L.hlp\""),
       "line 2: a version is MAJOR.MINOR"},
      {replaced("library", "library L {00000000-0000-0000-0000-00000000000A} 2.65536 0 \"\""),
       "line 2: '65536' is no number from 0 to 65535"},
      {replaced("library", "library L {00000000-0000-0000-0000-00000000000A} 2.3 0x1FFFFFFFF \"\""),
       "line 2: '0x1FFFFFFFF' is no number"},
      {replaced("library", "library L {00000000-0000-0000-0000-0000000000} 2.3 0 \"\""), "line 2: '{0000"},
      {replaced("library", "library L {00000000-0000-0000-0000-00000000000A} 2.3 0"),
       "line 2: library ends in a quoted text"},
      {replaced("library", "library L-1 {00000000-0000-0000-0000-00000000000A} 2.3 0 \"\""),
       "line 2: 'L-1' is no name"},
      {replaced("dispinterface _DM", "dispinterface _DM {00000000-0000-0000-0000-00000000000B} hidden \"M\""),
       "line 3: a type here is dispatchable"},
      {replaced("dispinterface _DM",
                "dispinterface _DM {00000000-0000-0000-0000-00000000000B} dispatchable,x \"M\""),
       "line 3: unknown or repeated flag 'x'"},
      {replaced("dispinterface _DE",
                "dispinterface _DM {00000000-0000-0000-0000-00000000000E} dispatchable \"E\""),
       "line 9: a second dispinterface _DM"},
      {replaced("function 1 SetImage", "function 99999999999 SetImage VOID \"x\""), "line 4: '99999999999'"},
      // The one magnitude whose negation would overflow.
      {replaced("function 1 SetImage", "function -9223372036854775808 SetImage VOID \"x\""),
       "line 4: '-9223372036854775808' is no number"},
      {replaced("function 1 SetImage", "function 1 SetImage LONG \"x\""), "line 4: unknown type 'LONG'"},
      {replaced("function 1 SetImage", "function 23 SetImage VOID \"x\""),
       "line 7: ScaleImage: a second function with its name or DISPID"},
      {replaced("param BSTR lpszFilePath", "param VOID lpszFilePath"), "line 5: unknown type 'VOID'"},
      {replaced("param BSTR lpszFilePath", "param BSTR a b"), "line 5: param takes 2 words"},
      {replaced("param BSTR lpszFilePath", "param BSTR \"a\""), "line 5: param takes 2 words"},
      {replaced("function 1 SetImage", "function 1 SetImage VOID \"a\" b"),
       "line 4: something follows the quoted text"},
      {replaced("function 1 SetImage", "function 1 SetImage VOID \"unended"),
       "line 4: a quoted text does not end"},
      {replaced("function 1 SetImage", "function 1 SetImage VOID \"a\tb\""), "line 4: a control character"},
      {replaced("# comment", "param INT n"), "line 1: the library comes first"},
      {replaced("interface default _DM", "interface default _DX"), "line 13: no dispinterface is named _DX"},
      {replaced("interface default _DM", "interface default,source _DM"),
       "line 14: a second default,source interface"},
      {replaced("interface default _DM", "interface primary _DM"), "line 13: unknown roles 'primary'"},
      {replaced("interface default _DM", "interface member _DM"),
       "line 14: the coclass has no default interface and source"},
      {std::string(kLibrary) + "function 2 F VOID \"x\"\n", "line 15: a function belongs to a dispinterface"},
      {std::string(kLibrary) + "coclass D {00000000-0000-0000-0000-00000000000E} creatable \"\"\n",
       "line 15: a second coclass"},
      {std::string(kLibrary) + "library M {00000000-0000-0000-0000-00000000000E} 1.0 0 \"\"\n",
       "line 15: a second library"},
      {std::string(kLibrary) + "typedef x\n", "line 15: unknown line 'typedef'"},
      {std::string(kLibrary) + "\"alone\"\n", "line 15: a quoted text alone"},
      {replaced("coclass", "# no coclass"), "line 13: an interface line belongs to the coclass"},
      {"", "line 0: no library"},
  };
  for (const auto& [text, message] : cases) {
    const TypeLibraryReading reading = ReadTypeLibrary(text);
    EXPECT_FALSE(reading.library) << text;
    EXPECT_EQ(reading.error.substr(0, message.size()), message) << text;
  }
}

TEST(GuidText, ReadsWhatItWritesAndNothingElse) {
  EXPECT_EQ(GuidText(ocx::CLSID_ImageEditCtrl), "{204FAB7E-2001-4065-AF63-CE06594A96EF}");
  EXPECT_EQ(GuidFromText("{204fab7e-2001-4065-af63-ce06594a96ef}"), ocx::CLSID_ImageEditCtrl);
  for (const char* text :
       {"204FAB7E-2001-4065-AF63-CE06594A96EF", "{204FAB7E-2001-4065-AF63-CE06594A96E}",
        "{204FAB7E-2001-4065-AF63+CE06594A96EF}", "{204FAB7E-2001-4065-AF63-CE06594A96EG}",
        "{204FAB7E-2001-4065-AF6-3CE06594A96EF}", "{ 04FAB7E-2001-4065-AF63-CE06594A96EF}"}) {
    EXPECT_FALSE(GuidFromText(text)) << text;
  }
}

}  // namespace
