// The texts of a link note, as the reader looks for them.
#pragma once

#include "core/text/text.h"

namespace quillfile::link_note {

inline constexpr TextView keyword = u"Attachment";
inline constexpr TextView phrase = u"Attachment saved to";
inline constexpr TextView marker = u"file:///";
inline constexpr TextView opening = u"Attachment saved to <";  // of a note in plain text

// The note in plain text that points to `link`.
//   plain(u"file:///C:\\a.pdf") == u"Attachment saved to <file:///C:\\a.pdf>"
inline Text plain(TextView link) { return fill(u"Attachment saved to <{}>", link); }

}  // namespace quillfile::link_note
