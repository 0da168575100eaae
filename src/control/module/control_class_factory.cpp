#include "control/module/control_class_factory.h"

#include "control/module/boundary_guard.h"
#include "control/module/control_object.h"
#include "control/module/image_edit_ctrl_app.h"

ocx::HRESULT ControlClassFactory::QueryInterface(ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  if (riid == ocx::IID_IUnknown || riid == ocx::IID_IClassFactory) {
    *object = static_cast<ocx::IClassFactory*>(this);
    return ocx::S_OK;
  }
  *object = nullptr;
  return ocx::E_NOINTERFACE;
}

ocx::HRESULT ControlClassFactory::CreateInstance(ocx::IUnknown* outer, ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return ocx::CLASS_E_NOAGGREGATION;
  return CatchingEngineFailures([&] {
    auto* control = new ControlObject();
    // The control starts with one reference, which the query's takes over or, when the
    // interface is not one the control has, whose release destroys it.
    const ocx::HRESULT hr = control->QueryInterface(riid, object);
    control->Release();
    return hr;
  });
}

ocx::HRESULT ControlClassFactory::LockServer(ocx::BOOL lock) {
  if (lock) {
    TheModule().Lock();
    return ocx::S_OK;
  }
  return TheModule().Unlock() ? ocx::S_OK : ocx::E_UNEXPECTED;
}
