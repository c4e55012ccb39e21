// Charsets: bytes to text and back, through iconv and a table of the names that mail uses and iconv does not
// know.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/text/text.h"
#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

// `bytes` in `charset` as text. A byte that has no place in the charset becomes U+FFFD and is doubted. An
// unknown charset keeps the bytes, each as the Latin-1 character of its number, and is doubted. An empty
// name, us-ascii and the like: see guess. `doubt` may be null.
Text fromCharset(std::string_view bytes, std::string_view charset, Doubt* doubt = nullptr);

// Bytes whose charset nobody said: UTF-8 when they are valid UTF-8, else windows-1252.
Text guess(std::string_view bytes);

// The opposite of fromCharset. None when the charset is unknown or does not have every character of `text`.
std::optional<std::string> toCharset(TextView text, std::string_view charset);

bool isAscii(std::string_view bytes);
// Whether each of the bytes is ASCII and stands for itself in the charset, so that they need no conversion.
bool isAsciiIn(std::string_view bytes, std::string_view charset);
bool isUtf8(std::string_view bytes);

}  // namespace quillfile::mime
