// Where an attachment is saved: the folder, the name, and what happens when that name is taken.
#pragma once

#include <variant>

#include "core/saving/saving_context.h"
#include "core/saving/saving_ports.h"

namespace quillfile {

// A full path, or how the attachment ends without one.
using Target = std::variant<Text, SaveResult>;

// `name` is the attachment's cleaned name. Asks the user where the settings say so. Throws Failure.
Target attachmentPath(const SavingPorts& ports, const Ref<Item>& item, TextView name, TextView savePath);

}  // namespace quillfile
