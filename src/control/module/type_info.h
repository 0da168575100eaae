// The type information of one dispatch interface of the type library, as
// IDispatch::GetTypeInfo hands it out. While it lives it counts as one of the
// module's objects.
#pragma once

#include "control/module/module_abi.h"
#include "control/module/module_object.h"
#include "control/module/registry/type_library.h"

class DispatchTypeInfo final : public ModuleObject<ocx::ITypeInfo, ocx::IID_ITypeInfo> {
 public:
  // `interface` outlives it (it is the embedded library's).
  explicit DispatchTypeInfo(const InterfaceDescription& interface) : interface_(interface) {}

  ocx::HRESULT GetTypeAttr(ocx::IID* iid, ocx::WORD* typeFlags, ocx::UINT* functionCount) override;
  ocx::HRESULT GetFuncDesc(ocx::UINT index, ocx::DISPID* dispid, ocx::VARTYPE* result,
                           ocx::UINT* paramCount) override;
  ocx::HRESULT GetParamType(ocx::UINT index, ocx::UINT param, ocx::VARTYPE* type) override;
  ocx::HRESULT GetNames(ocx::DISPID dispid, ocx::BSTR* names, ocx::UINT maxNames, ocx::UINT* count) override;
  ocx::HRESULT GetDocumentation(ocx::DISPID dispid, ocx::BSTR* name, ocx::BSTR* docString) override;

 private:
  const InterfaceDescription& interface_;
};
