// Where the pieces of the decorative frame go around an image rectangle. The four
// edges are tiled with their pieces, each tile copied whole (a tile that runs past the
// end of its edge is covered by the corner drawn after it); each corner meets its two
// edges, its inner corner lying `offset` pixels inside the image, where the edges start
// and stop; the overlay lies at the surface origin.
#pragma once

#include <array>
#include <vector>

#include "pixels/frame_piece.h"
#include "platform/platform.h"

// Orientations, counter-clockwise from the right edge; the overlay comes last.
enum FrameOrientation : int {
  kRightEdge = 0,
  kTopRightCorner = 1,
  kTopEdge = 2,
  kTopLeftCorner = 3,
  kLeftEdge = 4,
  kBottomLeftCorner = 5,
  kBottomEdge = 6,
  kBottomRightCorner = 7,
  kFrameOverlay = 8,
};

// What the tiling needs of a piece. A piece without a picture is not drawn, but its
// offset still says where its neighbours start and stop.
struct FramePieceGeometry {
  bool drawn = false;
  int width = 0;
  int height = 0;
  int offset = 0;
};
using FrameGeometry = std::array<FramePieceGeometry, kFramePieceCount>;

// The part of one piece that is drawn: `target` in surface coordinates, copied from
// the piece's pixels starting at `source`.
struct FramePlacement {
  int piece = 0;
  RECT target{0, 0, 0, 0};
  POINT source{0, 0};
};

// The parts of the pieces around `image` (surface coordinates) that fall inside
// `area`, in drawing order: the right, top, left and bottom edges tile by tile, the
// top-right, top-left, bottom-left and bottom-right corners, then the overlay. Drawn
// in that order they give inside `area` exactly what drawing every piece whole gives.
// Only the tiles that reach into `area` are visited, so the work follows the area's
// size and not the edges' length. Offsets may be anything an int holds.
std::vector<FramePlacement> FramePlacements(const FrameGeometry& pieces, const RECT& image, const RECT& area);
