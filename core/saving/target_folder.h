// The folder that files are saved into.
#pragma once

#include "core/saving/saving_ports.h"

namespace quillfile {

// Makes the folder where it is missing. False when it cannot be made, and the user has been told.
bool ensureTargetFolder(const SavingPorts& ports, TextView folder);

}  // namespace quillfile
