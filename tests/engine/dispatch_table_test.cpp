// The dispatch table generated from the interface description, and the checks Invoke
// makes before anything is called. What a host relies on and a slip in the description
// would break is checked here once: the DISPIDs in order, the flag parameters and the
// event names.
#include "control/dispatch_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "control/image_edit_ctrl.h"

namespace {

TEST(DispatchTable, FiftySixMethodsInDispidOrderFoundByNameIgnoringCase) {
  const std::vector<MethodInfo>& methods = DispatchMethods();
  ASSERT_EQ(methods.size(), 56u);
  std::vector<std::string> flags;
  for (const MethodInfo& method : methods) {
    if (&method != &methods.back()) {
      EXPECT_EQ(method.dispid, &method - methods.data() + 1);
    }
    EXPECT_EQ(FindMethod(method.dispid), &method);
    EXPECT_EQ(FindMethod(std::string_view(method.name)), &method);
    for (const ParamInfo& param : method.params) {
      if (param.type == ParamType::Bool) flags.push_back(param.name);
    }
  }
  EXPECT_EQ(methods.back().dispid, DISPID_ABOUTBOX);
  // The five flags of the type library are I4 and take the host's truth value.
  EXPECT_EQ(flags,
            (std::vector<std::string>{"bImage", "bGraying", "bInverting", "bShortcutMenu", "bVerbose"}));
  EXPECT_EQ(FindMethod("aboutbox"), &methods.back());
  EXPECT_EQ(FindMethod("SETIMAGE"), FindMethod(1));
  for (const char* name : {"SetImag", "SetImageX", ""}) EXPECT_EQ(FindMethod(name), nullptr) << name;
  EXPECT_EQ(FindMethod(0), nullptr);
  EXPECT_EQ(FindMethod(56), nullptr);
  EXPECT_STREQ(EventName(DISPID_COLORSELECTED), "ColorSelected");
  EXPECT_STREQ(EventName(DISPID_IMAGESCALED), "ImageScaled");
  EXPECT_EQ(DISPID_COLORSELECTED, 1);
  EXPECT_EQ(DISPID_IMAGESCALED, 2);
  EXPECT_EQ(EventName(0), nullptr);
  EXPECT_EQ(EventName(3), nullptr);
}

// Calls that Invoke refuses never reach the control, so a control without a window
// is enough here.
TEST(InvokeErrors, RefusedCallsSayWhatIsWrongAndAcceptableOnesPass) {
  CImageEditCtrl control;
  struct Case {
    const char* name;
    std::vector<Variant> args;
    HRESULT hr;
    const char* errorPart;
  };
  const Case cases[] = {
      {"Sharpen", {Variant::Int(1)}, DISP_E_UNKNOWNNAME, "Sharpen"},
      {"GetColor", {Variant::Int(1)}, DISP_E_BADPARAMCOUNT, "GetColor"},
      {"CorrectGamma", {Variant::Int(1), Variant::Int(2)}, DISP_E_BADPARAMCOUNT, "CorrectGamma takes 3"},
      {"SetPen", {Variant::String("5")}, DISP_E_TYPEMISMATCH, "nPenSize"},
      // The third argument is the wrong one; the message says so.
      {"InsertIcon",
       {Variant::Int(1), Variant::Int(2), Variant::Bool(true)},
       DISP_E_TYPEMISMATCH,
       "argument 3 (lpszFilePath)"},
      {"SetPen", {Variant::Null()}, DISP_E_TYPEMISMATCH, "nPenSize"},
      {"SetPen", {Variant()}, DISP_E_TYPEMISMATCH, "nPenSize"},
      {"GrayImage", {Variant::String("1")}, DISP_E_TYPEMISMATCH, "bGraying"},
      {"SetColor", {Variant()}, DISP_E_TYPEMISMATCH, "lpszColor"},
      // A null string is accepted as the empty string; a boolean as an integer.
      {"SetColor", {Variant::Null()}, S_OK, ""},
      {"SetPen", {Variant::Bool(true)}, S_OK, ""},
      {"Clear", {Variant::Int(-1)}, S_OK, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " with " + std::to_string(c.args.size()) + " arguments");
    const InvokeResult result = Invoke(control, c.name, c.args);
    EXPECT_EQ(result.hr, c.hr);
    EXPECT_NE(result.error.find(c.errorPart), std::string::npos) << result.error;
    // A host that runs a call later refuses it at once with the same answer.
    const InvokeResult checked = CheckCall(c.name, c.args);
    EXPECT_EQ(checked.hr, c.hr);
    EXPECT_EQ(checked.error, result.error);
    if (c.hr != S_OK) {
      EXPECT_TRUE(result.value.isEmpty());
    }
  }
}

}  // namespace
