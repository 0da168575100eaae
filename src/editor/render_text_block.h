// A block of text drawn into a picture: the typed text stamped on the drawing layer
// and the text of a balloon both come from here.
#pragma once

#include "platform/platform.h"

// What sizing a block without a given size needs to know of the editor.
struct TextBlockLimits {
  // The width the picture is shown at: a block is never made wider than this less 6.
  int displayedWidth = 0;
  // The user's primary language: it picks the sample whose height makes a line.
  WORD language = 0;
};

// Draws `text` word-wrapped in (left, top, width, height) into `picture`, or, when
// `picture` is null, into a new bitmap compatible with `dc` filled with `brush` (white
// when null). A new bitmap with a width or height of 0 is sized to the text, no wider
// than the limits allow. Returns the picture drawn into (the given one is returned
// even when nothing could be drawn); null when a new bitmap could not be made.
HBITMAP RenderTextBlock(HDC dc, HBITMAP picture, const char* text, HFONT font, COLORREF color, HBRUSH brush,
                        int left, int top, int width, int height, const TextBlockLimits& limits);
