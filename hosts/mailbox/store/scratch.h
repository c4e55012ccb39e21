// Scratch: bytes that are made on the way and needed for a while only. Few of them are kept in memory; more
// go to a file without a name, which is mapped, so that memory does not grow with them. The file is on disk
// ($TMPDIR, else /var/tmp, else /tmp), readable by nobody else, and gone with this object or the process,
// however that ends.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "hosts/mailbox/mime/range.h"
#include "hosts/mailbox/services/content.h"
#include "hosts/mailbox/store/mapping.h"

namespace quillfile::mailbox {

class Scratch {
 public:
  // All that `content` gives. Throws Failure when the file cannot be made or the disk is full, and what
  // `content` throws.
  explicit Scratch(const Content& content);
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::string_view bytes() const { return mapped_ ? mapped_->bytes() : std::string_view{small_}; }
  // The caller is done with these bytes for now; see MessageFile.
  void forget(std::string_view range) const;
  // Whether every byte that was looked at so far could be read.
  bool isWhole() const { return !mapped_ || mapped_->isWhole(); }

 private:
  std::string small_;
  std::unique_ptr<const Mapping> mapped_;
};

}  // namespace quillfile::mailbox
