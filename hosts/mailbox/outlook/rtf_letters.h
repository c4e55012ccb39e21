// Letters in rich text: RTF is an ASCII format, and writes other characters as control words. Each is
// followed by as many "?", for readers that do not know it, as "\uc" asks for where it stands: 1 when nothing
// is said; where it is 0, a blank ends the word. The module reads and writes them as the characters that they
// are.
#pragma once

#include <vector>

#include "hosts/mailbox/outlook/text_change.h"

namespace quillfile::mailbox {

//   u"caf\u00E9" -> u"caf\\u233?", with a fallback of 2 u"caf\\u233??", of 0 u"caf\\u233 "
Text rtfEscaped(TextView text, std::size_t fallback = 1);

// The opposite: what rtfEscaped would write there, and nothing else, becomes characters. All else stays, raw
// characters too.
Text rtfUnescaped(TextView rtf);

// Hunks of what a document shows as hunks of the document: new characters are escaped, and all around them
// stays as it was written.
std::vector<Hunk> rtfHunks(TextView rtf, const std::vector<Hunk>& shown);

// The blanks and zeros behind the last brace, which are no part of the document.
TextView behindDocument(TextView rtf);

}  // namespace quillfile::mailbox
