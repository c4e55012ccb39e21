// PartTree: a message as a tree of byte ranges. Nothing of the message is copied; the message must outlive
// its tree.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include "hosts/mailbox/mime/content_type.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

using PartIndex = std::uint32_t;  // 0 is the message itself
inline constexpr PartIndex noPart = std::numeric_limits<PartIndex>::max();

// leaf: its body is content. multipart: its children are the parts between its boundary lines. message: an
// embedded message (message/rfc822 and kin), whose only child is that message's own root.
enum class PartKind : std::uint8_t { leaf, multipart, message };

// A message reads:  header, blank line, body.  A multipart's body reads:  preamble, then for each child its
// opening boundary line and the child, then the closing boundary line and an epilogue. A line end before a
// boundary line belongs to that boundary line, never to the body before it (RFC 2046 5.1.1).
struct Part {
  Range opening;  // the boundary line that begins this part, with the line end before it; empty for a root
  Range header;   // the field lines; the blank line is what lies between header.end and body.begin
  Range body;     // exactly; ends where the next boundary line of the parent begins
  Range closing;  // of a multipart: its closing boundary line, likewise; empty at body.end when it is missing
  PartIndex parent = noPart;
  std::uint32_t depth = 0;  // 0 for the message itself
  PartKind kind = PartKind::leaf;
  Encoding encoding = Encoding::identity;
  Doubt doubt;  // cut off, or not as its header says

  // What goes when the part goes: boundary line, header and body.
  Range whole() const { return {opening.begin, body.end}; }
};

class PartTree {
 public:
  // `types`: of the first parts, as many as are worth keeping; those of the others are read when asked for.
  PartTree(std::string_view message, std::vector<Part> parts, std::vector<ContentType> types, Doubt doubt)
      : message_{message}, parts_{std::move(parts)}, types_{std::move(types)}, doubt_{doubt} {}

  std::string_view message() const { return message_; }
  // In the order in which they begin, so a part comes after its parent and before the parent's next child.
  const std::vector<Part>& parts() const { return parts_; }
  const Part& operator[](PartIndex part) const { return parts_[part]; }
  PartIndex size() const { return static_cast<PartIndex>(parts_.size()); }
  // One past the last descendant of `part`, so that loops can step over it.
  PartIndex after(PartIndex part) const;
  // The parts whose parent is `part`, in order.
  std::vector<PartIndex> children(PartIndex part) const;

  Header header(PartIndex part) const { return Header{parts_[part].header.of(message_)}; }
  std::string_view body(PartIndex part) const { return parts_[part].body.of(message_); }
  // Content-Type with the parent's say: a child of multipart/digest is message/rfc822 unless it says
  // otherwise.
  ContentType type(PartIndex part) const;
  // Whether `part` lies inside an embedded message, and so belongs to that one and not to this.
  bool insideEmbedded(PartIndex part) const;

  // Why the message as a whole is doubted: it went past a limit of the scan, so that it may be read but never
  // changed.
  Doubt doubt() const { return doubt_; }
  // "\r\n" or "\n", as the message's first line ends.
  std::string_view lineEnd() const;

 private:
  std::string_view message_;
  std::vector<Part> parts_;
  std::vector<ContentType> types_;
  Doubt doubt_;
};

}  // namespace quillfile::mime
