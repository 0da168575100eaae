// What the editor reports to the control that owns it, which raises the events its
// hosts hear. The editor sees only this, never the control.
#pragma once

#include <string>

class EditorEvents {
 public:
  // A colour was picked from the picture: its colour string.
  virtual void FireColorSelected(const std::string& color) = 0;

 protected:
  ~EditorEvents() = default;
};
