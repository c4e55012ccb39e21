// ItemChanges: what an item is to become, beside its bodies, when it has been saved and its event ends.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "hosts/mailbox/outlook/attachment_source.h"
#include "hosts/mailbox/outlook/removed_part.h"
#include "hosts/mailbox/services/saved_files.h"

namespace quillfile::mailbox {

// An attachment that is to go. `file` holds it; null for one that needs no keeping (the module's own
// paperclip).
struct TakenAttachment {
  std::shared_ptr<const AttachmentSource> source;
  std::shared_ptr<SavedFile> file;
};

// An attachment that is to come. `was` is set when it once was a part of this very message.
struct AddedAttachment {
  std::shared_ptr<const AttachmentSource> source;
  std::optional<RemovedPart> was;
};

struct ItemChanges {
  std::vector<TakenAttachment> taken;
  std::vector<AddedAttachment> added;
  std::map<const AttachmentSource*, std::shared_ptr<SavedFile>> saved;  // what each was last saved to
  std::optional<bool> unRead;
  std::size_t memory = 0;  // bytes of the header that will tell of those taken, at most
  bool save = false;       // the item was saved: its bodies and attachments are to be written
  bool remove = false;     // to Deleted Items, or for good
  bool declineTold = false;

  bool touchesParts() const { return !taken.empty() || !added.empty(); }
};

}  // namespace quillfile::mailbox
