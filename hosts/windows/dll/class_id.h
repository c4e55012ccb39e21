// The name under which the one class is created.
#pragma once

#include "core/text/text.h"

namespace quillfile::windows {

inline constexpr TextView progId = u"Quillfile.CQuillfile";

}  // namespace quillfile::windows
