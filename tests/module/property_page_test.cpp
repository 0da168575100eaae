// The property page: its class factory, what it shows a container and the control's
// Properties verb, which shows the same page.
#include "module_host.h"

namespace {

// A container's site that records the dialogs and message boxes shown through it and
// closes each dialog with the button the test chose.
class RecordingSite final : public ocx::IImageEditSite {
 public:
  struct Dialog {
    ocx::INT resourceId;
    std::string caption;
    ocx::INT width, height;
  };

  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override {
    if (riid == ocx::IID_IUnknown || riid == ocx::IID_IImageEditSite) {
      *object = this;
      AddRef();
      return ocx::S_OK;
    }
    *object = nullptr;
    return ocx::E_NOINTERFACE;
  }
  ocx::ULONG AddRef() override { return ++references; }
  ocx::ULONG Release() override { return --references; }
  ocx::HRESULT ShowDialog(const ocx::DIALOGINFO* dialog, ocx::INT* button) override {
    dialogs.push_back({dialog->resourceId, Text(dialog->caption), dialog->width, dialog->height});
    *button = closingButton;
    return ocx::S_OK;
  }
  ocx::HRESULT ShowMessageBox(const ocx::OLECHAR*, const ocx::OLECHAR* caption, ocx::UINT,
                              ocx::INT* button) override {
    messageCaptions.push_back(Text(caption));
    *button = 1;
    return ocx::S_OK;
  }

  ocx::ULONG references = 1;  // the test's own
  ocx::INT closingButton = 1;
  std::vector<Dialog> dialogs;
  std::vector<std::string> messageCaptions;

 private:
  static std::string Text(const ocx::OLECHAR* text) {
    std::string narrow;
    for (; text != nullptr && *text != 0; ++text) narrow.push_back(static_cast<char>(*text));
    return narrow;
  }
};

class PropertyPageTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    ASSERT_EQ(
        Module().GetClassObject(ocx::CLSID_ImageEditCtrlPropPage, ocx::IID_IClassFactory, pageFactory_.Out()),
        ocx::S_OK);
  }
  void TearDown() override {
    pageFactory_.Reset();
    ModuleTest::TearDown();
  }
  void CreatePage(Ref<ocx::IImageEditPropertyPage>& page) {
    ASSERT_EQ(pageFactory_->CreateInstance(nullptr, ocx::IID_IImageEditPropertyPage, page.Out()), ocx::S_OK);
  }

  Ref<ocx::IClassFactory> pageFactory_;
};

TEST_F(PropertyPageTest, ThePagesFactoryIsItsOwnAndMakesAnyNumberOfPages) {
  // The module's second factory: one object, not the control's.
  Ref<ocx::IUnknown> again;
  ASSERT_EQ(Module().GetClassObject(ocx::CLSID_ImageEditCtrlPropPage, ocx::IID_IUnknown, again.Out()),
            ocx::S_OK);
  EXPECT_EQ(static_cast<void*>(again.get()), static_cast<void*>(pageFactory_.get()));
  EXPECT_NE(static_cast<void*>(pageFactory_.get()), static_cast<void*>(factory_.get()));

  Ref<ocx::IImageEditPropertyPage> first;
  Ref<ocx::IImageEditPropertyPage> second;
  CreatePage(first);
  CreatePage(second);
  EXPECT_NE(first.get(), second.get());
  // A page is no control, and the page factory makes no controls.
  Ref<ocx::IUnknown> none;
  EXPECT_EQ(first->QueryInterface(ocx::IID_IDispatch, none.Out()), ocx::E_NOINTERFACE);
  EXPECT_EQ(pageFactory_->CreateInstance(nullptr, ocx::IID_IDispatch, none.Out()), ocx::E_NOINTERFACE);
  EXPECT_EQ(pageFactory_->CreateInstance(first.get(), ocx::IID_IUnknown, none.Out()),
            ocx::CLASS_E_NOAGGREGATION);
  EXPECT_FALSE(none);

  // Every page alive keeps the module, as does a lock taken through the page factory.
  first.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  ASSERT_EQ(pageFactory_->LockServer(1), ocx::S_OK);
  second.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_FALSE);
  ASSERT_EQ(pageFactory_->LockServer(0), ocx::S_OK);
  EXPECT_EQ(Module().CanUnloadNow(), ocx::S_OK);
}

TEST_F(PropertyPageTest, ThePageShowsItselfThroughTheSiteAndChangesNothing) {
  Ref<ocx::IImageEditPropertyPage> page;
  CreatePage(page);
  ocx::BSTR title = nullptr;
  ocx::INT width = 0;
  ocx::INT height = 0;
  ASSERT_EQ(page->GetPageInfo(&title, &width, &height), ocx::S_OK);
  EXPECT_EQ(Narrow(title), "General");
  ocx::SysFreeString(title);
  // 250 x 62 dialog units: four times as wide as high, give or take the font's cell.
  EXPECT_GT(width, 3 * height);
  EXPECT_LT(width, 5 * height);

  // Without a site nobody sees the page, and that is no failure.
  EXPECT_EQ(page->Show(), ocx::S_OK);
  RecordingSite site;
  ASSERT_EQ(page->SetPageSite(&site), ocx::S_OK);
  EXPECT_EQ(site.references, 2u);
  site.closingButton = 2;  // closed with its close box
  EXPECT_EQ(page->Show(), ocx::S_OK);
  // The same dialog as the Properties verb's, whose layout the scenarios check.
  ASSERT_EQ(site.dialogs.size(), 1u);
  EXPECT_EQ(site.dialogs[0].resourceId, 200);
  EXPECT_EQ(site.dialogs[0].caption, "General");
  EXPECT_EQ(site.dialogs[0].width, width);
  EXPECT_EQ(site.dialogs[0].height, height);
  EXPECT_EQ(page->IsPageDirty(), ocx::S_FALSE);
  EXPECT_EQ(page->Apply(), ocx::S_OK);
  EXPECT_EQ(page->IsPageDirty(), ocx::S_FALSE);

  // The page lets go of its site when told to and when it goes.
  ASSERT_EQ(page->SetPageSite(nullptr), ocx::S_OK);
  EXPECT_EQ(site.references, 1u);
  EXPECT_EQ(page->Show(), ocx::S_OK);
  EXPECT_EQ(site.dialogs.size(), 1u);
  ASSERT_EQ(page->SetPageSite(&site), ocx::S_OK);
  page.Reset();
  EXPECT_EQ(site.references, 1u);
}

TEST_F(PropertyPageTest, TheControlListsExactlyItsOnePage) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  Ref<ocx::ISpecifyPropertyPages> pages;
  ASSERT_EQ(control->QueryInterface(ocx::IID_ISpecifyPropertyPages, pages.Out()), ocx::S_OK);
  ocx::CAUUID list{0, nullptr};
  ASSERT_EQ(pages->GetPages(&list), ocx::S_OK);
  ASSERT_EQ(list.cElems, 1u);
  EXPECT_EQ(list.pElems[0], ocx::CLSID_ImageEditCtrlPropPage);
  ocx::CoTaskMemFree(list.pElems);
}

// The Properties verb shows the page through the control's site, whether or not the
// control has its window yet; the other verbs answer as an in-place control does.
TEST_F(PropertyPageTest, ThePropertiesVerbShowsThePageThroughTheControlsSite) {
  Ref<ocx::IDispatch> control;
  CreateControl(control);
  Ref<ocx::IImageEditObject> object;
  ASSERT_EQ(control->QueryInterface(ocx::IID_IImageEditObject, object.Out()), ocx::S_OK);
  EXPECT_EQ(object->DoVerb(ocx::OLEIVERB_PROPERTIES), ocx::S_OK);  // no site: nobody sees it
  RecordingSite site;
  ASSERT_EQ(object->SetClientSite(&site), ocx::S_OK);
  EXPECT_EQ(object->DoVerb(ocx::OLEIVERB_PROPERTIES), ocx::S_OK);
  ASSERT_EQ(site.dialogs.size(), 1u);
  EXPECT_EQ(site.dialogs[0].resourceId, 200);

  for (const std::int32_t verb :
       {ocx::OLEIVERB_PRIMARY, ocx::OLEIVERB_SHOW, ocx::OLEIVERB_UIACTIVATE, ocx::OLEIVERB_INPLACEACTIVATE}) {
    EXPECT_EQ(object->DoVerb(verb), ocx::OLE_E_NOT_INPLACEACTIVE) << verb;
  }
  Ref<ocx::IImageEditWindow> window;
  ASSERT_EQ(control->QueryInterface(ocx::IID_IImageEditWindow, window.Out()), ocx::S_OK);
  ASSERT_EQ(window->Activate(40, 30), ocx::S_OK);
  for (const std::int32_t verb :
       {ocx::OLEIVERB_PRIMARY, ocx::OLEIVERB_SHOW, ocx::OLEIVERB_UIACTIVATE, ocx::OLEIVERB_INPLACEACTIVATE,
        ocx::OLEIVERB_HIDE, ocx::OLEIVERB_DISCARDUNDOSTATE}) {
    EXPECT_EQ(object->DoVerb(verb), ocx::S_OK) << verb;
  }
  EXPECT_EQ(object->DoVerb(ocx::OLEIVERB_OPEN), ocx::E_NOTIMPL);
  EXPECT_EQ(object->DoVerb(-8), ocx::E_NOTIMPL);
  EXPECT_EQ(object->DoVerb(1), ocx::OLEOBJ_S_INVALIDVERB);
  // None of them showed anything, and the control still answers its methods.
  EXPECT_EQ(site.dialogs.size(), 1u);
  EXPECT_EQ(CallByName(control.get(), u"ScaleImage", {HostVariant::Int(50)}).hr, ocx::S_OK);

  // The About box goes through the same site, and so does a failure told while
  // verbose (the scenarios check their texts); after the site is taken away nothing
  // reaches it.
  ASSERT_EQ(CallByName(control.get(), u"AboutBox").hr, ocx::S_OK);
  ASSERT_EQ(site.dialogs.size(), 2u);
  ASSERT_EQ(CallByName(control.get(), u"EnableVerbose", {HostVariant::Int(1)}).hr, ocx::S_OK);
  ASSERT_EQ(CallByName(control.get(), u"SetImage", {HostVariant::String(u"no/such/picture.bmp")}).hr,
            ocx::S_OK);
  EXPECT_EQ(site.messageCaptions, std::vector<std::string>{"Image Edit Control"});
  ASSERT_EQ(object->SetClientSite(nullptr), ocx::S_OK);
  EXPECT_EQ(site.references, 1u);
  EXPECT_EQ(object->DoVerb(ocx::OLEIVERB_PROPERTIES), ocx::S_OK);
  EXPECT_EQ(CallByName(control.get(), u"SetImage", {HostVariant::String(u"no/such/picture.bmp")}).hr,
            ocx::S_OK);
  EXPECT_EQ(site.dialogs.size(), 2u);
  EXPECT_EQ(site.messageCaptions.size(), 1u);

  // A control that goes lets go of its site.
  ASSERT_EQ(object->SetClientSite(&site), ocx::S_OK);
  object.Reset();
  window.Reset();
  control.Reset();
  EXPECT_EQ(site.references, 1u);
}

}  // namespace
