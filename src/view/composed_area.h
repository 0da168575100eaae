// The part of the composition buffer that still holds what composing it gave, so that
// a repaint composes only what it lacks. Moving the view, or a repaint with nothing
// changed (a restore repaints once for each scroll bar and once for the level), then
// costs the strip it uncovers, not the window.
//
// The buffer is the image surface with the drawing layer over it; what is kept is
// good while neither of them and the buffer itself have been written since (their
// versions, bitmap_version.h). Objects and the frame are drawn over the buffer as it
// stands, from state of their own, so with either present every repaint composes
// everything; so does every repaint while one of the three bitmaps has no version.
#pragma once

#include <optional>
#include <vector>

#include "platform/bitmap_version.h"
#include "platform/types.h"

// The versions a composed part was made from, the buffer's own as composing left it.
struct ComposedFrom {
  std::optional<platform::PixelsVersion> image, layer, composition;
  bool operator==(const ComposedFrom&) const = default;
  // Whether all three have a version; nothing composed from them is kept otherwise.
  bool known() const { return image && layer && composition; }
};

class ComposedArea {
 public:
  // The parts of `area` (up to four rectangles) to compose, given the versions now:
  // all of it unless the kept part was made from these, otherwise what lies outside
  // the kept part.
  std::vector<RECT> ToCompose(const RECT& area, const ComposedFrom& now) const;
  // `area` now holds what composing gives, from `from`; whatever was kept outside it
  // is given up (the buffer's rows outside the window go after a repaint).
  void Composed(const RECT& area, const ComposedFrom& from);
  // The buffer's rows outside `within` were given up, the sources being `before` until
  // then and `now` after: the kept part, if made from `before`, shrinks to `within`.
  void GaveUpOutside(const RECT& within, const ComposedFrom& before, const ComposedFrom& now);
  // Nothing is kept.
  void Forget() { kept_.reset(); }

 private:
  struct Kept {
    RECT area;
    ComposedFrom from;
  };
  std::optional<Kept> kept_;
};
