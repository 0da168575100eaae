// The control's property page as the module hands it to a container: dialog 200
// captioned with string 200. The control has no property to set, so the page only
// shows its text; applying changes nothing and it is never dirty. Its life is its
// reference count (module_object.h).
#pragma once

#include "control/module/module_abi.h"
#include "control/module/module_object.h"
#include "control/module/site_dialogs.h"

class CImageEditCtrlPropPage final
    : public ModuleObject<ocx::IImageEditPropertyPage, ocx::IID_IImageEditPropertyPage> {
 public:
  CImageEditCtrlPropPage();

  ocx::HRESULT SetPageSite(ocx::IImageEditSite* site) override;
  ocx::HRESULT GetPageInfo(ocx::BSTR* title, ocx::INT* width, ocx::INT* height) override;
  ocx::HRESULT Show() override;
  ocx::HRESULT Apply() override { return ocx::S_OK; }
  ocx::HRESULT IsPageDirty() override { return ocx::S_FALSE; }

 private:
  HeldSite site_;
};
