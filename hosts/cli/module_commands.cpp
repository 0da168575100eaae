#include "module_commands.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <variant>

#include "control/module/module_abi.h"
#include "control/module/registry/guid_text.h"
#include "control/module/registry/module_keys.h"
#include "control/module/registry/registry_store.h"
#include "control/module/registry/type_library.h"
#include "loaded_module.h"
#include "resources/module_resources.h"
#include "script_runner.h"

namespace script {
namespace {

std::string HresultText(ocx::HRESULT hr) {
  if (hr == ocx::SELFREG_E_TYPELIB) return "SELFREG_E_TYPELIB (" + HresultHex(hr) + ")";
  if (hr == ocx::SELFREG_E_CLASS) return "SELFREG_E_CLASS (" + HresultHex(hr) + ")";
  return HresultHex(hr);
}

std::string ValueText(const RegistryValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return '"' + *text + '"';
  char dword[16];
  std::snprintf(dword, sizeof dword, "0x%08X", static_cast<unsigned>(std::get<std::uint32_t>(value)));
  return dword;
}

// Each key of the tree on a line, with its values.
void PrintTree(const RegistryFile& registry, const std::string& root, std::ostream& out) {
  for (const auto& [key, values] : registry.Tree(root)) {
    out << "  " << key;
    for (const auto& [name, value] : values) {
      out << (name.empty() ? " @" : " " + name) << '=' << ValueText(value);
    }
    out << '\n';
  }
}

void PrintFunction(const FunctionDescription& function, std::ostream& out) {
  out << "    " << function.dispid << ' ';
  if (function.result != ocx::VT_VOID) out << TypeLibraryTypeName(function.result) << ' ';
  out << function.name << '(';
  for (std::size_t i = 0; i < function.params.size(); ++i) {
    out << (i > 0 ? ", " : "") << TypeLibraryTypeName(function.params[i].type) << ' '
        << function.params[i].name;
  }
  out << ")\n";
}

// The library in the file, with every interface and function; false with a message
// when the file cannot be read or does not describe a library.
bool PrintTypeLibrary(const std::filesystem::path& file, std::ostream& out, std::ostream& errors) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (!in) {
    errors << "imageedit: " << file.string() << ": cannot be read\n";
    return false;
  }
  const TypeLibraryReading reading = ReadTypeLibrary(text.str());
  if (!reading.library) {
    errors << "imageedit: " << file.string() << ": " << reading.error << '\n';
    return false;
  }
  const TypeLibrary& library = *reading.library;
  out << "type library " << library.name << ' ' << library.major << '.' << library.minor << ' '
      << GuidText(library.libid) << " in " << file.string() << '\n';
  for (const InterfaceDescription& interface : library.interfaces) {
    out << "  dispinterface " << interface.name << ' ' << GuidText(interface.iid) << '\n';
    for (const FunctionDescription& function : interface.functions) PrintFunction(function, out);
  }
  out << "  coclass " << library.coclass.name << ' ' << GuidText(library.coclass.clsid) << ": default "
      << library.coclass.defaultInterface << ", source " << library.coclass.defaultSource << '\n';
  return true;
}

}  // namespace

int RegisterModule(bool unregister, std::ostream& out, std::ostream& errors) {
  ocx::HRESULT hr = ocx::E_FAIL;
  std::filesystem::path path;
  const char* entry = unregister ? "DllUnregisterServer" : "DllRegisterServer";
  try {
    // Registration makes no object, so nothing keeps the module loaded after it.
    const LoadedModule module(ModuleBesideProgram());
    path = module.path();
    hr = unregister ? module.UnregisterServer() : module.RegisterServer();
  } catch (const std::runtime_error& error) {
    errors << "imageedit: " << error.what() << '\n';
    return kExitFailure;
  }
  if (ocx::FAILED(hr)) {
    errors << "imageedit: " << entry << " failed: " << HresultText(hr) << '\n';
    return kExitFailure;
  }
  const std::optional<std::filesystem::path> registry = RegistryPath();
  out << (unregister ? "unregistered " : "registered ") << path.string() << (unregister ? " from " : " in ")
      << (registry ? registry->string() : "the registry") << '\n';
  return kExitOk;
}

int PrintRegistration(std::ostream& out, std::ostream& errors) {
  const std::optional<std::filesystem::path> path = RegistryPath();
  if (!path) {
    errors << "imageedit: no registry: set HOME, XDG_CONFIG_HOME or OSTREL_REGISTRY\n";
    return kExitFailure;
  }
  std::string error;
  const std::optional<RegistryFile> registry = LoadRegistry(*path, &error);
  if (!registry) {
    errors << "imageedit: " << error << '\n';
    return kExitFailure;
  }
  const resources::ModuleVersion& version = resources::kModuleVersion;
  out << "module " << version.internalName << " (" << version.originalFileName << ") version "
      << version.parts[0] << '.' << version.parts[1] << '.' << version.parts[2] << '.' << version.parts[3]
      << (version.selfRegistering ? ", self-registering" : "") << '\n';
  out << "registry " << path->string() << '\n';
  bool anyClass = false;
  for (const std::string& root : ClassKeyRoots()) anyClass = anyClass || !registry->Tree(root).empty();
  out << (anyClass ? "classes\n" : "classes: none registered\n");
  for (const std::string& root : ClassKeyRoots()) PrintTree(*registry, root, out);

  // Each registered version of the library names its file under a platform key.
  bool anyLibrary = false;
  for (const auto& [key, values] : registry->Tree("TypeLib\\" + GuidText(ocx::LIBID_OSTRELIMAGEEDITCTRL))) {
    const auto file = values.find("");
    if (!key.ends_with("\\linux") || file == values.end() ||
        !std::holds_alternative<std::string>(file->second)) {
      continue;
    }
    anyLibrary = true;
    if (!PrintTypeLibrary(std::get<std::string>(file->second), out, errors)) return kExitFailure;
  }
  if (!anyLibrary) out << "type library: not registered\n";
  return kExitOk;
}

}  // namespace script
