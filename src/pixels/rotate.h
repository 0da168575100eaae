// A quarter turn of a rectangle of pixels into another buffer, the one move that
// changes the picture's shape.
#pragma once

#include "pixels/pixel_rect.h"

// Writes the source rectangle (W x H) turned a quarter into the destination
// rectangle, which must be H wide and W high (anything else is left alone). In buffer
// terms, with (x, y) counted from the source rectangle's first pixel, angle 90 takes
// pixel (x, y) to destination row x, column H - 1 - y: on the screen, where buffer rows
// run bottom-up, a quarter turn counter-clockwise (the top edge becomes the left
// edge). Any other angle takes it to row W - 1 - x, column y: clockwise. Every byte is
// moved, none computed, so turning back gives the very same pixels.
void RotateQuarter(const PixelRect& source, int angle, const PixelRect& destination);
