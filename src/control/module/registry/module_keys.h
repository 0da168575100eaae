// The registry keys that belong to the module, by the root of each tree: registering
// writes keys only inside them and unregistering removes exactly them, so keys of
// other modules are never touched.
#pragma once

#include <string>
#include <vector>

#include "control/module/registry/type_library.h"

// The type library's version key (TypeLib\{LIBID}\MAJOR.MINOR) and its interfaces'
// keys (Interface\{IID}).
std::vector<std::string> TypeLibraryKeyRoots(const TypeLibrary& library);
std::string TypeLibraryVersionKey(const TypeLibrary& library);
std::string InterfaceKey(const InterfaceDescription& interface);

// The control's class, its ProgID and the property page's class.
inline constexpr const char* kControlProgId = "Ostrel.ImageEditCtrl.1";
std::string ControlClassKey();
std::string PropertyPageClassKey();
std::vector<std::string> ClassKeyRoots();
