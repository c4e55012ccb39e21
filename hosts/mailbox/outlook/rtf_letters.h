// Letters in rich text: RTF is an ASCII format, and writes other characters as control words with a "?" for
// readers that do not know them. The module reads and writes them as the characters that they are.
#pragma once

#include "core/text/text.h"

namespace quillfile::mailbox {

//   u"caf\u00E9" -> u"caf\\u233?"
Text rtfEscaped(TextView text);

// The opposite: what rtfEscaped writes, and nothing else, becomes characters. All else stays, raw characters
// too.
Text rtfUnescaped(TextView rtf);

// `rtf` changed where `text` is another than rtfUnescaped(rtf): new characters are escaped, and all around
// them stays as it was written.
Text rtfChanged(TextView rtf, TextView text);

}  // namespace quillfile::mailbox
