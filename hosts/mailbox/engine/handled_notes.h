// HandledNotes: how commands by hand tell the watch over the same store which messages they have saved from,
// so that it does not save from those again. A message that was rewritten needs no note, its new name says
// it.
#pragma once

#include <string>
#include <vector>

#include "hosts/mailbox/services/descriptor.h"

namespace quillfile::mailbox {

class HandledNotes {
 public:
  // `seenFile`: where the watch remembers, see seenFile(); the notes lie beside it.
  explicit HandledNotes(std::string seenFile);

  // Does nothing where no watch has run over the store yet: what is there at its first look counts as seen
  // anyway. A note that cannot be written is left out; the watch then saves from the message too.
  void add(const std::string& itemId);
  // The ids noted since last taken. Throws Failure when they cannot be read.
  std::vector<std::string> take();

 private:
  std::string seenFile_, file_;
  Descriptor open_;
  std::string last_;  // a message has several attachments
};

}  // namespace quillfile::mailbox
