// A control as the module hands it to a host: the control object behind the dispatch
// interface, the connection point container of its events, the safety answers, its
// window placement, what it shows of itself to a host that tests it, its verbs and
// property page, and what it keeps in a property bag. Its life is its reference
// count; while it lives it counts as one of the module's objects.
#pragma once

#include <memory>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "control/module/event_connection_point.h"
#include "control/module/module_abi.h"
#include "control/module/property_exchange.h"
#include "control/module/site_dialogs.h"

class ControlObject final : public ocx::IDispatch,
                            public ocx::IConnectionPointContainer,
                            public ocx::IObjectSafety,
                            public ocx::IImageEditWindow,
                            public ocx::IImageEditInspection,
                            public ocx::IImageEditObject,
                            public ocx::ISpecifyPropertyPages,
                            public ocx::IPersistPropertyBag {
 public:
  // Constructed with one reference; the control is constructed, its window is not.
  ControlObject();
  ControlObject(const ControlObject&) = delete;
  ControlObject& operator=(const ControlObject&) = delete;
  ~ControlObject();

  // ---- IUnknown: IDispatch's stands for the object's identity ----
  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override;
  ocx::ULONG AddRef() override { return ++references_; }
  ocx::ULONG Release() override;

  // ---- IDispatch: the methods of the dispatch table ----
  // One type information: the dispatch interface's, from the embedded type library.
  ocx::HRESULT GetTypeInfoCount(ocx::UINT* count) override;
  ocx::HRESULT GetTypeInfo(ocx::UINT index, ocx::LCID locale, ocx::ITypeInfo** typeInfo) override;
  ocx::HRESULT GetIDsOfNames(ocx::REFIID riid, ocx::LPOLESTR* names, ocx::UINT count, ocx::LCID locale,
                             ocx::DISPID* dispids) override;
  ocx::HRESULT Invoke(ocx::DISPID dispid, ocx::REFIID riid, ocx::LCID locale, ocx::WORD flags,
                      ocx::DISPPARAMS* params, ocx::VARIANT* result, ocx::EXCEPINFO* exception,
                      ocx::UINT* argError) override;

  // ---- IConnectionPointContainer: the one point is the event interface's ----
  ocx::HRESULT EnumConnectionPoints(ocx::IEnumConnectionPoints** points) override;
  ocx::HRESULT FindConnectionPoint(ocx::REFIID riid, ocx::IConnectionPoint** point) override;

  // ---- IObjectSafety ----
  ocx::HRESULT GetInterfaceSafetyOptions(ocx::REFIID riid, ocx::DWORD* supported,
                                         ocx::DWORD* enabled) override;
  ocx::HRESULT SetInterfaceSafetyOptions(ocx::REFIID riid, ocx::DWORD mask, ocx::DWORD enabled) override;

  // ---- IImageEditWindow ----
  ocx::HRESULT Activate(ocx::INT width, ocx::INT height) override;
  ocx::HRESULT MouseInput(ocx::UINT message, ocx::INT x, ocx::INT y) override;
  ocx::HRESULT GetWindow(ocx::HWND* hostWindow) override;

  // ---- IImageEditInspection ----
  ocx::HRESULT GetState(const ocx::OLECHAR* keys, ocx::BSTR* json, ocx::UINT* unknownKey) override;
  ocx::HRESULT GetSurface(ocx::INT surface, ocx::HBITMAP* bitmap) override;

  // ---- IImageEditObject ----
  ocx::HRESULT SetClientSite(ocx::IImageEditSite* site) override;
  ocx::HRESULT DoVerb(std::int32_t verb) override;

  // ---- ISpecifyPropertyPages: the one page ----
  ocx::HRESULT GetPages(ocx::CAUUID* pages) override;

  // ---- IPersistPropertyBag (property_exchange.h says what is kept) ----
  ocx::HRESULT GetClassID(ocx::CLSID* clsid) override;
  // Nothing of the control's own to set to its defaults.
  ocx::HRESULT InitNew() override { return ocx::S_OK; }
  ocx::HRESULT Load(ocx::IPropertyBag* bag, ocx::IErrorLog* log) override;
  ocx::HRESULT Save(ocx::IPropertyBag* bag, ocx::BOOL clearDirty, ocx::BOOL saveAllProperties) override;

 private:
  ocx::HRESULT LookUpNames(ocx::LPOLESTR* names, ocx::UINT count, ocx::DISPID* dispids);
  ocx::HRESULT CallMethod(const MethodInfo& method, const ocx::DISPPARAMS& params, ocx::VARIANT* result,
                          ocx::EXCEPINFO* exception, ocx::UINT* argError);
  // What a message loop does between inputs: what they changed reaches the screen.
  void FlushPaint();

  ocx::ULONG references_ = 1;
  std::unique_ptr<CImageEditCtrl> control_;
  HWND hostWindow_ = nullptr;
  EventConnectionPoint events_;
  HeldSite site_;
  // Until the control is placed or loaded, the size a container gives a new control.
  ControlExtent extent_ = ExtentFromPixels(100, 50);
};
