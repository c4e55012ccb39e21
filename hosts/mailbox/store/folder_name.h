// Folder names: between what is shown ("Projects/2026") and what stands on disk (".Projects.2026", or
// modified UTF-7 of RFC 3501, 5.1.3). What is shown is always valid UTF-8 without control characters,
// whatever the disk holds.
#pragma once

#include <string>
#include <string_view>

namespace quillfile::mailbox {

// One component as it is shown. Modified UTF-7 is decoded where it is well-formed; bytes that are no UTF-8,
// control and bidirectional characters and "/" stand as %XX.   "Entw&APw-rfe" -> "Entwürfe"      "R&D" ->
// "R&D"
std::string shownName(std::string_view onDisk);

// One component for disk in modified UTF-7, "." and "/" included.   "Entwürfe" -> "Entw&APw-rfe"
std::string encodedName(std::string_view shown);

}  // namespace quillfile::mailbox
