// matchText: the pattern rules of the filters and of the exclusion list.
#pragma once

#include "core/platform/letter_case.h"

namespace quillfile::mailbox {

// Whether `text` matches `pattern`, ignoring case. "*" stands for any characters, "?" for one. A pattern with
// one of them must cover the whole text; a pattern without matches where it is contained. An empty one
// matches nothing.
//   matchText("Report.PDF", "*.pdf")    matchText("Report.PDF", "port")    not matchText("a.pdf.exe",
//   "*.pdf")
bool matchText(LetterCase& letters, TextView text, TextView pattern);

}  // namespace quillfile::mailbox
