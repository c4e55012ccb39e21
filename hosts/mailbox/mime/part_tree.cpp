#include "hosts/mailbox/mime/part_tree.h"

namespace quillfile::mime {

PartIndex PartTree::after(PartIndex part) const {
  auto next = part + 1;
  while (next < size() && parts_[next].depth > parts_[part].depth) ++next;
  return next;
}

std::vector<PartIndex> PartTree::children(PartIndex part) const {
  std::vector<PartIndex> found;
  const auto end = after(part);
  for (auto child = part + 1; child < end; child = after(child)) found.push_back(child);
  return found;
}

ContentType PartTree::type(PartIndex part) const {
  if (part < types_.size()) return types_[part];
  const auto parent = parts_[part].parent;
  const bool inDigest = parent != noPart && parts_[parent].kind == PartKind::multipart &&
                        contentType(header(parent)).is("multipart/digest");
  if (inDigest && !header(part).field("Content-Type"))
    return {.type = "message", .subtype = "rfc822", .parameters = {}};
  return contentType(header(part));
}

bool PartTree::insideEmbedded(PartIndex part) const {
  for (auto at = parts_[part].parent; at != noPart; at = parts_[at].parent) {
    if (parts_[at].kind == PartKind::message) return true;
  }
  return false;
}

std::string_view PartTree::lineEnd() const {
  const auto end = message_.find('\n');
  return end != message_.npos && end > 0 && message_[end - 1] == '\r' ? "\r\n" : "\n";
}

}  // namespace quillfile::mime
