// One inserted object: a balloon text or an icon floating above the picture. It owns
// its pictures and its brush; copies (for the history) duplicate them, so no two
// records ever share a handle.
#pragma once

#include "pixels/pixel_buffer.h"
#include "platform/gdi_handles.h"
#include "platform/platform.h"

enum class ObjectKind : int { Free = 0, Icon = 1, Balloon = 2 };

// The colour of the selection frame and the resize grip, unless the object's own
// background is that colour.
inline constexpr COLORREF kObjectBorderColor = 0x0000FF;
// The resize grip is a square of this side in the bottom-right corner.
inline constexpr int kObjectGripSide = 15;

// A new brush made from the description of `brush`; none without one, or when it
// cannot be made.
platform::OwnedBrush CopyOfBrush(HBRUSH brush);

class CInsertedObject {
 public:
  // A free slot, speaking the user's language.
  CInsertedObject();
  virtual ~CInsertedObject();
  CInsertedObject(CInsertedObject&&) noexcept = default;
  CInsertedObject& operator=(CInsertedObject&&) noexcept = default;

  // Resets this record, then takes every field of `other`: the pictures as copies of
  // their own, the brush made again from its description. A copy that cannot be made
  // stays null.
  void CopyFrom(const CInsertedObject& other);
  // Every field back to what a new record holds, the pictures and the brush deleted;
  // the kind and the language stay (whoever frees the slot sets the kind).
  void Reset();

  // The bitmap's pixels as a new buffer, like the editor's read, except that running
  // out of memory is always reported, in the language of the object.
  PixelBuffer ReadSurfacePixels(HDC dc, HBITMAP bitmap) const;
  // The selected picture made again from the picture: a frame around it and, when the
  // object is resizable, the grip, in the border colour.
  void RebuildSelectedPicture();
  // Left and right swapped, in the picture and in the source picture; `dc` reads and
  // writes their pixels.
  void Mirror(HDC dc);
  // The picture made again from the source at the size it was inserted with.
  void RestoreOriginalSize();
  // The picture made again from the source at width x height, which becomes the
  // object's size; the selected picture is left to the caller. Without a source the
  // object keeps its picture and size. False, with nothing changed, when the copy
  // cannot be made.
  bool ScaleFromSource(int width, int height);

  // Whether the object's rectangle holds the window point (left and top edges in,
  // right and bottom out). Says nothing about whether the slot is live.
  bool BodyContains(POINT window) const;
  // Whether the window point lies on the resize grip, the square of kObjectGripSide
  // whose right and bottom edges lie one pixel inside the object's; a fixed-size object
  // has none.
  bool GripContains(POINT window) const;
  // The object's rectangle in window coordinates, cut to the range of int.
  RECT WindowRect() const;
  // What a repaint shows: the selected picture while selected, unless `plain` asks for
  // the object as it is saved.
  HBITMAP DrawnPicture(bool plain) const {
    return selected_ && !plain ? selectedPicture.get() : picture.get();
  }

  ObjectKind kind() const { return kind_; }
  bool selected() const { return selected_; }

  // Window coordinates: scrolling moves objects so they stay over the same spot.
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  int sourceWidth = 0;
  int sourceHeight = 0;
  platform::OwnedBitmap picture;
  // The picture as inserted; resizing and "Original" scale from it.
  platform::OwnedBitmap sourcePicture;
  platform::OwnedBitmap selectedPicture;
  // Pixels of this colour are left out when the object is drawn keyed.
  COLORREF keyColor = 0;
  bool resizable = false;
  // The primary language of the user, taken when the record is made.
  WORD language;
  COLORREF textColor = 0;
  // A copy of the text background brush the balloon was made with; none for icons.
  platform::OwnedBrush backgroundBrush;
  // 0 and 100 draw the picture keyed; 1 to 99 blend it with what lies below.
  int transparency = 0;
  // Set by RebuildSelectedPicture; may hold bits above the colour (a complement).
  COLORREF borderColor = kObjectBorderColor;

 private:
  // The slot's liveness and selection belong to the set of objects, which keeps them
  // in step with its count, z-order and selected slot.
  friend class InsertedObjects;

  ObjectKind kind_ = ObjectKind::Free;
  bool selected_ = false;
};
