// Self-registration in the per-user registry file: what DllRegisterServer and
// DllUnregisterServer do (module_abi.h states their results).
#pragma once

#include "control/module/module_abi.h"

ocx::HRESULT RegisterServer();
ocx::HRESULT UnregisterServer();
