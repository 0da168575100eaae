#include "control/module/site_dialogs.h"

#include <vector>

#include "control/module/boundary_variant.h"
#include "platform/dialog_resources.h"

namespace {

ocx::INT ItemKind(platform::DialogLayout::ItemKind kind) {
  switch (kind) {
    case platform::DialogLayout::ItemKind::Icon:
      return ocx::DIALOGITEM_ICON;
    case platform::DialogLayout::ItemKind::Text:
      return ocx::DIALOGITEM_TEXT;
    case platform::DialogLayout::ItemKind::Button:
      return ocx::DIALOGITEM_BUTTON;
    case platform::DialogLayout::ItemKind::DefaultButton:
      return ocx::DIALOGITEM_DEFBUTTON;
  }
  return ocx::DIALOGITEM_TEXT;
}

}  // namespace

SiteDialogs::SiteDialogs(ocx::IImageEditSite* site) : site_(site), previous_(platform::CurrentHost()) {
  if (site_ != nullptr) platform::SetHost(this);
}

SiteDialogs::~SiteDialogs() {
  if (site_ != nullptr) platform::SetHost(&previous_);
}

// The layout's texts are kept alive here for the length of the site's call, which is
// all the dialog's description promises.
int SiteDialogs::ShowDialog(const platform::DialogLayout& dialog) {
  const std::u16string caption = WideFromNarrow(dialog.caption);
  const std::u16string fontFace = WideFromNarrow(dialog.fontFace);
  std::vector<std::u16string> texts;
  texts.reserve(dialog.items.size());
  std::vector<ocx::DIALOGITEM> items;
  items.reserve(dialog.items.size());
  for (const platform::DialogLayout::Item& item : dialog.items) {
    texts.push_back(WideFromNarrow(item.text));
    items.push_back({item.id, ItemKind(item.kind), texts.back().c_str(), item.iconId, item.rect.left,
                     item.rect.top, item.rect.right, item.rect.bottom});
  }
  const ocx::DIALOGINFO info{
      dialog.resourceId, caption.c_str(),  dialog.framed ? 1 : 0, dialog.client.cx,
      dialog.client.cy,  fontFace.c_str(), dialog.fontPoints,     static_cast<ocx::UINT>(items.size()),
      items.data()};
  ocx::INT button = 1;
  // A site that cannot show the dialog is a dialog closed at once, as by its close box.
  if (ocx::FAILED(site_->ShowDialog(&info, &button))) button = 2;
  return button;
}

// A site that cannot show the box answers as its OK would.
int SiteDialogs::ShowMessageBox(const std::string& text, const std::string& caption, UINT type) {
  const std::u16string wideText = WideFromNarrow(text);
  const std::u16string wideCaption = WideFromNarrow(caption);
  ocx::INT button = IDOK;
  if (ocx::FAILED(site_->ShowMessageBox(wideText.c_str(), wideCaption.c_str(), type, &button))) button = IDOK;
  return button;
}

void HeldSite::Set(ocx::IImageEditSite* site) {
  if (site != nullptr) site->AddRef();
  if (site_ != nullptr) site_->Release();
  site_ = site;
}
