// From errno to Failure: the one file of this host that does it. The description is a sentence for a person:
// what was tried, on which path, and why it failed.
#pragma once

#include <string_view>

#include "core/platform/failure.h"

namespace quillfile::mailbox {

// `what` begins the sentence: fromErrno(ENOSPC, "write", "/home/u/a.pdf") is
// "Could not write /home/u/a.pdf: the disk is full". `error` is kept as the failure's number.
Failure fromErrno(int error, std::string_view what, std::string_view path);

// A failure that no system call reported; its number is 0. `sentence` is UTF-8.
Failure failure(std::string_view sentence);

}  // namespace quillfile::mailbox
