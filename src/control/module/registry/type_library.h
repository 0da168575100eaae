// The type library: the control's library, its dispatch interfaces with every
// function, and the control's class, as the interface description declares them.
// generate_interface.py writes it in a text form of our own, which the module embeds
// (EmbeddedTypeLibraryText), serves through ITypeInfo and writes out as the type
// library file at registration, and which hosts read back from that file. A line is
// one of, in this order:
//
//   library NAME {LIBID} MAJOR.MINOR LCID "HELPFILE"
//   dispinterface NAME {IID} FLAGS "HELP"        FLAGS: dispatchable[,hidden]
//   function DISPID NAME RESULT "HELP"           RESULT: VOID, INT, I4 or BSTR
//   param TYPE NAME                              TYPE: INT, I4 or BSTR
//   coclass NAME {CLSID} FLAGS "HELP"            FLAGS: creatable[,control]
//   interface ROLES NAME                         ROLES: default[,source] or member
//
// Words are separated by spaces; a quoted text holds no quote and ends the line.
// Blank lines and lines that start with '#' say nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "control/module/module_abi.h"

struct ParameterDescription {
  std::string name;
  ocx::VARTYPE type;  // VT_INT, VT_I4 or VT_BSTR
};

struct FunctionDescription {
  ocx::DISPID dispid;
  std::string name;
  ocx::VARTYPE result;  // VT_VOID when there is none
  std::vector<ParameterDescription> params;
  std::string help;
};

struct InterfaceDescription {
  std::string name;
  ocx::IID iid;
  ocx::WORD flags;  // TYPEFLAG_
  std::string help;
  std::vector<FunctionDescription> functions;

  // Null when no function has that DISPID.
  const FunctionDescription* FindFunction(ocx::DISPID dispid) const;
};

struct ClassDescription {
  std::string name;
  ocx::CLSID clsid;
  ocx::WORD flags;  // TYPEFLAG_
  std::string help;
  std::string defaultInterface;
  std::string defaultSource;
};

struct TypeLibrary {
  std::string name;
  ocx::GUID libid;
  ocx::WORD major;
  ocx::WORD minor;
  ocx::LCID lcid;
  std::string helpFile;
  std::vector<InterfaceDescription> interfaces;
  ClassDescription coclass;

  // Null when no interface has that identifier.
  const InterfaceDescription* FindInterface(const ocx::IID& iid) const;
};

struct TypeLibraryReading {
  std::optional<TypeLibrary> library;
  std::string error;  // "line N: what is wrong" when there is no library
};

// Reads the text form; anything it does not describe exactly is an error.
TypeLibraryReading ReadTypeLibrary(std::string_view text);
// The text form's name of a parameter or result type.
const char* TypeLibraryTypeName(ocx::VARTYPE type);

// The text generated from the interface description (type_library_text.cpp).
std::string_view EmbeddedTypeLibraryText();
// That text read once; null only if it does not read, which the tests rule out.
const TypeLibrary* EmbeddedTypeLibrary();
