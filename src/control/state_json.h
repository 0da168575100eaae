// The editor's state as one line of JSON: what hosts that test or record the
// control print of it (the script host's `state`).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "editor/editor_state.h"

// Whether the report has a member of that name.
bool IsStateKey(std::string_view key);
// Every member, or only those named in `keys` (in the report's own order).
std::string EditorStateJson(const EditorState& state, const std::vector<std::string>& keys = {});
