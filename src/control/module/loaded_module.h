// The control module as a host loads it, the way a container loads an in-process
// control: with dlopen, reached only through its exported entry points. Header only,
// over module_abi.h alone.
#pragma once

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "control/module/module_abi.h"

namespace ocx {

class LoadedModule {
 public:
  // Throws std::runtime_error saying why when the module cannot be loaded or lacks an
  // entry point.
  explicit LoadedModule(const std::filesystem::path& path) : path_(path) {
    handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ == nullptr) throw std::runtime_error(std::string("cannot load the module: ") + dlerror());
    try {
      getClassObject_ = Entry<DllGetClassObjectFunction>("DllGetClassObject");
      canUnloadNow_ = Entry<DllCanUnloadNowFunction>("DllCanUnloadNow");
      registerServer_ = Entry<DllRegisterServerFunction>("DllRegisterServer");
      unregisterServer_ = Entry<DllUnregisterServerFunction>("DllUnregisterServer");
    } catch (...) {
      dlclose(handle_);
      throw;
    }
  }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;
  // Unloads the module only when it says nothing of it is alive any more.
  ~LoadedModule() {
    if (canUnloadNow_() == S_OK) dlclose(handle_);
  }

  const std::filesystem::path& path() const { return path_; }
  HRESULT GetClassObject(REFCLSID clsid, REFIID riid, void** object) const {
    return getClassObject_(clsid, riid, object);
  }
  HRESULT CanUnloadNow() const { return canUnloadNow_(); }
  HRESULT RegisterServer() const { return registerServer_(); }
  HRESULT UnregisterServer() const { return unregisterServer_(); }

 private:
  template <typename Function>
  Function Entry(const char* name) const {
    void* entry = dlsym(handle_, name);
    if (entry == nullptr) throw std::runtime_error(path_.string() + " has no entry point " + name);
    return reinterpret_cast<Function>(entry);
  }

  std::filesystem::path path_;
  void* handle_ = nullptr;
  DllGetClassObjectFunction getClassObject_ = nullptr;
  DllCanUnloadNowFunction canUnloadNow_ = nullptr;
  DllRegisterServerFunction registerServer_ = nullptr;
  DllUnregisterServerFunction unregisterServer_ = nullptr;
};

}  // namespace ocx
