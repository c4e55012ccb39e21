// Registration of the class, for the user or for the machine.
#pragma once

#include <windows.h>

namespace quillfile::windows {

// HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE; the keys lie under its Software\Classes. Both throw Failure.
void registerClass(HKEY root);
void unregisterClass(HKEY root);  // leaves nothing behind; no failure where nothing was

}  // namespace quillfile::windows
