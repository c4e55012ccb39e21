// Protection: whether a message is signed or encrypted, so that changing a byte of it would break it.
#pragma once

#include "hosts/mailbox/mime/part_tree.h"

namespace quillfile::mime {

// signed, encrypted: anywhere in the message, its embedded messages included.
enum class Protection { none, is_signed, encrypted };

// multipart/signed and multipart/encrypted, S/MIME (application/pkcs7-mime and -signature), PGP/MIME, and PGP
// blocks inside a text (the texts' first 64 KB are read for them).
Protection protection(const PartTree& tree);

}  // namespace quillfile::mime
