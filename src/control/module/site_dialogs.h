// A container's site standing in as the platform's host for the length of one call:
// the dialogs and message boxes the engine shows meanwhile (a property page, the About
// box, a failure told while verbose) go to the site, everything else to the host that
// was there before.
#pragma once

#include <span>
#include <string>

#include "control/module/module_abi.h"
#include "platform/host.h"

class SiteDialogs final : public platform::Host {
 public:
  // Installs itself when `site` is not null; until then, and without a site, the
  // engine's host stays as it is.
  explicit SiteDialogs(ocx::IImageEditSite* site);
  SiteDialogs(const SiteDialogs&) = delete;
  SiteDialogs& operator=(const SiteDialogs&) = delete;
  ~SiteDialogs() override;

  int ShowDialog(const platform::DialogLayout& dialog) override;

  void PresentFrame(HWND hostWindow) override { previous_.PresentFrame(hostWindow); }
  void ShowCursor(int resourceId) override { previous_.ShowCursor(resourceId); }
  UINT ShowPopupMenu(HMENU menu, int x, int y) override { return previous_.ShowPopupMenu(menu, x, y); }
  int ShowMessageBox(const std::string& text, const std::string& caption, UINT type) override;
  bool ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) override {
    return previous_.ChooseColor(color, customColors);
  }
  bool ChooseFont(LOGFONTA& font, COLORREF& color) override { return previous_.ChooseFont(font, color); }
  void PictureRead(const std::string& source, DWORD error, const std::string& message) override {
    previous_.PictureRead(source, error, message);
  }

 private:
  ocx::IImageEditSite* site_;
  platform::Host& previous_;
};

// A site held by an object that shows dialogs through it: one reference, replaced as
// the container changes it.
class HeldSite {
 public:
  HeldSite() = default;
  HeldSite(const HeldSite&) = delete;
  HeldSite& operator=(const HeldSite&) = delete;
  ~HeldSite() { Set(nullptr); }
  void Set(ocx::IImageEditSite* site);
  ocx::IImageEditSite* get() const { return site_; }

 private:
  ocx::IImageEditSite* site_ = nullptr;
};
