// Edit: what is to change in a message, collected first and turned into pieces once.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/mime/part_tree.h"
#include "hosts/mailbox/mime/pieces.h"

namespace quillfile::mime {

enum class BodyFormat { plain, html };

struct NewPart {
  Text name;  // of the file, may be empty
  std::string type =
      "application/octet-stream";  // type/subtype; message/rfc822 is never encoded, see Edit::add
  Text description;                // Content-Description; none when empty
  Content content;
};

class Edit {
 public:
  // The tree must outlive the edit. Ask `tree.doubt()` and `protection()` first: an edit does not.
  explicit Edit(const PartTree& tree) : tree_{tree} {}

  // The part goes, with its boundary line. A multipart stays, however few parts are left in it. Where the
  // part is the whole message (0), an empty text/plain body takes its place.
  void remove(PartIndex part);
  // The text of a text/* leaf. It keeps its charset and transfer encoding when the new text fits them; else
  // the part becomes UTF-8 in quoted-printable. Line ends in `text` may be of any kind.
  void setText(PartIndex part, TextView text);
  // A body for a message that has none of that format: in front of all other parts.
  void addBody(BodyFormat format, TextView text);
  // Behind all other parts. A message that is no multipart/mixed becomes the first part of one.
  void add(NewPart part);
  // A field of the message's own header: the first of that name is replaced and others of that name go, or it
  // is added at the end of the header. Encoded as needed. An empty value takes the field away.
  void setHeader(std::string_view name, TextView value);

  bool empty() const;
  bool removes(PartIndex part) const { return removed_.contains(part); }
  Pieces pieces() const;
  // The ranges of the original that the pieces leave out, ascending; see check().
  std::vector<Range> cuts() const;

 private:
  struct Change;
  std::vector<Change> changes() const;

  const PartTree& tree_;
  std::set<PartIndex> removed_;
  std::map<PartIndex, Text> texts_;
  std::vector<std::pair<BodyFormat, Text>> bodies_;
  std::vector<NewPart> added_;
  std::map<std::string, Text> headers_;
};

}  // namespace quillfile::mime
