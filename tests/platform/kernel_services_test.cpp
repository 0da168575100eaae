#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/gdi.h"
#include "platform/kernel.h"

namespace {

TEST(KernelServices, RandFollowsTheClassicGenerator) {
  platform::SeedRand(1);
  EXPECT_EQ(platform::Rand(), 41);
  EXPECT_EQ(platform::Rand(), 18467);
  EXPECT_EQ(platform::Rand(), 6334);
  platform::SeedRand(1);
  EXPECT_EQ(platform::Rand(), 41);
}

TEST(KernelServices, TheImageLibraryOffersTransparentBltUntilMadeUnavailable) {
  int before = platform::LiveModules();
  HMODULE module = LoadLibraryA("msimg32.dll");
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(platform::LiveModules(), before + 1);
  EXPECT_EQ(GetProcAddress(module, "TransparentBlt"), reinterpret_cast<FARPROC>(&TransparentBlt));
  EXPECT_EQ(GetProcAddress(module, "AlphaBlend"), nullptr);
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_FALSE(FreeLibrary(module));
  EXPECT_EQ(GetProcAddress(module, "TransparentBlt"), nullptr);  // unloaded
  EXPECT_EQ(platform::LiveModules(), before);

  platform::SetModuleAvailable("MSIMG32.DLL", false);
  EXPECT_EQ(LoadLibraryA("MSIMG32.DLL"), nullptr);
  platform::SetModuleAvailable("MSIMG32.DLL", true);
  EXPECT_EQ(LoadLibraryA("OTHER.DLL"), nullptr);
  HMODULE again = LoadLibraryA("MSIMG32.DLL");
  EXPECT_EQ(again, module);  // a module keeps its handle
  FreeLibrary(again);
}

TEST(KernelServices, TempFolderComesFromTmpdirAndEndsInASlash) {
  const char* saved = std::getenv("TMPDIR");
  std::string restore = saved == nullptr ? "" : saved;
  setenv("TMPDIR", "/var/scratch", 1);
  EXPECT_EQ(platform::TempFolder(), "/var/scratch/");
  setenv("TMPDIR", "/var/scratch/", 1);
  EXPECT_EQ(platform::TempFolder(), "/var/scratch/");
  unsetenv("TMPDIR");
  EXPECT_EQ(platform::TempFolder(), "/tmp/");
  if (saved != nullptr) setenv("TMPDIR", restore.c_str(), 1);
}

}  // namespace
