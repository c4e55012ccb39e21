// The first bytes of a new message: its header and its bodies, in the structure that its attachments will
// need. They are written as they are made: a body may be large.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/mime/address.h"
#include "hosts/mailbox/services/content.h"

namespace quillfile::mailbox {

struct DraftHeader {
  mime::Address from;  // no From field when it is empty
  std::vector<mime::Address> to, cc;
  Text subject;
  std::int64_t date = 0;   // seconds since 1970
  std::string inReplyTo;   // with angle brackets; empty: none
  std::string references;  // the original's, to which inReplyTo is added
};

// Writes the message, front to back, lines ending in LF as they do in a Maildir. `sink` must outlive it.
class DraftWriter {
 public:
  DraftWriter(const DraftHeader& header, const Sink& sink);

  void open(std::string_view subtype);  // a multipart, and in it its first part
  void next();                          // the next part of the innermost multipart
  // A text part: the pieces after each other. Their lines end in CR LF.
  void body(std::string_view type, const std::vector<TextView>& pieces);
  void close();  // all multiparts; the end

 private:
  const Sink& sink_;
  std::vector<std::string> boundaries_;
};

// Header lines with LF for their line ends.
std::string replacedLineEnds(std::string lines);

// Where what is put on top of a page goes: behind its opening body tag, from 0.
std::size_t bodyStart(TextView html);

}  // namespace quillfile::mailbox
