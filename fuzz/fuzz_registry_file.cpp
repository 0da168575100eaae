// Registry files as a host finds them: whatever is read must write out as text that
// reads back as the same registry, and writing that again changes nothing.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "control/module/registry/registry_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RegistryReading reading =
      RegistryFile::Read(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!reading.file) {
    if (reading.error.rfind("line ", 0) != 0) std::abort();
    return 0;
  }
  const std::string text = reading.file->Text();
  const RegistryReading again = RegistryFile::Read(text);
  if (!again.file || !(*again.file == *reading.file) || again.file->Text() != text) std::abort();
  return 0;
}
