// The `state` statement's report: the editor's state as one line of JSON.
#pragma once

#include <string>

class CImageEditWnd;

namespace script {

std::string EditorStateJson(const CImageEditWnd& editor);

}  // namespace script
