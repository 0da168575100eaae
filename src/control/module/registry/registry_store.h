// Where the per-user registry file lives and how it is read and written. Writes go to
// a temporary file beside the target that then replaces it, so a failure or a crash
// part-way leaves the old file whole and never a mix of the two.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "control/module/registry/registry_file.h"

// $OSTREL_REGISTRY when set (tests use it), else $XDG_CONFIG_HOME/ostrel/registry when
// that is an absolute path, else ~/.config/ostrel/registry; nullopt without a home.
std::optional<std::filesystem::path> RegistryPath();
// The type library file that registration writes beside the registry file.
std::filesystem::path TypeLibraryFilePath(const std::filesystem::path& registry);

// The registry in the file; a missing file is an empty registry. nullopt with *error
// set ("PATH: what is wrong") when it cannot be read or is malformed.
std::optional<RegistryFile> LoadRegistry(const std::filesystem::path& path, std::string* error);
// Replaces the file's contents with `text` at once, making its folder as needed;
// false with *error set when that fails, which leaves the file as it was.
bool WriteFileAtomically(const std::filesystem::path& path, std::string_view text, std::string* error);
