#include "control/module/event_connection_point.h"

#include <utility>
#include <vector>

#include "control/module/boundary_guard.h"
#include "control/module/boundary_variant.h"
#include "control/module/snapshot_enumerator.h"

EventConnectionPoint::~EventConnectionPoint() { UnadviseAll(); }

ocx::HRESULT EventConnectionPoint::QueryInterface(ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  if (riid == ocx::IID_IUnknown || riid == ocx::IID_IConnectionPoint) {
    *object = static_cast<ocx::IConnectionPoint*>(this);
    AddRef();
    return ocx::S_OK;
  }
  *object = nullptr;
  return ocx::E_NOINTERFACE;
}

ocx::HRESULT EventConnectionPoint::GetConnectionInterface(ocx::IID* iid) {
  if (iid == nullptr) return ocx::E_POINTER;
  *iid = ocx::DIID__DImageEditCtrlEvents;
  return ocx::S_OK;
}

ocx::HRESULT EventConnectionPoint::GetConnectionPointContainer(ocx::IConnectionPointContainer** container) {
  if (container == nullptr) return ocx::E_POINTER;
  container_.AddRef();
  *container = &container_;
  return ocx::S_OK;
}

// A sink made for this control answers the event interface; a script engine's
// generic sink often answers only IDispatch, and is called the same way.
ocx::HRESULT EventConnectionPoint::Advise(ocx::IUnknown* sink, ocx::DWORD* cookie) {
  if (cookie == nullptr) return ocx::E_POINTER;
  *cookie = 0;
  if (sink == nullptr) return ocx::E_POINTER;
  void* dispatch = nullptr;
  if (ocx::FAILED(sink->QueryInterface(ocx::DIID__DImageEditCtrlEvents, &dispatch)) &&
      ocx::FAILED(sink->QueryInterface(ocx::IID_IDispatch, &dispatch))) {
    return ocx::CONNECT_E_CANNOTCONNECT;
  }
  auto* connected = static_cast<ocx::IDispatch*>(dispatch);
  const ocx::HRESULT hr = CatchingEngineFailures([&] {
    auto connection = std::make_unique<SinkConnection>(connected);
    connected = nullptr;  // the connection holds the reference now
    const ocx::DWORD controlCookie = control_.Advise(connection.get());
    try {
      connections_.emplace(controlCookie, std::move(connection));
    } catch (...) {
      control_.Unadvise(controlCookie);  // it must not call a connection that is gone
      throw;
    }
    *cookie = controlCookie;
    return ocx::S_OK;
  });
  if (connected != nullptr) connected->Release();
  return hr;
}

ocx::HRESULT EventConnectionPoint::Unadvise(ocx::DWORD cookie) {
  if (!control_.Unadvise(cookie)) return ocx::CONNECT_E_NOCONNECTION;
  connections_.erase(cookie);
  return ocx::S_OK;
}

// The connections in the order they were made (cookies only grow).
ocx::HRESULT EventConnectionPoint::EnumConnections(ocx::IEnumConnections** connections) {
  if (connections == nullptr) return ocx::E_POINTER;
  *connections = nullptr;
  return CatchingEngineFailures([&] {
    std::vector<ocx::CONNECTDATA> items;
    items.reserve(connections_.size());
    for (const auto& [cookie, connection] : connections_) items.push_back({connection->sink(), cookie});
    *connections = ConnectionEnumerator::Make(*this, std::move(items));
    return ocx::S_OK;
  });
}

void EventConnectionPoint::UnadviseAll() {
  for (const auto& [cookie, connection] : connections_) control_.Unadvise(cookie);
  connections_.clear();
}

void EventConnectionPoint::SinkConnection::Invoke(int dispid, const std::vector<Variant>& args) {
  // Automation passes the arguments last one first. The variants start empty.
  std::vector<ocx::VARIANT> hostArgs(args.size());
  bool complete = true;
  for (std::size_t i = 0; i < args.size() && complete; ++i) {
    complete = ocx::SUCCEEDED(VariantToHost(args[i], &hostArgs[args.size() - 1 - i]));
  }
  // A sink may disconnect itself while it is called, which destroys this connection:
  // the call holds its own reference and touches nothing of the connection after it.
  ocx::IDispatch* sink = sink_;
  if (complete) {
    ocx::DISPPARAMS params{hostArgs.data(), nullptr, static_cast<ocx::UINT>(hostArgs.size()), 0};
    sink->AddRef();
    sink->Invoke(dispid, ocx::IID_NULL, 0, ocx::DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    sink->Release();
  }
  for (ocx::VARIANT& hostArg : hostArgs) ocx::VariantClear(&hostArg);
}
