// Where the picture lies and how much of it the window shows: the display scale, the
// displayed size and image rectangle it gives (surface coordinates), and the scroll
// state. The image rectangle always spans the displayed size from its left-top
// corner, and a scroll position moved here stays within what there is to scroll.
#pragma once

#include "platform/platform.h"

struct ViewPlacement {
  // Sets the displayed size to the original size times the scale, truncated.
  void SizeToScale();
  // Centres the displayed size in an area of width x height (halves truncated).
  void CentreIn(int width, int height);
  // Puts the image rectangle's left-top corner at (left, top).
  void PlaceAt(int left, int top);
  // Takes what a history level gives back: the displayed size and image position,
  // and the view size. The scroll positions are restored by scrolling.
  void RestoreLayout(const ViewPlacement& recorded);
  // Moves the scroll position of one axis (SB_HORZ or SB_VERT) by `step`: not below
  // 0, then not beyond the displayed length minus the view length. That upper limit
  // comes last, so content narrower than the view pins the position below 0.
  // Returns the new position.
  int ScrollBy(int bar, int step);

  int originalWidth = 0;
  int originalHeight = 0;
  double scale = 1.0;  // 1.0 is 100 %
  int displayedWidth = 0;
  int displayedHeight = 0;
  RECT imageRect{0, 0, 0, 0};
  bool hScrollShown = false;
  int hScrollPos = 0;
  bool vScrollShown = false;
  int vScrollPos = 0;
  // The client size measured once the scroll bars are set up.
  int viewWidth = 0;
  int viewHeight = 0;
  // The last positive SetImageWidth argument; 0 for none.
  int requestedImageWidth = 0;
  // Set by a successful load, cleared by the first tool press on the image.
  bool scalingAllowed = false;
};
