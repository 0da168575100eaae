// The dispatch table's shape and the checks Invoke makes before anything is called.
// Parameter and result types are deduced from the control's methods, so only what
// deduction cannot know is checked here: order, DISPIDs and the flag parameters.
#include "control/dispatch_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "control/image_edit_ctrl.h"

namespace {

TEST(DispatchTable, FiftySixMethodsInDispidOrderWithAboutBoxLast) {
  const std::vector<MethodInfo>& methods = DispatchMethods();
  ASSERT_EQ(methods.size(), 56u);
  std::set<std::string> names;
  for (std::size_t i = 0; i + 1 < methods.size(); ++i) EXPECT_EQ(methods[i].dispid, static_cast<int>(i) + 1);
  for (const MethodInfo& method : methods) EXPECT_TRUE(names.insert(method.name).second) << method.name;
  EXPECT_STREQ(methods.back().name, "AboutBox");
  EXPECT_EQ(methods.back().dispid, DISPID_ABOUTBOX);
  // The five flags of the type library are I4 and take the host's truth value.
  std::vector<std::string> flags;
  for (const MethodInfo& method : methods) {
    for (const ParamInfo& param : method.params) {
      if (param.type == ParamType::Bool) flags.push_back(param.name);
    }
  }
  EXPECT_EQ(flags,
            (std::vector<std::string>{"bImage", "bGraying", "bInverting", "bShortcutMenu", "bVerbose"}));
  EXPECT_EQ(FindMethod("ScaleImage")->result, ResultType::Bool);
  EXPECT_EQ(FindMethod(35)->params.size(), 8u);  // InsertBalloonText
}

TEST(DispatchTable, FindsMethodsByNameIgnoringCaseAndByDispid) {
  for (const MethodInfo& method : DispatchMethods()) {
    EXPECT_EQ(FindMethod(method.dispid), &method);
    EXPECT_EQ(FindMethod(std::string_view(method.name)), &method);
  }
  const MethodInfo* about = FindMethod("aboutbox");
  ASSERT_NE(about, nullptr);
  EXPECT_EQ(about->dispid, DISPID_ABOUTBOX);
  EXPECT_EQ(FindMethod("SETIMAGE"), FindMethod(1));
  EXPECT_EQ(FindMethod("SetImag"), nullptr);
  EXPECT_EQ(FindMethod("SetImageX"), nullptr);
  EXPECT_EQ(FindMethod(""), nullptr);
  EXPECT_EQ(FindMethod(0), nullptr);
  EXPECT_EQ(FindMethod(56), nullptr);
}

// Calls that Invoke refuses never reach the control, so a control without a window
// is enough here.
class InvokeErrors : public ::testing::Test {
 protected:
  InvokeResult Call(std::string_view name, std::vector<Variant> args) { return Invoke(control_, name, args); }
  CImageEditCtrl control_;
};

TEST_F(InvokeErrors, RefusedCallsSayWhatIsWrong) {
  struct Case {
    const char* name;
    std::vector<Variant> args;
    HRESULT hr;
    const char* errorPart;
  };
  const Case cases[] = {
      {"Sharpen", {Variant::Int(1)}, DISP_E_UNKNOWNNAME, "Sharpen"},
      {"SetPen", {}, DISP_E_BADPARAMCOUNT, "SetPen"},
      {"SetPen", {Variant::Int(1), Variant::Int(2)}, DISP_E_BADPARAMCOUNT, "SetPen"},
      {"GetColor", {Variant::Int(1)}, DISP_E_BADPARAMCOUNT, "GetColor"},
      {"CorrectGamma", {Variant::Int(1), Variant::Int(2)}, DISP_E_BADPARAMCOUNT, "CorrectGamma takes 3"},
      {"SetPen", {Variant::String("5")}, DISP_E_TYPEMISMATCH, "nPenSize"},
      {"SetImage", {Variant::Int(1)}, DISP_E_TYPEMISMATCH, "lpszFilePath"},
      // The third argument is the wrong one; the message says so.
      {"InsertIcon",
       {Variant::Int(1), Variant::Int(2), Variant::Bool(true)},
       DISP_E_TYPEMISMATCH,
       "argument 3 (lpszFilePath)"},
      {"SetPen", {Variant::Null()}, DISP_E_TYPEMISMATCH, "nPenSize"},
      {"SetPen", {Variant()}, DISP_E_TYPEMISMATCH, "nPenSize"},
      {"GrayImage", {Variant::String("1")}, DISP_E_TYPEMISMATCH, "bGraying"},
      {"SetColor", {Variant()}, DISP_E_TYPEMISMATCH, "lpszColor"},
  };
  for (const Case& c : cases) {
    const InvokeResult result = Call(c.name, c.args);
    EXPECT_EQ(result.hr, c.hr) << c.name << " with " << c.args.size() << " arguments";
    EXPECT_NE(result.error.find(c.errorPart), std::string::npos) << result.error;
    EXPECT_TRUE(result.value.isEmpty()) << c.name;
  }
}

TEST_F(InvokeErrors, AcceptedArgumentsReachTheMethod) {
  // Before the editor exists the string methods answer null; a null string argument
  // is accepted as the empty string.
  EXPECT_EQ(Call("SetColor", {Variant::Null()}).hr, S_OK);
  EXPECT_EQ(Call("SetPen", {Variant::Bool(true)}).hr, S_OK);
  EXPECT_EQ(Call("Clear", {Variant::Int(-1)}).hr, S_OK);
}

TEST(VariantValues, ConvertAndCompareByType) {
  EXPECT_EQ(Variant::Bool(true).asInt(), 1);
  EXPECT_EQ(Variant::Bool(false).asInt(), 0);
  EXPECT_EQ(Variant::Int(-7).asInt(), -7);
  EXPECT_EQ(Variant::String("x").asString(), "x");
  EXPECT_EQ(Variant::Null().type(), Variant::Type::Null);
  EXPECT_EQ(Variant().type(), Variant::Type::Empty);
  EXPECT_NE(Variant::Int(1), Variant::Bool(true));
  EXPECT_NE(Variant::Null(), Variant());
  EXPECT_NE(Variant::String(""), Variant::Null());
  EXPECT_THROW(Variant::String("1").asInt(), std::bad_variant_access);
  EXPECT_THROW((void)Variant::Int(1).asString(), std::bad_variant_access);
}

}  // namespace
