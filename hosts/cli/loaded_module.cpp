#include "loaded_module.h"

#include <cstdio>
#include <stdexcept>
#include <system_error>

namespace script {

std::filesystem::path ModuleBesideProgram() {
  std::error_code code;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", code);
  if (code) throw std::runtime_error("cannot load the module: this program's folder is unknown");
  return program.parent_path() / "libOstrelImageEditCtrl.so";
}

std::string HresultHex(ocx::HRESULT hr) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08X", static_cast<unsigned>(hr));
  return hex;
}

}  // namespace script
