// The font string the control exchanges with its hosts: up to eight comma-separated
// fields, "face,Italic,Bold,points,StrikeOut,Underline,RRGGBB,selector", of which the
// control gives back the first seven.
#pragma once

#include <optional>
#include <string>

#include "platform/platform.h"

struct FontString {
  std::string face;  // whole characters, at most 31 bytes: what a font description holds
  bool italic = false;
  bool bold = false;
  int points = 0;
  bool strikeOut = false;
  bool underline = false;
  COLORREF color = 0;
  // The character-set selector, read as a number; none when the field is empty.
  std::optional<int> charSetSelector;
};

// Each field is read up to the next comma, at most 32 bytes of it; the rest of a
// longer field is skipped, so the fields after it keep their places. Missing fields
// are empty; the words are compared without regard to case and anything else in
// their places reads as absent.
FontString ReadFontString(const char* text);

// The character set a selector stands for: 18 (the Korean language id) the Korean
// set, 4 (Chinese) the simplified Chinese set, anything else the ANSI set. A font
// string without a selector uses the user's primary language in its place.
BYTE CharSetForSelector(int selector);

// face,Italic,Bold,points,StrikeOut,Underline,RRGGBB for that description; only a
// weight of exactly 700 is "Bold".
std::string FormatFontString(const LOGFONTA& font, int points, COLORREF color);
