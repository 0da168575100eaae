// A class factory: one object, living as long as the module, that makes any number of
// objects of one class.
#pragma once

#include "control/module/module_abi.h"

class ClassFactory final : public ocx::IClassFactory {
 public:
  // Makes one object of the class with one reference, which the caller owns; throws
  // what the engine throws.
  using MakeObject = ocx::IUnknown* (*)();

  explicit ClassFactory(MakeObject make) : make_(make) {}

  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override;
  // The factory lives as long as the module: its references keep nothing alive, and a
  // host that wants the module to stay holds a lock (LockServer).
  ocx::ULONG AddRef() override { return 2; }
  ocx::ULONG Release() override { return 1; }

  ocx::HRESULT CreateInstance(ocx::IUnknown* outer, ocx::REFIID riid, void** object) override;
  ocx::HRESULT LockServer(ocx::BOOL lock) override;

 private:
  MakeObject make_;
};
