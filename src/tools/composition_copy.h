// A part of the picture as the person sees it (the composition buffer, composed there
// first) copied into a bitmap of its own, which is selected nowhere, with a memory DC
// to draw it through: what the rectangle selection, the cut and the mosaic work on.
#pragma once

#include "platform/gdi_handles.h"
#include "platform/platform.h"

class CImageEditWnd;

struct CompositionCopy {
  // The DC, or the bitmap too, is missing when it could not be made.
  static CompositionCopy Of(CImageEditWnd& editor, const RECT& area);

  platform::MemoryDC dc;
  platform::OwnedBitmap bitmap;
};
