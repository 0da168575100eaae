#include "control/dispatch_table.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "platform/text.h"

namespace {

const char* TypeName(Variant::Type type) {
  switch (type) {
    case Variant::Type::Empty:
      return "nothing";
    case Variant::Type::Null:
      return "null";
    case Variant::Type::Int:
      return "an integer";
    case Variant::Type::Bool:
      return "a boolean";
    case Variant::Type::String:
      return "a string";
  }
  return "an unknown value";
}

// How a host's argument becomes what the method receives:
// - Int parameters take an integer, or a boolean as 1 (true) or 0 (false).
// - Bool (flag) parameters take an integer or a boolean and receive 1 for every true or
//   non-zero value (automation's true, -1, included) and 0 otherwise, so a host's own
//   truth value turns a setting on or off; the flag operations turn on only for 1.
// - String parameters take a string; null reads as the empty string, as a null BSTR
//   does in automation.
// Anything else is a type mismatch: nothing is called.
std::optional<Variant> ConvertArgument(const ParamInfo& param, const Variant& argument) {
  const Variant::Type type = argument.type();
  const bool numeric = type == Variant::Type::Int || type == Variant::Type::Bool;
  switch (param.type) {
    case ParamType::Int:
      if (numeric) return Variant::Int(argument.asInt());
      break;
    case ParamType::Bool:
      if (numeric) return Variant::Int(argument.asInt() != 0 ? 1 : 0);
      break;
    case ParamType::String:
      if (type == Variant::Type::String) return argument;
      if (type == Variant::Type::Null) return Variant::String("");
      break;
  }
  return std::nullopt;
}

const char* ExpectedName(ParamType type) {
  switch (type) {
    case ParamType::Int:
      return "an integer";
    case ParamType::Bool:
      return "an integer or a boolean";
    case ParamType::String:
      return "a string";
  }
  return "a value";
}

// Checks the argument count and converts each argument for `method` into `converted`;
// what Invoke answers for a call it does not make, or S_OK.
InvokeResult ConvertArguments(const MethodInfo& method, std::span<const Variant> args,
                              std::vector<Variant>* converted) {
  if (args.size() != method.params.size()) return WrongArgumentCount(method, args.size());
  converted->reserve(args.size());
  for (std::size_t i = 0; i < args.size(); ++i) {
    const ParamInfo& param = method.params[i];
    std::optional<Variant> value = ConvertArgument(param, args[i]);
    if (!value) {
      return {DISP_E_TYPEMISMATCH, Variant(),
              std::string(method.name) + ": argument " + std::to_string(i + 1) + " (" + param.name +
                  ") must be " + ExpectedName(param.type) + ", not " + TypeName(args[i].type()),
              static_cast<int>(i)};
    }
    converted->push_back(std::move(*value));
  }
  return {};
}

InvokeResult UnknownName(std::string_view name) {
  return {DISP_E_UNKNOWNNAME, Variant(), "no method named " + std::string(name)};
}

}  // namespace

InvokeResult WrongArgumentCount(const MethodInfo& method, std::size_t given) {
  return {DISP_E_BADPARAMCOUNT, Variant(),
          std::string(method.name) + " takes " + std::to_string(method.params.size()) + " argument(s), not " +
              std::to_string(given)};
}

const MethodInfo* FindMethod(std::string_view name) {
  for (const MethodInfo& method : DispatchMethods()) {
    if (platform::EqualsIgnoringCase(method.name, name)) return &method;
  }
  return nullptr;
}

const MethodInfo* FindMethod(int dispid) {
  for (const MethodInfo& method : DispatchMethods()) {
    if (method.dispid == dispid) return &method;
  }
  return nullptr;
}

InvokeResult Invoke(CImageEditCtrl& control, const MethodInfo& method, std::span<const Variant> args) {
  std::vector<Variant> converted;
  InvokeResult refused = ConvertArguments(method, args, &converted);
  if (FAILED(refused.hr)) return refused;
  return {S_OK, method.invoke(control, converted), std::string()};
}

InvokeResult Invoke(CImageEditCtrl& control, std::string_view name, std::span<const Variant> args) {
  const MethodInfo* method = FindMethod(name);
  return method == nullptr ? UnknownName(name) : Invoke(control, *method, args);
}

InvokeResult CheckCall(std::string_view name, std::span<const Variant> args) {
  const MethodInfo* method = FindMethod(name);
  if (method == nullptr) return UnknownName(name);
  std::vector<Variant> converted;
  return ConvertArguments(*method, args, &converted);
}
