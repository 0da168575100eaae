#include "tools/color_dialog.h"

std::optional<COLORREF> ChooseColorFrom(HWND owner, COLORREF initial, std::span<COLORREF, 16> customColors) {
  CHOOSECOLORA dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.rgbResult = initial;
  dialog.lpCustColors = customColors.data();
  dialog.Flags = CC_RGBINIT | CC_ANYCOLOR;
  if (!ChooseColorA(&dialog)) return std::nullopt;
  return dialog.rgbResult;
}
