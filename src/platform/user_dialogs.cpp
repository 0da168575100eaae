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
