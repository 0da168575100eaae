#include "control/module/registry/module_keys.h"

#include "control/module/registry/guid_text.h"

std::string TypeLibraryVersionKey(const TypeLibrary& library) {
  return "TypeLib\\" + GuidText(library.libid) + "\\" + std::to_string(library.major) + "." +
         std::to_string(library.minor);
}

std::string InterfaceKey(const InterfaceDescription& interface) {
  return "Interface\\" + GuidText(interface.iid);
}

std::vector<std::string> TypeLibraryKeyRoots(const TypeLibrary& library) {
  std::vector<std::string> roots = {TypeLibraryVersionKey(library)};
  for (const InterfaceDescription& interface : library.interfaces) roots.push_back(InterfaceKey(interface));
  return roots;
}

std::string ControlClassKey() { return "CLSID\\" + GuidText(ocx::CLSID_ImageEditCtrl); }
std::string PropertyPageClassKey() { return "CLSID\\" + GuidText(ocx::CLSID_ImageEditCtrlPropPage); }

std::vector<std::string> ClassKeyRoots() {
  return {ControlClassKey(), kControlProgId, PropertyPageClassKey()};
}
