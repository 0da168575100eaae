// The text of a balloon as the host hands it over: as it stands, or hex-encoded so that
// any bytes survive a trip through a scripting host. A hex-encoded text starts with
// the two bytes 0x01 0x01 and eight characters of its own, then two hexadecimal
// digits (either case) for each byte.
#pragma once

#include <string>

// The text to draw. Of a hex-encoded text, the pairs are read from the eleventh byte
// on; a last digit without its partner is ignored. Reading stops at the first pair
// that is not two hexadecimal digits, and at a pair that stands for a zero byte
// (which would end the text anyway), so what was read before stays. A hex-encoded
// text too short for its ten-byte head gives the empty text. Null gives the empty text.
std::string DecodeBalloonText(const char* text);
