// The one creatable class.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include "hosts/windows/com/ptr.h"

namespace quillfile::windows {

const CLSID& componentClass();
Ptr<IUnknown> createComponent();  // throws Failure

}  // namespace quillfile::windows
