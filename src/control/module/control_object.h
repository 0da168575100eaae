// A control as the module hands it to a host: the control object behind the dispatch
// interface, the connection point container of its events, the safety answers and
// its window placement. Its life is its reference count; while it lives it counts as
// one of the module's objects.
#pragma once

#include <memory>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "control/module/event_connection_point.h"
#include "control/module/module_abi.h"

class ControlObject final : public ocx::IDispatch,
                            public ocx::IConnectionPointContainer,
                            public ocx::IObjectSafety,
                            public ocx::IImageEditWindow {
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
  // Not offered: the one point is found by its interface.
  ocx::HRESULT EnumConnectionPoints(ocx::IEnumConnectionPoints** points) override;
  ocx::HRESULT FindConnectionPoint(ocx::REFIID riid, ocx::IConnectionPoint** point) override;

  // ---- IObjectSafety ----
  ocx::HRESULT GetInterfaceSafetyOptions(ocx::REFIID riid, ocx::DWORD* supported,
                                         ocx::DWORD* enabled) override;
  ocx::HRESULT SetInterfaceSafetyOptions(ocx::REFIID riid, ocx::DWORD mask, ocx::DWORD enabled) override;

  // ---- IImageEditWindow ----
  ocx::HRESULT Activate(ocx::INT width, ocx::INT height) override;
  ocx::HRESULT MouseInput(ocx::UINT message, ocx::INT x, ocx::INT y) override;

 private:
  ocx::HRESULT LookUpNames(ocx::LPOLESTR* names, ocx::UINT count, ocx::DISPID* dispids);
  ocx::HRESULT CallMethod(const MethodInfo& method, const ocx::DISPPARAMS& params, ocx::VARIANT* result,
                          ocx::UINT* argError);
  // What a message loop does between inputs: what they changed reaches the screen.
  void FlushPaint();

  ocx::ULONG references_ = 1;
  std::unique_ptr<CImageEditCtrl> control_;
  HWND hostWindow_ = nullptr;
  EventConnectionPoint events_;
};
