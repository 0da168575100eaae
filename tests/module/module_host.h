// What the module tests share: the module loaded with dlopen the way a host loads
// it, knowing nothing but its binary interface, and small helpers for references,
// strings and calls.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/module/module_client.h"

// The module's entry points, loaded once per test program and kept for its length:
// a host may unload a module only when DllCanUnloadNow says so, which the tests check
// rather than assume.
struct ModuleEntryPoints {
  ocx::DllGetClassObjectFunction getClassObject = nullptr;
  ocx::DllCanUnloadNowFunction canUnloadNow = nullptr;
  ocx::DllRegisterServerFunction registerServer = nullptr;
  ocx::DllUnregisterServerFunction unregisterServer = nullptr;
};

inline const ModuleEntryPoints& Module() {
  static const ModuleEntryPoints entryPoints = [] {
    ModuleEntryPoints loaded;
    void* module = dlopen(IE_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
      ADD_FAILURE() << dlerror();
      return loaded;
    }
    loaded.getClassObject =
        reinterpret_cast<ocx::DllGetClassObjectFunction>(dlsym(module, "DllGetClassObject"));
    loaded.canUnloadNow = reinterpret_cast<ocx::DllCanUnloadNowFunction>(dlsym(module, "DllCanUnloadNow"));
    loaded.registerServer =
        reinterpret_cast<ocx::DllRegisterServerFunction>(dlsym(module, "DllRegisterServer"));
    loaded.unregisterServer =
        reinterpret_cast<ocx::DllUnregisterServerFunction>(dlsym(module, "DllUnregisterServer"));
    return loaded;
  }();
  return entryPoints;
}

using ocx::Call;
using ocx::CallByName;
using ocx::DispIdOf;
using ocx::HostVariant;
using ocx::InvokeMethod;
using ocx::Ref;

// The ASCII text of a BSTR (the tests' strings are ASCII).
inline std::string Narrow(ocx::BSTR text) {
  std::string narrow;
  for (ocx::UINT i = 0; i < ocx::SysStringLen(text); ++i) narrow.push_back(static_cast<char>(text[i]));
  return narrow;
}

// Every test starts and must end with nothing of the module alive; in between it
// makes controls through the control's class factory.
class ModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(Module().getClassObject, nullptr);
    ASSERT_EQ(Module().canUnloadNow(), ocx::S_OK);
    ASSERT_EQ(Module().getClassObject(ocx::CLSID_ImageEditCtrl, ocx::IID_IClassFactory, factory_.Out()),
              ocx::S_OK);
  }
  void TearDown() override {
    factory_.Reset();
    EXPECT_EQ(Module().canUnloadNow(), ocx::S_OK) << "an object of the module is still alive";
  }
  // A new control's dispatch interface.
  void CreateControl(Ref<ocx::IDispatch>& control) {
    ASSERT_EQ(factory_->CreateInstance(nullptr, ocx::IID_IDispatch, control.Out()), ocx::S_OK);
  }
  // A new control, activated in a window of width x height.
  void CreateActiveControl(Ref<ocx::IDispatch>& control, int width, int height) {
    CreateControl(control);
    Ref<ocx::IImageEditWindow> window;
    ASSERT_EQ(control->QueryInterface(ocx::IID_IImageEditWindow, window.Out()), ocx::S_OK);
    ASSERT_EQ(window->Activate(width, height), ocx::S_OK);
  }

  Ref<ocx::IClassFactory> factory_;
};
