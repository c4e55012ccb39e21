// MailboxItem: one message as an item. It is opened when something of it is asked for, keeps what the module
// changes in memory, and is made so on disk at the end of the event, in one rewrite, when it was saved.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/platform/item.h"
#include "hosts/mailbox/mime/address.h"
#include "hosts/mailbox/outlook/attachment_source.h"
#include "hosts/mailbox/outlook/item_body.h"
#include "hosts/mailbox/outlook/item_changes.h"
#include "hosts/mailbox/outlook/listeners.h"
#include "hosts/mailbox/outlook/reading_ahead.h"
#include "hosts/mailbox/services/batch.h"
#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

class MailClient;

class MailboxItem final : public Item, public std::enable_shared_from_this<MailboxItem> {
 public:
  // A message in a folder; not opened.
  MailboxItem(std::weak_ptr<MailClient> client, std::shared_ptr<MailFolder> folder, std::string unique);
  // A new, unsent item: its first bytes, attachments that it carries from elsewhere, and what its original
  // remembers of the parts that were taken out of it.
  MailboxItem(std::weak_ptr<MailClient> client, std::shared_ptr<const Message> message,
              std::vector<AddedAttachment> carried, std::vector<RemovedPart> removedBefore);

  Text typeName() override;
  Text entryId() override;
  Text subject() override;
  LocalTime receivedTime() override;
  Text body() override { return body(BodyKind::plain); }
  bool unRead() override;
  void setUnRead(bool unRead) override;  // takes effect at the end of the event, saved or not
  Ref<Attachments> attachments() override;
  void save() override;     // raises Write; a listener may stop it
  void remove() override;   // to Deleted Items; for good when it is there already
  void display() override;  // a new item is saved with it
  Ref<Item> respond(Response response) override;
  Subscription listen(ItemEvents& listener) override { return listeners_.add(listener); }

  // --- What lists show. Each may throw Failure when the message cannot be read or is gone.
  Text receivedWithOffset();     // "2026-03-04T14:05:00+01:00"
  mime::Address sender();        // From; its name falls back to the address
  Text bodyFormat();             // "HTML", "RTF", "TEXT"
  std::int64_t size();           // bytes of the message
  Text body(BodyKind kind);      // as changed; lines end in CR LF
  Text takeBody(BodyKind kind);  // the same for whoever needs it once; see ItemBodies
  void setBody(BodyKind kind, TextView text);
  bool ownsBody(BodyKind kind);     // the body is the message's own, not made from another one
  TextView ownBody(BodyKind kind);  // such a body, until it or the item changes
  void replaceInBody(BodyKind kind, Position begin, Position end, TextView replacement);
  void saveQuietly();  // save without the Write event, as the mail-helper's wrapper does

  // --- The user's doings, with their events.
  // Raises Forward, Reply or ReplyAll; where no listener cancels, the item's own response is made and
  // displayed, and given back; null where the module has made its own.
  std::shared_ptr<MailboxItem> userResponds(Response response);
  bool userCloses();  // Close; false when a listener stopped it

  // --- For `restore`, after the module has put the files back and cut its notes out, before the event ends:
  // takes the blank lines out of the plain text that the notes brought.
  void finishRestore();

  // --- For the rest of this room and the engine.
  const std::shared_ptr<MailFolder>& folder() const { return folder_; }  // null for a new item
  const std::string& unique() const { return unique_; }
  bool isNew() const { return folder_ == nullptr; }
  std::shared_ptr<const Message> message();  // opens it; throws Failure when it cannot be read or is gone
  const std::vector<RemovedPart>& removedBefore() { return message(), opened().removedBefore; }
  // Where the message probably is; empty when that is not known.
  std::string expectedPath() const;
  // Opens the item with what somebody has read of it already; not when that is null or no longer so, or the
  // item is open.
  void adopt(ReadMessage read);
  const AttachmentSources& sources();  // as they are now: removed ones left out, added ones last
  MailClient& clientOf() const { return *client(); }

 private:
  friend class MailClient;
  friend class MailboxAttachment;
  friend class MailboxAttachments;

  // What was read of the message, and what it is to become.
  struct Opened {
    std::shared_ptr<const Message> message;
    std::optional<ItemBodies> bodies;
    DecodedParts decoded;  // until the sources are made
    std::optional<AttachmentSources> sources;
    std::vector<RemovedPart> removedBefore;
    std::set<std::pair<std::string, std::size_t>> awaited;  // those not put back: path, and index of the part
    ItemChanges changes;
  };

  Opened& opened() { return *(opened_ ? opened_ : opened_ = std::make_unique<Opened>()); }
  ItemChanges& changes() { return opened().changes; }
  std::shared_ptr<MailClient> client() const;  // throws Failure when it has gone
  ItemBodies& bodies();
  AttachmentSources& ownSources();
  // Something is about to change: what went to the batch before must be on disk, and is read anew.
  void touch();
  void readAnew();
  void open(std::shared_ptr<const Message> message);
  void remember(std::vector<RemovedPart> removed);
  void forget() { opened_.reset(); }
  // Why the attachment must stay in the message, a sentence; empty when it may go. `file` is what it was
  // saved to.
  Text whyItStays(const AttachmentSource& source, const SavedFile* file);
  // How many bytes of the message's header will tell of the attachment when it is gone, at most.
  std::size_t memoryOf(const AttachmentSource& source, const SavedFile* file);
  void decline(const Text& reason);

  std::weak_ptr<MailClient> client_;
  std::shared_ptr<MailFolder> folder_;
  std::string unique_;
  std::string provisionalId_;  // of a new item that was saved
  Listeners<ItemEvents> listeners_;
  std::unique_ptr<Opened> opened_;  // null in most items of a large selection
  bool underWay_ = false;           // the client knows that this event has to do with it
  bool handedOver_ = false;         // its changes are the batch's; it is read anew when it is to change again
  std::string uniqueBefore_;        // its name before they were handed over
};

}  // namespace quillfile::mailbox
