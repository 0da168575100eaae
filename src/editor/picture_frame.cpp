#include "editor/picture_frame.h"

#include <cstdint>
#include <vector>

#include "editor/clamped_int.h"

namespace {

FramePiece CopyFramePiece(const FramePiece& piece) {
  if (!piece.bitmap) return FramePiece{};
  return FramePiece{platform::CopyOfBitmap(piece.bitmap.get(), piece.width, piece.height), piece.width,
                    piece.height, piece.offset, piece.keyColor};
}

}  // namespace

FrameUpdate PictureFrame::SetPiece(int orientation, LPCSTR path, int offset, int keyColor,
                                   const imageio::LoadContext& context) {
  const int index = orientation == -1 ? kFrameOverlay : orientation;
  if (index < 0 || index >= kFramePieceCount) return FrameUpdate::Ignored;
  present_ = false;
  FramePiece& piece = pieces_[index];
  // The old picture goes before the new one is loaded.
  piece = FramePiece{};
  piece.bitmap = platform::OwnedBitmap(imageio::LoadImage(path, context));
  BITMAP header{};
  if (piece.bitmap && GetObjectA(piece.bitmap.get(), sizeof header, &header)) {
    piece.width = header.bmWidth;
    piece.height = header.bmHeight;
    piece.offset = offset;
    piece.keyColor = keyColor;
  }
  if (index != kFrameOverlay && !BorderComplete()) return FrameUpdate::Pending;
  present_ = static_cast<bool>(piece.bitmap);
  return FrameUpdate::Done;
}

bool PictureFrame::BorderComplete() const {
  for (int i = 0; i < kFrameOverlay; ++i) {
    if (!pieces_[i].bitmap) return false;
  }
  return true;
}

FrameGeometry PictureFrame::Geometry() const {
  FrameGeometry geometry;
  for (int i = 0; i < kFramePieceCount; ++i) {
    const FramePiece& piece = pieces_[i];
    geometry[i] =
        FramePieceGeometry{static_cast<bool>(piece.bitmap), piece.width, piece.height, piece.offset};
  }
  return geometry;
}

void PictureFrame::Draw(HDC target, const RECT& image, const RECT& area, const KeyedBlit& keyed) const {
  const platform::MemoryDC scratch(target);
  if (!scratch) return;
  const std::vector<FramePlacement> placements = FramePlacements(Geometry(), image, area);
  // The placements come piece by piece, so each border piece is selected once for
  // all its tiles. The overlay is not selected here: the keyed copy selects it into
  // a DC of its own.
  for (std::size_t i = 0; i < placements.size();) {
    const int index = placements[i].piece;
    const FramePiece& piece = pieces_[index];
    if (index == kFrameOverlay) {
      keyed(target, piece.bitmap.get(), placements[i].target, placements[i].source,
            static_cast<COLORREF>(piece.keyColor));
      ++i;
      continue;
    }
    const platform::SelectionGuard selected(scratch.get(), piece.bitmap.get());
    for (; i < placements.size() && placements[i].piece == index; ++i) {
      const RECT& part = placements[i].target;
      BitBlt(target, part.left, part.top, part.right - part.left, part.bottom - part.top, scratch.get(),
             placements[i].source.x, placements[i].source.y, SRCCOPY);
    }
  }
}

void PictureFrame::CopyFrom(const PictureFrame& other) {
  present_ = other.present_;
  for (int i = 0; i < kFramePieceCount; ++i) pieces_[i] = CopyFramePiece(other.pieces_[i]);
}

RECT PictureFrame::Around(const RECT& image) const {
  if (!present_) return image;
  const FramePiece& right = pieces_[kRightEdge];
  const FramePiece& top = pieces_[kTopEdge];
  const FramePiece& left = pieces_[kLeftEdge];
  const FramePiece& bottom = pieces_[kBottomEdge];
  using Wide = std::int64_t;
  // Offsets come from the host unchecked; the sums are kept within int.
  const Wide outLeft = Wide{left.width} - left.offset;
  const Wide outTop = Wide{top.height} - top.offset;
  return RECT{ClampedInt(image.left - outLeft), ClampedInt(image.top - outTop),
              ClampedInt(image.right + (Wide{right.width} - right.offset) + outLeft),
              ClampedInt(image.bottom + (Wide{bottom.height} - bottom.offset) + outTop)};
}
