// Where this program finds the control module, and how it writes the module's results.
#pragma once

#include <filesystem>
#include <string>

#include "control/module/loaded_module.h"

namespace script {

using ocx::LoadedModule;

// libOstrelImageEditCtrl.so in this program's own folder, where the build puts it.
// Throws std::runtime_error when the folder is unknown.
std::filesystem::path ModuleBesideProgram();

// A result as the module's documentation writes it: 0x and eight hex digits.
std::string HresultHex(ocx::HRESULT hr);

}  // namespace script
