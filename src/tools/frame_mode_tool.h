// The mode a frame leaves the editor in. It paints nothing, yet a press on the
// picture is handled like any tool's: it records a history level and holds the mouse
// until the release, which keeps the layer's snapshot in step, so the history's
// levels line up with the presses a person made whatever the tool.
#pragma once

#include "tools/interaction.h"

class FrameModeTool : public Interaction {
 public:
  explicit FrameModeTool(CImageEditWnd& editor) : Interaction(editor) {}

  void Press(POINT) override {}
  std::optional<RECT> Move(POINT) override { return std::nullopt; }
  void Release(POINT point) override;
  int Cursor() const override { return kSystemArrowCursor; }
};
