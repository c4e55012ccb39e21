// cleanName: the one place where a name from outside becomes a name for a file.
#pragma once

#include "core/text/text.h"

namespace quillfile::mime {

inline constexpr std::size_t longestName = 255;  // UTF-8 bytes, what Linux file systems take
inline constexpr std::size_t numberRoom = 5;     // of these, left free for a "-nnnn"

// A single, clean path component, or an empty text when nothing of the name is left:
//   - directories go, whether "/" or "\" divides them
//   - control, bidirectional and invisible characters go, and halves of surrogate pairs; line ends and tabs
//   become
//     blanks
//   - blanks at the ends and dots at the end go; so "." and ".." are no names
//   - a name that Windows reserves (CON, com1.txt ...) gets an underscore in front
//   - an overlong name is cut before its extension, to longestName - numberRoom bytes
// Characters that only some file systems refuse are left to PathRules.
//   cleanName(u"../../etc/passwd") == u"passwd"     cleanName(u"CON.txt") == u"_CON.txt"
Text cleanName(TextView name);

}  // namespace quillfile::mime
