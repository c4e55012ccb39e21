// A type description that knows one thing: the name.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "core/text/text.h"
#include "hosts/windows/com/ptr.h"

namespace quillfile::windows {

Ptr<ITypeInfo> describeAs(TextView name);

}  // namespace quillfile::windows
