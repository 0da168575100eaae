// The host interface: everything that needs a person. Each host (script, web page,
// tests) implements it; every call has a harmless default so a test host is tiny.
#pragma once

#include <span>
#include <string>

#include "platform/types.h"

namespace platform {

struct MenuChoice;
struct DialogLayout;

class Host {
 public:
  virtual ~Host() = default;

  // A composed frame of a host window is ready (after every paint that reached it).
  virtual void PresentFrame(HWND /*hostWindow*/) {}
  // The cursor shown over the control: a cursor resource id, 0 for the arrow, 32514
  // for the wait cursor, -1 for none. Called only when the cursor changes.
  virtual void ShowCursor(int /*resourceId*/) {}
  // A popup menu at (x, y) in host-window coordinates; returns the chosen command id,
  // 0 when the menu is dismissed.
  virtual UINT ShowPopupMenu(HMENU /*menu*/, int /*x*/, int /*y*/) { return 0; }
  // A modal message box; returns the button pressed (IDOK = 1).
  virtual int ShowMessageBox(const std::string& /*text*/, const std::string& /*caption*/, UINT /*type*/) {
    return 1;
  }
  // The colour dialog, starting at `color` and showing the caller's sixteen custom
  // colours, which the person may change (those changes stay, chosen or cancelled):
  // true with the chosen colour, false when cancelled.
  virtual bool ChooseColor(COLORREF& /*color*/, std::span<COLORREF, 16> /*customColors*/) { return false; }
  // The font dialog: true with the chosen font and colour, false when cancelled.
  virtual bool ChooseFont(LOGFONTA& /*font*/, COLORREF& /*color*/) { return false; }
  // A modal dialog from the module's resources, laid out (dialog_resources.h); returns
  // the id of the button that closed it (IDOK = 1, IDCANCEL = 2 for the close box).
  virtual int ShowDialog(const DialogLayout& /*dialog*/) { return 1; }
  // The control tried to load the picture `source`: `error` is 0 when it loaded,
  // otherwise the error code and `message` the text the control shows for it while
  // verbose. Heard whether or not the control shows it, so that a host can tell its
  // page or its user what became of a picture it was asked for.
  virtual void PictureRead(const std::string& /*source*/, DWORD /*error*/, const std::string& /*message*/) {}
};

// The host that receives these calls; a silent default host when none is set.
void SetHost(Host* host);
Host& CurrentHost();

}  // namespace platform
