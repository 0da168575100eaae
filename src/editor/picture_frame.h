// The decorative frame around the picture: nine pieces, each loaded from a picture,
// and whether the frame is shown. The frame shows once all eight border pieces are
// there, or as soon as the overlay is set (with whatever border pieces there are); a
// piece that fails to load hides it. A history level keeps a frame of its own, so
// copies are deep.
#pragma once

#include <functional>

#include "imageio/image_loader.h"
#include "pixels/frame_piece.h"
#include "pixels/frame_tiling.h"
#include "platform/platform.h"

// What setting a piece asks of the editor.
enum class FrameUpdate {
  Ignored,  // the orientation names no piece: nothing changed
  Pending,  // a border piece changed while another one is missing: hidden, waiting
  Done,     // shown, or hidden by an overlay that did not load: repaint and record it
};

class PictureFrame {
 public:
  // Draws `bitmap` keyed on `key` over `part` of the target, from the bitmap's point
  // `from`.
  using KeyedBlit =
      std::function<void(HDC target, HBITMAP bitmap, const RECT& part, POINT from, COLORREF key)>;

  // Replaces the piece of that orientation (-1 is the overlay, 8) by the picture
  // `path` names, loaded with `context` (the loader reports its own failures), with
  // its offset and key colour; a picture that does not load leaves the piece empty.
  // The frame is hidden until the rule above shows it again.
  FrameUpdate SetPiece(int orientation, LPCSTR path, int offset, int keyColor,
                       const imageio::LoadContext& context);
  // Draws the pieces around `image` (surface coordinates) into `target`, only inside
  // `area`: border pieces opaque from a scratch DC, the overlay through `keyed`.
  void Draw(HDC target, const RECT& image, const RECT& area, const KeyedBlit& keyed) const;
  // Takes independent copies of the other frame's pieces (their bitmaps duplicated;
  // a piece without a bitmap stays empty) and whether it is present.
  void CopyFrom(const PictureFrame& other);
  // The area (x, y, width, height) a whole save covers when the picture covers
  // `image` (x, y, width, height): the picture's, widened to take in the frame when
  // it is present. The right, top, left and bottom pieces decide how far.
  RECT Around(const RECT& image) const;

  bool present() const { return present_; }
  const FramePiece& piece(int orientation) const { return pieces_[orientation]; }

 private:
  bool BorderComplete() const;
  FrameGeometry Geometry() const;

  bool present_ = false;
  FramePiece pieces_[kFramePieceCount];
};
