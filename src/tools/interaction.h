// One mouse interaction: what a press of the left button does on the picture, each
// move of the drag that follows, and the release; with the cursor it shows, whether
// its press records a history level first, and what giving it up does. Every tool is
// one, made once and kept by the editor's tool box, so that what a tool remembers
// between presses (a curve's stage, the airbrush's density) lasts while another tool
// is chosen. Points are surface points (a window point plus the scroll position).
//
// The editor's mouse handlers do what is common to every drag (capture, keeping the
// cursor over the picture, scrolling at the window's edge, the history level, the
// shared press and last points of the stroke state) and hand each event to the
// interaction of the tool chosen at that moment.
#pragma once

#include <optional>

#include "platform/platform.h"

class CImageEditWnd;
struct StrokeState;

// The cursor an interaction shows: a cursor resource id, or one of these.
inline constexpr int kSystemArrowCursor = 0;
inline constexpr int kWindowClassCursor = -1;  // the window's default handling decides

class Interaction {
 public:
  virtual ~Interaction() = default;

  // Whether a press at `point` starts a history level, with a snapshot of the drawing
  // layer, before Press runs.
  virtual bool PressRecordsHistory(POINT /*point*/) const { return true; }
  virtual void Press(POINT point) = 0;
  // One step of the drag to `point`: the part of the surfaces it changed, so that
  // only that part is repainted; nothing when it may have changed anything.
  virtual std::optional<RECT> Move(POINT point) = 0;
  virtual void Release(POINT point) = 0;
  virtual int Cursor() const = 0;

  // The history moved under the tool (an undo, or the history cleared): what it cannot
  // finish any more is given up. A tool change gives up nothing: a tool chosen again
  // carries on where it was.
  virtual void Abandon() {}
  // The drag is ended before its release, by a call that replaces what it works on:
  // what it showed only for the drag is taken back and what it keeps running stops.
  // What it drew stays, as the release would leave it.
  virtual void Interrupt() {}
  // A new current colour reaches what the tool draws with.
  virtual void ApplyColor() {}
  // A colour pick started from this tool returns to it (else to the pen).
  virtual bool ResumesAfterColorPick() const { return false; }

 protected:
  explicit Interaction(CImageEditWnd& editor) : editor_(editor) {}
  // Where the tools paint: the drawing layer's DC.
  HDC Layer() const;
  StrokeState& Stroke() const;
  // The current tool width.
  int Width() const;

  CImageEditWnd& editor_;
};
