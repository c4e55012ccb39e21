// cleanName: the one place where a name from outside becomes a name for a file.
#pragma once

#include "core/text/text.h"

namespace quillfile::mime {

inline constexpr std::size_t longestName = 255;  // UTF-8 bytes, what Linux file systems take
inline constexpr std::size_t numberRoom = 5;     // of these, left free for a "-nnnn"

// A single, clean path component, or an empty text when nothing of the name is left:
//   - what stands before the last "/" or "\" goes, and so does a drive ("C:")
//   - control, bidirectional and other invisible characters and halves of surrogate pairs go; line ends and
//   tabs
//     become blanks; <>:"|?* become "_"
//   - blanks at the ends and dots at the end go; "." and ".." are no names
//   - a name that Windows reserves (CON, com1.txt …) gets an underscore in front
//   - an overlong name is cut before its extension, to longestName - numberRoom bytes
//   cleanName(u"../../etc/passwd") == u"passwd"     cleanName(u"CON.txt") == u"_CON.txt"
Text cleanName(TextView name);

}  // namespace quillfile::mime
