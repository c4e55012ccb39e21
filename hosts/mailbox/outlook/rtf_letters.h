// Letters in rich text: RTF is an ASCII format, and writes other characters as control words, each with as
// many
// "?" for readers that do not know them as "\uc" asks for where it stands (1 when nothing is said; a blank
// ends the word where it is 0). The module reads and writes them as the characters that they are.
#pragma once

#include "core/text/text.h"

namespace quillfile::mailbox {

//   u"caf\u00E9" -> u"caf\\u233?", with a fallback of 2 u"caf\\u233??", of 0 u"caf\\u233 "
Text rtfEscaped(TextView text, std::size_t fallback = 1);

// The opposite: what rtfEscaped would write there, and nothing else, becomes characters. All else stays, raw
// characters too.
Text rtfUnescaped(TextView rtf);

// `rtf` changed where `text` is another than rtfUnescaped(rtf): new characters are escaped, and all around
// them stays as it was written.
Text rtfChanged(TextView rtf, TextView text);

}  // namespace quillfile::mailbox
