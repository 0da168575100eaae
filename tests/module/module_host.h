// What the module tests share: the module loaded with dlopen the way a host loads
// it, knowing nothing but its binary interface, and small helpers for references,
// strings and calls.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/module/loaded_module.h"
#include "control/module/module_client.h"

// The module, loaded once per test program and kept for its length: a host may
// unload a module only when DllCanUnloadNow says so, which the tests check rather
// than assume.
inline const ocx::LoadedModule& Module() {
  static const ocx::LoadedModule module(IE_MODULE_PATH);
  return module;
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
    ASSERT_EQ(Module().CanUnloadNow(), ocx::S_OK);
    ASSERT_EQ(Module().GetClassObject(ocx::CLSID_ImageEditCtrl, ocx::IID_IClassFactory, factory_.Out()),
              ocx::S_OK);
  }
  void TearDown() override {
    factory_.Reset();
    EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK) << "an object of the module is still alive";
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
