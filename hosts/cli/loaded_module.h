// The control module as this program loads it, the way a container loads an
// in-process control: libOstrelImageEditCtrl.so from this program's own folder, with
// dlopen, reached only through its exported entry points.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "control/module/module_abi.h"

namespace script {

class LoadedModule {
 public:
  // Throws std::runtime_error saying why when the module cannot be loaded or lacks an
  // entry point.
  LoadedModule();
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;
  // Unloads the module only when it says nothing of it is alive any more.
  ~LoadedModule();

  const std::filesystem::path& path() const { return path_; }
  ocx::HRESULT GetClassObject(ocx::REFCLSID clsid, ocx::REFIID riid, void** object) const {
    return getClassObject_(clsid, riid, object);
  }
  ocx::HRESULT RegisterServer() const { return registerServer_(); }
  ocx::HRESULT UnregisterServer() const { return unregisterServer_(); }

 private:
  template <typename Function>
  Function Entry(const char* name) const;

  std::filesystem::path path_;
  void* handle_ = nullptr;
  ocx::DllGetClassObjectFunction getClassObject_ = nullptr;
  ocx::DllCanUnloadNowFunction canUnloadNow_ = nullptr;
  ocx::DllRegisterServerFunction registerServer_ = nullptr;
  ocx::DllUnregisterServerFunction unregisterServer_ = nullptr;
};

// A result as the module's documentation writes it: 0x and eight hex digits.
std::string HresultHex(ocx::HRESULT hr);

}  // namespace script
