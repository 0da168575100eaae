#include "control/module/control_object.h"

#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "control/dispatch_table.h"
#include "control/module/boundary_guard.h"
#include "control/module/boundary_variant.h"
#include "control/module/image_edit_ctrl_app.h"
#include "control/module/registry/type_library.h"
#include "control/module/snapshot_enumerator.h"
#include "control/module/type_info.h"
#include "control/state_json.h"
#include "platform/text.h"
#include "platform/user.h"

namespace {

// The options the control supports, all enabled: it is safe for untrusted callers and
// data on every interface it has.
constexpr ocx::DWORD kSafetyOptions =
    ocx::INTERFACESAFE_FOR_UNTRUSTED_CALLER | ocx::INTERFACESAFE_FOR_UNTRUSTED_DATA;

// A host may ask for the two safety options the control has; asking for any other
// option, or naming an option in the mask without enabling it, fails.
bool SafetyOptionsAcceptable(ocx::DWORD mask, ocx::DWORD enabled) {
  const bool onlyKnownOptions = (mask & ~kSafetyOptions) == 0;
  const bool allEnabled = (mask & enabled) == mask;
  return onlyKnownOptions && allEnabled;
}

constexpr ocx::UINT kFirstMouseMessage = WM_MOUSEMOVE;
constexpr ocx::UINT kLastMouseMessage = 0x0209;  // WM_MBUTTONDBLCLK

// The arguments of a call in the engine's order (automation passes them last one
// first); nullopt with *argError set to the automation index of the first argument
// no method could take.
std::optional<std::vector<Variant>> ArgumentsFromHost(const ocx::DISPPARAMS& params, ocx::UINT* argError) {
  std::vector<Variant> args;
  args.reserve(params.cArgs);
  for (ocx::UINT i = 0; i < params.cArgs; ++i) {
    const ocx::UINT hostIndex = params.cArgs - 1 - i;
    std::optional<Variant> value = VariantFromHost(params.rgvarg[hostIndex]);
    if (!value) {
      if (argError != nullptr) *argError = hostIndex;
      return std::nullopt;
    }
    args.push_back(std::move(*value));
  }
  return args;
}

// Holds a reference for the length of a call into the engine: a sink that hears an
// event may release the host's last reference while the engine is still at work.
class KeepAlive {
 public:
  explicit KeepAlive(ocx::IUnknown& object) : object_(object) { object_.AddRef(); }
  KeepAlive(const KeepAlive&) = delete;
  KeepAlive& operator=(const KeepAlive&) = delete;
  ~KeepAlive() { object_.Release(); }

 private:
  ocx::IUnknown& object_;
};

}  // namespace

ControlObject::ControlObject() : control_(std::make_unique<CImageEditCtrl>()), events_(*this, *control_) {
  TheModule().ObjectCreated();
}

// The same steps as a host that owns its control: the sinks go, then the control's
// window (its editor's with it), the control, and last the host window they lived in.
ControlObject::~ControlObject() {
  events_.UnadviseAll();
  if (control_->m_hWnd != nullptr) control_->DestroyWindow();
  control_.reset();
  if (hostWindow_ != nullptr) DestroyWindow(hostWindow_);
  TheModule().ObjectDestroyed();
}

ocx::HRESULT ControlObject::QueryInterface(ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  if (riid == ocx::IID_IUnknown || riid == ocx::IID_IDispatch || riid == ocx::DIID__DImageEditCtrl) {
    *object = static_cast<ocx::IDispatch*>(this);
  } else if (riid == ocx::IID_IConnectionPointContainer) {
    *object = static_cast<ocx::IConnectionPointContainer*>(this);
  } else if (riid == ocx::IID_IObjectSafety) {
    *object = static_cast<ocx::IObjectSafety*>(this);
  } else if (riid == ocx::IID_IImageEditWindow) {
    *object = static_cast<ocx::IImageEditWindow*>(this);
  } else if (riid == ocx::IID_IImageEditInspection) {
    *object = static_cast<ocx::IImageEditInspection*>(this);
  } else if (riid == ocx::IID_IImageEditObject) {
    *object = static_cast<ocx::IImageEditObject*>(this);
  } else if (riid == ocx::IID_ISpecifyPropertyPages) {
    *object = static_cast<ocx::ISpecifyPropertyPages*>(this);
  } else if (riid == ocx::IID_IPersist || riid == ocx::IID_IPersistPropertyBag) {
    *object = static_cast<ocx::IPersistPropertyBag*>(this);
  } else {
    *object = nullptr;
    return ocx::E_NOINTERFACE;
  }
  AddRef();
  return ocx::S_OK;
}

ocx::ULONG ControlObject::Release() {
  const ocx::ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

// ---- dispatch ----

ocx::HRESULT ControlObject::GetTypeInfoCount(ocx::UINT* count) {
  if (count == nullptr) return ocx::E_POINTER;
  *count = 1;
  return ocx::S_OK;
}

ocx::HRESULT ControlObject::GetTypeInfo(ocx::UINT index, ocx::LCID, ocx::ITypeInfo** typeInfo) {
  if (typeInfo == nullptr) return ocx::E_POINTER;
  *typeInfo = nullptr;
  if (index != 0) return ocx::DISP_E_BADINDEX;
  const TypeLibrary* library = EmbeddedTypeLibrary();
  const InterfaceDescription* methods =
      library != nullptr ? library->FindInterface(ocx::DIID__DImageEditCtrl) : nullptr;
  if (methods == nullptr) return ocx::E_UNEXPECTED;
  return CatchingEngineFailures([&] {
    *typeInfo = new DispatchTypeInfo(*methods);
    return ocx::S_OK;
  });
}

// Names match regardless of case, as automation's do. Every name is looked up, so a
// host learns every one that is unknown.
ocx::HRESULT ControlObject::GetIDsOfNames(ocx::REFIID riid, ocx::LPOLESTR* names, ocx::UINT count, ocx::LCID,
                                          ocx::DISPID* dispids) {
  if (!(riid == ocx::IID_NULL)) return ocx::DISP_E_UNKNOWNINTERFACE;
  if (count == 0) return ocx::E_INVALIDARG;
  if (names == nullptr || dispids == nullptr) return ocx::E_POINTER;
  return CatchingEngineFailures([&] { return LookUpNames(names, count, dispids); });
}

ocx::HRESULT ControlObject::LookUpNames(ocx::LPOLESTR* names, ocx::UINT count, ocx::DISPID* dispids) {
  const auto name = [&](ocx::UINT i) {
    if (names[i] == nullptr) return std::string();
    return NarrowFromWide(names[i], static_cast<ocx::UINT>(std::char_traits<char16_t>::length(names[i])));
  };
  const MethodInfo* method = FindMethod(name(0));
  dispids[0] = method != nullptr ? method->dispid : ocx::DISPID_UNKNOWN;
  bool allKnown = method != nullptr;
  for (ocx::UINT i = 1; i < count; ++i) {
    dispids[i] = ocx::DISPID_UNKNOWN;
    if (method == nullptr) continue;
    const std::string paramName = name(i);
    for (std::size_t p = 0; p < method->params.size(); ++p) {
      if (platform::EqualsIgnoringCase(method->params[p].name, paramName)) {
        dispids[i] = static_cast<ocx::DISPID>(p);
      }
    }
    allKnown = allKnown && dispids[i] != ocx::DISPID_UNKNOWN;
  }
  return allKnown ? ocx::S_OK : ocx::DISP_E_UNKNOWNNAME;
}

ocx::HRESULT ControlObject::Invoke(ocx::DISPID dispid, ocx::REFIID riid, ocx::LCID, ocx::WORD flags,
                                   ocx::DISPPARAMS* params, ocx::VARIANT* result, ocx::EXCEPINFO* exception,
                                   ocx::UINT* argError) {
  if (!(riid == ocx::IID_NULL)) return ocx::DISP_E_UNKNOWNINTERFACE;
  const MethodInfo* method = FindMethod(dispid);
  // Every member is a method: there are no properties to get or put.
  if (method == nullptr || (flags & ocx::DISPATCH_METHOD) == 0) return ocx::DISP_E_MEMBERNOTFOUND;
  if (params == nullptr || (params->cArgs > 0 && params->rgvarg == nullptr)) return ocx::E_INVALIDARG;
  if (params->cNamedArgs > 0) return ocx::DISP_E_NONAMEDARGS;
  if (result != nullptr) ocx::VariantInit(result);
  const KeepAlive keep(static_cast<ocx::IDispatch&>(*this));
  return CatchingEngineFailures([&] {
    // The About box, for one, shows through the container's site.
    const SiteDialogs dialogs(site_.get());
    const ocx::HRESULT hr = CallMethod(*method, *params, result, exception, argError);
    FlushPaint();
    return hr;
  });
}

// A call the engine refuses also says why in the exception information, when the
// host passes one: a script host shows its user that text rather than a bare code.
ocx::HRESULT ControlObject::CallMethod(const MethodInfo& method, const ocx::DISPPARAMS& params,
                                       ocx::VARIANT* result, ocx::EXCEPINFO* exception, ocx::UINT* argError) {
  const auto refused = [&](const InvokeResult& called) {
    if (exception != nullptr) {
      *exception = ocx::EXCEPINFO{};
      exception->scode = called.hr;
      exception->bstrDescription = BstrFromNarrow(called.error);
    }
    return called.hr;
  };
  if (params.cArgs != method.params.size()) return refused(WrongArgumentCount(method, params.cArgs));
  std::optional<std::vector<Variant>> args = ArgumentsFromHost(params, argError);
  if (!args) return ocx::DISP_E_TYPEMISMATCH;
  const InvokeResult called = ::Invoke(*control_, method, *args);
  if (called.hr == ocx::DISP_E_TYPEMISMATCH && argError != nullptr) {
    *argError = params.cArgs - 1 - static_cast<ocx::UINT>(called.badArgument);
  }
  if (ocx::FAILED(called.hr)) return refused(called);
  if (result == nullptr) return called.hr;
  return ResultToHost(called.value, method.result, result);
}

// ---- events ----

ocx::HRESULT ControlObject::EnumConnectionPoints(ocx::IEnumConnectionPoints** points) {
  if (points == nullptr) return ocx::E_POINTER;
  *points = nullptr;
  return CatchingEngineFailures([&] {
    *points = ConnectionPointEnumerator::Make(static_cast<ocx::IDispatch&>(*this), {&events_});
    return ocx::S_OK;
  });
}

ocx::HRESULT ControlObject::FindConnectionPoint(ocx::REFIID riid, ocx::IConnectionPoint** point) {
  if (point == nullptr) return ocx::E_POINTER;
  *point = nullptr;
  if (!(riid == ocx::DIID__DImageEditCtrlEvents)) return ocx::CONNECT_E_NOCONNECTION;
  events_.AddRef();
  *point = &events_;
  return ocx::S_OK;
}

// ---- safety ----

// Safe for untrusted callers and data on every interface the control has; the answer
// for an interface it lacks still fills both values, but reports E_NOINTERFACE.
ocx::HRESULT ControlObject::GetInterfaceSafetyOptions(ocx::REFIID riid, ocx::DWORD* supported,
                                                      ocx::DWORD* enabled) {
  if (supported == nullptr || enabled == nullptr) return ocx::E_POINTER;
  void* found = nullptr;
  const ocx::HRESULT hr = QueryInterface(riid, &found);
  if (ocx::SUCCEEDED(hr)) Release();
  *supported = *enabled = kSafetyOptions;
  return hr;
}

ocx::HRESULT ControlObject::SetInterfaceSafetyOptions(ocx::REFIID riid, ocx::DWORD mask, ocx::DWORD enabled) {
  void* found = nullptr;
  if (ocx::FAILED(QueryInterface(riid, &found))) return ocx::E_NOINTERFACE;
  Release();
  return SafetyOptionsAcceptable(mask, enabled) ? ocx::S_OK : ocx::E_FAIL;
}

// ---- window ----

ocx::HRESULT ControlObject::Activate(ocx::INT width, ocx::INT height) {
  if (hostWindow_ != nullptr) return ocx::E_UNEXPECTED;
  if (width < 1 || height < 1) return ocx::E_INVALIDARG;
  const ocx::HRESULT hr = CatchingEngineFailures([&] {
    hostWindow_ = platform::CreateHostWindow(width, height);
    if (hostWindow_ == nullptr) return ocx::E_OUTOFMEMORY;
    if (!control_->CreateControl(hostWindow_, width, height)) return ocx::E_FAIL;
    extent_ = ExtentFromPixels(width, height);
    FlushPaint();
    return ocx::S_OK;
  });
  if (ocx::SUCCEEDED(hr)) return hr;
  // A failed activation leaves the control as it was, to be activated again.
  if (control_->m_hWnd != nullptr) control_->DestroyWindow();
  if (hostWindow_ != nullptr) DestroyWindow(hostWindow_);
  hostWindow_ = nullptr;
  return hr;
}

ocx::HRESULT ControlObject::MouseInput(ocx::UINT message, ocx::INT x, ocx::INT y) {
  if (hostWindow_ == nullptr) return ocx::E_UNEXPECTED;
  if (message < kFirstMouseMessage || message > kLastMouseMessage) return ocx::E_INVALIDARG;
  const KeepAlive keep(static_cast<ocx::IDispatch&>(*this));
  return CatchingEngineFailures([&] {
    platform::MouseInput(hostWindow_, message, x, y);
    FlushPaint();
    return ocx::S_OK;
  });
}

ocx::HRESULT ControlObject::GetWindow(ocx::HWND* hostWindow) {
  if (hostWindow == nullptr) return ocx::E_POINTER;
  *hostWindow = hostWindow_;
  return hostWindow_ != nullptr ? ocx::S_OK : ocx::E_UNEXPECTED;
}

void ControlObject::FlushPaint() {
  if (hostWindow_ != nullptr) platform::FlushPaint(hostWindow_);
}

// ---- inspection ----

ocx::HRESULT ControlObject::GetState(const ocx::OLECHAR* keys, ocx::BSTR* json, ocx::UINT* unknownKey) {
  if (json == nullptr) return ocx::E_POINTER;
  *json = nullptr;
  return CatchingEngineFailures([&] {
    std::vector<std::string> names;
    std::istringstream words(
        keys != nullptr
            ? NarrowFromWide(keys, static_cast<ocx::UINT>(std::char_traits<char16_t>::length(keys)))
            : std::string());
    for (std::string name; words >> name;) {
      if (!IsStateKey(name)) {
        if (unknownKey != nullptr) *unknownKey = static_cast<ocx::UINT>(names.size());
        return ocx::DISP_E_UNKNOWNNAME;
      }
      names.push_back(name);
    }
    *json = BstrFromNarrow(EditorStateJson(control_->State(), names));
    return *json != nullptr ? ocx::S_OK : ocx::E_OUTOFMEMORY;
  });
}

ocx::HRESULT ControlObject::GetSurface(ocx::INT surface, ocx::HBITMAP* bitmap) {
  if (bitmap == nullptr) return ocx::E_POINTER;
  *bitmap = nullptr;
  if (surface < ocx::SURFACE_IMAGE || surface > ocx::SURFACE_ORIGINAL) return ocx::E_INVALIDARG;
  // The module's surface numbers are the engine's names in the same order.
  static_assert(static_cast<int>(SurfaceName::Original) == ocx::SURFACE_ORIGINAL);
  return CatchingEngineFailures([&] {
    *bitmap = control_->SurfaceBitmap(static_cast<SurfaceName>(surface));
    return ocx::S_OK;
  });
}

// ---- verbs and property page ----

ocx::HRESULT ControlObject::SetClientSite(ocx::IImageEditSite* site) {
  site_.Set(site);
  return ocx::S_OK;
}

// The verbs a control answers in place. Activation takes a size, which only
// IImageEditWindow::Activate is given, so the activating verbs report whether that
// has happened rather than do it.
ocx::HRESULT ControlObject::DoVerb(std::int32_t verb) {
  switch (verb) {
    case ocx::OLEIVERB_PROPERTIES: {
      const KeepAlive keep(static_cast<ocx::IDispatch&>(*this));
      return CatchingEngineFailures([&] {
        const SiteDialogs dialogs(site_.get());
        control_->OnProperties();
        return ocx::S_OK;
      });
    }
    case ocx::OLEIVERB_PRIMARY:
    case ocx::OLEIVERB_SHOW:
    case ocx::OLEIVERB_UIACTIVATE:
    case ocx::OLEIVERB_INPLACEACTIVATE:
      return hostWindow_ != nullptr ? ocx::S_OK : ocx::OLE_E_NOT_INPLACEACTIVE;
    case ocx::OLEIVERB_HIDE:
    case ocx::OLEIVERB_DISCARDUNDOSTATE:
      return ocx::S_OK;
    default:
      // Opening in a window of its own (OLEIVERB_OPEN) is not something a control does.
      return verb < 0 ? ocx::E_NOTIMPL : ocx::OLEOBJ_S_INVALIDVERB;
  }
}

ocx::HRESULT ControlObject::GetPages(ocx::CAUUID* pages) {
  if (pages == nullptr) return ocx::E_POINTER;
  pages->cElems = 0;
  pages->pElems = static_cast<ocx::GUID*>(ocx::CoTaskMemAlloc(sizeof(ocx::GUID)));
  if (pages->pElems == nullptr) return ocx::E_OUTOFMEMORY;
  pages->pElems[0] = ocx::CLSID_ImageEditCtrlPropPage;
  pages->cElems = 1;
  return ocx::S_OK;
}

// ---- persistence ----

ocx::HRESULT ControlObject::GetClassID(ocx::CLSID* clsid) {
  if (clsid == nullptr) return ocx::E_POINTER;
  *clsid = ocx::CLSID_ImageEditCtrl;
  return ocx::S_OK;
}

// The extent loaded is what the control saves next; the window of a control already
// placed keeps its size, as the control never resizes it.
ocx::HRESULT ControlObject::Load(ocx::IPropertyBag* bag, ocx::IErrorLog*) {
  if (bag == nullptr) return ocx::E_POINTER;
  return CatchingEngineFailures([&] { return LoadProperties(*bag, &extent_); });
}

ocx::HRESULT ControlObject::Save(ocx::IPropertyBag* bag, ocx::BOOL, ocx::BOOL) {
  if (bag == nullptr) return ocx::E_POINTER;
  return CatchingEngineFailures([&] { return SaveProperties(*bag, extent_); });
}
