// The colour dialog as the editor opens it: owned by the editor window, starting at a
// colour, any colour allowed, with a table of sixteen custom colours that the person
// may change and that stays for the next dialog on the same table.
#pragma once

#include <optional>
#include <span>

#include "platform/platform.h"

// The chosen colour; none when the dialog is cancelled.
std::optional<COLORREF> ChooseColorFrom(HWND owner, COLORREF initial, std::span<COLORREF, 16> customColors);
