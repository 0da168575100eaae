#include "control/module/boundary_variant.h"

#include <string>

#include "platform/kernel.h"

ocx::BSTR BstrFromNarrow(const std::string& text) {
  const std::u16string wide = WideFromNarrow(text);
  return ocx::SysAllocStringLen(wide.data(), static_cast<ocx::UINT>(wide.size()));
}

std::optional<Variant> VariantFromHost(const ocx::VARIANT& argument) {
  if (argument.vt == (ocx::VT_BYREF | ocx::VT_VARIANT)) {
    const ocx::VARIANT* target = argument.pvarVal;
    // One level only: a reference to a reference is no value a host passes.
    if (target == nullptr || (target->vt & ocx::VT_BYREF) != 0) return std::nullopt;
    return VariantFromHost(*target);
  }
  switch (argument.vt) {
    case ocx::VT_NULL:
      return Variant::Null();
    case ocx::VT_I4:
      return Variant::Int(argument.lVal);
    case ocx::VT_INT:
      return Variant::Int(argument.intVal);
    case ocx::VT_I2:
      return Variant::Int(argument.iVal);
    case ocx::VT_UI1:
      return Variant::Int(argument.bVal);
    case ocx::VT_BOOL:
      return Variant::Bool(argument.boolVal != ocx::VARIANT_FALSE);
    case ocx::VT_BSTR:
      return Variant::String(NarrowFromWide(argument.bstrVal, ocx::SysStringLen(argument.bstrVal)));
    default:
      // Empty (a missing argument) and every other type.
      return std::nullopt;
  }
}

ocx::HRESULT VariantToHost(const Variant& value, ocx::VARIANT* out) {
  switch (value.type()) {
    case Variant::Type::Empty:
      return ocx::S_OK;
    case Variant::Type::Null:
      out->vt = ocx::VT_NULL;
      return ocx::S_OK;
    case Variant::Type::Int:
      out->vt = ocx::VT_I4;
      out->lVal = value.asInt();
      return ocx::S_OK;
    case Variant::Type::Bool:
      out->vt = ocx::VT_BOOL;
      out->boolVal = value.asInt() != 0 ? ocx::VARIANT_TRUE : ocx::VARIANT_FALSE;
      return ocx::S_OK;
    case Variant::Type::String:
      out->bstrVal = BstrFromNarrow(value.asString());
      if (out->bstrVal == nullptr) return ocx::E_OUTOFMEMORY;
      out->vt = ocx::VT_BSTR;
      return ocx::S_OK;
  }
  return ocx::E_UNEXPECTED;
}

ocx::HRESULT ResultToHost(const Variant& value, ResultType type, ocx::VARIANT* out) {
  if (type == ResultType::String && value.isNull()) {
    out->vt = ocx::VT_BSTR;
    out->bstrVal = nullptr;
    return ocx::S_OK;
  }
  if (type == ResultType::Bool) {
    out->vt = ocx::VT_I4;
    out->lVal = value.asInt();
    return ocx::S_OK;
  }
  return VariantToHost(value, out);
}
