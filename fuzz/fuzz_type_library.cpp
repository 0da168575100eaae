// Type library files as a host reads them back from the registry's file name: any
// bytes are read or refused with the line that is wrong, and what is read holds
// together (the coclass names interfaces the library has).
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "control/module/registry/type_library.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const TypeLibraryReading reading =
      ReadTypeLibrary(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!reading.library) {
    if (reading.error.rfind("line ", 0) != 0) std::abort();
    return 0;
  }
  const TypeLibrary& library = *reading.library;
  for (const std::string& name : {library.coclass.defaultInterface, library.coclass.defaultSource}) {
    bool found = false;
    for (const InterfaceDescription& interface : library.interfaces) found = found || interface.name == name;
    if (!found) std::abort();
  }
  for (const InterfaceDescription& interface : library.interfaces) {
    for (const FunctionDescription& function : interface.functions) {
      if (interface.FindFunction(function.dispid) != &function) std::abort();
      TypeLibraryTypeName(function.result);
    }
  }
  return 0;
}
