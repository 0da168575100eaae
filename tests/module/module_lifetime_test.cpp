// The module's entry points, the control's class factory and what keeps it loaded.
#include "module_host.h"

namespace {

constexpr ocx::CLSID kUnknownClass = {0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};

TEST_F(ModuleTest, TheFactoryIsHandedOutForTheModulesClassesAndMakesOnlyControls) {
  Ref<ocx::IUnknown> object;
  for (const ocx::CLSID& clsid : {kUnknownClass, ocx::IID_IClassFactory}) {
    void* out = &object;  // must be cleared
    EXPECT_EQ(Module().GetClassObject(clsid, ocx::IID_IClassFactory, &out), ocx::CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
  }
  EXPECT_EQ(Module().GetClassObject(ocx::CLSID_ImageEditCtrl, ocx::IID_IClassFactory, nullptr),
            ocx::E_POINTER);
  // One factory serves every request, under both of its interfaces.
  EXPECT_EQ(Module().GetClassObject(ocx::CLSID_ImageEditCtrl, ocx::IID_IUnknown, object.Out()), ocx::S_OK);
  EXPECT_EQ(static_cast<void*>(object.get()), static_cast<void*>(factory_.get()));
  EXPECT_EQ(Module().GetClassObject(ocx::CLSID_ImageEditCtrl, ocx::IID_IDispatch, object.Out()),
            ocx::E_NOINTERFACE);
  EXPECT_FALSE(object);

  // A creation the factory refuses leaves no object behind.
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  EXPECT_EQ(factory_->CreateInstance(control.get(), ocx::IID_IUnknown, object.Out()),
            ocx::CLASS_E_NOAGGREGATION);
  EXPECT_FALSE(object);
  control.Reset();
  EXPECT_EQ(factory_->CreateInstance(nullptr, ocx::IID_IClassFactory, object.Out()), ocx::E_NOINTERFACE);
  EXPECT_FALSE(object);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);
}

TEST_F(ModuleTest, TheModuleStaysWhileAControlOrALockLives) {
  // Holding the factory alone does not keep the module; a lock does.
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);
  ASSERT_EQ(factory_->LockServer(1), ocx::S_OK);
  ASSERT_EQ(factory_->LockServer(1), ocx::S_OK);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  ASSERT_EQ(factory_->LockServer(0), ocx::S_OK);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  ASSERT_EQ(factory_->LockServer(0), ocx::S_OK);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);
  EXPECT_EQ(factory_->LockServer(0), ocx::E_UNEXPECTED);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);

  Ref<ocx::IDispatch> first;
  Ref<ocx::IDispatch> second;
  CreateControl(first);
  CreateActiveControl(second, 40, 30);
  EXPECT_NE(first.get(), second.get());
  first.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  // Any interface of a control keeps it, the connection point among them.
  Ref<ocx::IConnectionPointContainer> container;
  Ref<ocx::IConnectionPoint> point;
  ASSERT_EQ(second->QueryInterface(ocx::IID_IConnectionPointContainer, container.Out()), ocx::S_OK);
  ASSERT_EQ(container->FindConnectionPoint(ocx::DIID__DImageEditCtrlEvents, point.OutTyped()), ocx::S_OK);
  second.Reset();
  container.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  point.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);
}

// Every interface of a control leads back to the same object, and the control says no
// to interfaces it lacks.
TEST_F(ModuleTest, AControlAnswersItsInterfacesWithOneIdentity) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  Ref<ocx::IUnknown> identity;
  ASSERT_EQ(control->QueryInterface(ocx::IID_IUnknown, identity.Out()), ocx::S_OK);
  for (const ocx::IID& iid :
       {ocx::IID_IDispatch, ocx::DIID__DImageEditCtrl, ocx::IID_IConnectionPointContainer,
        ocx::IID_IObjectSafety, ocx::IID_IImageEditWindow, ocx::IID_IImageEditObject,
        ocx::IID_ISpecifyPropertyPages, ocx::IID_IPersist, ocx::IID_IPersistPropertyBag}) {
    Ref<ocx::IUnknown> part;
    ASSERT_EQ(control->QueryInterface(iid, part.Out()), ocx::S_OK);
    Ref<ocx::IUnknown> back;
    ASSERT_EQ(part->QueryInterface(ocx::IID_IUnknown, back.Out()), ocx::S_OK);
    EXPECT_EQ(back.get(), identity.get());
  }
  Ref<ocx::IUnknown> none;
  EXPECT_EQ(control->QueryInterface(ocx::IID_IClassFactory, none.Out()), ocx::E_NOINTERFACE);
  EXPECT_EQ(control->QueryInterface(ocx::DIID__DImageEditCtrlEvents, none.Out()), ocx::E_NOINTERFACE);
  EXPECT_FALSE(none);
}

// Before activation the methods are inert and give their empty results: a null string,
// distinct from an empty one, and ScaleImage's false.
TEST_F(ModuleTest, ActivationNeedsASizeAndHappensOnce) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  Call color = CallByName(control.get(), u"GetColor");
  ASSERT_EQ(color.hr, ocx::S_OK);
  EXPECT_EQ(color.result.get().vt, ocx::VT_BSTR);
  EXPECT_EQ(color.result.get().bstrVal, nullptr);
  Call scaled = CallByName(control.get(), u"ScaleImage", {HostVariant::Int(50)});
  ASSERT_EQ(scaled.hr, ocx::S_OK);
  EXPECT_EQ(scaled.result.get().vt, ocx::VT_I4);
  EXPECT_EQ(scaled.result.get().lVal, 0);
  Call nothing = CallByName(control.get(), u"SetPen", {HostVariant::Int(3)});
  ASSERT_EQ(nothing.hr, ocx::S_OK);
  EXPECT_EQ(nothing.result.get().vt, ocx::VT_EMPTY);

  Ref<ocx::IImageEditWindow> window;
  ASSERT_EQ(control->QueryInterface(ocx::IID_IImageEditWindow, window.Out()), ocx::S_OK);
  EXPECT_EQ(window->MouseInput(0x0201, 1, 1), ocx::E_UNEXPECTED);
  ocx::HWND hostWindow = nullptr;
  EXPECT_EQ(window->GetWindow(&hostWindow), ocx::E_UNEXPECTED);
  EXPECT_EQ(window->Activate(0, 10), ocx::E_INVALIDARG);
  EXPECT_EQ(window->Activate(10, -1), ocx::E_INVALIDARG);
  ASSERT_EQ(window->Activate(10, 10), ocx::S_OK);
  EXPECT_EQ(window->Activate(10, 10), ocx::E_UNEXPECTED);
  EXPECT_EQ(window->GetWindow(&hostWindow), ocx::S_OK);
  EXPECT_NE(hostWindow, nullptr);
  EXPECT_EQ(window->MouseInput(0x0100, 1, 1), ocx::E_INVALIDARG);  // a key is no mouse message
  EXPECT_EQ(window->MouseInput(0x0200, 1, 1), ocx::S_OK);
}

}  // namespace
