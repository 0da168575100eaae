// What a control keeps in its container's property bag, and how it reads it back.
// The control has no property of its own; it stores what every control of this kind
// stores: its version and its extent, and the mask of stock properties it persists
// (none).
#pragma once

#include "control/module/module_abi.h"

// 1.1: the major version in the high word, the minor in the low one.
inline constexpr ocx::DWORD kControlVersion = 0x00010001;

// The control's size in HIMETRIC units (hundredths of a millimetre), as containers
// keep it.
struct ControlExtent {
  ocx::INT cx = 0;
  ocx::INT cy = 0;
  friend bool operator==(const ControlExtent&, const ControlExtent&) = default;
};

// The extent of a window of that many pixels, at the platform's 96 pixels an inch.
ControlExtent ExtentFromPixels(int width, int height);

// Writes "_Version", "_ExtentX", "_ExtentY" and "_StockProps" (all VT_I4); the first
// failure of the bag is the result.
ocx::HRESULT SaveProperties(ocx::IPropertyBag& bag, const ControlExtent& extent);

// Reads what SaveProperties wrote into *extent, which changes only on success. A
// value the bag lacks keeps its default (the version: this one; the extent: *extent).
// Saved data of an older version, or of a newer minor one, loads as it is (there is
// nothing of the control's own to convert); a newer major version is STG_E_OLDDLL.
// A value that is not an integer is DISP_E_TYPEMISMATCH, a negative extent
// E_INVALIDARG.
ocx::HRESULT LoadProperties(ocx::IPropertyBag& bag, ControlExtent* extent);
