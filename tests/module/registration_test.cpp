// DllRegisterServer and DllUnregisterServer as a host calls them, against a registry
// file of the test's own (OSTREL_REGISTRY) that already holds other modules' keys.
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "control/module/registry/guid_text.h"
#include "control/module/registry/registry_file.h"
#include "module_host.h"

namespace {

namespace fs = std::filesystem;

const std::string kControl = "CLSID\\" + GuidText(ocx::CLSID_ImageEditCtrl);
const std::string kPage = "CLSID\\" + GuidText(ocx::CLSID_ImageEditCtrlPropPage);
const std::string kLibrary = "TypeLib\\" + GuidText(ocx::LIBID_OSTRELIMAGEEDITCTRL);
const std::string kMethods = "Interface\\" + GuidText(ocx::DIID__DImageEditCtrl);
const std::string kEvents = "Interface\\" + GuidText(ocx::DIID__DImageEditCtrlEvents);

// Keys of other modules, some of them next to ours with names that begin like ours,
// and another version of our library, which is not ours to remove.
const std::string kForeign =
    "[CLSID\\{11111111-2222-3333-4444-555555555555}\\InprocServer32]\n"
    "@=\"/opt/other/libOther.so\"\n"
    "\"ThreadingModel\"=\"Both\"\n"
    "\n[" +
    kControl +
    ".backup]\n@=\"kept\"\n"
    "\n[Ostrel.ImageEditCtrl.10\\CLSID]\n@=\"{11111111-2222-3333-4444-555555555555}\"\n"
    "\n[" +
    kLibrary +
    "\\1.0\\409\\linux]\n@=\"/opt/old/OstrelImageEditCtrl.tlb\"\n"
    "\n[Software\\Other]\n\"Count\"=dword:0000002A\n";

std::string ReadText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void WriteText(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

RegistryFile ReadRegistry(const fs::path& path) {
  RegistryReading reading = RegistryFile::Read(ReadText(path));
  EXPECT_TRUE(reading.file) << reading.error;
  return reading.file ? std::move(*reading.file) : RegistryFile();
}

std::set<std::string> Keys(const RegistryFile& registry) {
  std::set<std::string> keys;
  for (const auto& [key, values] : registry.Tree("")) keys.insert(key);
  return keys;
}

std::string Value(const RegistryFile& registry, const std::string& key, const std::string& name = "") {
  const RegistryFile::Values* values = registry.FindKey(key);
  if (values == nullptr || !values->contains(name)) return "<none>";
  return std::get<std::string>(values->at(name));
}

// The file size limit makes every write past it fail (EFBIG) rather than stop the
// process, as a full disk would.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit = saved_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    signal(SIGXFSZ, SIG_DFL);
  }

 private:
  rlimit saved_;
};

class Registration : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("ostrel-registration-" + std::to_string(getpid()) + "-" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    registry_ = folder_ / "registry";
    setenv("OSTREL_REGISTRY", registry_.c_str(), 1);
  }
  void TearDown() override {
    unsetenv("OSTREL_REGISTRY");
    fs::remove_all(folder_);
  }
  // Files in the folder other than the registry and the type library: a temporary
  // file left behind by a failed write.
  std::vector<std::string> Leftovers() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      const std::string name = entry.path().filename();
      if (name != "registry" && name != "OstrelImageEditCtrl.tlb") found.push_back(name);
    }
    return found;
  }

  fs::path folder_;
  fs::path registry_;
};

TEST_F(Registration, RegisteringWritesTheLibraryThenTheClassesAndUnregisteringRemovesOnlyThem) {
  WriteText(registry_, kForeign);
  const RegistryFile foreign = ReadRegistry(registry_);
  ASSERT_EQ(Module().RegisterServer(), ocx::S_OK);
  const RegistryFile registered = ReadRegistry(registry_);
  const fs::path library = folder_ / "OstrelImageEditCtrl.tlb";

  std::set<std::string> expected = Keys(foreign);
  for (const std::string& key : {kLibrary + "\\1.1",
                                 kLibrary + "\\1.1\\409\\linux",
                                 kLibrary + "\\1.1\\FLAGS",
                                 kLibrary + "\\1.1\\HELPDIR",
                                 kMethods,
                                 kMethods + "\\ProxyStubClsid32",
                                 kMethods + "\\TypeLib",
                                 kEvents,
                                 kEvents + "\\ProxyStubClsid32",
                                 kEvents + "\\TypeLib",
                                 kControl,
                                 kControl + "\\Control",
                                 kControl + "\\InprocServer32",
                                 kControl + "\\MiscStatus",
                                 kControl + "\\MiscStatus\\1",
                                 kControl + "\\ProgID",
                                 kControl + "\\ToolboxBitmap32",
                                 kControl + "\\TypeLib",
                                 kControl + "\\Version",
                                 std::string("Ostrel.ImageEditCtrl.1"),
                                 std::string("Ostrel.ImageEditCtrl.1\\CLSID"),
                                 kPage,
                                 kPage + "\\InprocServer32"}) {
    expected.insert(key);
  }
  EXPECT_EQ(Keys(registered), expected);
  for (const auto& [key, values] : foreign.Tree("")) EXPECT_EQ(*registered.FindKey(key), values) << key;

  // The registration transcript checks the keys' values; it does not show the
  // interfaces' keys, which name the library's version.
  EXPECT_EQ(Value(registered, kMethods + "\\TypeLib", "Version"), "1.1");
  EXPECT_EQ(Value(registered, kEvents + "\\TypeLib", "Version"), "1.1");

  // Registering again changes nothing.
  const std::string once = ReadText(registry_);
  ASSERT_EQ(Module().RegisterServer(), ocx::S_OK);
  EXPECT_EQ(ReadText(registry_), once);

  ASSERT_EQ(Module().UnregisterServer(), ocx::S_OK);
  EXPECT_EQ(ReadRegistry(registry_), foreign);
  EXPECT_FALSE(fs::exists(library));
  // What is not registered is no failure, and the file is left as it is.
  const std::string after = ReadText(registry_);
  EXPECT_EQ(Module().UnregisterServer(), ocx::S_OK);
  EXPECT_EQ(ReadText(registry_), after);
  EXPECT_TRUE(Leftovers().empty());
}

TEST_F(Registration, AMissingRegistryAndItsFolderAreMade) {
  registry_ = folder_ / "config" / "ostrel" / "registry";
  setenv("OSTREL_REGISTRY", registry_.c_str(), 1);
  ASSERT_EQ(Module().RegisterServer(), ocx::S_OK);
  EXPECT_NE(ReadRegistry(registry_).FindKey(kControl), nullptr);
  ASSERT_EQ(Module().UnregisterServer(), ocx::S_OK);
  EXPECT_EQ(ReadRegistry(registry_), RegistryFile());
}

TEST_F(Registration, ARegistryThatCannotBeWrittenOrReadRegistersNothing) {
  // A folder where the file should be: nothing can replace it.
  fs::create_directories(registry_);
  EXPECT_EQ(Module().RegisterServer(), ocx::SELFREG_E_TYPELIB);
  EXPECT_EQ(Module().UnregisterServer(), ocx::SELFREG_E_TYPELIB);
  fs::remove(registry_);
  EXPECT_FALSE(fs::exists(folder_ / "OstrelImageEditCtrl.tlb")) << "a library file that no key names";

  // A file where the folder should be.
  WriteText(folder_ / "file", "");
  setenv("OSTREL_REGISTRY", (folder_ / "file" / "registry").c_str(), 1);
  EXPECT_EQ(Module().RegisterServer(), ocx::SELFREG_E_TYPELIB);

  // A malformed file is left exactly as it is.
  setenv("OSTREL_REGISTRY", registry_.c_str(), 1);
  const std::string malformed = kForeign + "[CLSID\\{broken\n";
  WriteText(registry_, malformed);
  EXPECT_EQ(Module().RegisterServer(), ocx::SELFREG_E_TYPELIB);
  EXPECT_EQ(Module().UnregisterServer(), ocx::SELFREG_E_TYPELIB);
  EXPECT_EQ(ReadText(registry_), malformed);
  EXPECT_FALSE(fs::exists(folder_ / "OstrelImageEditCtrl.tlb"));
}

// Whatever write fails on the way, the registry file is the old one or a whole new
// one: a failing library step leaves it untouched, a failing class step leaves the
// library registered and no class, and no temporary file stays behind. The foreign
// keys make the registry bigger than the type library file, so some limits let the
// library through and stop the classes.
TEST_F(Registration, AFailedWriteLeavesTheRegistryWholeAndNoClassWithoutItsLibrary) {
  std::string foreign = kForeign;
  for (int i = 0; i < 200; ++i)
    foreign += "\n[Software\\Padding\\Key" + std::to_string(i) + "]\n@=\"value\"\n";
  WriteText(registry_, foreign);
  ASSERT_EQ(Module().RegisterServer(), ocx::S_OK);
  const std::uintmax_t full = fs::file_size(registry_);

  std::set<ocx::HRESULT> outcomes;
  for (rlim_t limit = 0; limit <= full + 512; limit += 61) {
    WriteText(registry_, foreign);
    fs::remove(folder_ / "OstrelImageEditCtrl.tlb");
    ocx::HRESULT hr;
    {
      const FileSizeLimit sizeLimit(limit);
      hr = Module().RegisterServer();
    }
    outcomes.insert(hr);
    const std::string text = ReadText(registry_);
    const RegistryFile registry = ReadRegistry(registry_);
    if (hr == ocx::SELFREG_E_TYPELIB) {
      EXPECT_EQ(text, foreign) << "limit " << limit;
      EXPECT_FALSE(fs::exists(folder_ / "OstrelImageEditCtrl.tlb")) << "limit " << limit;
    } else if (hr == ocx::SELFREG_E_CLASS) {
      EXPECT_NE(registry.FindKey(kLibrary + "\\1.1"), nullptr) << "limit " << limit;
      EXPECT_NE(registry.FindKey(kMethods), nullptr) << "limit " << limit;
      EXPECT_EQ(registry.FindKey(kControl), nullptr) << "limit " << limit;
      EXPECT_EQ(registry.FindKey(kPage), nullptr) << "limit " << limit;
    } else {
      EXPECT_EQ(hr, ocx::S_OK) << "limit " << limit;
      EXPECT_EQ(fs::file_size(registry_), full) << "limit " << limit;
    }
    EXPECT_TRUE(Leftovers().empty()) << "limit " << limit;
  }
  EXPECT_EQ(outcomes, (std::set<ocx::HRESULT>{ocx::SELFREG_E_TYPELIB, ocx::SELFREG_E_CLASS, ocx::S_OK}));
}

}  // namespace
