// The control's connection point for its event interface: any number of sinks, each
// called in the order it connected with every event the control fires.
#pragma once

#include <map>
#include <memory>

#include "control/image_edit_ctrl.h"
#include "control/module/module_abi.h"

class EventConnectionPoint final : public ocx::IConnectionPoint {
 public:
  // A part of the control object `container`, whose references it shares: a host that
  // holds the connection point holds the control.
  EventConnectionPoint(ocx::IConnectionPointContainer& container, CImageEditCtrl& control)
      : container_(container), control_(control) {}
  EventConnectionPoint(const EventConnectionPoint&) = delete;
  EventConnectionPoint& operator=(const EventConnectionPoint&) = delete;
  ~EventConnectionPoint();

  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override;
  ocx::ULONG AddRef() override { return container_.AddRef(); }
  ocx::ULONG Release() override { return container_.Release(); }

  ocx::HRESULT GetConnectionInterface(ocx::IID* iid) override;
  ocx::HRESULT GetConnectionPointContainer(ocx::IConnectionPointContainer** container) override;
  ocx::HRESULT Advise(ocx::IUnknown* sink, ocx::DWORD* cookie) override;
  ocx::HRESULT Unadvise(ocx::DWORD cookie) override;
  ocx::HRESULT EnumConnections(ocx::IEnumConnections** connections) override;

  // Disconnects every sink; the control object does it before its control goes.
  void UnadviseAll();

 private:
  // One connected sink: the control calls it as one of its event sinks, and it passes
  // the event on to the host's dispatch interface.
  class SinkConnection final : public IEventSink {
   public:
    // Takes over the reference the caller holds on `sink`.
    explicit SinkConnection(ocx::IDispatch* sink) : sink_(sink) {}
    SinkConnection(const SinkConnection&) = delete;
    SinkConnection& operator=(const SinkConnection&) = delete;
    ~SinkConnection() override { sink_->Release(); }
    void Invoke(int dispid, const std::vector<Variant>& args) override;
    ocx::IDispatch* sink() const { return sink_; }

   private:
    ocx::IDispatch* sink_;
  };

  ocx::IConnectionPointContainer& container_;
  CImageEditCtrl& control_;
  // By the control's cookie, which is also the host's.
  std::map<ocx::DWORD, std::unique_ptr<SinkConnection>> connections_;
};
