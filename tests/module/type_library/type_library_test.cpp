// The type library is generated from the same description as the dispatch table and
// the events: each function must be the dispatch table's method of that DISPID with
// its name, parameter names and types and result, in the table's order; as the module
// embeds it, and as a host reads it through the control's GetTypeInfo.
#include "control/module/registry/type_library.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "interface/control_events.h"
#include "module/module_host.h"

namespace {

ocx::VARTYPE TypeOf(ParamType type) {
  switch (type) {
    case ParamType::Int:
      return ocx::VT_INT;
    case ParamType::Bool:
      return ocx::VT_I4;  // a flag is a 32-bit integer to the type library
    case ParamType::String:
      return ocx::VT_BSTR;
  }
  return 0;
}

ocx::VARTYPE TypeOf(ResultType type) {
  switch (type) {
    case ResultType::None:
      return ocx::VT_VOID;
    case ResultType::String:
      return ocx::VT_BSTR;
    case ResultType::Bool:
      return ocx::VT_I4;
  }
  return 0;
}

// A function as either side describes it, to compare whole.
struct Function {
  ocx::DISPID dispid;
  std::string name;
  ocx::VARTYPE result;
  std::vector<std::string> paramNames;
  std::vector<ocx::VARTYPE> paramTypes;
  bool operator==(const Function&) const = default;
};

void PrintTo(const Function& function, std::ostream* out) { *out << function.dispid << ' ' << function.name; }

std::vector<Function> DispatchTableFunctions() {
  std::vector<Function> functions;
  for (const MethodInfo& method : DispatchMethods()) {
    Function function{method.dispid, method.name, TypeOf(method.result), {}, {}};
    for (const ParamInfo& param : method.params) {
      function.paramNames.push_back(param.name);
      function.paramTypes.push_back(TypeOf(param.type));
    }
    functions.push_back(function);
  }
  return functions;
}

std::vector<Function> Functions(const InterfaceDescription& interface) {
  std::vector<Function> functions;
  for (const FunctionDescription& description : interface.functions) {
    Function function{description.dispid, description.name, description.result, {}, {}};
    for (const ParameterDescription& param : description.params) {
      function.paramNames.push_back(param.name);
      function.paramTypes.push_back(param.type);
    }
    functions.push_back(function);
  }
  return functions;
}

// The text of a BSTR the type information handed over, which it frees.
std::string Taken(ocx::BSTR text) {
  const std::string narrow = Narrow(text);
  ocx::SysFreeString(text);
  return narrow;
}

// The registration transcript checks the library's names, GUIDs and listing; what it
// does not show is checked here.
TEST(TypeLibrary, TheEmbeddedLibraryDescribesTheDispatchTableAndTheEvents) {
  const TypeLibraryReading reading = ReadTypeLibrary(EmbeddedTypeLibraryText());
  ASSERT_TRUE(reading.library) << reading.error;
  const TypeLibrary& library = *reading.library;
  EXPECT_EQ(library.lcid, 0x0409u);
  EXPECT_EQ(library.helpFile, "OstrelImageEditCtrl.hlp");

  const InterfaceDescription* methods = library.FindInterface(ocx::DIID__DImageEditCtrl);
  ASSERT_NE(methods, nullptr);
  EXPECT_EQ(methods->flags, ocx::TYPEFLAG_FDISPATCHABLE | ocx::TYPEFLAG_FHIDDEN);
  EXPECT_EQ(methods->help, "Dispatch interface for Image Edit Control");
  EXPECT_EQ(Functions(*methods), DispatchTableFunctions());

  const InterfaceDescription* events = library.FindInterface(ocx::DIID__DImageEditCtrlEvents);
  ASSERT_NE(events, nullptr);
  EXPECT_EQ(events->flags, ocx::TYPEFLAG_FDISPATCHABLE);
  ASSERT_EQ(events->functions.size(), 2u);
  for (const FunctionDescription& event : events->functions) {
    ASSERT_NE(EventName(event.dispid), nullptr) << event.name;
    EXPECT_EQ(event.name, EventName(event.dispid));
    EXPECT_EQ(event.result, ocx::VT_VOID);
  }
  EXPECT_EQ(library.coclass.flags, ocx::TYPEFLAG_FCANCREATE | ocx::TYPEFLAG_FCONTROL);
  EXPECT_EQ(library.coclass.help, "Image Edit Control");
}

// The control's type information over the module's boundary, read the way a host
// reads it, lists the dispatch table; while a host holds it the module stays loaded.
TEST_F(ModuleTest, GetTypeInfoListsEveryMethodOfTheDispatchTable) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  ocx::UINT count = 0;
  EXPECT_EQ(control->GetTypeInfoCount(&count), ocx::S_OK);
  EXPECT_EQ(count, 1u);
  Ref<ocx::ITypeInfo> info;
  EXPECT_EQ(control->GetTypeInfo(1, 0, info.OutTyped()), ocx::DISP_E_BADINDEX);
  EXPECT_FALSE(info);
  ASSERT_EQ(control->GetTypeInfo(0, 0, info.OutTyped()), ocx::S_OK);
  control.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE) << "the type information is one of the module's objects";

  ocx::IID iid{};
  ocx::WORD flags = 0;
  ocx::UINT functionCount = 0;
  ASSERT_EQ(info->GetTypeAttr(&iid, &flags, &functionCount), ocx::S_OK);
  EXPECT_EQ(iid, ocx::DIID__DImageEditCtrl);
  EXPECT_EQ(flags, ocx::TYPEFLAG_FDISPATCHABLE | ocx::TYPEFLAG_FHIDDEN);
  std::vector<Function> listed;
  for (ocx::UINT i = 0; i < functionCount; ++i) {
    Function function{};
    ocx::UINT paramCount = 0;
    ASSERT_EQ(info->GetFuncDesc(i, &function.dispid, &function.result, &paramCount), ocx::S_OK);
    std::vector<ocx::BSTR> names(paramCount + 1);
    ocx::UINT named = 0;
    ASSERT_EQ(info->GetNames(function.dispid, names.data(), paramCount + 1, &named), ocx::S_OK);
    ASSERT_EQ(named, paramCount + 1);
    function.name = Taken(names[0]);
    for (ocx::UINT p = 0; p < paramCount; ++p) {
      function.paramNames.push_back(Taken(names[p + 1]));
      ocx::VARTYPE type = 0;
      ASSERT_EQ(info->GetParamType(i, p, &type), ocx::S_OK);
      function.paramTypes.push_back(type);
    }
    EXPECT_EQ(info->GetParamType(i, paramCount, &function.result), ocx::TYPE_E_ELEMENTNOTFOUND);
    listed.push_back(function);
  }
  EXPECT_EQ(listed, DispatchTableFunctions());

  // Out of range and unknown members are refused; fewer names than there are give
  // the function's name first.
  ocx::DISPID dispid = 0;
  ocx::VARTYPE result = 0;
  ocx::UINT paramCount = 0;
  EXPECT_EQ(info->GetFuncDesc(functionCount, &dispid, &result, &paramCount), ocx::TYPE_E_ELEMENTNOTFOUND);
  ocx::BSTR names[2] = {nullptr, nullptr};
  ocx::UINT named = 9;
  EXPECT_EQ(info->GetNames(0, names, 2, &named), ocx::TYPE_E_ELEMENTNOTFOUND);
  EXPECT_EQ(named, 0u);
  ASSERT_EQ(info->GetNames(26, names, 1, &named), ocx::S_OK);
  EXPECT_EQ(named, 1u);
  EXPECT_EQ(Taken(names[0]), "SetFrame");
  EXPECT_EQ(names[1], nullptr);

  ocx::BSTR name = nullptr;
  ocx::BSTR help = nullptr;
  ASSERT_EQ(info->GetDocumentation(ocx::MEMBERID_NIL, &name, &help), ocx::S_OK);
  EXPECT_EQ(Taken(name), "_DImageEditCtrl");
  EXPECT_EQ(Taken(help), "Dispatch interface for Image Edit Control");
  ASSERT_EQ(info->GetDocumentation(-552, nullptr, &help), ocx::S_OK);
  EXPECT_EQ(Taken(help), "Shows the About box");
  EXPECT_EQ(info->GetDocumentation(56, &name, nullptr), ocx::TYPE_E_ELEMENTNOTFOUND);

  Ref<ocx::IUnknown> unknown;
  EXPECT_EQ(info->QueryInterface(ocx::IID_IUnknown, unknown.Out()), ocx::S_OK);
  EXPECT_EQ(info->QueryInterface(ocx::IID_IDispatch, unknown.Out()), ocx::E_NOINTERFACE);
  EXPECT_FALSE(unknown);
}

}  // namespace
