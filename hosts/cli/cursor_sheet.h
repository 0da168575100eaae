// A contact sheet of the module's cursors, for a person to look at them.
#pragma once

#include <string>

#include "picture_files.h"

namespace script {

// Every cursor of the cursor table, in table order: its resource id, then the picture at
// 100 % and 200 % on a light and a dark checkerboard, with magenta ticks on the tiles'
// left and top edges pointing at the hot spot; written like a `shot` (PNG for .png).
PictureResult WriteCursorSheet(const std::string& path);

}  // namespace script
