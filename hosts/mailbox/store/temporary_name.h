// Names of Quillfile's own messages in tmp/. The name of a rewritten message says which message it replaces,
// and it stays in tmp/, as a second link, until that one is gone: so a start after a crash knows a duplicate
// for certain.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillfile::mailbox {

// Which message a new one replaces: a hash of its unique name, and its inode. Both must fit.
struct Replaced {
  std::uint64_t nameHash = 0;
  std::uint64_t inode = 0;
  bool operator==(const Replaced&) const = default;
};
Replaced replacedMessage(std::string_view unique, std::uint64_t inode);

//   "quillfile,UNIQUE" or "quillfile,UNIQUE,HASH-INODE"
std::string temporaryMessageName(std::string_view unique, const std::optional<Replaced>& replaced = {});

struct TemporaryMessage {
  std::string unique;
  std::optional<Replaced> replaced;
};
// None when the name is not of Quillfile's making.
std::optional<TemporaryMessage> parseTemporaryMessageName(std::string_view name);

}  // namespace quillfile::mailbox
