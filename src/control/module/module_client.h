// What a host of the control module holds its side of the binary interface with:
// references it releases, variants that free what they hold, and a call by name as a
// script makes it. Header only, over module_abi.h alone, so a host links nothing of
// the engine.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "control/module/module_abi.h"

namespace ocx {

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
  HostVariant() { VariantInit(&value_); }
  static HostVariant Int(std::int32_t value) {
    HostVariant v;
    v.value_.vt = VT_I4;
    v.value_.lVal = value;
    return v;
  }
  static HostVariant Bool(bool value) {
    HostVariant v;
    v.value_.vt = VT_BOOL;
    v.value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return v;
  }
  static HostVariant String(const std::u16string& text) {
    HostVariant v;
    v.value_.vt = VT_BSTR;
    v.value_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return v;
  }
  HostVariant(const HostVariant& other) : value_(other.value_) {
    if (value_.vt == VT_BSTR) {
      value_.bstrVal = SysAllocStringLen(other.value_.bstrVal, SysStringLen(other.value_.bstrVal));
    }
  }
  HostVariant(HostVariant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  HostVariant& operator=(const HostVariant&) = delete;
  HostVariant& operator=(HostVariant&&) = delete;
  ~HostVariant() { VariantClear(&value_); }
  VARIANT& get() { return value_; }
  const VARIANT& get() const { return value_; }

 private:
  VARIANT value_;
};

// A BSTR that is freed with its holder.
class HostString {
 public:
  HostString() = default;
  HostString(const HostString&) = delete;
  HostString& operator=(const HostString&) = delete;
  ~HostString() { SysFreeString(text_); }
  BSTR* Out() {
    SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  std::u16string str() const { return std::u16string(text_ != nullptr ? text_ : u"", SysStringLen(text_)); }

 private:
  BSTR text_ = nullptr;
};

// The outcome of one Invoke: its result, the argument it refused on a type mismatch
// and what the control said of a call it refused.
struct Call {
  HRESULT hr;
  HostVariant result;
  UINT argError;
  std::u16string description;
};

// Invokes `dispid` with the arguments in the order the method declares them (they are
// passed last one first, as automation does).
inline Call InvokeMethod(IDispatch* dispatch, DISPID dispid, std::vector<HostVariant> args,
                         WORD flags = DISPATCH_METHOD) {
  std::vector<VARIANT> reversed;
  for (auto it = args.rbegin(); it != args.rend(); ++it) reversed.push_back(it->get());
  DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  Call call{S_OK, HostVariant(), 0xFFFFFFFFu, {}};
  EXCEPINFO exception{};
  call.hr =
      dispatch->Invoke(dispid, IID_NULL, 0, flags, &params, &call.result.get(), &exception, &call.argError);
  if (exception.bstrDescription != nullptr) {
    call.description.assign(exception.bstrDescription, SysStringLen(exception.bstrDescription));
  }
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return call;
}

// The DISPID of a method's name, DISPID_UNKNOWN when the control has none.
inline DISPID DispIdOf(IDispatch* dispatch, const std::u16string& name) {
  std::u16string text = name;
  LPOLESTR names[] = {text.data()};
  DISPID dispid = DISPID_UNKNOWN;
  dispatch->GetIDsOfNames(IID_NULL, names, 1, 0, &dispid);
  return dispid;
}

// Calls a method by name, as a script does: its DISPID first, then Invoke.
inline Call CallByName(IDispatch* dispatch, const std::u16string& name, std::vector<HostVariant> args = {}) {
  return InvokeMethod(dispatch, DispIdOf(dispatch, name), std::move(args));
}

}  // namespace ocx
