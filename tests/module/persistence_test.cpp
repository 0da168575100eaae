// What a control keeps in its container's property bag, and what it accepts back.
#include <cstdint>
#include <map>
#include <utility>

#include "module_host.h"

namespace {

// A container's property bag in memory. Values are kept as the control wrote them;
// a test may put in others, or make writing fail.
class MemoryBag final : public ocx::IPropertyBag {
 public:
  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override {
    if (riid == ocx::IID_IUnknown || riid == ocx::IID_IPropertyBag) {
      *object = this;
      return ocx::S_OK;
    }
    *object = nullptr;
    return ocx::E_NOINTERFACE;
  }
  ocx::ULONG AddRef() override { return 2; }
  ocx::ULONG Release() override { return 1; }
  ocx::HRESULT Read(const ocx::OLECHAR* name, ocx::VARIANT* value, ocx::IErrorLog*) override {
    const auto found = values.find(name);
    if (found == values.end()) return ocx::E_INVALIDARG;
    *value = found->second.get();
    if (value->vt == ocx::VT_BSTR) {  // a copy of its own, which the reader frees
      value->bstrVal =
          ocx::SysAllocStringLen(found->second.get().bstrVal, ocx::SysStringLen(found->second.get().bstrVal));
    }
    return ocx::S_OK;
  }
  ocx::HRESULT Write(const ocx::OLECHAR* name, ocx::VARIANT* value) override {
    if (failWrites) return ocx::E_FAIL;
    HostVariant copy;
    copy.get() = *value;
    if (value->vt == ocx::VT_BSTR) {
      copy.get().bstrVal = ocx::SysAllocStringLen(value->bstrVal, ocx::SysStringLen(value->bstrVal));
    }
    values.erase(name);
    values.emplace(name, std::move(copy));
    writes.push_back(name);
    return ocx::S_OK;
  }
  // The integer stored under `name`, or -1 when there is none (or it is not one).
  std::int32_t IntegerOf(const std::u16string& name) const {
    const auto found = values.find(name);
    return found != values.end() && found->second.get().vt == ocx::VT_I4 ? found->second.get().lVal : -1;
  }

  std::map<std::u16string, HostVariant> values;
  std::vector<std::u16string> writes;
  bool failWrites = false;
};

class PersistenceTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    CreateControl(control_);
    ASSERT_EQ(control_->QueryInterface(ocx::IID_IPersistPropertyBag, persist_.Out()), ocx::S_OK);
  }
  void TearDown() override {
    persist_.Reset();
    control_.Reset();
    ModuleTest::TearDown();
  }

  Ref<ocx::IDispatch> control_;
  Ref<ocx::IPersistPropertyBag> persist_;
};

// 1 pixel is 2540 / 96 hundredths of a millimetre.
TEST_F(PersistenceTest, AControlSavesItsVersionAndExtentAndLoadsThemBack) {
  ocx::CLSID clsid{};
  ASSERT_EQ(persist_->GetClassID(&clsid), ocx::S_OK);
  EXPECT_EQ(clsid, ocx::CLSID_ImageEditCtrl);
  ASSERT_EQ(persist_->InitNew(), ocx::S_OK);

  // Never placed: the default size of 100 x 50 pixels.
  MemoryBag fresh;
  ASSERT_EQ(persist_->Save(&fresh, 1, 1), ocx::S_OK);
  EXPECT_EQ(fresh.writes,
            (std::vector<std::u16string>{u"_Version", u"_ExtentX", u"_ExtentY", u"_StockProps"}));
  EXPECT_EQ(fresh.IntegerOf(u"_Version"), 65537);
  EXPECT_EQ(fresh.IntegerOf(u"_ExtentX"), 2646);
  EXPECT_EQ(fresh.IntegerOf(u"_ExtentY"), 1323);
  EXPECT_EQ(fresh.IntegerOf(u"_StockProps"), 0);

  // Placed: the window's size.
  Ref<ocx::IImageEditWindow> window;
  ASSERT_EQ(control_->QueryInterface(ocx::IID_IImageEditWindow, window.Out()), ocx::S_OK);
  ASSERT_EQ(window->Activate(96, 48), ocx::S_OK);
  MemoryBag placed;
  ASSERT_EQ(persist_->Save(&placed, 1, 0), ocx::S_OK);
  EXPECT_EQ(placed.IntegerOf(u"_ExtentX"), 2540);
  EXPECT_EQ(placed.IntegerOf(u"_ExtentY"), 1270);

  // Another control loads what this one saved and saves it alike.
  Ref<ocx::IDispatch> other;
  CreateControl(other);
  Ref<ocx::IPersistPropertyBag> otherPersist;
  ASSERT_EQ(other->QueryInterface(ocx::IID_IPersistPropertyBag, otherPersist.Out()), ocx::S_OK);
  ASSERT_EQ(otherPersist->Load(&placed, nullptr), ocx::S_OK);
  MemoryBag again;
  ASSERT_EQ(otherPersist->Save(&again, 1, 1), ocx::S_OK);
  EXPECT_EQ(again.IntegerOf(u"_ExtentX"), 2540);
  EXPECT_EQ(again.IntegerOf(u"_ExtentY"), 1270);
  EXPECT_EQ(again.IntegerOf(u"_Version"), 65537);

  // A bag that cannot take a value fails the save with its own error.
  again.failWrites = true;
  EXPECT_EQ(otherPersist->Save(&again, 1, 1), ocx::E_FAIL);
  EXPECT_EQ(otherPersist->Save(nullptr, 1, 1), ocx::E_POINTER);
}

// Older versions, and newer minor ones, load (the control has nothing of its own to
// convert); a newer major version, or values that make no sense, are refused and
// leave the control as it was.
TEST_F(PersistenceTest, LoadingAcceptsVersionsItCanConvertAndRefusesTheRest) {
  const auto loadedExtent = [&](MemoryBag& bag, ocx::HRESULT expected) {
    EXPECT_EQ(persist_->Load(&bag, nullptr), expected);
    MemoryBag saved;
    EXPECT_EQ(persist_->Save(&saved, 1, 1), ocx::S_OK);
    return std::pair{saved.IntegerOf(u"_ExtentX"), saved.IntegerOf(u"_ExtentY")};
  };
  const auto bag = [](std::int32_t version, std::int32_t cx, std::int32_t cy) {
    MemoryBag made;
    made.values.emplace(u"_Version", HostVariant::Int(version));
    made.values.emplace(u"_ExtentX", HostVariant::Int(cx));
    made.values.emplace(u"_ExtentY", HostVariant::Int(cy));
    return made;
  };

  std::int32_t width = 100;
  for (const std::int32_t version : {0x00010001, 0x00010000, 0x00000005, 0x00010007}) {
    MemoryBag accepted = bag(version, ++width, 200);
    EXPECT_EQ(loadedExtent(accepted, ocx::S_OK), std::pair(width, 200)) << version;
  }
  // Nothing in the bag: this version, and the extent as it stands.
  MemoryBag empty;
  EXPECT_EQ(loadedExtent(empty, ocx::S_OK), std::pair(width, 200));

  const std::pair kept(width, 200);
  for (const std::int32_t version : {0x00020000, 0x00020001, static_cast<std::int32_t>(0xFFFF0001u)}) {
    MemoryBag newer = bag(version, 1, 1);
    EXPECT_EQ(loadedExtent(newer, ocx::STG_E_OLDDLL), kept) << version;
  }
  MemoryBag negative = bag(0x00010001, 5, -1);
  EXPECT_EQ(loadedExtent(negative, ocx::E_INVALIDARG), kept);
  // Values written as text, as a page's parameters come, are read as decimals.
  const auto textBag = [](const std::u16string& version, const std::u16string& cx) {
    MemoryBag made;
    made.values.emplace(u"_Version", HostVariant::String(version));
    made.values.emplace(u"_ExtentX", HostVariant::String(cx));
    made.values.emplace(u"_ExtentY", HostVariant::Int(200));
    return made;
  };
  for (const char16_t* notDecimal : {u"", u"-", u"12x", u" 12", u"0x10", u"2147483648", u"1.5"}) {
    MemoryBag text = textBag(u"65537", notDecimal);
    EXPECT_EQ(loadedExtent(text, ocx::DISP_E_TYPEMISMATCH), kept);
  }
  MemoryBag newerAsText = textBag(u"131072", u"7");
  EXPECT_EQ(loadedExtent(newerAsText, ocx::STG_E_OLDDLL), kept);
  MemoryBag negativeAsText = textBag(u"+65537", u"-2147483648");
  EXPECT_EQ(loadedExtent(negativeAsText, ocx::E_INVALIDARG), kept);
  MemoryBag asText = textBag(u"+65537", u"2147483647");
  EXPECT_EQ(loadedExtent(asText, ocx::S_OK), std::pair(2147483647, 200));
  // Smaller integer types are integers too.
  MemoryBag small = bag(0x00010001, 0, 0);
  small.values.erase(u"_ExtentX");
  HostVariant shortValue;
  shortValue.get().vt = ocx::VT_I2;
  shortValue.get().iVal = 300;
  small.values.emplace(u"_ExtentX", std::move(shortValue));
  EXPECT_EQ(loadedExtent(small, ocx::S_OK), std::pair(300, 0));
  EXPECT_EQ(persist_->Load(nullptr, nullptr), ocx::E_POINTER);
}

}  // namespace
