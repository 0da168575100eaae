// One of the nine pieces of the decorative frame.
#pragma once

#include "platform/gdi_handles.h"

struct FramePiece {
  platform::OwnedBitmap bitmap;
  int width = 0;
  int height = 0;
  int offset = 0;
  int keyColor = -1;  // -1: no key colour
};

inline constexpr int kFramePieceCount = 9;
