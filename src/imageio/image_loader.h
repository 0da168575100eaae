// The one image loader: a local path or a URL in, a bitmap the caller owns (and must
// delete) out, or null. Bitmap files are decoded here; every other format goes to
// the picture decoder. Failures to fetch or read are shown in a message box in the
// user's language while the caller's verbose flag is set; data that were read but
// cannot be decoded give null silently.
#pragma once

#include "platform/types.h"

namespace imageio {

// What the loader takes from the editor that calls it.
struct LoadContext {
  HWND window = nullptr;  // its DC decides the bitmap format; null: the screen's
  bool verbose = false;   // show read failures
  WORD userLanguage = 0;  // primary language of the texts
};

HBITMAP LoadImage(LPCSTR source, const LoadContext& context);

}  // namespace imageio
