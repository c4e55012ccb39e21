// The first bytes of a new message: its header and its bodies, in the structure that its attachments will
// need.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/mime/address.h"

namespace quillfile::mailbox {

struct DraftHeader {
  mime::Address from;  // no From field when it is empty
  std::vector<mime::Address> to, cc;
  Text subject;
  std::int64_t date = 0;   // seconds since 1970
  std::string inReplyTo;   // with angle brackets; empty: none
  std::string references;  // the original's, to which inReplyTo is added
};

// Lines end in CR LF. The formats that are empty are left out, but for the plain text.
struct DraftBodies {
  Text plain, html, rtf;
};

struct DraftStructure {
  bool mixed = false;    // attachments will come: the message itself is multipart/mixed, its bodies part 1
  bool related = false;  // pictures will come: the bodies are in a multipart/related
};

// The message, lines ending in LF as they do in a Maildir.
std::string draftText(const DraftHeader& header, const DraftBodies& bodies, const DraftStructure& structure);

// Header lines with LF for their line ends.
std::string replacedLineEnds(std::string lines);

// Where what is put on top of a page goes: behind its opening body tag, from 0.
std::size_t bodyStart(TextView html);

}  // namespace quillfile::mailbox
