#include "control/module/image_edit_ctrl_prop_page.h"

#include "control/module/boundary_guard.h"
#include "control/module/boundary_variant.h"
#include "platform/dialog_resources.h"
#include "resources/module_resources.h"

// The page may be made before any control, so it makes sure the module's dialogs and
// strings are there.
CImageEditCtrlPropPage::CImageEditCtrlPropPage() { RegisterModuleResources(); }

ocx::HRESULT CImageEditCtrlPropPage::SetPageSite(ocx::IImageEditSite* site) {
  site_.Set(site);
  return ocx::S_OK;
}

ocx::HRESULT CImageEditCtrlPropPage::GetPageInfo(ocx::BSTR* title, ocx::INT* width, ocx::INT* height) {
  if (title == nullptr || width == nullptr || height == nullptr) return ocx::E_POINTER;
  *title = nullptr;
  *width = *height = 0;
  return CatchingEngineFailures([&] {
    const std::string caption = platform::LoadStringResource(resources::kPropertyPageCaptionString);
    platform::DialogLayout layout;
    if (!platform::LayOutDialog(resources::kPropertyPageDialogId, caption, &layout)) return ocx::E_FAIL;
    *title = BstrFromNarrow(layout.caption);
    if (*title == nullptr) return ocx::E_OUTOFMEMORY;
    *width = layout.client.cx;
    *height = layout.client.cy;
    return ocx::S_OK;
  });
}

// The page's dialog is the one the control's Properties verb shows.
ocx::HRESULT CImageEditCtrlPropPage::Show() {
  return CatchingEngineFailures([&] {
    const SiteDialogs dialogs(site_.get());
    return resources::ShowPropertyPage() < 0 ? ocx::E_FAIL : ocx::S_OK;
  });
}
