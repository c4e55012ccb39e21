// MessageFile: one message, open for reading. Its bytes do not change while it is open: a Maildir message is
// never written to, only renamed, moved and unlinked. Where a program breaks that rule, isAsOpened() tells.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "hosts/mailbox/mime/range.h"
#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/store/mapping.h"

struct stat;

namespace quillfile::mailbox {

class MessageFile {
 public:
  // Opens `path`. Null when it is not there (another program moved or deleted it). Throws Failure for all
  // else.
  static std::shared_ptr<MessageFile> open(const std::string& path);
  MessageFile(const MessageFile&) = delete;
  MessageFile& operator=(const MessageFile&) = delete;

  // The whole message. A small one is read, a large one is mapped; valid while this object lives.
  std::string_view bytes() const { return bytes_; }
  // The caller is done with these bytes for now: a mapped range leaves memory, and comes back when looked at
  // again.
  void forget(std::string_view range) const;

  // For a reader that goes through all of it, front to back.
  mime::Behind behind() const;

  // Whether the bytes are still the file's: no other program has written to it or cut it short since it was
  // opened, and every byte that was looked at could be read.
  bool isAsOpened() const;

  // Whether `path` names this very file, and its bytes are as opened.
  bool isStillAt(const std::string& path) const;

  // Takes the message for this process (flock): false when another process is handling it. Held until this
  // object goes. Where the file system has no locks the answer is true.
  bool lock();

  std::int64_t size() const { return static_cast<std::int64_t>(bytes_.size()); }
  std::int64_t modified() const { return modified_; }  // nanoseconds since 1970
  std::uint64_t inode() const { return inode_; }
  std::uint64_t device() const { return device_; }
  int descriptor() const { return file_.get(); }

 private:
  MessageFile() = default;
  bool isThis(const struct stat& status) const;

  Descriptor file_;
  std::unique_ptr<char[]> read_;
  std::unique_ptr<const Mapping> mapped_;
  std::string_view bytes_;
  bool locked_ = false;
  std::int64_t modified_ = 0;
  std::uint64_t inode_ = 0;
  std::uint64_t device_ = 0;
};

}  // namespace quillfile::mailbox
