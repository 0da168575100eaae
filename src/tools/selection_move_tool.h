// The held rectangle selection: a drag that starts on the captured pixels (their
// edges included) moves them, leaving behind what the snapshot holds there, and
// records no history level; a press beside them starts a new rectangle instead.
#pragma once

#include "tools/interaction.h"

class SelectionMoveTool : public Interaction {
 public:
  // `newRectangle` takes a press beside the captured pixels.
  SelectionMoveTool(CImageEditWnd& editor, Interaction& newRectangle)
      : Interaction(editor), newRectangle_(newRectangle) {}

  bool PressRecordsHistory(POINT point) const override;
  void Press(POINT point) override;
  std::optional<RECT> Move(POINT point) override;
  // The moved pixels are outlined where they lie now.
  void Release(POINT point) override;
  int Cursor() const override;
  // What the history gives back no longer matches where the pixels were moved: the
  // tool goes back to plain rectangle selection.
  void Abandon() override;
  // The captured pixels stay where the drag has brought them, as a release leaves them.
  void Interrupt() override { Release(POINT{0, 0}); }

 private:
  Interaction& newRectangle_;
};
