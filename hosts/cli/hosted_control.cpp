#include "hosted_control.h"

#include <stdexcept>

#include "platform/kernel.h"
#include "platform/text.h"

namespace script {
namespace {

void Check(ocx::HRESULT hr, const char* what) {
  if (ocx::FAILED(hr)) {
    throw std::runtime_error(std::string("the control module failed to ") + what + " (" + HresultHex(hr) +
                             ")");
  }
}

}  // namespace

const FunctionDescription* DescribedMethod(const std::string& name) {
  const TypeLibrary* library = EmbeddedTypeLibrary();
  const InterfaceDescription* methods =
      library != nullptr ? library->FindInterface(ocx::DIID__DImageEditCtrl) : nullptr;
  if (methods == nullptr) return nullptr;
  for (const FunctionDescription& method : methods->functions) {
    if (platform::EqualsIgnoringCase(method.name, name)) return &method;
  }
  return nullptr;
}

HostedControl::HostedControl(const LoadedModule& module, int width, int height, ocx::IDispatch& events) {
  ocx::Ref<ocx::IClassFactory> factory;
  Check(module.GetClassObject(ocx::CLSID_ImageEditCtrl, ocx::IID_IClassFactory, factory.Out()),
        "give its class factory");
  Check(factory->CreateInstance(nullptr, ocx::IID_IDispatch, dispatch_.Out()), "make a control");
  ocx::Ref<ocx::IImageEditWindow> window;
  Check(dispatch_->QueryInterface(ocx::IID_IImageEditWindow, window.Out()), "place a control");
  Check(window->Activate(width, height), "activate the control");
  Check(window->GetWindow(&hostWindow_), "give the control's window");
  Check(dispatch_->QueryInterface(ocx::IID_IImageEditInspection, inspection_.Out()), "show its state");
  ocx::Ref<ocx::IConnectionPointContainer> points;
  Check(dispatch_->QueryInterface(ocx::IID_IConnectionPointContainer, points.Out()), "list its events");
  Check(points->FindConnectionPoint(ocx::DIID__DImageEditCtrlEvents, events_.OutTyped()), "find its events");
  Check(events_->Advise(&events, &eventCookie_), "connect its events");
}

HostedControl::~HostedControl() {
  if (events_) events_->Unadvise(eventCookie_);
}

HWND HostedControl::editorWindow() const { return GetWindow(GetWindow(hostWindow_, GW_CHILD), GW_CHILD); }

ocx::Call HostedControl::CallMethod(const FunctionDescription& method, std::vector<ocx::HostVariant> args) {
  return ocx::CallByName(dispatch_.get(), WideFromNarrow(method.name), std::move(args));
}

void HostedControl::ShowProperties() {
  ocx::Ref<ocx::IImageEditObject> object;
  Check(dispatch_->QueryInterface(ocx::IID_IImageEditObject, object.Out()), "give its verbs");
  Check(object->DoVerb(ocx::OLEIVERB_PROPERTIES), "show its property page");
}

std::string HostedControl::State(const std::vector<std::string>& keys) {
  std::string joined;
  for (const std::string& key : keys) joined += (joined.empty() ? "" : " ") + key;
  const std::u16string wideKeys = WideFromNarrow(joined);
  ocx::HostString json;
  ocx::UINT unknown = 0;
  const ocx::HRESULT hr = inspection_->GetState(wideKeys.c_str(), json.Out(), &unknown);
  if (hr == ocx::DISP_E_UNKNOWNNAME && unknown < keys.size()) throw std::invalid_argument(keys[unknown]);
  Check(hr, "show its state");
  const std::u16string text = json.str();
  return NarrowFromWide(text.data(), static_cast<ocx::UINT>(text.size()));
}

HBITMAP HostedControl::Surface(ocx::INSPECTED_SURFACE surface) {
  ocx::HBITMAP bitmap = nullptr;
  Check(inspection_->GetSurface(surface, &bitmap), "show a surface");
  return bitmap;
}

}  // namespace script
