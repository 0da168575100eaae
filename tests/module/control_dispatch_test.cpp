// A control driven through its dispatch interface alone: names and DISPIDs, results,
// and the errors a host gets for calls that cannot be made.
#include "module_host.h"

namespace {

constexpr ocx::DISPID kSetColor = 3;
constexpr ocx::DISPID kGetColor = 4;
constexpr ocx::DISPID kSetTransparency = 18;

TEST_F(ModuleTest, NamesFindTheirDispIdsInAnyCase) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  EXPECT_EQ(DispIdOf(control.get(), u"SetColor"), kSetColor);
  EXPECT_EQ(DispIdOf(control.get(), u"getcolor"), kGetColor);
  EXPECT_EQ(DispIdOf(control.get(), u"EnableVerbose"), 55);
  EXPECT_EQ(DispIdOf(control.get(), u"ABOUTBOX"), -552);

  // A method with its parameters: each parameter's DISPID is its position. Every name
  // is answered, the unknown ones with DISPID_UNKNOWN.
  std::u16string method = u"SetTransparency", second = u"ntransparency", unknown = u"nOpacity";
  ocx::LPOLESTR names[] = {method.data(), second.data(), unknown.data()};
  ocx::DISPID dispids[3] = {};
  EXPECT_EQ(control->GetIDsOfNames(ocx::IID_NULL, names, 2, 0, dispids), ocx::S_OK);
  EXPECT_EQ(dispids[0], kSetTransparency);
  EXPECT_EQ(dispids[1], 1);
  EXPECT_EQ(control->GetIDsOfNames(ocx::IID_NULL, names, 3, 0, dispids), ocx::DISP_E_UNKNOWNNAME);
  EXPECT_EQ(dispids[0], kSetTransparency);
  EXPECT_EQ(dispids[2], ocx::DISPID_UNKNOWN);

  std::u16string missing = u"SetColour";
  ocx::LPOLESTR missingName[] = {missing.data()};
  EXPECT_EQ(control->GetIDsOfNames(ocx::IID_NULL, missingName, 1, 0, dispids), ocx::DISP_E_UNKNOWNNAME);
  EXPECT_EQ(dispids[0], ocx::DISPID_UNKNOWN);
  EXPECT_EQ(control->GetIDsOfNames(ocx::IID_IDispatch, missingName, 1, 0, dispids),
            ocx::DISP_E_UNKNOWNINTERFACE);
}

// Two controls of one factory keep their own state, set by name or by DISPID, with
// arguments by value or by reference.
TEST_F(ModuleTest, TwoControlsAreDrivenByNameAndByDispId) {
  Ref<ocx::IDispatch> first;
  Ref<ocx::IDispatch> second;
  CreateActiveControl(first, 80, 60);
  CreateActiveControl(second, 80, 60);

  Call set = CallByName(first.get(), u"SetColor", {HostVariant::String(u"00ff80")});
  ASSERT_EQ(set.hr, ocx::S_OK);
  ASSERT_EQ(set.result.get().vt, ocx::VT_BSTR);
  EXPECT_EQ(Narrow(set.result.get().bstrVal), "00FF80");
  // A variable passed by reference, as a script engine passes it.
  HostVariant color = HostVariant::String(u"123456");
  ocx::VARIANT byReference{};
  byReference.vt = ocx::VT_BYREF | ocx::VT_VARIANT;
  byReference.pvarVal = &color.get();
  ocx::DISPPARAMS params{&byReference, nullptr, 1, 0};
  ASSERT_EQ(
      second->Invoke(kSetColor, ocx::IID_NULL, 0, ocx::DISPATCH_METHOD, &params, nullptr, nullptr, nullptr),
      ocx::S_OK);

  EXPECT_EQ(Narrow(InvokeMethod(first.get(), kGetColor, {}).result.get().bstrVal), "00FF80");
  EXPECT_EQ(Narrow(InvokeMethod(second.get(), kGetColor, {}).result.get().bstrVal), "123456");
  // An active control answers ScaleImage for itself: without a picture nothing scales.
  Call scaled = CallByName(first.get(), u"ScaleImage", {HostVariant::Bool(true)});
  ASSERT_EQ(scaled.hr, ocx::S_OK);
  EXPECT_EQ(scaled.result.get().vt, ocx::VT_I4);

  // Strings cross as UTF-16 and reach the engine as UTF-8: a face name outside ASCII
  // comes back as it went in.
  Call font =
      CallByName(first.get(), u"SetTextFont", {HostVariant::String(u"\uAD74\uB9BC,,Bold,8,,,2040A0")});
  ASSERT_EQ(font.hr, ocx::S_OK);
  ASSERT_EQ(font.result.get().vt, ocx::VT_BSTR);
  const ocx::BSTR text = font.result.get().bstrVal;
  EXPECT_EQ(std::u16string(text, ocx::SysStringLen(text)), u"\uAD74\uB9BC,,Bold,8,,,2040A0");
}

// A call that cannot be made changes nothing: the colour set first stays.
TEST_F(ModuleTest, CallsThatCannotBeMadeReportWhyAndCallNothing) {
  Ref<ocx::IDispatch> control;
  CreateActiveControl(control, 40, 30);
  ASSERT_EQ(CallByName(control.get(), u"SetColor", {HostVariant::String(u"0000FF")}).hr, ocx::S_OK);

  // A refused call says why in the exception information, for the host to show.
  Call noArgument = InvokeMethod(control.get(), kSetColor, {});
  EXPECT_EQ(noArgument.hr, ocx::DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(noArgument.description, u"SetColor takes 1 argument(s), not 0");
  EXPECT_EQ(InvokeMethod(control.get(), kSetColor, {HostVariant::String(u"FF0000"), HostVariant::Int(1)}).hr,
            ocx::DISP_E_BADPARAMCOUNT);
  // The argument at fault is named by its index in the arguments as passed, last first.
  Call wrongType = InvokeMethod(control.get(), kSetColor, {HostVariant::Int(0xFF)});
  EXPECT_EQ(wrongType.hr, ocx::DISP_E_TYPEMISMATCH);
  EXPECT_EQ(wrongType.argError, 0u);
  EXPECT_EQ(wrongType.description, u"SetColor: argument 1 (lpszColor) must be a string, not an integer");
  Call firstWrong =
      InvokeMethod(control.get(), kSetTransparency, {HostVariant::String(u"1"), HostVariant::Int(1)});
  EXPECT_EQ(firstWrong.hr, ocx::DISP_E_TYPEMISMATCH);
  EXPECT_EQ(firstWrong.argError, 1u);
  Call secondWrong =
      InvokeMethod(control.get(), kSetTransparency, {HostVariant::Int(1), HostVariant::String(u"1")});
  EXPECT_EQ(secondWrong.hr, ocx::DISP_E_TYPEMISMATCH);
  EXPECT_EQ(secondWrong.argError, 0u);
  // A missing argument is an empty variant, which no parameter takes.
  EXPECT_EQ(InvokeMethod(control.get(), kSetColor, {HostVariant()}).hr, ocx::DISP_E_TYPEMISMATCH);

  EXPECT_EQ(InvokeMethod(control.get(), 56, {}).hr, ocx::DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(InvokeMethod(control.get(), ocx::DISPID_UNKNOWN, {}).hr, ocx::DISP_E_MEMBERNOTFOUND);
  // Methods are not properties.
  EXPECT_EQ(InvokeMethod(control.get(), kGetColor, {}, /*DISPATCH_PROPERTYGET*/ 2).hr,
            ocx::DISP_E_MEMBERNOTFOUND);

  HostVariant argument = HostVariant::String(u"FF0000");
  ocx::DISPID named = 0;
  ocx::DISPPARAMS namedParams{&argument.get(), &named, 1, 1};
  EXPECT_EQ(control->Invoke(kSetColor, ocx::IID_NULL, 0, ocx::DISPATCH_METHOD, &namedParams, nullptr, nullptr,
                            nullptr),
            ocx::DISP_E_NONAMEDARGS);
  ocx::DISPPARAMS noArguments{nullptr, nullptr, 1, 0};
  EXPECT_EQ(control->Invoke(kSetColor, ocx::IID_NULL, 0, ocx::DISPATCH_METHOD, &noArguments, nullptr, nullptr,
                            nullptr),
            ocx::E_INVALIDARG);

  EXPECT_EQ(Narrow(InvokeMethod(control.get(), kGetColor, {}).result.get().bstrVal), "0000FF");
}

// What a testing host reads of the control: its state by key, in the state's own
// order, and its surfaces.
TEST_F(ModuleTest, InspectionGivesTheStateByKeyAndTheSurfaces) {
  Ref<ocx::IDispatch> control;
  CreateActiveControl(control, 40, 30);
  ASSERT_EQ(CallByName(control.get(), u"SetPen", {HostVariant::Int(7)}).hr, ocx::S_OK);
  Ref<ocx::IImageEditInspection> inspection;
  ASSERT_EQ(control->QueryInterface(ocx::IID_IImageEditInspection, inspection.Out()), ocx::S_OK);

  ocx::HostString json;
  ocx::UINT unknown = 99;
  ASSERT_EQ(inspection->GetState(u"history  penSize", json.Out(), &unknown), ocx::S_OK);
  EXPECT_EQ(json.str(), u"{\"penSize\":7,\"history\":{\"count\":0,\"index\":-1}}");
  EXPECT_EQ(inspection->GetState(u"penSize pensize", json.Out(), &unknown), ocx::DISP_E_UNKNOWNNAME);
  EXPECT_EQ(unknown, 1u);
  ASSERT_EQ(inspection->GetState(nullptr, json.Out(), nullptr), ocx::S_OK);
  EXPECT_TRUE(json.str().starts_with(u"{\"toolMode\":"));

  ocx::HBITMAP surface = nullptr;
  EXPECT_EQ(inspection->GetSurface(ocx::SURFACE_ORIGINAL + 1, &surface), ocx::E_INVALIDARG);
  ASSERT_EQ(inspection->GetSurface(ocx::SURFACE_COMPOSITION, &surface), ocx::S_OK);
  EXPECT_NE(surface, nullptr);
}

}  // namespace
