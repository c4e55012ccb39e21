// Message: the bytes of one message, read once into its parts, and what a mail reader makes of them: which
// bodies it shows and what it lists as attachments.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/mime/part_tree.h"
#include "hosts/mailbox/store/message_file.h"
#include "hosts/mailbox/store/scratch.h"

namespace quillfile::mailbox {

// What a mail reader shows of a message.
struct Layout {
  // The bodies: the parts that hold the text a reader sees. mime::noPart where there is none.
  mime::PartIndex html = mime::noPart;
  mime::PartIndex plain = mime::noPart;  // beside an HTML body: the alternative to it
  mime::PartIndex rtf = mime::noPart;
  std::vector<mime::PartIndex> attachments;  // in the order in which they stand

  bool isBody(mime::PartIndex part) const { return part == html || part == plain || part == rtf; }
};

Layout layoutOf(const mime::PartTree& tree);

// Immutable, shared by the item, its attachments, and the contents that are still to be written.
class Message {
 public:
  explicit Message(std::shared_ptr<MessageFile> file);
  // Of a message that is in no folder yet.
  explicit Message(std::string bytes);
  explicit Message(std::unique_ptr<const Scratch> bytes);
  // The message that stands at `range` of another, which it keeps alive.
  Message(std::shared_ptr<const Message> outer, mime::Range range);
  // A message with its containers opened: the bytes that `stored`, which it keeps alive, would have without
  // them. `reason`: why the one must not take the place of the other, a sentence; empty when it may.
  Message(std::shared_ptr<const Message> stored, std::unique_ptr<const Scratch> bytes, Text reason);
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  std::string_view bytes() const { return tree_.message(); }
  const mime::PartTree& tree() const { return tree_; }
  const Layout& layout() const { return layout_; }
  mime::Header header() const { return tree_.header(0); }
  // The message as it is stored: another one where containers were opened, else this.
  const Message& stored() const { return stored_ ? *stored_ : *this; }
  // Of the message as it is stored; null for own and for outer bytes.
  const std::shared_ptr<MessageFile>& file() const { return stored().file_; }

  // Throws Failure when what was read of this message cannot be relied upon, because another program has
  // written to its file meanwhile, or the disk failed. To be asked after reading and before the bytes are
  // used for good.
  void requireAsOpened() const;
  // Gives mapped pages back as `range` is read front to back; see mime::Behind.
  mime::Behind behind(mime::Range range) const;
  // Why nothing may be taken out of this message, a sentence; empty when it may.
  const Text& whyNothingMayGo() const;

 private:
  std::shared_ptr<MessageFile> file_;
  std::string own_;
  std::unique_ptr<const Scratch> scratch_;
  std::shared_ptr<const Message> outer_, stored_;
  std::size_t offset_ = 0;  // of this message in the outer one
  mime::PartTree tree_;
  Layout layout_;
  mutable std::optional<Text> whyNothingMayGo_;  // found out when it is asked for
};

}  // namespace quillfile::mailbox
