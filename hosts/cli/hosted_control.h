// One control made by the loaded module and placed in its window, as a container
// holds it: the script host reaches it only through the module's interfaces (methods
// by name through the dispatch interface, its events through a connection point, its
// verbs, its inspection) and through the windows of the platform library both share.
#pragma once

#include <string>
#include <vector>

#include "control/module/module_client.h"
#include "control/module/registry/type_library.h"
#include "loaded_module.h"
#include "platform/platform.h"

namespace script {

// The control's method of that name (regardless of case) as its type library
// describes it, or null. The library is the one this program is built with, so a
// script's names are known before any control exists.
const FunctionDescription* DescribedMethod(const std::string& name);

class HostedControl {
 public:
  // Makes a control, activates it in a window with a client area of width x height
  // and connects `events` to its event interface. Throws std::runtime_error when a
  // step fails.
  HostedControl(const LoadedModule& module, int width, int height, ocx::IDispatch& events);
  HostedControl(const HostedControl&) = delete;
  HostedControl& operator=(const HostedControl&) = delete;
  // Disconnects the events and releases the control, which takes its windows with it.
  ~HostedControl();

  HWND hostWindow() const { return hostWindow_; }
  // The editor's window, which the scroll bars tell of their moves.
  HWND editorWindow() const;

  ocx::Call CallMethod(const FunctionDescription& method, std::vector<ocx::HostVariant> args);
  // The Properties verb.
  void ShowProperties();
  // The editor's state as one line of JSON, every member or those named; throws
  // std::invalid_argument naming the first key that is no member.
  std::string State(const std::vector<std::string>& keys);
  // The surface, still the control's; null when it does not exist.
  HBITMAP Surface(ocx::INSPECTED_SURFACE surface);

 private:
  ocx::Ref<ocx::IDispatch> dispatch_;
  ocx::Ref<ocx::IImageEditInspection> inspection_;
  ocx::Ref<ocx::IConnectionPoint> events_;
  ocx::DWORD eventCookie_ = 0;
  HWND hostWindow_ = nullptr;
};

}  // namespace script
