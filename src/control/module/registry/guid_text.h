// Identifiers as the registry and the type library write them:
// {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}, upper-case hexadecimal.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "control/module/module_abi.h"

std::string GuidText(const ocx::GUID& guid);
// Reads braces and hexadecimal digits in either case; nullopt for anything else.
std::optional<ocx::GUID> GuidFromText(std::string_view text);
