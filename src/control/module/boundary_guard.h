// No exception may cross the module's boundary: the host's side knows nothing of the
// engine's exceptions, and unwinding through it is undefined.
#pragma once

#include <exception>
#include <new>

#include "control/module/module_abi.h"

// Runs `call` (returning an HRESULT) and turns what the engine throws into a result:
// E_OUTOFMEMORY for a failed allocation, E_FAIL for anything else.
template <typename Call>
ocx::HRESULT CatchingEngineFailures(Call&& call) noexcept {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return ocx::E_OUTOFMEMORY;
  } catch (...) {
    return ocx::E_FAIL;
  }
}
