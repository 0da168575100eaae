#include "control/module/type_info.h"

#include "control/module/boundary_guard.h"
#include "control/module/boundary_variant.h"

ocx::HRESULT DispatchTypeInfo::GetTypeAttr(ocx::IID* iid, ocx::WORD* typeFlags, ocx::UINT* functionCount) {
  if (iid == nullptr || typeFlags == nullptr || functionCount == nullptr) return ocx::E_POINTER;
  *iid = interface_.iid;
  *typeFlags = interface_.flags;
  *functionCount = static_cast<ocx::UINT>(interface_.functions.size());
  return ocx::S_OK;
}

ocx::HRESULT DispatchTypeInfo::GetFuncDesc(ocx::UINT index, ocx::DISPID* dispid, ocx::VARTYPE* result,
                                           ocx::UINT* paramCount) {
  if (dispid == nullptr || result == nullptr || paramCount == nullptr) return ocx::E_POINTER;
  if (index >= interface_.functions.size()) return ocx::TYPE_E_ELEMENTNOTFOUND;
  const FunctionDescription& function = interface_.functions[index];
  *dispid = function.dispid;
  *result = function.result;
  *paramCount = static_cast<ocx::UINT>(function.params.size());
  return ocx::S_OK;
}

ocx::HRESULT DispatchTypeInfo::GetParamType(ocx::UINT index, ocx::UINT param, ocx::VARTYPE* type) {
  if (type == nullptr) return ocx::E_POINTER;
  if (index >= interface_.functions.size() || param >= interface_.functions[index].params.size()) {
    return ocx::TYPE_E_ELEMENTNOTFOUND;
  }
  *type = interface_.functions[index].params[param].type;
  return ocx::S_OK;
}

ocx::HRESULT DispatchTypeInfo::GetNames(ocx::DISPID dispid, ocx::BSTR* names, ocx::UINT maxNames,
                                        ocx::UINT* count) {
  if (names == nullptr || count == nullptr) return ocx::E_POINTER;
  *count = 0;
  const FunctionDescription* function = interface_.FindFunction(dispid);
  if (function == nullptr) return ocx::TYPE_E_ELEMENTNOTFOUND;
  return CatchingEngineFailures([&] {
    for (ocx::UINT i = 0; i < maxNames && i <= function->params.size(); ++i) {
      names[i] = BstrFromNarrow(i == 0 ? function->name : function->params[i - 1].name);
      ++*count;
    }
    return ocx::S_OK;
  });
}

ocx::HRESULT DispatchTypeInfo::GetDocumentation(ocx::DISPID dispid, ocx::BSTR* name, ocx::BSTR* docString) {
  const FunctionDescription* function = nullptr;
  if (dispid != ocx::MEMBERID_NIL) {
    function = interface_.FindFunction(dispid);
    if (function == nullptr) return ocx::TYPE_E_ELEMENTNOTFOUND;
  }
  return CatchingEngineFailures([&] {
    if (name != nullptr) *name = BstrFromNarrow(function != nullptr ? function->name : interface_.name);
    if (docString != nullptr)
      *docString = BstrFromNarrow(function != nullptr ? function->help : interface_.help);
    return ocx::S_OK;
  });
}
