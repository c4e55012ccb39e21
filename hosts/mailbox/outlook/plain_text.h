// The text in a formatted body, for readers of plain text.
#pragma once

#include "core/text/text.h"

namespace quillfile::mailbox {

// Tags gone, entities read, blanks gathered, a line for each block; lines end in CR LF.
Text htmlToText(TextView html);
// Control words gone but for the lines and characters that they mean.
Text rtfToText(TextView rtf);
// With "&", "<", ">" and quotes as entities, and line ends as <br>.
Text textToHtml(TextView text);

}  // namespace quillfile::mailbox
