// Values crossing the module's boundary: the automation variants and strings a host
// passes, turned into the engine's own values and back. Strings cross as UTF-16 and
// reach the engine in the platform's ANSI code page, as a narrow build receives them.
#pragma once

#include <optional>
#include <string>

#include "control/dispatch_table.h"
#include "control/module/module_abi.h"
#include "control/variant.h"
#include "platform/kernel.h"

// The engine's value for a host's argument; nullopt for a type no method takes (the
// caller reports a type mismatch). A variant passed by reference is read through
// once, as a script engine passes its variables.
std::optional<Variant> VariantFromHost(const ocx::VARIANT& argument);

// An engine value as a host variant, in *out (which the caller has cleared): integers
// as I4, flags as automation booleans, strings as new BSTRs. E_OUTOFMEMORY when a
// string cannot be allocated.
ocx::HRESULT VariantToHost(const Variant& value, ocx::VARIANT* out);
// A method's result: a string result is a BSTR, null for the engine's null string,
// and ScaleImage's flag is an I4 1 or 0, as the type description declares them.
ocx::HRESULT ResultToHost(const Variant& value, ResultType type, ocx::VARIANT* out);

// A new BSTR of narrow text; null when it cannot be allocated.
ocx::BSTR BstrFromNarrow(const std::string& text);
