// Embedded messages (RFC 2046 5.2.1, RFC 6532 3.7), whether one can look into them or not.
#pragma once

#include "hosts/mailbox/mime/part_tree.h"

namespace quillfile::mime {

// Some programs give an embedded message a transfer encoding, which is forbidden; the tree has it as a leaf.
inline bool isMessage(const PartTree& tree, PartIndex part) {
  if (tree[part].kind != PartKind::leaf) return tree[part].kind == PartKind::message;
  const auto type = tree.type(part);
  return type.is("message/rfc822") || type.is("message/global");
}

}  // namespace quillfile::mime
