// Encoded words (RFC 2047): text in a header that ASCII cannot hold, in the forms that mail really has.
#pragma once

#include <string_view>

#include "core/text/text.h"

namespace quillfile::mime {

// An unfolded value with its encoded words decoded. Blanks between two encoded words go; a character cut in
// two by neighbouring words of one charset is put together. Broken forms are read too: blanks inside a word,
// a word glued to other text, missing padding. What is no encoded word stays; raw 8-bit bytes are made out
// with guess().
//   decodeWords("=?utf-8?Q?Hello_?= =?utf-8?B?d29ybGQ=?=") == u"Hello world"
Text decodeWords(std::string_view value);

}  // namespace quillfile::mime
