#include "tools/no_tool_drags.h"

#include "editor/image_edit_wnd.h"

bool NoToolDrags::Press(POINT window) {
  if (active_) return false;
  if (box_.Takes(window)) {
    active_ = &box_;
  } else if (object_.Takes(window)) {
    active_ = &object_;
  } else {
    if (pan_.Takes(window)) active_ = &pan_;
    SelectInsertedObject(editor_, -1);
  }
  if (active_) active_->Press(window);
  return Active();
}

void NoToolDrags::Move(POINT window) {
  if (!active_) return;
  const RECT changed = active_->Move(window);
  if (changed.left < changed.right && changed.top < changed.bottom) editor_.RedrawWindow(&changed);
}

void NoToolDrags::Release() {
  if (!active_) return;
  WindowDrag* const ended = active_;
  active_ = nullptr;
  ended->Release();
}
