// The `state` statement's report: the editor's state as one line of JSON.
#pragma once

#include <string>

#include "editor/editor_state.h"

namespace script {

std::string EditorStateJson(const EditorState& state);

}  // namespace script
