// What the module tests share: the module loaded with dlopen the way a host loads
// it, knowing nothing but its binary interface, and small helpers for references,
// strings and calls.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/module/module_abi.h"

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

// Holds one reference on an interface and releases it.
template <typename Interface>
class Ref {
 public:
  Ref() = default;
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  ~Ref() { Reset(); }
  void Reset() {
    if (pointer_ != nullptr) pointer_->Release();
    pointer_ = nullptr;
  }
  // For the out-parameter of a call that hands over a reference.
  void** Out() {
    Reset();
    return reinterpret_cast<void**>(&pointer_);
  }
  Interface** OutTyped() {
    Reset();
    return &pointer_;
  }
  Interface* operator->() const { return pointer_; }
  Interface* get() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

 private:
  Interface* pointer_ = nullptr;
};

// A variant that frees what it holds.
class HostVariant {
 public:
  HostVariant() { ocx::VariantInit(&value_); }
  static HostVariant Int(std::int32_t value) {
    HostVariant v;
    v.value_.vt = ocx::VT_I4;
    v.value_.lVal = value;
    return v;
  }
  static HostVariant Bool(bool value) {
    HostVariant v;
    v.value_.vt = ocx::VT_BOOL;
    v.value_.boolVal = value ? ocx::VARIANT_TRUE : ocx::VARIANT_FALSE;
    return v;
  }
  static HostVariant String(const std::u16string& text) {
    HostVariant v;
    v.value_.vt = ocx::VT_BSTR;
    v.value_.bstrVal = ocx::SysAllocStringLen(text.data(), static_cast<ocx::UINT>(text.size()));
    return v;
  }
  HostVariant(const HostVariant& other) : value_(other.value_) {
    if (value_.vt == ocx::VT_BSTR) {
      value_.bstrVal = ocx::SysAllocStringLen(other.value_.bstrVal, ocx::SysStringLen(other.value_.bstrVal));
    }
  }
  HostVariant(HostVariant&& other) noexcept : value_(other.value_) { ocx::VariantInit(&other.value_); }
  HostVariant& operator=(const HostVariant&) = delete;
  HostVariant& operator=(HostVariant&&) = delete;
  ~HostVariant() { ocx::VariantClear(&value_); }
  ocx::VARIANT& get() { return value_; }
  const ocx::VARIANT& get() const { return value_; }

 private:
  ocx::VARIANT value_;
};

// The ASCII text of a BSTR (the tests' strings are ASCII).
inline std::string Narrow(ocx::BSTR text) {
  std::string narrow;
  for (ocx::UINT i = 0; i < ocx::SysStringLen(text); ++i) narrow.push_back(static_cast<char>(text[i]));
  return narrow;
}

// The outcome of one Invoke.
struct Call {
  ocx::HRESULT hr;
  HostVariant result;
  ocx::UINT argError;
};

// Invokes `dispid` with the arguments in the order the method declares them (they are
// passed last one first, as automation does).
inline Call InvokeMethod(ocx::IDispatch* dispatch, ocx::DISPID dispid, std::vector<HostVariant> args,
                         ocx::WORD flags = ocx::DISPATCH_METHOD) {
  std::vector<ocx::VARIANT> reversed;
  for (auto it = args.rbegin(); it != args.rend(); ++it) reversed.push_back(it->get());
  ocx::DISPPARAMS params{reversed.data(), nullptr, static_cast<ocx::UINT>(reversed.size()), 0};
  Call call{ocx::S_OK, HostVariant(), 0xFFFFFFFFu};
  call.hr =
      dispatch->Invoke(dispid, ocx::IID_NULL, 0, flags, &params, &call.result.get(), nullptr, &call.argError);
  return call;
}

// The DISPID of a method's name, DISPID_UNKNOWN when the control has none.
inline ocx::DISPID DispIdOf(ocx::IDispatch* dispatch, const std::u16string& name) {
  std::u16string text = name;
  ocx::LPOLESTR names[] = {text.data()};
  ocx::DISPID dispid = 0;
  dispatch->GetIDsOfNames(ocx::IID_NULL, names, 1, 0, &dispid);
  return dispid;
}

// Calls a method by name, as a script does: its DISPID first, then Invoke.
inline Call CallByName(ocx::IDispatch* dispatch, const std::u16string& name,
                       std::vector<HostVariant> args = {}) {
  return InvokeMethod(dispatch, DispIdOf(dispatch, name), std::move(args));
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
