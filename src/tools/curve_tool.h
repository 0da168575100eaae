// The curve: a Bézier curve built over three drags. The first sets its start and end
// (a straight line), the second its first control point, the third its second; only
// the first press starts a history level, and the third release finishes the curve.
#pragma once

#include "tools/interaction.h"

class CurveTool : public Interaction {
 public:
  explicit CurveTool(CImageEditWnd& editor) : Interaction(editor) {}

  bool PressRecordsHistory(POINT point) const override;
  void Press(POINT point) override;
  std::optional<RECT> Move(POINT point) override;
  void Release(POINT point) override;
  int Cursor() const override;
  // A curve half built starts over.
  void Abandon() override { stage_ = 0; }
  void ApplyColor() override;
  bool ResumesAfterColorPick() const override { return true; }

  // How many drags of the current curve are done: 0, 1 or 2.
  int stage() const { return stage_; }

 private:
  // Where the curve may have drawn with a pen of the tool's width: around its four
  // points, grown by `grow` to the right and bottom.
  RECT CurveArea(int grow) const;

  POINT points_[4]{};  // start, first control, second control, end
  int stage_ = 0;
};
