#include "loaded_module.h"

#include <dlfcn.h>

#include <cstdio>
#include <string>
#include <system_error>

namespace script {
namespace {

constexpr const char* kModuleFile = "libOstrelImageEditCtrl.so";

std::filesystem::path ModuleBesideProgram() {
  std::error_code code;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", code);
  if (code) throw std::runtime_error("cannot load the module: this program's folder is unknown");
  return program.parent_path() / kModuleFile;
}

}  // namespace

LoadedModule::LoadedModule() : path_(ModuleBesideProgram()) {
  handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) throw std::runtime_error(std::string("cannot load the module: ") + dlerror());
  try {
    getClassObject_ = Entry<ocx::DllGetClassObjectFunction>("DllGetClassObject");
    canUnloadNow_ = Entry<ocx::DllCanUnloadNowFunction>("DllCanUnloadNow");
    registerServer_ = Entry<ocx::DllRegisterServerFunction>("DllRegisterServer");
    unregisterServer_ = Entry<ocx::DllUnregisterServerFunction>("DllUnregisterServer");
  } catch (...) {
    dlclose(handle_);
    throw;
  }
}

LoadedModule::~LoadedModule() {
  if (canUnloadNow_() == ocx::S_OK) dlclose(handle_);
}

template <typename Function>
Function LoadedModule::Entry(const char* name) const {
  void* entry = dlsym(handle_, name);
  if (entry == nullptr) throw std::runtime_error(path_.string() + " has no entry point " + name);
  return reinterpret_cast<Function>(entry);
}

std::string HresultHex(ocx::HRESULT hr) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08X", static_cast<unsigned>(hr));
  return hex;
}

}  // namespace script
