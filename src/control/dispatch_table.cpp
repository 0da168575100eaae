#include "control/dispatch_table.h"

#include <array>
#include <cstddef>
#include <optional>
#include <type_traits>
#include <utility>

#include "control/image_edit_ctrl.h"
#include "platform/text.h"

namespace {

// The parameter type follows from the C++ parameter of the control's method: strings
// are LPCSTR, INT parameters int, and the five flag parameters long (I4 in the type
// library). Deducing it keeps the table and the methods from disagreeing.
template <typename T>
constexpr ParamType ParamTypeOf() {
  if constexpr (std::is_same_v<T, LPCSTR>) {
    return ParamType::String;
  } else if constexpr (std::is_same_v<T, long>) {
    return ParamType::Bool;
  } else {
    static_assert(std::is_same_v<T, int>, "dispatch parameters are LPCSTR, int or long");
    return ParamType::Int;
  }
}

template <typename R>
constexpr ResultType ResultTypeOf() {
  if constexpr (std::is_void_v<R>) {
    return ResultType::None;
  } else if constexpr (std::is_same_v<R, Variant>) {
    return ResultType::String;
  } else {
    static_assert(std::is_same_v<R, BOOL>, "dispatch results are void, Variant or BOOL");
    return ResultType::Bool;
  }
}

template <typename T>
T ArgumentAs(const Variant& argument) {
  if constexpr (std::is_same_v<T, LPCSTR>) {
    return argument.asString().c_str();
  } else {
    return static_cast<T>(argument.asInt());
  }
}

template <auto Method>
struct Binding;

// One method of the control: its parameter and result types and the call with
// converted arguments.
template <typename R, typename... Params, R (CImageEditCtrl::*Method)(Params...)>
struct Binding<Method> {
  static constexpr std::size_t kArity = sizeof...(Params);
  static constexpr ResultType kResult = ResultTypeOf<R>();

  static std::vector<ParamInfo> Describe(const std::array<const char*, kArity>& names) {
    const std::array<ParamType, kArity> types{ParamTypeOf<Params>()...};
    std::vector<ParamInfo> params;
    for (std::size_t i = 0; i < kArity; ++i) params.push_back({names[i], types[i]});
    return params;
  }

  static Variant Call(CImageEditCtrl& control, std::span<const Variant> args) {
    return CallWith(control, args, std::index_sequence_for<Params...>{});
  }

  template <std::size_t... I>
  static Variant CallWith(CImageEditCtrl& control, std::span<const Variant> args, std::index_sequence<I...>) {
    if constexpr (std::is_void_v<R>) {
      (control.*Method)(ArgumentAs<Params>(args[I])...);
      return Variant();
    } else if constexpr (std::is_same_v<R, Variant>) {
      return (control.*Method)(ArgumentAs<Params>(args[I])...);
    } else {
      return Variant::Bool((control.*Method)(ArgumentAs<Params>(args[I])...) != 0);
    }
  }
};

// One table row: DISPID, name and the parameter names in order.
template <auto Method, typename... Names>
MethodInfo Bind(int dispid, const char* name, Names... paramNames) {
  using B = Binding<Method>;
  static_assert(sizeof...(Names) == B::kArity, "one name per parameter");
  return MethodInfo{dispid, name, B::Describe({paramNames...}), B::kResult, &B::Call};
}

std::vector<MethodInfo> BuildDispatchMethods() {
  using C = CImageEditCtrl;
  return {
      Bind<&C::SetImage>(1, "SetImage", "lpszFilePath"),
      Bind<&C::SaveEditedBitmap>(2, "SaveEditedBitmap", "lpszFilePath"),
      Bind<&C::SetColor>(3, "SetColor", "lpszColor"),
      Bind<&C::GetColor>(4, "GetColor"),
      Bind<&C::SelectColor>(5, "SelectColor"),
      Bind<&C::FillWithSelectedColor>(6, "FillWithSelectedColor"),
      Bind<&C::SetEraser>(7, "SetEraser", "nEraserSize"),
      Bind<&C::SetPen>(8, "SetPen", "nPenSize"),
      Bind<&C::SetBrush>(9, "SetBrush", "nBrushSize"),
      Bind<&C::SetAirBrush>(10, "SetAirBrush", "nAirBrushSize"),
      Bind<&C::SetBitmapBrush>(11, "SetBitmapBrush", "lpszFilePath"),
      Bind<&C::SetShape>(12, "SetShape", "nShapeStyle"),
      Bind<&C::EnterText>(13, "EnterText"),
      Bind<&C::SetTextFont>(14, "SetTextFont", "lpszFont"),
      Bind<&C::SetTextBackgroundColor>(15, "SetTextBackgroundColor", "lpszColor"),
      Bind<&C::SelectRectangle>(16, "SelectRectangle"),
      Bind<&C::SelectIrregular>(17, "SelectIrregular"),
      Bind<&C::SetTransparency>(18, "SetTransparency", "nTransparentColor", "nTransparency"),
      Bind<&C::SetTexture>(19, "SetTexture", "nTexture"),
      Bind<&C::Undo>(20, "Undo"),
      Bind<&C::Redo>(21, "Redo"),
      Bind<&C::Clear>(22, "Clear", "bImage"),
      Bind<&C::ScaleImage>(23, "ScaleImage", "nScaleFactor"),
      Bind<&C::SetSaveEditedBitmapSize>(24, "SetSaveEditedBitmapSize", "nWidth", "nHeight"),
      Bind<&C::SetImageWidth>(25, "SetImageWidth", "nImageWidth"),
      Bind<&C::SetFrame>(26, "SetFrame", "nOrientation", "lpszFilePath", "nOffset", "nTransparentColor"),
      Bind<&C::RotateImage>(27, "RotateImage", "nDegree"),
      Bind<&C::CutImage>(28, "CutImage"),
      Bind<&C::GrayImage>(29, "GrayImage", "bGraying"),
      Bind<&C::BlockImage>(30, "BlockImage"),
      Bind<&C::CheckImage>(31, "CheckImage"),
      Bind<&C::WaterDropImage>(32, "WaterDropImage"),
      Bind<&C::HeartImage>(33, "HeartImage"),
      Bind<&C::MosaicImage>(34, "MosaicImage"),
      Bind<&C::InsertBalloonText>(35, "InsertBalloonText", "nStartX", "nStartY", "lpszFilePath",
                                  "nTextStartX", "nTextStartY", "nTextEndX", "nTextEndY", "lpszText"),
      Bind<&C::InsertIcon>(36, "InsertIcon", "nStartX", "nStartY", "lpszFilePath"),
      Bind<&C::FlipImage>(37, "FlipImage"),
      Bind<&C::ReverseImage>(38, "ReverseImage"),
      Bind<&C::SharpenImage>(39, "SharpenImage", "nStep"),
      Bind<&C::SmoothImage>(40, "SmoothImage", "nStep"),
      Bind<&C::EmbossImage>(41, "EmbossImage"),
      Bind<&C::BrightenImage>(42, "BrightenImage", "nBrightness"),
      Bind<&C::ContrastImage>(43, "ContrastImage", "nContrast"),
      Bind<&C::HueImage>(44, "HueImage", "nHue"),
      Bind<&C::SaturateImage>(45, "SaturateImage", "nSaturation"),
      Bind<&C::CorrectGamma>(46, "CorrectGamma", "nRedGamma", "nGreenGamma", "nBlueGamma"),
      Bind<&C::EqualizeHistogram>(47, "EqualizeHistogram"),
      Bind<&C::InvertImage>(48, "InvertImage", "bInverting"),
      Bind<&C::BlendImage>(49, "BlendImage", "lpszFilePath", "nAlpha"),
      Bind<&C::WhitenImage>(50, "WhitenImage", "nStep"),
      Bind<&C::SetNothing>(51, "SetNothing"),
      Bind<&C::SetSelectionBox>(52, "SetSelectionBox", "nWidth", "nHeight"),
      Bind<&C::SaveSelectionBoxBitmap>(53, "SaveSelectionBoxBitmap", "lpcFilePath"),
      Bind<&C::EnableShortcutMenu>(54, "EnableShortcutMenu", "bShortcutMenu"),
      Bind<&C::EnableVerbose>(55, "EnableVerbose", "bVerbose"),
      Bind<&C::AboutBox>(DISPID_ABOUTBOX, "AboutBox"),
  };
}

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

}  // namespace

const std::vector<MethodInfo>& DispatchMethods() {
  static const std::vector<MethodInfo> methods = BuildDispatchMethods();
  return methods;
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
  if (args.size() != method.params.size()) {
    return {DISP_E_BADPARAMCOUNT, Variant(),
            std::string(method.name) + " takes " + std::to_string(method.params.size()) +
                " argument(s), not " + std::to_string(args.size())};
  }
  std::vector<Variant> converted;
  converted.reserve(args.size());
  for (std::size_t i = 0; i < args.size(); ++i) {
    const ParamInfo& param = method.params[i];
    std::optional<Variant> value = ConvertArgument(param, args[i]);
    if (!value) {
      return {DISP_E_TYPEMISMATCH, Variant(),
              std::string(method.name) + ": argument " + std::to_string(i + 1) + " (" + param.name +
                  ") must be " + ExpectedName(param.type) + ", not " + TypeName(args[i].type())};
    }
    converted.push_back(std::move(*value));
  }
  return {S_OK, method.invoke(control, converted), std::string()};
}

InvokeResult Invoke(CImageEditCtrl& control, std::string_view name, std::span<const Variant> args) {
  const MethodInfo* method = FindMethod(name);
  if (method == nullptr) {
    return {DISP_E_UNKNOWNNAME, Variant(), "no method named " + std::string(name)};
  }
  return Invoke(control, *method, args);
}
