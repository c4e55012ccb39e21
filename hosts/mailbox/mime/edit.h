// Edit: what is to change in a message, collected first and turned into pieces once.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/mime/part_tree.h"
#include "hosts/mailbox/mime/pieces.h"

namespace quillfile::mime {

enum class BodyFormat { plain, html };

struct NewPart {
  Text name;  // of the file, may be empty
  std::string type =
      "application/octet-stream";  // type/subtype; message/rfc822 is written as it is, others in base64
  Text description;                // Content-Description; none when empty
  Content content;
};

class Edit {
 public:
  // The tree must outlive the edit. Ask tree.doubt(), the parts' doubts and protection() first: an edit does
  // not.
  explicit Edit(const PartTree& tree);

  // The part goes, with its boundary line; not for the root of an embedded message. A multipart stays,
  // however few parts are left in it. Where the part is the whole message (0), a new body takes its place, or
  // an empty one.
  void remove(PartIndex part);
  // The text of a text/* leaf. It keeps its charset and transfer encoding where the new text fits them; else
  // the part becomes UTF-8, or quoted-printable, or base64. Line ends in `text` may be of any kind.
  void setText(PartIndex part, TextView text);
  // A body for a message that has none of that format: before all other parts, in the order of the calls.
  void addBody(BodyFormat format, TextView text);
  // After all other parts. A message that is no multipart/mixed becomes the first part of one.
  void add(NewPart part);
  // A field of the message's own header: the first of that name is replaced and others of that name go; a new
  // one stands at the end of the header. `value` is any text where the field is unstructured, else ASCII
  // already (see encodedAddress). An empty one takes the field away. Not for Content-* fields.
  void setHeader(std::string_view name, TextView value);
  // One more field at the end of the message's own header, as it stands, with its line end.
  void addField(std::string_view field);

  bool empty() const;
  bool removes(PartIndex part) const;  // the part itself, or one that it is in

  // The rewritten message, and the ranges of the original that it leaves out, ascending; see check().
  Pieces pieces() const;
  std::vector<Range> cuts() const;
  // Whether every leaf that this edit does not touch is in `rewritten`, in order, with its bytes and its
  // encoding, and nothing but what was added beside them. Reads the trees, not the pieces: a second opinion.
  bool holds(const PartTree& rewritten) const;

 private:
  friend class Splice;
  const PartTree& tree_;
  std::string boundary_;  // of the multipart/mixed that may be made
  std::set<PartIndex> removed_;
  std::map<PartIndex, Text> texts_;
  std::vector<std::pair<BodyFormat, Text>> bodies_;
  std::vector<NewPart> added_;
  std::vector<std::pair<std::string, Text>> headers_;
  std::string fields_;
};

}  // namespace quillfile::mime
