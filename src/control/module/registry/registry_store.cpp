#include "control/module/registry/registry_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <system_error>

namespace {

std::optional<std::filesystem::path> Environment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return std::filesystem::path(value);
}

std::string Failed(const std::filesystem::path& path, const std::string& what) {
  return path.string() + ": " + what;
}

// Writes all of `text` to `fd`; false with errno set when the system takes less.
bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(fd, text.data(), text.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

std::optional<std::filesystem::path> RegistryPath() {
  if (auto path = Environment("OSTREL_REGISTRY")) {
    // The type library file goes beside it, wherever the module is used from.
    std::error_code code;
    std::filesystem::path absolute = std::filesystem::absolute(*path, code);
    return code ? std::nullopt : std::optional(absolute);
  }
  if (auto config = Environment("XDG_CONFIG_HOME"); config && config->is_absolute()) {
    return *config / "ostrel" / "registry";
  }
  if (auto home = Environment("HOME")) return *home / ".config" / "ostrel" / "registry";
  return std::nullopt;
}

std::filesystem::path TypeLibraryFilePath(const std::filesystem::path& registry) {
  return registry.parent_path() / "OstrelImageEditCtrl.tlb";
}

std::optional<RegistryFile> LoadRegistry(const std::filesystem::path& path, std::string* error) {
  std::error_code code;
  const std::filesystem::file_type type = std::filesystem::status(path, code).type();
  if (type == std::filesystem::file_type::not_found) return RegistryFile();
  std::ifstream file;
  if (type == std::filesystem::file_type::regular) file.open(path, std::ios::binary);
  std::ostringstream text;
  if (file.is_open()) text << file.rdbuf();
  if (!file.is_open() || file.bad()) {
    *error = Failed(path, "cannot be read");
    return std::nullopt;
  }
  RegistryReading reading = RegistryFile::Read(text.str());
  if (!reading.file) *error = Failed(path, reading.error);
  return std::move(reading.file);
}

bool WriteFileAtomically(const std::filesystem::path& path, std::string_view text, std::string* error) {
  std::error_code code;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), code);
  if (code) {
    *error = Failed(path.parent_path(), code.message());
    return false;
  }
  std::string temporary = path.string() + ".XXXXXX";
  const int fd = mkstemp(temporary.data());
  if (fd < 0) {
    *error = Failed(path, std::strerror(errno));
    return false;
  }
  // The file's data must be on disk before the rename makes it the registry.
  const bool written = WriteAll(fd, text) && fsync(fd) == 0;
  const int writeError = errno;
  if (close(fd) != 0 || !written || rename(temporary.c_str(), path.c_str()) != 0) {
    *error = Failed(path, std::strerror(written ? errno : writeError));
    unlink(temporary.c_str());
    return false;
  }
  return true;
}
