// Turning pixels left for right: the objects' mirror command uses it on their
// pictures, and any other left-right reversal of a rectangle belongs here too.
#pragma once

#include "pixels/pixel_rect.h"

// Each row of the rectangle with its pixels in reverse order.
void MirrorRows(const PixelRect& rect);
