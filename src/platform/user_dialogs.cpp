// The dialogs USER and the common dialogs show for the engine, answered by the host.
#include <span>
#include <string>

#include "platform/host.h"
#include "platform/user.h"

int MessageBoxA(HWND /*owner*/, LPCSTR text, LPCSTR caption, UINT type) {
  // Windows titles a box without a caption "Error".
  return platform::CurrentHost().ShowMessageBox(text == nullptr ? "" : text,
                                                caption == nullptr ? "Error" : caption, type);
}

BOOL ChooseColorA(CHOOSECOLORA* choose) {
  if (choose == nullptr || choose->lpCustColors == nullptr) return FALSE;
  COLORREF color = (choose->Flags & CC_RGBINIT) != 0 ? choose->rgbResult : 0;
  if (!platform::CurrentHost().ChooseColor(color, std::span<COLORREF, 16>(choose->lpCustColors, 16)))
    return FALSE;
  choose->rgbResult = color;
  return TRUE;
}

BOOL ChooseFontA(CHOOSEFONTA* choose) {
  if (choose == nullptr || choose->lpLogFont == nullptr) return FALSE;
  // Without CF_INITTOLOGFONTSTRUCT the dialog starts from nothing of the caller's.
  LOGFONTA font = (choose->Flags & CF_INITTOLOGFONTSTRUCT) != 0 ? *choose->lpLogFont : LOGFONTA{};
  COLORREF color = (choose->Flags & CF_EFFECTS) != 0 ? choose->rgbColors : 0;
  if (!platform::CurrentHost().ChooseFont(font, color)) return FALSE;
  *choose->lpLogFont = font;
  // Points in tenths, at the screen's 96 pixels an inch.
  choose->iPointSize = (font.lfHeight < 0 ? -font.lfHeight : font.lfHeight) * 720 / 96;
  if ((choose->Flags & CF_EFFECTS) != 0) choose->rgbColors = color;
  return TRUE;
}
