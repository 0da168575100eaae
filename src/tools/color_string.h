// The colour string the control exchanges with its hosts: six hexadecimal digits
// RRGGBB.
#pragma once

#include <string>

#include "platform/platform.h"

// Upper case and zero-padded.
std::string ColorString(COLORREF color);

// Reads a colour string the way the control always has: "0x" is put in front and the
// text is converted with strtol in base 16, so reading stops at the first character
// that is not a hexadecimal digit, and empty text, text that is not hexadecimal and
// text with its own "0x" prefix all read as black. Red comes from bits 16 to 23 of
// the number, green from 8 to 15, blue from 0 to 7; higher bits are ignored. The
// control was made for a platform whose long has 32 bits, so a number that does not
// fit in 31 bits reads as 0x7FFFFFFF (white), on every platform. A null text reads as
// empty.
COLORREF ReadColorString(const char* text);
