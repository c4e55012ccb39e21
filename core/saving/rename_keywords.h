// The rename keywords: "<received date>", "<sender name>", "<sender address>", "<subject>", "<attachment
// name>".
#pragma once

#include "core/saving/saving_ports.h"

namespace quillfile {

// The name that the user's template makes of an attachment's cleaned name; that name itself where nothing
// is left: a subject may be empty. Throws Failure.
//   "<received date> <attachment name>", "a.b.pdf" -> "3-4-2009 2-05-00 PM a.b.pdf"
Text renameWithKeywords(const SavingPorts& ports, const Ref<Item>& item, TextView name);

}  // namespace quillfile
