// The id of an item: its folder's shown path, "/", and its unique name made printable.
#pragma once

#include <string>
#include <string_view>

namespace quillfile::mailbox {

// Bytes other than printable ASCII, blanks and "%" stand as %XX.
std::string printableUnique(std::string_view unique);
// The opposite.
std::string uniqueFromPrintable(std::string_view printable);

}  // namespace quillfile::mailbox
