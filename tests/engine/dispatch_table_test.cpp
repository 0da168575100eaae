// The dispatch table against the published interface, written out here a second time
// by hand, and the checks Invoke makes before anything is called.
#include "control/dispatch_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/image_edit_ctrl.h"

namespace {

struct PublishedMethod {
  int dispid;
  const char* name;
  const char* params;  // "TYPE name, ..." with INT, BOOL (the I4 flags) and BSTR
  const char* result;  // "none", "BSTR" or "BOOL"
};

const PublishedMethod kPublished[] = {
    {1, "SetImage", "BSTR lpszFilePath", "none"},
    {2, "SaveEditedBitmap", "BSTR lpszFilePath", "none"},
    {3, "SetColor", "BSTR lpszColor", "BSTR"},
    {4, "GetColor", "", "BSTR"},
    {5, "SelectColor", "", "none"},
    {6, "FillWithSelectedColor", "", "none"},
    {7, "SetEraser", "INT nEraserSize", "none"},
    {8, "SetPen", "INT nPenSize", "none"},
    {9, "SetBrush", "INT nBrushSize", "none"},
    {10, "SetAirBrush", "INT nAirBrushSize", "none"},
    {11, "SetBitmapBrush", "BSTR lpszFilePath", "none"},
    {12, "SetShape", "INT nShapeStyle", "none"},
    {13, "EnterText", "", "none"},
    {14, "SetTextFont", "BSTR lpszFont", "BSTR"},
    {15, "SetTextBackgroundColor", "BSTR lpszColor", "BSTR"},
    {16, "SelectRectangle", "", "none"},
    {17, "SelectIrregular", "", "none"},
    {18, "SetTransparency", "INT nTransparentColor, INT nTransparency", "none"},
    {19, "SetTexture", "INT nTexture", "none"},
    {20, "Undo", "", "none"},
    {21, "Redo", "", "none"},
    {22, "Clear", "BOOL bImage", "none"},
    {23, "ScaleImage", "INT nScaleFactor", "BOOL"},
    {24, "SetSaveEditedBitmapSize", "INT nWidth, INT nHeight", "none"},
    {25, "SetImageWidth", "INT nImageWidth", "none"},
    {26, "SetFrame", "INT nOrientation, BSTR lpszFilePath, INT nOffset, INT nTransparentColor", "none"},
    {27, "RotateImage", "INT nDegree", "none"},
    {28, "CutImage", "", "none"},
    {29, "GrayImage", "BOOL bGraying", "none"},
    {30, "BlockImage", "", "none"},
    {31, "CheckImage", "", "none"},
    {32, "WaterDropImage", "", "none"},
    {33, "HeartImage", "", "none"},
    {34, "MosaicImage", "", "none"},
    {35, "InsertBalloonText",
     "INT nStartX, INT nStartY, BSTR lpszFilePath, INT nTextStartX, INT nTextStartY, INT nTextEndX, "
     "INT nTextEndY, BSTR lpszText",
     "none"},
    {36, "InsertIcon", "INT nStartX, INT nStartY, BSTR lpszFilePath", "none"},
    {37, "FlipImage", "", "none"},
    {38, "ReverseImage", "", "none"},
    {39, "SharpenImage", "INT nStep", "none"},
    {40, "SmoothImage", "INT nStep", "none"},
    {41, "EmbossImage", "", "none"},
    {42, "BrightenImage", "INT nBrightness", "none"},
    {43, "ContrastImage", "INT nContrast", "none"},
    {44, "HueImage", "INT nHue", "none"},
    {45, "SaturateImage", "INT nSaturation", "none"},
    {46, "CorrectGamma", "INT nRedGamma, INT nGreenGamma, INT nBlueGamma", "none"},
    {47, "EqualizeHistogram", "", "none"},
    {48, "InvertImage", "BOOL bInverting", "none"},
    {49, "BlendImage", "BSTR lpszFilePath, INT nAlpha", "none"},
    {50, "WhitenImage", "INT nStep", "none"},
    {51, "SetNothing", "", "none"},
    {52, "SetSelectionBox", "INT nWidth, INT nHeight", "none"},
    {53, "SaveSelectionBoxBitmap", "BSTR lpcFilePath", "none"},
    {54, "EnableShortcutMenu", "BOOL bShortcutMenu", "none"},
    {55, "EnableVerbose", "BOOL bVerbose", "none"},
    {-552, "AboutBox", "", "none"},
};

const char* TypeName(ParamType type) {
  return type == ParamType::Int ? "INT" : type == ParamType::Bool ? "BOOL" : "BSTR";
}

std::string DescribeParams(const MethodInfo& method) {
  std::string text;
  for (const ParamInfo& param : method.params) {
    text += (text.empty() ? "" : ", ") + std::string(TypeName(param.type)) + " " + param.name;
  }
  return text;
}

std::string DescribeResult(ResultType result) {
  return result == ResultType::None ? "none" : result == ResultType::String ? "BSTR" : "BOOL";
}

TEST(DispatchTable, MatchesThePublishedInterfaceInOrder) {
  const std::vector<MethodInfo>& methods = DispatchMethods();
  ASSERT_EQ(methods.size(), std::size(kPublished));
  for (std::size_t i = 0; i < methods.size(); ++i) {
    SCOPED_TRACE(kPublished[i].name);
    EXPECT_EQ(methods[i].dispid, kPublished[i].dispid);
    EXPECT_STREQ(methods[i].name, kPublished[i].name);
    EXPECT_EQ(DescribeParams(methods[i]), kPublished[i].params);
    EXPECT_EQ(DescribeResult(methods[i].result), kPublished[i].result);
    EXPECT_NE(methods[i].invoke, nullptr);
  }
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
