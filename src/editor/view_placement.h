// Where the picture lies and how much of it the window shows: the display scale, the
// displayed size and image rectangle it gives (surface coordinates), and the scroll
// state. The image rectangle always spans the displayed size from its left-top
// corner, a scroll position moves only within what there is to scroll, and hiding a
// bar puts its position back at 0; so those change only through the operations below.
// The original size, the scale, the requested width and the scaling flag are plain
// settings.
#pragma once

#include "platform/platform.h"

class ViewPlacement {
 public:
  // ---- layout ----
  // Sets the displayed size to the original size times the scale, truncated.
  void SizeToScale();
  // Centres the displayed size in an area of width x height (halves truncated).
  void CentreIn(int width, int height);
  // Takes what a history level gives back: the displayed size and image position,
  // and the view size. The scroll positions are restored by scrolling.
  void RestoreLayout(const ViewPlacement& recorded);
  // Follows a quarter turn of surfaces of width x height (their size before the
  // turn), counter-clockwise on the screen or clockwise: the displayed width and
  // height are exchanged and the image rectangle goes where the turn takes it.
  void TurnQuarter(bool counterClockwise, int width, int height);

  // ---- scrolling ----
  bool BarShown(int bar) const { return bar == SB_HORZ ? hScrollShown_ : vScrollShown_; }
  int ScrollPos(int bar) const { return bar == SB_HORZ ? hScrollPos_ : vScrollPos_; }
  // A bar shown, scrolled to its start. The view is measured once both bars are set up.
  void ShowBar(int bar);
  // A bar hidden, its position back at 0.
  void HideBar(int bar);
  // No bars, no positions and no measured view.
  void ForgetScrolling();
  // The client size once the bars are set up.
  void MeasureView(int width, int height);
  // Moves the scroll position of one axis (SB_HORZ or SB_VERT) by `step`: not below
  // 0, then not beyond the displayed length minus the view length. That upper limit
  // comes last, so content narrower than the view pins the position below 0.
  // Returns the new position.
  int ScrollBy(int bar, int step);

  // ---- coordinates ----
  // Window points and rectangles are surface ones shifted by the scroll position.
  POINT ToSurface(POINT window) const { return POINT{window.x + hScrollPos_, window.y + vScrollPos_}; }
  RECT ToWindow(const RECT& surface) const {
    return RECT{surface.left - hScrollPos_, surface.top - vScrollPos_, surface.right - hScrollPos_,
                surface.bottom - vScrollPos_};
  }
  RECT ToSurface(const RECT& window) const {
    return RECT{window.left + hScrollPos_, window.top + vScrollPos_, window.right + hScrollPos_,
                window.bottom + vScrollPos_};
  }

  const RECT& imageRect() const { return imageRect_; }
  int displayedWidth() const { return displayedWidth_; }
  int displayedHeight() const { return displayedHeight_; }
  bool hScrollShown() const { return hScrollShown_; }
  bool vScrollShown() const { return vScrollShown_; }
  int hScrollPos() const { return hScrollPos_; }
  int vScrollPos() const { return vScrollPos_; }
  int viewWidth() const { return viewWidth_; }
  int viewHeight() const { return viewHeight_; }

  int originalWidth = 0;
  int originalHeight = 0;
  double scale = 1.0;  // 1.0 is 100 %
  // The last positive SetImageWidth argument; 0 for none.
  int requestedImageWidth = 0;
  // Set by a successful load, cleared by the first tool press on the image.
  bool scalingAllowed = false;

 private:
  // Puts the image rectangle's left-top corner at (left, top).
  void PlaceAt(int left, int top);

  int displayedWidth_ = 0;
  int displayedHeight_ = 0;
  RECT imageRect_{0, 0, 0, 0};
  bool hScrollShown_ = false;
  int hScrollPos_ = 0;
  bool vScrollShown_ = false;
  int vScrollPos_ = 0;
  int viewWidth_ = 0;
  int viewHeight_ = 0;
};
