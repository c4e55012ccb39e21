// Leftovers: what a run that was stopped has left in a store, and clearing it away at the next start.
// Temporary files in save folders are swept when a folder is next saved into (SaveFolder).
#pragma once

#include <cstdint>

#include "hosts/mailbox/store/mail_store.h"

namespace quillfile::mailbox {

struct Leftovers {
  std::int32_t temporaries = 0;  // unfinished messages in tmp/
  std::int32_t duplicates = 0;   // old messages whose rewrite was in place already, and which are gone now
};

// To be called before anything is saved. Touches only what is of Quillfile's own making and whose maker is
// gone. A message is deleted only when its unique name and its inode are those that the rewrite in place says
// it replaces. What cannot be read or deleted stays, and is tried at the next start.
Leftovers clearLeftovers(const MailStore& store);

}  // namespace quillfile::mailbox
