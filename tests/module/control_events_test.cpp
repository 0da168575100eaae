// The control's events through its connection point, and its safety answers.
#include <functional>
#include <utility>

#include "module_host.h"

namespace {

constexpr ocx::UINT kLeftButtonDown = 0x0201;
constexpr ocx::UINT kLeftButtonUp = 0x0202;

// A host's event sink that logs "NAME:DISPID:ARGUMENT" for every event it hears and
// counts its references, so that tests see the control let go of it.
class LoggingSink final : public ocx::IDispatch {
 public:
  LoggingSink(std::string name, std::vector<std::string>& log, bool answersEventInterface)
      : name_(std::move(name)), log_(log), answersEventInterface_(answersEventInterface) {}

  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override {
    if (riid == ocx::IID_IUnknown || riid == ocx::IID_IDispatch ||
        (answersEventInterface_ && riid == ocx::DIID__DImageEditCtrlEvents)) {
      *object = this;
      AddRef();
      return ocx::S_OK;
    }
    *object = nullptr;
    return ocx::E_NOINTERFACE;
  }
  ocx::ULONG AddRef() override { return ++references; }
  ocx::ULONG Release() override { return --references; }
  ocx::HRESULT GetTypeInfoCount(ocx::UINT*) override { return ocx::E_NOTIMPL; }
  ocx::HRESULT GetTypeInfo(ocx::UINT, ocx::LCID, ocx::ITypeInfo**) override { return ocx::E_NOTIMPL; }
  ocx::HRESULT GetIDsOfNames(ocx::REFIID, ocx::LPOLESTR*, ocx::UINT, ocx::LCID, ocx::DISPID*) override {
    return ocx::E_NOTIMPL;
  }
  ocx::HRESULT Invoke(ocx::DISPID dispid, ocx::REFIID, ocx::LCID, ocx::WORD flags, ocx::DISPPARAMS* params,
                      ocx::VARIANT*, ocx::EXCEPINFO*, ocx::UINT*) override {
    // Built by appending: GCC 12 misreads chains of + on strings at -O3 (-Wrestrict).
    std::string entry = name_;
    entry.append(":").append(std::to_string(dispid));
    if (flags != ocx::DISPATCH_METHOD) entry.append(":not a method call");
    for (ocx::UINT i = 0; i < params->cArgs; ++i) {
      const ocx::VARIANT& arg = params->rgvarg[i];
      entry.append(":").append(arg.vt == ocx::VT_BSTR ? Narrow(arg.bstrVal)
                                                      : "type " + std::to_string(arg.vt));
    }
    log_.push_back(entry);
    if (onEvent) onEvent();
    return ocx::S_OK;
  }

  ocx::ULONG references = 1;  // the test's own
  std::function<void()> onEvent;

 private:
  std::string name_;
  std::vector<std::string>& log_;
  bool answersEventInterface_;
};

// A control showing a picture with a pure green square at (50..59, 10..19), its
// connection point and the log of its sinks.
class ControlEventsTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    CreateActiveControl(control_, 80, 60);
    ASSERT_EQ(CallByName(control_.get(), u"SetImage", {HostVariant::String(kScene)}).hr, ocx::S_OK);
    Ref<ocx::IConnectionPointContainer> container;
    ASSERT_EQ(control_->QueryInterface(ocx::IID_IConnectionPointContainer, container.Out()), ocx::S_OK);
    ASSERT_EQ(container->FindConnectionPoint(ocx::DIID__DImageEditCtrlEvents, point_.OutTyped()), ocx::S_OK);
  }
  void TearDown() override {
    point_.Reset();
    control_.Reset();
    ModuleTest::TearDown();
  }
  // Picks the colour at (x, y) with the colour-pick tool.
  void PickColorAt(int x, int y) {
    ASSERT_EQ(CallByName(control_.get(), u"SelectColor").hr, ocx::S_OK);
    Ref<ocx::IImageEditWindow> window;
    ASSERT_EQ(control_->QueryInterface(ocx::IID_IImageEditWindow, window.Out()), ocx::S_OK);
    ASSERT_EQ(window->MouseInput(kLeftButtonDown, x, y), ocx::S_OK);
    ASSERT_EQ(window->MouseInput(kLeftButtonUp, x, y), ocx::S_OK);
  }

  static inline const std::u16string kScene = [] {
    const std::string path = IE_TEST_DATA "/tools/scene_80x60.bmp";
    return std::u16string(path.begin(), path.end());
  }();
  Ref<ocx::IDispatch> control_;
  Ref<ocx::IConnectionPoint> point_;
  std::vector<std::string> log_;
};

TEST_F(ControlEventsTest, APickedColourReachesEverySinkUntilItDisconnects) {
  LoggingSink first("first", log_, /*answersEventInterface=*/true);
  LoggingSink second("second", log_, /*answersEventInterface=*/false);
  ocx::DWORD firstCookie = 0;
  ocx::DWORD secondCookie = 0;
  ASSERT_EQ(point_->Advise(&first, &firstCookie), ocx::S_OK);
  ASSERT_EQ(point_->Advise(&second, &secondCookie), ocx::S_OK);
  EXPECT_NE(firstCookie, secondCookie);
  EXPECT_EQ(first.references, 2u);

  PickColorAt(55, 15);
  EXPECT_EQ(log_, (std::vector<std::string>{"first:1:00FF00", "second:1:00FF00"}));
  // Other calls fire nothing.
  ASSERT_EQ(CallByName(control_.get(), u"ScaleImage", {HostVariant::Int(50)}).hr, ocx::S_OK);
  EXPECT_EQ(log_.size(), 2u);

  log_.clear();
  ASSERT_EQ(point_->Unadvise(firstCookie), ocx::S_OK);
  EXPECT_EQ(first.references, 1u);
  EXPECT_EQ(point_->Unadvise(firstCookie), ocx::CONNECT_E_NOCONNECTION);
  PickColorAt(55, 15);
  EXPECT_EQ(log_, (std::vector<std::string>{"second:1:00FF00"}));

  // A control that goes lets go of the sinks still connected.
  point_.Reset();
  control_.Reset();
  EXPECT_EQ(second.references, 1u);
}

// A sink may disconnect itself, and the one after it, while it hears an event.
TEST_F(ControlEventsTest, ASinkMayDisconnectWhileItIsCalled) {
  LoggingSink first("first", log_, true);
  LoggingSink second("second", log_, true);
  ocx::DWORD firstCookie = 0;
  ocx::DWORD secondCookie = 0;
  ASSERT_EQ(point_->Advise(&first, &firstCookie), ocx::S_OK);
  ASSERT_EQ(point_->Advise(&second, &secondCookie), ocx::S_OK);
  first.onEvent = [&] {
    EXPECT_EQ(point_->Unadvise(firstCookie), ocx::S_OK);
    EXPECT_EQ(point_->Unadvise(secondCookie), ocx::S_OK);
  };
  PickColorAt(55, 15);
  EXPECT_EQ(log_, (std::vector<std::string>{"first:1:00FF00"}));
  EXPECT_EQ(first.references, 1u);
  EXPECT_EQ(second.references, 1u);
}

// The host may let go of the control while it hears the control's event: the control
// lives until the input that fired the event has been handled.
TEST_F(ControlEventsTest, TheHostMayReleaseTheControlWhileItHearsAnEvent) {
  LoggingSink sink("sink", log_, true);
  ocx::DWORD cookie = 0;
  ASSERT_EQ(point_->Advise(&sink, &cookie), ocx::S_OK);
  ASSERT_EQ(CallByName(control_.get(), u"SelectColor").hr, ocx::S_OK);
  ocx::IImageEditWindow* window = nullptr;
  ASSERT_EQ(control_->QueryInterface(ocx::IID_IImageEditWindow, reinterpret_cast<void**>(&window)),
            ocx::S_OK);
  window->Release();  // control_ holds the last reference
  ASSERT_EQ(window->MouseInput(kLeftButtonDown, 55, 15), ocx::S_OK);
  sink.onEvent = [&] {
    point_.Reset();
    control_.Reset();
  };
  EXPECT_EQ(window->MouseInput(kLeftButtonUp, 55, 15), ocx::S_OK);
  EXPECT_EQ(log_, (std::vector<std::string>{"sink:1:00FF00"}));
  EXPECT_EQ(sink.references, 1u);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);
}

// The cookies of the connections an enumerator yields from where it stands; each
// connection's sink reference is released again.
std::vector<ocx::DWORD> RemainingCookies(ocx::IEnumConnections* connections) {
  std::vector<ocx::DWORD> cookies;
  ocx::CONNECTDATA item{};
  while (connections->Next(1, &item, nullptr) == ocx::S_OK) {
    cookies.push_back(item.dwCookie);
    item.pUnk->Release();
  }
  return cookies;
}

// An enumerator yields the connections as they were when it was made, holding their
// sinks until it goes, and a clone moves on its own.
TEST_F(ControlEventsTest, ConnectionsAreEnumeratedAsTheyWereWhenAsked) {
  LoggingSink first("first", log_, true);
  LoggingSink second("second", log_, false);
  LoggingSink third("third", log_, true);
  ocx::DWORD cookies[3] = {};
  ASSERT_EQ(point_->Advise(&first, &cookies[0]), ocx::S_OK);
  ASSERT_EQ(point_->Advise(&second, &cookies[1]), ocx::S_OK);
  ASSERT_EQ(point_->Advise(&third, &cookies[2]), ocx::S_OK);

  Ref<ocx::IEnumConnections> all;
  ASSERT_EQ(point_->EnumConnections(all.OutTyped()), ocx::S_OK);
  ASSERT_EQ(point_->Unadvise(cookies[1]), ocx::S_OK);
  EXPECT_EQ(second.references, 2u);  // still the snapshot's

  ocx::CONNECTDATA items[4] = {};
  ocx::ULONG fetched = 9;
  ASSERT_EQ(all->Next(4, items, &fetched), ocx::S_FALSE);
  ASSERT_EQ(fetched, 3u);
  const LoggingSink* sinks[] = {&first, &second, &third};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(items[i].dwCookie, cookies[i]);
    EXPECT_EQ(static_cast<void*>(items[i].pUnk), static_cast<const void*>(sinks[i]));
    items[i].pUnk->Release();
  }
  EXPECT_EQ(all->Next(1, items, &fetched), ocx::S_FALSE);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(all->Next(2, items, nullptr), ocx::E_POINTER);

  // Clones start where their original stands and share nothing else with it.
  ASSERT_EQ(all->Reset(), ocx::S_OK);
  ASSERT_EQ(all->Skip(1), ocx::S_OK);
  Ref<ocx::IEnumConnections> clone;
  ASSERT_EQ(all->Clone(clone.OutTyped()), ocx::S_OK);
  EXPECT_EQ(all->Skip(5), ocx::S_FALSE);
  EXPECT_EQ(RemainingCookies(all.get()), std::vector<ocx::DWORD>{});
  EXPECT_EQ(RemainingCookies(clone.get()), (std::vector<ocx::DWORD>{cookies[1], cookies[2]}));
  ASSERT_EQ(all->Reset(), ocx::S_OK);
  EXPECT_EQ(RemainingCookies(all.get()), (std::vector<ocx::DWORD>{cookies[0], cookies[1], cookies[2]}));

  // A new enumerator sees the connection gone; the old ones let go of its sink last.
  Ref<ocx::IEnumConnections> now;
  ASSERT_EQ(point_->EnumConnections(now.OutTyped()), ocx::S_OK);
  EXPECT_EQ(RemainingCookies(now.get()), (std::vector<ocx::DWORD>{cookies[0], cookies[2]}));
  all.Reset();
  EXPECT_EQ(second.references, 2u);
  clone.Reset();
  EXPECT_EQ(second.references, 1u);

  // An enumerator keeps the control, and with it the module, until it goes.
  point_.Reset();
  control_.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  ASSERT_EQ(now->Reset(), ocx::S_OK);
  EXPECT_EQ(RemainingCookies(now.get()), (std::vector<ocx::DWORD>{cookies[0], cookies[2]}));
  now.Reset();
  EXPECT_EQ(first.references, 1u);
  EXPECT_EQ(third.references, 1u);
}

// The container has one point, for the event interface only, and takes only sinks
// that answer it or IDispatch.
TEST_F(ControlEventsTest, TheContainersOnePointIsTheEventInterfaces) {
  ocx::IID iid{};
  ASSERT_EQ(point_->GetConnectionInterface(&iid), ocx::S_OK);
  EXPECT_EQ(iid, ocx::DIID__DImageEditCtrlEvents);
  Ref<ocx::IConnectionPointContainer> container;
  ASSERT_EQ(point_->GetConnectionPointContainer(container.OutTyped()), ocx::S_OK);
  Ref<ocx::IConnectionPoint> other;
  EXPECT_EQ(container->FindConnectionPoint(ocx::IID_IDispatch, other.OutTyped()),
            ocx::CONNECT_E_NOCONNECTION);
  EXPECT_FALSE(other);

  Ref<ocx::IEnumConnectionPoints> points;
  ASSERT_EQ(container->EnumConnectionPoints(points.OutTyped()), ocx::S_OK);
  ocx::IConnectionPoint* found[2] = {};
  ocx::ULONG fetched = 0;
  ASSERT_EQ(points->Next(2, found, &fetched), ocx::S_FALSE);
  ASSERT_EQ(fetched, 1u);
  EXPECT_EQ(found[0], point_.get());
  found[0]->Release();
  ASSERT_EQ(points->Reset(), ocx::S_OK);
  Ref<ocx::IEnumConnectionPoints> clone;
  ASSERT_EQ(points->Clone(clone.OutTyped()), ocx::S_OK);
  EXPECT_EQ(points->Skip(1), ocx::S_OK);
  EXPECT_EQ(points->Next(1, found, nullptr), ocx::S_FALSE);
  ASSERT_EQ(clone->Next(1, found, nullptr), ocx::S_OK);
  EXPECT_EQ(found[0], point_.get());
  found[0]->Release();
  EXPECT_EQ(container->EnumConnectionPoints(nullptr), ocx::E_POINTER);

  class NotASink final : public ocx::IUnknown {
   public:
    ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override {
      *object = riid == ocx::IID_IUnknown ? this : nullptr;
      return *object != nullptr ? ocx::S_OK : ocx::E_NOINTERFACE;
    }
    ocx::ULONG AddRef() override { return 2; }
    ocx::ULONG Release() override { return 1; }
  } notASink;
  ocx::DWORD cookie = 1;
  EXPECT_EQ(point_->Advise(&notASink, &cookie), ocx::CONNECT_E_CANNOTCONNECT);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(point_->Advise(nullptr, &cookie), ocx::E_POINTER);
}

TEST_F(ModuleTest, SafetyIsClaimedForTheControlsOwnInterfacesOnly) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  Ref<ocx::IObjectSafety> safety;
  ASSERT_EQ(control->QueryInterface(ocx::IID_IObjectSafety, safety.Out()), ocx::S_OK);
  const ocx::DWORD both = ocx::INTERFACESAFE_FOR_UNTRUSTED_CALLER | ocx::INTERFACESAFE_FOR_UNTRUSTED_DATA;

  ocx::DWORD supported = 0;
  ocx::DWORD enabled = 0;
  EXPECT_EQ(safety->GetInterfaceSafetyOptions(ocx::IID_IDispatch, &supported, &enabled), ocx::S_OK);
  EXPECT_EQ(supported, both);
  EXPECT_EQ(enabled, both);
  supported = enabled = 0;
  EXPECT_EQ(safety->GetInterfaceSafetyOptions(ocx::IID_IClassFactory, &supported, &enabled),
            ocx::E_NOINTERFACE);
  EXPECT_EQ(supported, both);
  EXPECT_EQ(enabled, both);

  EXPECT_EQ(safety->GetInterfaceSafetyOptions(ocx::IID_IDispatch, nullptr, &enabled), ocx::E_POINTER);

  // Only the two known options may be asked for, and only enabled: a mask naming an
  // option it does not enable, or an unknown option, fails.
  using Options = std::pair<ocx::DWORD, ocx::DWORD>;  // mask, enabled
  for (const auto& [mask, enable] : {Options{0, 0}, {1, 1}, {2, 2}, {3, 3}, {3, 7}, {1, 3}}) {
    EXPECT_EQ(safety->SetInterfaceSafetyOptions(ocx::IID_IConnectionPointContainer, mask, enable), ocx::S_OK)
        << mask << ' ' << enable;
  }
  for (const auto& [mask, enable] : {Options{1, 0}, {3, 1}, {2, 1}, {4, 4}, {5, 5}, {0x80000003u, ~0u}}) {
    EXPECT_EQ(safety->SetInterfaceSafetyOptions(ocx::IID_IDispatch, mask, enable), ocx::E_FAIL)
        << mask << ' ' << enable;
  }
  EXPECT_EQ(safety->SetInterfaceSafetyOptions(ocx::IID_IClassFactory, 1, 1), ocx::E_NOINTERFACE);
  // The queries the answers made hold nothing: only the test's references remain.
  EXPECT_EQ(safety->AddRef(), 3u);
  EXPECT_EQ(safety->Release(), 2u);
}

}  // namespace
