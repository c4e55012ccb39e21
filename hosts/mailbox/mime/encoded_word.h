// Encoded words (RFC 2047): text in a header that ASCII cannot hold, in the forms that mail really has.
#pragma once

#include <string_view>

#include "core/text/text.h"
#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

// An unfolded value with its encoded words decoded. Blanks between two encoded words go; a character cut in
// two by neighbouring words of one charset is put together. Broken forms are read too: blanks inside a word,
// a word glued to other text, missing padding. What is no encoded word stays; raw 8-bit bytes are made out
// with guess().
//   decodeWords("=?utf-8?Q?Hello_?= =?utf-8?B?d29ybGQ=?=") == u"Hello world"
// A word in a charset that nobody knows keeps its bytes, each as the Latin-1 character of its number, and is
// noted in `doubt`, which may be null.
Text decodeWords(std::string_view value, Doubt* doubt = nullptr);

}  // namespace quillfile::mime
