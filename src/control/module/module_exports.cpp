// The module-wide objects and the module's four exported functions. The objects are
// defined in this one file so that they are made when the module loads in this order
// and destroyed when it unloads in the reverse one.
#include "control/module/boundary_guard.h"
#include "control/module/control_class_factory.h"
#include "control/module/image_edit_ctrl_app.h"
#include "control/module/module_abi.h"
#include "control/module/registration.h"

namespace {

CImageEditCtrlApp theApp;
ControlClassFactory theControlFactory;

}  // namespace

CImageEditCtrlApp& TheModule() { return theApp; }

#define IE_MODULE_EXPORT extern "C" __attribute__((visibility("default")))

IE_MODULE_EXPORT ocx::HRESULT DllGetClassObject(ocx::REFCLSID clsid, ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  *object = nullptr;
  if (clsid == ocx::CLSID_ImageEditCtrl) return theControlFactory.QueryInterface(riid, object);
  return ocx::CLASS_E_CLASSNOTAVAILABLE;
}

IE_MODULE_EXPORT ocx::HRESULT DllCanUnloadNow() { return theApp.CanUnloadNow() ? ocx::S_OK : ocx::S_FALSE; }

IE_MODULE_EXPORT ocx::HRESULT DllRegisterServer() { return CatchingEngineFailures(RegisterServer); }
IE_MODULE_EXPORT ocx::HRESULT DllUnregisterServer() { return CatchingEngineFailures(UnregisterServer); }
