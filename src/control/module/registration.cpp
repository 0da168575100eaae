#include "control/module/registration.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

#include "control/module/registry/guid_text.h"
#include "control/module/registry/module_keys.h"
#include "control/module/registry/registry_store.h"
#include "control/module/registry/type_library.h"
#include "platform/dialog_resources.h"
#include "resources/module_resources.h"

namespace {

// OLEMISC_SETCLIENTSITEFIRST | ACTIVATEWHENVISIBLE | INSIDEOUT | CANTLINKINSIDE |
// RECOMPOSEONRESIZE.
constexpr unsigned kMiscStatus = 0x20191;
// The system's automation marshaller: dispatch interfaces need no proxy of their own.
constexpr const char* kAutomationProxy = "{00020420-0000-0000-C000-000000000046}";

// This module's file, as containers find it from the class's InprocServer32 key.
std::optional<std::string> ModulePath() {
  Dl_info info;
  if (dladdr(reinterpret_cast<void*>(&RegisterServer), &info) == 0 || info.dli_fname == nullptr) {
    return std::nullopt;
  }
  std::error_code code;
  const std::filesystem::path path = std::filesystem::canonical(info.dli_fname, code);
  if (code) return std::nullopt;
  return path.string();
}

std::string Version(const TypeLibrary& library) {
  return std::to_string(library.major) + "." + std::to_string(library.minor);
}

std::string Hex(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, "%X", value);
  return text;
}

// The library's version key naming its file, and each interface's key naming the
// library, as the system's type library registration does.
void AddTypeLibrary(RegistryFile& registry, const TypeLibrary& library, const std::filesystem::path& file) {
  const std::string version = TypeLibraryVersionKey(library);
  registry.SetValue(version, "", library.name);
  registry.SetValue(version + "\\" + Hex(library.lcid) + "\\linux", "", file.string());
  registry.SetValue(version + "\\FLAGS", "", "0");
  registry.SetValue(version + "\\HELPDIR", "", file.parent_path().string());
  for (const InterfaceDescription& interface : library.interfaces) {
    const std::string key = InterfaceKey(interface);
    registry.SetValue(key, "", interface.name);
    registry.SetValue(key + "\\ProxyStubClsid32", "", kAutomationProxy);
    registry.SetValue(key + "\\TypeLib", "", GuidText(library.libid));
    registry.SetValue(key + "\\TypeLib", "Version", Version(library));
  }
}

// The control: an apartment-threaded in-process control with a toolbox bitmap, not
// offered for insertion (no Insertable key), named by its ProgID; then its property
// page, which has no ProgID.
void AddClasses(RegistryFile& registry, const TypeLibrary& library, const std::string& module) {
  // The type names a container shows for the control and its page are the module's
  // strings 1 and 2.
  RegisterModuleResources();
  const std::string controlTypeName = platform::LoadStringResource(resources::kControlTypeNameString);
  const std::string pageTypeName = platform::LoadStringResource(resources::kPropertyPageTypeNameString);
  const std::string control = ControlClassKey();
  registry.SetValue(control, "", controlTypeName);
  registry.CreateKey(control + "\\Control");
  registry.SetValue(control + "\\InprocServer32", "", module);
  registry.SetValue(control + "\\InprocServer32", "ThreadingModel", "Apartment");
  registry.SetValue(control + "\\MiscStatus", "", "0");
  registry.SetValue(control + "\\MiscStatus\\1", "", std::to_string(kMiscStatus));
  registry.SetValue(control + "\\ProgID", "", kControlProgId);
  registry.SetValue(control + "\\ToolboxBitmap32", "",
                    module + ", " + std::to_string(resources::kToolboxBitmapId));
  registry.SetValue(control + "\\TypeLib", "", GuidText(library.libid));
  registry.SetValue(control + "\\Version", "", Version(library));
  registry.SetValue(kControlProgId, "", controlTypeName);
  registry.SetValue(std::string(kControlProgId) + "\\CLSID", "", GuidText(ocx::CLSID_ImageEditCtrl));

  const std::string page = PropertyPageClassKey();
  registry.SetValue(page, "", pageTypeName);
  registry.SetValue(page + "\\InprocServer32", "", module);
}

// Removes each tree; true when any was there.
bool DeleteTrees(RegistryFile& registry, const std::vector<std::string>& roots) {
  bool removed = false;
  for (const std::string& root : roots) removed = registry.DeleteTree(root) || removed;
  return removed;
}

// The registry file and its contents, or nullopt when either is out of reach.
struct OpenRegistry {
  std::filesystem::path path;
  RegistryFile registry;
};
std::optional<OpenRegistry> Open() {
  std::optional<std::filesystem::path> path = RegistryPath();
  if (!path) return std::nullopt;
  std::string error;
  std::optional<RegistryFile> registry = LoadRegistry(*path, &error);
  if (!registry) return std::nullopt;
  return OpenRegistry{*path, std::move(*registry)};
}

bool Save(const OpenRegistry& open) {
  std::string error;
  return WriteFileAtomically(open.path, open.registry.Text(), &error);
}

}  // namespace

// The type library goes first: its file, then its keys. Only once they are written
// do the classes follow, so a failure on the way leaves no class naming a library
// that is not there.
ocx::HRESULT RegisterServer() {
  const TypeLibrary* library = EmbeddedTypeLibrary();
  std::optional<OpenRegistry> open = Open();
  if (library == nullptr || !open) return ocx::SELFREG_E_TYPELIB;
  const std::filesystem::path file = TypeLibraryFilePath(open->path);
  std::error_code code;
  const bool hadFile = std::filesystem::exists(file, code);
  std::string error;
  if (!WriteFileAtomically(file, EmbeddedTypeLibraryText(), &error)) return ocx::SELFREG_E_TYPELIB;
  AddTypeLibrary(open->registry, *library, file);
  if (!Save(*open)) {
    if (!hadFile) std::filesystem::remove(file, code);  // no key names it
    return ocx::SELFREG_E_TYPELIB;
  }

  const std::optional<std::string> module = ModulePath();
  if (!module) return ocx::SELFREG_E_CLASS;
  AddClasses(open->registry, *library, *module);
  return Save(*open) ? ocx::S_OK : ocx::SELFREG_E_CLASS;
}

// The same order: the type library's keys and file, then the classes. A file with
// nothing of ours is left as it is.
ocx::HRESULT UnregisterServer() {
  const TypeLibrary* library = EmbeddedTypeLibrary();
  std::optional<OpenRegistry> open = Open();
  if (library == nullptr || !open) return ocx::SELFREG_E_TYPELIB;
  if (DeleteTrees(open->registry, TypeLibraryKeyRoots(*library)) && !Save(*open))
    return ocx::SELFREG_E_TYPELIB;
  std::error_code ignored;  // a file already gone is what unregistering wants
  std::filesystem::remove(TypeLibraryFilePath(open->path), ignored);

  if (DeleteTrees(open->registry, ClassKeyRoots()) && !Save(*open)) return ocx::SELFREG_E_CLASS;
  return ocx::S_OK;
}
