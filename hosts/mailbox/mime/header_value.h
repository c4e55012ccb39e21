// Header values made: texts, parameters and addresses as they stand in a field that we write.
#pragma once

#include <string>
#include <string_view>

#include "core/text/text.h"
#include "hosts/mailbox/mime/address.h"

namespace quillfile::mime {

// `text` for a field: ASCII stays, folded at blanks where it is long; other text becomes encoded words in
// UTF-8 (RFC 2047). Line ends in `text` become blanks and other controls go, so that it can never add a
// field.
std::string encodedText(TextView text, std::string_view lineEnd);

// ";" and a folded "name=value": a quoted string when `value` is ASCII, else RFC 2231 in UTF-8, cut into
// continuations when it is long.
std::string encodedParameter(std::string_view name, TextView value, std::string_view lineEnd);

// Name <address>, the name quoted or encoded as it needs.
std::string encodedAddress(const Address& address, std::string_view lineEnd);

}  // namespace quillfile::mime
