// The user's trash (the freedesktop.org trash layout): where a deleted file waits in case it was wanted after
// all.
#pragma once

#include <string>

namespace quillfile::mailbox {

// Moves the file at `path` there: to the home trash, or, on another file system, to `.Trash-UID` at its top.
// Throws Failure when the file is not there or cannot be moved; the file is then where it was.
void moveToTrash(const std::string& path);

}  // namespace quillfile::mailbox
