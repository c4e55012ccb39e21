// printable: what comes out of a mail, made fit for a terminal.
#pragma once

#include <string>

#include "core/text/text.h"

namespace quillfile::mailbox {

// UTF-8 without anything that a terminal would obey instead of show: control characters (escape sequences
// begin with one) and the characters that turn the direction of writing become U+FFFD; a line end or a tab, a
// blank.
std::string printable(TextView text);

// The same over several lines: line feeds stay, carriage returns before them go.
std::string printableLines(TextView text);

}  // namespace quillfile::mailbox
