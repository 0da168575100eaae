#include "control/module/class_factory.h"

#include "control/module/boundary_guard.h"
#include "control/module/image_edit_ctrl_app.h"

ocx::HRESULT ClassFactory::QueryInterface(ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  if (riid == ocx::IID_IUnknown || riid == ocx::IID_IClassFactory) {
    *object = static_cast<ocx::IClassFactory*>(this);
    return ocx::S_OK;
  }
  *object = nullptr;
  return ocx::E_NOINTERFACE;
}

ocx::HRESULT ClassFactory::CreateInstance(ocx::IUnknown* outer, ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return ocx::CLASS_E_NOAGGREGATION;
  return CatchingEngineFailures([&] {
    ocx::IUnknown* made = make_();
    // The object starts with one reference, which the query's takes over or, when the
    // interface is not one the object has, whose release destroys it.
    const ocx::HRESULT hr = made->QueryInterface(riid, object);
    made->Release();
    return hr;
  });
}

ocx::HRESULT ClassFactory::LockServer(ocx::BOOL lock) {
  if (lock) {
    TheModule().Lock();
    return ocx::S_OK;
  }
  return TheModule().Unlock() ? ocx::S_OK : ocx::E_UNEXPECTED;
}
