// The dispatch interface: every method with its DISPID, parameter names and types and
// result type, and the call that reaches the control's method. Hosts call by name or
// by DISPID with variant arguments, as a scripting host does through IDispatch. The
// table is generated from the interface description (resources/image_edit_ctrl.odl).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "control/variant.h"
#include "platform/types.h"

class CImageEditCtrl;

// Int: a 32-bit integer (INT in the type library). Bool: a flag, declared I4 in the
// type library; the method receives 1 or 0. String: a narrow string (BSTR).
enum class ParamType { Int, Bool, String };
// String results are null before the editor window exists; Bool is ScaleImage's flag.
enum class ResultType { None, String, Bool };

inline constexpr int DISPID_ABOUTBOX = -552;

struct ParamInfo {
  const char* name;
  ParamType type;
};

struct MethodInfo {
  int dispid;
  const char* name;
  std::vector<ParamInfo> params;
  ResultType result;
  // Calls the control's method. The arguments must already have been checked and
  // converted by Invoke (one per parameter: Int for Int and Bool, String for String).
  Variant (*invoke)(CImageEditCtrl& control, std::span<const Variant> args);
};

// Every method, in the description's order: DISPID order with AboutBox last.
const std::vector<MethodInfo>& DispatchMethods();
// Case-insensitive by name, as IDispatch::GetIDsOfNames matches; null when unknown.
const MethodInfo* FindMethod(std::string_view name);
const MethodInfo* FindMethod(int dispid);

struct InvokeResult {
  HRESULT hr = S_OK;
  Variant value;
  std::string error;     // for a failed call: which argument and why
  int badArgument = -1;  // for DISP_E_TYPEMISMATCH: its position, the first is 0
};

// Checks the argument count (DISP_E_BADPARAMCOUNT) and converts each argument to its
// parameter's type (DISP_E_TYPEMISMATCH), then calls the method. The conversions are
// described beside ConvertArgument in dispatch_table.cpp.
InvokeResult Invoke(CImageEditCtrl& control, const MethodInfo& method, std::span<const Variant> args);
// The same by name; DISP_E_UNKNOWNNAME when no method has that name.
InvokeResult Invoke(CImageEditCtrl& control, std::string_view name, std::span<const Variant> args);
// What Invoke answers for `given` arguments to a method that takes another number.
InvokeResult WrongArgumentCount(const MethodInfo& method, std::size_t given);
// What Invoke by name would answer without making the call: S_OK when it would call
// the method, else its failure. A host that runs a call later refuses a bad one now.
InvokeResult CheckCall(std::string_view name, std::span<const Variant> args);
