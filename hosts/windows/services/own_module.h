// The module's own file: where its resources and its type library are.
#pragma once

#include <windows.h>

#include "core/text/text.h"

namespace quillfile::windows {

HMODULE ownModule();
Text ownPath();
Text ownFolder();  // without a separator at its end

}  // namespace quillfile::windows
