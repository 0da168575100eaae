// The `state` statement's report: the editor's state as one line of JSON.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "editor/editor_state.h"

namespace script {

// Whether the report has a member of that name.
bool IsStateKey(std::string_view key);
// Every member, or only those named in `keys` (in the report's own order).
std::string EditorStateJson(const EditorState& state, const std::vector<std::string>& keys = {});

}  // namespace script
