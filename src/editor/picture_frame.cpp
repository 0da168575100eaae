#include "editor/picture_frame.h"

namespace {

FramePiece CopyFramePiece(const FramePiece& piece) {
  if (!piece.bitmap) return FramePiece{};
  return FramePiece{platform::OwnedBitmap(static_cast<HBITMAP>(CopyImage(
                        piece.bitmap.get(), IMAGE_BITMAP, piece.width, piece.height, LR_CREATEDIBSECTION))),
                    piece.width, piece.height, piece.offset, piece.keyColor};
}

}  // namespace

void PictureFrame::CopyFrom(const PictureFrame& other) {
  present = other.present;
  for (int i = 0; i < kFramePieceCount; ++i) pieces[i] = CopyFramePiece(other.pieces[i]);
}

RECT PictureFrame::Around(const RECT& image) const {
  if (!present) return image;
  const FramePiece& right = pieces[0];
  const FramePiece& top = pieces[2];
  const FramePiece& left = pieces[4];
  const FramePiece& bottom = pieces[6];
  RECT area = image;
  area.left += left.offset - left.width;
  area.top += top.offset - top.height;
  area.right += (right.width - right.offset) + (left.width - left.offset);
  area.bottom += (bottom.height - bottom.offset) + (top.height - top.offset);
  return area;
}
