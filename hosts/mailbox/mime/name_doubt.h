// nameDoubt: whether the name of a part is what its sender meant.
#pragma once

#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

// Says so when the name that givenName finds is in a charset that nobody knows, by RFC 2231 or in an encoded
// word, and so has the bytes as they came; else empty.
Doubt nameDoubt(const Header& header);

}  // namespace quillfile::mime
