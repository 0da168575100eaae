#include <string>

#include "platform/host.h"
#include "platform/user.h"

int MessageBoxA(HWND /*owner*/, LPCSTR text, LPCSTR caption, UINT type) {
  // Windows titles a box without a caption "Error".
  return platform::CurrentHost().ShowMessageBox(text == nullptr ? "" : text,
                                                caption == nullptr ? "Error" : caption, type);
}
