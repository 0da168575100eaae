// An object of the module that answers one interface besides IUnknown. Its life is
// its reference count (it is made with one reference), and while it lives it counts
// as one of the module's objects, so that DllCanUnloadNow waits for it.
#pragma once

#include "control/module/image_edit_ctrl_app.h"
#include "control/module/module_abi.h"

template <typename Interface, const ocx::IID& kInterfaceId>
class ModuleObject : public Interface {
 public:
  ModuleObject(const ModuleObject&) = delete;
  ModuleObject& operator=(const ModuleObject&) = delete;

  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override {
    if (object == nullptr) return ocx::E_POINTER;
    if (riid == ocx::IID_IUnknown || riid == kInterfaceId) {
      *object = static_cast<Interface*>(this);
      AddRef();
      return ocx::S_OK;
    }
    *object = nullptr;
    return ocx::E_NOINTERFACE;
  }
  ocx::ULONG AddRef() override { return ++references_; }
  ocx::ULONG Release() override {
    const ocx::ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  ModuleObject() { TheModule().ObjectCreated(); }
  virtual ~ModuleObject() { TheModule().ObjectDestroyed(); }

 private:
  ocx::ULONG references_ = 1;
};
