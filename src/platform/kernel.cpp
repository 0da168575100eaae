// Kernel services other than code pages: language settings, the last error, run-time
// modules, the temp folder and the shared pseudo-random generator.
#include "platform/kernel.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <map>
#include <thread>

#include "platform/gdi.h"

namespace {

struct KernelState {
  LANGID language = 0x0409;
  HKL keyboardLayout = 0x04090409;
  DWORD lastError = 0;
  unsigned randState = 1;
};

KernelState& Kernel() {
  static KernelState state;
  return state;
}

// A run-time module: whether the system offers it, how often it is loaded, and its
// handle, fixed per module for the life of the process.
struct Module {
  bool available = true;
  int loads = 0;
  HMODULE handle = nullptr;
};

std::string UpperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

constexpr char kImageLibrary[] = "MSIMG32.DLL";

// Module names are case-insensitive: they are kept in upper case. The image library
// is known from the start; others only once a test names them.
constexpr std::uintptr_t kHandleStep = 0x10000;
std::uintptr_t nextModuleHandle = 0x10000000 + kHandleStep;

std::map<std::string, Module>& Modules() {
  static std::map<std::string, Module> modules{
      {kImageLibrary, Module{true, 0, reinterpret_cast<HMODULE>(std::uintptr_t{0x10000000})}}};
  return modules;
}

Module& Register(const std::string& upperName) {
  auto [it, added] = Modules().try_emplace(upperName);
  if (added) {
    it->second.handle = reinterpret_cast<HMODULE>(nextModuleHandle);
    nextModuleHandle += kHandleStep;
  }
  return it->second;
}

Module* LoadedModule(HMODULE module, std::string* name) {
  for (auto& [moduleName, state] : Modules()) {
    if (state.handle == module && state.loads > 0) {
      if (name != nullptr) *name = moduleName;
      return &state;
    }
  }
  return nullptr;
}

}  // namespace

LANGID GetUserDefaultLangID() { return Kernel().language; }
HKL GetKeyboardLayout(DWORD /*threadId*/) { return Kernel().keyboardLayout; }
UINT GetACP() { return CP_UTF8; }

int lstrcmpiA(LPCSTR a, LPCSTR b) {
  const auto folded = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  for (;; ++a, ++b) {
    const int difference = folded(*a) - folded(*b);
    if (difference != 0 || *a == '\0') return difference;
  }
}

DWORD GetLastError() { return Kernel().lastError; }
void SetLastError(DWORD code) { Kernel().lastError = code; }

void Sleep(DWORD milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

HMODULE LoadLibraryA(LPCSTR name) {
  if (name == nullptr) return nullptr;
  auto it = Modules().find(UpperCase(name));
  if (it == Modules().end() || !it->second.available) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  ++it->second.loads;
  return it->second.handle;
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
  std::string moduleName;
  if (name != nullptr && LoadedModule(module, &moduleName) != nullptr && moduleName == kImageLibrary &&
      std::string(name) == "TransparentBlt") {
    return reinterpret_cast<FARPROC>(&TransparentBlt);
  }
  SetLastError(ERROR_PROC_NOT_FOUND);
  return nullptr;
}

BOOL FreeLibrary(HMODULE module) {
  Module* loaded = LoadedModule(module, nullptr);
  if (loaded == nullptr) return FALSE;
  --loaded->loads;
  return TRUE;
}

namespace platform {

void SetUserDefaultLangID(LANGID language) { Kernel().language = language; }
void SetKeyboardLayout(HKL layout) { Kernel().keyboardLayout = layout; }

void SetModuleAvailable(const std::string& name, bool available) {
  Register(UpperCase(name)).available = available;
}

int LiveModules() {
  int loads = 0;
  for (const auto& [name, module] : Modules()) loads += module.loads;
  return loads;
}

std::string TempFolder() {
  const char* configured = std::getenv("TMPDIR");
  std::string folder = configured != nullptr && *configured != 0 ? configured : "/tmp";
  if (folder.back() != '/') folder += '/';
  return folder;
}

int Rand() {
  unsigned& state = Kernel().randState;
  state = state * 214013u + 2531011u;
  return static_cast<int>((state >> 16) & 0x7FFF);
}

void SeedRand(unsigned seed) { Kernel().randState = seed; }

}  // namespace platform
