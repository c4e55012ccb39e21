// Special-use names: which folder is Sent Items, Drafts, Deleted Items or Outbox, by the names in common use.
#pragma once

#include <string_view>

#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

// How well the folder's shown path names the role: 0 not at all, else the higher the better. ASCII case is
// ignored; a folder below "INBOX" or below a bracketed root such as "[Mail]" counts like one at the top.
int namesRole(std::string_view path, FolderRole role);

// The name under which a missing folder of that role is made.
std::string_view commonName(FolderRole role);

}  // namespace quillfile::mailbox
