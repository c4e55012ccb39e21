// The name of a message's file in a Maildir: a unique part that identifies the message, and after ":2," the
// flags.
//   "1700000000.M1P2.host,S=812:2,FS"  ->  unique "1700000000.M1P2.host,S=812", flags "FS"
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillfile::mailbox {

struct MaildirName {
  std::string_view unique;  // everything before ":2," (the whole name when there is none)
  std::string_view flags;   // letters after ":2,", as they stand: D draft, F flagged, P passed, R replied, S
                            // seen, T trashed
};

MaildirName parseMaildirName(std::string_view fileName);

// The file name of `unique` in cur/: the flags in ASCII order, each once, as the format asks for.
std::string maildirFileName(std::string_view unique, std::string_view flags);

bool hasFlag(std::string_view flags, char flag);
// `flags` with those of `set` and without those of `clear`, in ASCII order.
std::string changedFlags(std::string_view flags, std::string_view set, std::string_view clear);

// Seconds since 1970 that a unique name begins with; 0 when it begins with no number.
std::int64_t deliveryTime(std::string_view unique);

// A unique name that no other process, thread or machine gives: seconds, microseconds, process, counter, host
// name. It carries no size or UID mark.
std::string freshUniqueName();

// The same for a message that Quillfile makes in, or moves to, the folder with that shown path: the name says
// so. Whoever looks for mail that arrived there knows from the name alone, in any process and after any
// crash, that this is none; moved on to another folder by another program, it is a message like any other.
std::string ownUniqueName(std::string_view folder);
bool isOwnIn(std::string_view folder, std::string_view unique);

}  // namespace quillfile::mailbox
