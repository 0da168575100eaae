// The decorative frame around the picture: nine pieces and whether it is present. A
// history level keeps a copy of its own, so copies are deep.
#pragma once

#include "pixels/frame_piece.h"
#include "platform/platform.h"

struct PictureFrame {
  // Takes independent copies of the other frame's pieces (their bitmaps duplicated;
  // a piece without a bitmap stays empty) and whether it is present.
  void CopyFrom(const PictureFrame& other);
  // The area (x, y, width, height) a whole save covers when the picture covers
  // `image` (x, y, width, height): the picture's, widened to take in the frame when
  // it is present. The right, top, left and bottom pieces decide how far.
  RECT Around(const RECT& image) const;

  bool present = false;
  FramePiece pieces[kFramePieceCount];
};
