// One of the nine pieces of the decorative frame.
#pragma once

#include "platform/types.h"

struct FramePiece {
  HBITMAP bitmap = nullptr;
  int width = 0;
  int height = 0;
  int offset = 0;
  int keyColor = -1;  // -1: no key colour
};

inline constexpr int kFramePieceCount = 9;
