// A content on its way into an open file, and the comparison of the two afterwards.
#pragma once

#include <cstdint>
#include <string>

#include "hosts/mailbox/services/content.h"

namespace quillfile::mailbox {

// Writes all of `content` to the file from where it stands; gives the number of bytes. `path` is for the
// sentence of the Failure that it throws when not everything could be written.
std::int64_t writeContent(int file, const Content& content, const std::string& path);

// Writes bytes that are at hand; the same sentence.
void writeAll(int file, std::string_view bytes, const std::string& path);

// Whether the file holds exactly `content`. Reads it from its beginning. Throws Failure when it cannot be
// read, and what `content` throws.
bool holdsContent(int file, const Content& content, const std::string& path);

}  // namespace quillfile::mailbox
